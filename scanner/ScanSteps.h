#ifndef BREVAN_SCANNER_SCANSTEPS_H
#define BREVAN_SCANNER_SCANSTEPS_H

#include "foundation/Clock.h"
#include "foundation/Operation.h"
#include "foundation/RunLog.h"
#include "scanner/HostCommands.h"
#include "scanner/UpRescanLock.h"

#include <brevan/Errors.h>
#include <brevan/LastFailure.h>

#include "session/DeviceManagerImpl.h"

#include <optional>
#include <string>

// Steps that the scans of LUNs and of snapshots share.

namespace brevan {

constexpr int kBusyWaitRepetitions = 1500;  // of one second each
constexpr std::uint64_t kOneSecond = 1000000;

/// What a scan looks up first, and what it says where it cannot.
template <class Handler, class Record>
struct Lookup {
    HANDLERTYPE type;
    const char* idMissing;
    const char* handlerMissing;
    Record (Handler::*read)(const std::string& id);
};

/// The volume's record; nothing where the scan has ended with its failure.
template <class Handler, class Record>
std::optional<Record> lookUp(Operation& operation, CDeviceManagerImpl* manager, const std::string& id,
                             const Lookup<Handler, Record>& lookup)
{
    if (id.empty()) {
        operation.endRefused(lookup.idMissing);
        return std::nullopt;
    }
    if (manager == nullptr) {
        operation.endRefused("deviceManage is NULL! ");
        return std::nullopt;
    }
    auto* handler = static_cast<Handler*>(manager->getHandler(lookup.type));
    if (handler == nullptr) {
        operation.endRefused(lookup.handlerMissing);
        return std::nullopt;
    }
    try {
        return (handler->*lookup.read)(id);
    } catch (PlimAPIExceptionWithErrCode& refusal) {
        operation.endRecorded(refusal.getErrCode());
    } catch (const PlimAPIException&) {
        operation.endRecorded(FAILURE_REFUSED);
    }
    return std::nullopt;
}

/// Whether the scan may go on: where the lock could not be had, it has ended with the reason.
bool requireLock(Operation& operation, const HeldRescanLock& lock);

/// Runs the rescan. A failure is logged, and the scan goes on: the disk may be visible already. Returns what the rescan
/// said.
std::string rescanHost(Operation& operation);

/// The search, by the virtual operation. A search that throws has found nothing.
template <class Search>
std::string searchQuietly(Search search)
{
    try {
        return search();
    } catch (...) {
        COMMLOG(OS_LOG_ERROR, "GetDiskPath failed.");
        return std::string();
    }
}

}  // namespace brevan

#endif
