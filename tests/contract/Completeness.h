#ifndef BREVAN_TESTS_CONTRACT_COMPLETENESS_H
#define BREVAN_TESTS_CONTRACT_COMPLETENESS_H

#include "Contract.h"
#include "HeaderOperations.h"

#include <string>
#include <vector>

namespace brevan::contract {

/// What the rows leave out, one line each: an operation without a row that succeeds; a request of such a row that no row shows
/// unreachable, or refused by the array; an argument that no row shows refused; a row of no operation.
std::vector<std::string> gaps(const std::vector<HeaderOperation>& operations, const std::vector<const Row*>& rows);

}  // namespace brevan::contract

#endif
