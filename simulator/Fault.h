#ifndef BREVAN_SIMULATOR_FAULT_H
#define BREVAN_SIMULATOR_FAULT_H

#include "Wire.h"

#include <cstdint>
#include <string>

namespace brevan::sim {

/// What goes wrong. The first group happens instead of the operation; of the second, the operation is carried out and the
/// client is not told so as it should be.
enum class FaultKind {
    kError,        ///< "error CODE" or "error CODE TEXT": answered with this code
    kStatus,       ///< "status 503": an HTTP status with a page for people
    kResetBefore,  ///< "reset before": the connection is reset
    kSessionGone,  ///< "session gone": the session ends, and the answer says so

    kPass,        ///< "pass": nothing goes wrong
    kStall,       ///< "stall 2s": the answer is held back
    kResetAfter,  ///< "reset after": the connection is reset instead of the answer
    kCut,         ///< "cut 40": the answer's body ends after so many bytes, and the connection with it
    kGarbage,     ///< "garbage": the answer is not JSON
    kWrongTypes,  ///< "wrong types": the values in the answer's records are of other types
    kUpperCase,   ///< "upper case": the texts in the answer's records come in capitals
};

struct Fault {
    FaultKind kind = FaultKind::kPass;
    std::int64_t amount = 0;  ///< the code, the status, microseconds or bytes
    std::string text;         ///< of kError
};

/// One line of a script; a std::invalid_argument says what is wrong with it.
Fault readFault(const std::string& line);
/// The line that means this fault.
std::string faultText(const Fault& fault);

bool happensInstead(FaultKind kind);

/// What the client gets in place of `reply`.
WireReply spoiled(WireReply reply, const Fault& fault);

}  // namespace brevan::sim

#endif
