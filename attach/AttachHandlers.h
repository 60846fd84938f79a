#ifndef BREVAN_ATTACH_ATTACHHANDLERS_H
#define BREVAN_ATTACH_ATTACHHANDLERS_H

#include "foundation/Operation.h"

#include <brevan/brevan.h>

#include <cstddef>

namespace brevan {

/// The handlers through which attach and detach work. A LUN flow has no snapshot handler and the other way round.
struct AttachHandlers {
    CLunHandler* lun = nullptr;
    CSnapshotHandler* snapshot = nullptr;
    CLunGroupHandler* lunGroup = nullptr;
    CIscsiInitiatorHandler* initiator = nullptr;
    CHostHandler* host = nullptr;
    CHostGroupHandler* hostGroup = nullptr;
    CMappingViewHandler* mappingView = nullptr;
};

/// One handler to fetch, and what is said where the device manager has none.
struct HandlerFetch {
    HANDLERTYPE type;
    const char* missing;
    void (*keep)(AttachHandlers& handlers, CHandler* handler);
};

template <auto Member>
struct KeepAs;
template <class Handler, Handler* AttachHandlers::*Member>
struct KeepAs<Member> {
    static void keep(AttachHandlers& handlers, CHandler* handler) { handlers.*Member = static_cast<Handler*>(handler); }
};

constexpr HandlerFetch kFetchLun = {HANDLER_LUN, "get LunHandler fail! ", KeepAs<&AttachHandlers::lun>::keep};
constexpr HandlerFetch kFetchSnapshot = {HANDLER_SNAPSHOT, "get SnapshotHandler fail! ",
                                         KeepAs<&AttachHandlers::snapshot>::keep};
constexpr HandlerFetch kFetchLunGroup = {HANDLER_LUNGROUP, "get LunGroupHandler fail! ",
                                         KeepAs<&AttachHandlers::lunGroup>::keep};
constexpr HandlerFetch kFetchInitiator = {HANDLER_ISCSI_INITIATOR, "get IscsiInitiatorHandler fail! ",
                                          KeepAs<&AttachHandlers::initiator>::keep};
constexpr HandlerFetch kFetchHost = {HANDLER_HOST, "get HostHandler fail! ", KeepAs<&AttachHandlers::host>::keep};
constexpr HandlerFetch kFetchHostGroup = {HANDLER_HOSTGROUP, "get HostGroupHandler fail! ",
                                          KeepAs<&AttachHandlers::hostGroup>::keep};
constexpr HandlerFetch kFetchMappingView = {HANDLER_MAPPINGVIEW, "get MappingViewHandler fail! ",
                                            KeepAs<&AttachHandlers::mappingView>::keep};

/// Fetches the handlers in the given order; the first that is missing ends the operation.
template <std::size_t Count>
AttachHandlers fetchHandlers(Operation& operation, CDeviceManager& manager, const HandlerFetch (&fetches)[Count])
{
    AttachHandlers handlers;
    for (const HandlerFetch& fetch : fetches) {
        CHandler* handler = manager.getHandler(fetch.type);
        operation.require(handler != nullptr, fetch.missing);
        fetch.keep(handlers, handler);
    }
    return handlers;
}

/// What an attach or detach says last: "leave" comes before the record.
constexpr OperationStyle attachStyle(const char* name)
{
    return {name, nullptr, nullptr, nullptr, true, true};
}

/// Runs the part of an attach or detach that works on the array. A failure there is recorded, then the operation closes as
/// if nothing had happened: that is its contract, and lastFailure() tells.
template <class Work>
int guarded(Operation& operation, Work work)
{
    try {
        return work();
    } catch (const PlimAPIException&) {
        operation.record(FAILURE_REFUSED);
        return 0;
    }
}

constexpr std::uint64_t kAllRecords = 65535;

}  // namespace brevan

#endif
