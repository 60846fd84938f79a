#ifndef BREVAN_TESTS_CONTRACT_OBSERVATION_H
#define BREVAN_TESTS_CONTRACT_OBSERVATION_H

#include "Contract.h"

#include <string>
#include <vector>

namespace brevan::contract {

/// What a row's call did.
struct Observation {
    std::vector<std::string> lines;
    std::string result;
    std::string failure;  ///< the text of brevan::lastFailure() in the calling thread
};

/// Plays the row's script to the library.
Observation observe(const Row& row);

/// The same in a process of its own, with System V semaphores of its own.
Observation observeAlone(const Row& row);

}  // namespace brevan::contract

#endif
