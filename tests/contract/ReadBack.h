#ifndef BREVAN_TESTS_CONTRACT_READBACK_H
#define BREVAN_TESTS_CONTRACT_READBACK_H

#include "Contract.h"

#include <string>

namespace brevan::contract {

/// A create whose object is read at once, again while the array answers 1077949006 and tries are left; what the last read throws
/// comes out. (The creates of a LUN and of a LUN group differ: see there.)
struct ReadBack {
    std::string create;   ///< the operation
    Call call;            ///< creates
    Steps created;        ///< the create's request
    std::string read;     ///< the read's operation
    std::string request;  ///< the read's request
    Steps found;          ///< the read that goes well
    std::string retryLine;
    std::string result;
};

Operation readsBack(const ReadBack& particulars);

}  // namespace brevan::contract

#endif
