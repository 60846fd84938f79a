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

/// The record that `read` gets from the array; a Trouble with that status and text where the array has none.
template <class Read>
auto readKnown(int status, const std::string& unknown, Read read) -> decltype(read())
{
    try {
        auto record = read();
        if (!record.ID.empty()) {
            return record;
        }
    } catch (PlimAPIExceptionWithErrCode&) {
        throw failure(status, unknown);
    }
    throw Trouble{status, unknown};
}

inline void checkInitiator(ArraySession& array, const std::string& initiator)
{
    readKnown(kUnknownInitiator,
              "the array has no iSCSI initiator " + initiator + "; create it there, or correct --initiator",
              [&] { return array.get<CIscsiInitiatorHandler>(HANDLER_ISCSI_INITIATOR).getIscsiInitiator(initiator); });
}

/// What the result of an attach means: true, the volume is attached now; false, it was attached already.
inline bool isNewlyAttached(int result, const std::string& volume)
{
    if (result == 1) {
        return false;
    }
    if (!brevan::lastFailure().empty()) {  // result 0 says only that the attach ran to its end
        throw failure(kAttachFailed, volume + " could not be attached");
    }
    return true;
}

/// The path of the disk that a scan has found.
inline std::string requireDisk(const std::string& path, const std::string& volume)
{
    if (path.empty()) {
        throw failure(kNoDisk, "this host has no disk of " + volume);
    }
    return path;
}

/// To be called after a detach, whose result says nothing.
inline void requireDetached(const std::string& volume)
{
    if (!brevan::lastFailure().empty()) {
        throw failure(kDetachFailed, volume + " could not be detached");
    }
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
