#ifndef BREVAN_EXAMPLES_ATTACHMENT_H
#define BREVAN_EXAMPLES_ATTACHMENT_H

// What the example programs share that attach a volume to this host. Copy it together with them, ArraySession.h and Console.h.

#include "ArraySession.h"

#include <chrono>
#include <string>
#include <thread>

namespace example {

/// How a program that attaches may end besides.
enum AttachStatus {
    kUnknownVolume = kFirstOwnStatus,
    kUnknownInitiator = 7,
    kAttachFailed = 8,
    kNoDisk = 9,
    kDetachFailed = 10,
    kFirstStatusBesidesAttach = 11
};

inline void checkInitiator(ArraySession& array, const std::string& initiator)
{
    const std::string unknown =
        "the array has no iSCSI initiator " + initiator + "; create it there, or correct --initiator";
    try {
        if (!array.get<CIscsiInitiatorHandler>(HANDLER_ISCSI_INITIATOR).getIscsiInitiator(initiator).ID.empty()) {
            return;
        }
    } catch (PlimAPIExceptionWithErrCode&) {
        throw failure(kUnknownInitiator, unknown);
    }
    throw Trouble{kUnknownInitiator, unknown};
}

/// The objects that an attach names carry the current second in their names: begin in a new one.
inline void waitForNewSecond()
{
    const auto now = std::chrono::system_clock::now();
    const auto next = std::chrono::time_point_cast<std::chrono::seconds>(now) + std::chrono::seconds(1);
    std::this_thread::sleep_until(next + std::chrono::milliseconds(10));
}

}  // namespace example

#endif
