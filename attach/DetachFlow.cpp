#include "attach/AttachHandlers.h"
#include "attach/DiskAttachHandlerImpl.h"
#include "attach/Volume.h"
#include "session/DeviceManagerImpl.h"

using namespace brevan;

namespace {

constexpr const char* kEveryHost = "0";  // an initiator ID that means: whoever sees the volume

constexpr HandlerFetch kLunFetches[] = {kFetchLun,  kFetchHostGroup,   kFetchLunGroup,
                                        kFetchHost, kFetchMappingView, kFetchInitiator};
constexpr HandlerFetch kSnapshotFetches[] = {kFetchMappingView, kFetchSnapshot,  kFetchHostGroup,
                                             kFetchHost,        kFetchInitiator, kFetchLunGroup};

/// Nothing to detach from: told in the logs, no error for the caller.
void endAsMissing(Operation& operation, const char* message)
{
    operation.endFailed(FAILURE_REFUSED, std::string(message) + operation.name());
}

/// Takes the volume out of the group. True where the group is empty then.
template <class Volume>
bool emptied(const AttachHandlers& with, const std::string& volumeID, const std::string& groupID)
{
    Volume::removeFromLunGroup(with, volumeID, groupID);
    return with.lunGroup->getObjNOFromLunGroup(groupID) == 0;
}

/// Out of every LUN group that holds the volume.
template <class Volume>
void detachFromEveryHost(Operation& operation, const AttachHandlers& with, const std::string& volumeID)
{
    const std::vector<LunGroupMO> groups = Volume::lunGroups(with, volumeID);
    if (groups.empty()) {
        endAsMissing(operation, "LunGroup do not exist! ");
        return;
    }
    for (const LunGroupMO& group : groups) {
        if (!emptied<Volume>(with, volumeID, group.ID)) {
            continue;
        }
        MappingViewQuery all;
        for (const MappingViewMO& view : with.mappingView->getMappingViewByLunGroup(group.ID, all)) {
            with.mappingView->removeLunGroupFromMappingView(group.ID, view.ID);
        }
        with.lunGroup->deleteLunGroup(group.ID);
    }
}

/// Out of the LUN group of one view, where the volume is in it.
template <class Volume>
void detachFromView(const AttachHandlers& with, const std::string& volumeID, const std::string& viewID)
{
    const LunGroupMO group = with.lunGroup->getLunGroupByMappingView(viewID);
    if (group.ID.empty()) {
        return;
    }
    for (const auto& found : Volume::inLunGroup(with, volumeID, group.ID)) {
        if (emptied<Volume>(with, found.ID, group.ID)) {
            with.mappingView->removeLunGroupFromMappingView(group.ID, viewID);
            with.lunGroup->deleteLunGroup(group.ID);
        }
    }
}

/// Out of the LUN groups behind the host's views, host group by host group. False where the host has no view at all.
template <class Volume>
bool detachFromViewsOf(const AttachHandlers& with, const std::string& volumeID, const std::string& hostID)
{
    bool anyView = false;
    HostGroupQuery allGroups;
    for (const HostGroupMO& group : with.hostGroup->getHostGroupByHost(hostID, allGroups)) {
        MappingViewQuery allViews;
        for (const MappingViewMO& view : with.mappingView->getMappingViewByHostGroup(group.ID, allViews)) {
            anyView = true;
            detachFromView<Volume>(with, volumeID, view.ID);
        }
    }
    return anyView;
}

/// Out of the LUN groups that the initiator's host reaches.
template <class Volume>
void detachFromHostOf(Operation& operation, const AttachHandlers& with, const std::string& volumeID,
                      const std::string& initiatorID)
{
    const IscsiInitiatorMO initiator = with.initiator->getIscsiInitiator(initiatorID);
    if (initiator.ID.empty()) {
        operation.raise("The iscsiInitiatorID is not valid! ");
    }
    const HostMO host = initiator.PARENTID.empty() ? HostMO() : with.host->getHost(initiator.PARENTID);
    if (host.ID.empty()) {
        endAsMissing(operation, "Host was not existed! ");
        return;
    }
    if (!detachFromViewsOf<Volume>(with, volumeID, host.ID)) {
        endAsMissing(operation, "MappingView was not existed! ");
    }
}

template <class Volume, std::size_t Count>
int detach(Operation&& entered, CDeviceManagerImpl* manager, const HandlerFetch (&fetches)[Count],
           const std::string& volumeID, const std::string& initiatorID)
{
    return perform(entered, [&](Operation& operation) {
        operation.require(!volumeID.empty(), Volume::kIdMissing);
        operation.require(!initiatorID.empty(), "iscsiInitiatorID is empty! ");
        operation.require(manager != nullptr, "deviceManage is NULL! ");
        // NOLINTNEXTLINE(clang-analyzer-core.NonNullParamChecker): where it is null, require() has thrown
        const AttachHandlers with = fetchHandlers(operation, *manager, fetches);
        return guarded(operation, [&] {
            if (Volume::read(with, volumeID).ID.empty()) {
                operation.raise(Volume::kIdInvalid);
            }
            if (initiatorID == kEveryHost) {
                detachFromEveryHost<Volume>(operation, with, volumeID);
            } else {
                detachFromHostOf<Volume>(operation, with, volumeID, initiatorID);
            }
            return 0;
        });
    });
}

}  // namespace

int CDiskAttachHandlerImpl::detachLunFromHost(const std::string& lunID, const std::string& iscsiInitiatorID)
{
    return detach<LunVolume>(Operation(attachStyle("detachLunFromHost")), m_deviceManager, kLunFetches, lunID,
                             iscsiInitiatorID);
}

int CDiskAttachHandlerImpl::detachSnapshotFromHost(const std::string& snapshotID, const std::string& iscsiInitiatorID)
{
    return detach<SnapshotVolume>(Operation(attachStyle("detachSnapshotFromHost")), m_deviceManager, kSnapshotFetches,
                                  snapshotID, iscsiInitiatorID);
}
