#include "attach/AttachHandlers.h"
#include "attach/DiskAttachHandlerImpl.h"
#include "attach/Volume.h"
#include "foundation/RunLog.h"
#include "session/DeviceManagerImpl.h"

using namespace brevan;

namespace {

constexpr std::uint32_t kLinux = 0;
constexpr int kAttached = 0;
constexpr int kAlreadyMapped = 1;
constexpr int kNotInLunGroup = -1;

constexpr HandlerFetch kLunFetches[] = {kFetchLun,  kFetchLunGroup,  kFetchInitiator,
                                        kFetchHost, kFetchHostGroup, kFetchMappingView};
constexpr HandlerFetch kSnapshotFetches[] = {kFetchSnapshot, kFetchLunGroup,    kFetchInitiator,
                                             kFetchHost,     kFetchMappingView, kFetchHostGroup};

/// Reads the volume and the initiator; an empty ID says that the array does not know them.
template <class Volume>
IscsiInitiatorMO readInitiatorFor(Operation& operation, const AttachHandlers& with, const std::string& volumeID,
                                  const std::string& initiatorID)
{
    if (Volume::read(with, volumeID).ID.empty()) {
        operation.raise(Volume::kIdInvalid);
    }
    IscsiInitiatorMO initiator = with.initiator->getIscsiInitiator(initiatorID);
    if (initiator.ID.empty()) {
        operation.raise("The iscsiInitiatorID is not valid! ");
    }
    return initiator;
}

/// The initiator's host, made and bound where it has none. One that has a host is never moved.
HostMO hostOf(const AttachHandlers& with, const IscsiInitiatorMO& initiator, const std::string& hostIP)
{
    if (!initiator.PARENTID.empty()) {
        return with.host->getHost(initiator.PARENTID);
    }
    HostMO wanted;
    wanted.NAME = CDiskAttachHandlerImpl::getBuildedName("host");
    wanted.IP = hostIP;
    wanted.OPERATIONSYSTEM = kLinux;
    HostMO host = with.host->createHost(wanted);
    with.initiator->addIscsiInitiatorToHost(initiator.ID, host.ID);
    return host;
}

LunGroupMO newLunGroup(const AttachHandlers& with)
{
    LunGroupMO wanted;
    wanted.NAME = CDiskAttachHandlerImpl::getBuildedName("lungroup");
    return with.lunGroup->createLunGroup(wanted);
}

HostGroupMO newHostGroupWith(const AttachHandlers& with, const HostMO& host)
{
    HostGroupMO wanted;
    wanted.NAME = CDiskAttachHandlerImpl::getBuildedName("hostgroup");
    HostGroupMO group = with.hostGroup->createHostGroup(wanted);
    with.hostGroup->addHostToHostGroup(host.ID, group.ID);
    return group;
}

void newMappingView(const Operation& operation, const AttachHandlers& with, const LunGroupMO& lunGroup,
                    const HostGroupMO& hostGroup)
{
    MappingViewMO wanted;
    wanted.NAME = CDiskAttachHandlerImpl::getBuildedName("mappingview");
    const MappingViewMO view = with.mappingView->createMappingView(wanted);
    CDiskAttachHandlerImpl::addMappingView(lunGroup.ID, hostGroup.ID, view.ID, *with.mappingView, operation.name());
}

/// The LUN group first, and whether the LUN got into it is not looked at.
int buildChainForLun(const Operation& operation, const AttachHandlers& with, const std::string& lunID, const HostMO& host)
{
    const LunGroupMO lunGroup = newLunGroup(with);
    with.lunGroup->addLunToLunGroup(lunID, lunGroup.ID);
    const HostGroupMO hostGroup = newHostGroupWith(with, host);
    newMappingView(operation, with, lunGroup, hostGroup);
    return kAttached;
}

/// The host group first, and without the snapshot in its group there is no view.
int buildChainForSnapshot(Operation& operation, const AttachHandlers& with, const std::string& snapshotID,
                          const HostMO& host)
{
    const HostGroupMO hostGroup = newHostGroupWith(with, host);
    const LunGroupMO lunGroup = newLunGroup(with);
    if (with.lunGroup->addSnapshotToLunGroup(snapshotID, lunGroup.ID) != 0) {
        COMMLOG(OS_LOG_ERROR, "leave attachSnapshotToHost failed!");
        operation.endSilently();  // neither closing line nor record: meant
        return kNotInLunGroup;
    }
    newMappingView(operation, with, lunGroup, hostGroup);
    return kAttached;
}

/// What both attaches share: checks, handlers, host, and the test whether the volume is visible already.
template <class Volume, std::size_t Count, class BuildChain>
int attach(Operation&& entered, CDeviceManagerImpl* manager, const HandlerFetch (&fetches)[Count],
           const std::string& volumeID, const std::string& initiatorID, const std::string& hostIP, BuildChain buildChain)
{
    return perform(entered, [&](Operation& operation) {
        operation.require(!volumeID.empty(), Volume::kIdMissing);
        operation.require(!initiatorID.empty(), "iscsiInitiatorID is empty! ");
        operation.require(manager != nullptr, "deviceManage is NULL! ");
        // NOLINTNEXTLINE(clang-analyzer-core.NonNullParamChecker): where it is null, require() has thrown
        const AttachHandlers with = fetchHandlers(operation, *manager, fetches);
        return guarded(operation, [&] {
            const IscsiInitiatorMO initiator = readInitiatorFor<Volume>(operation, with, volumeID, initiatorID);
            const HostMO host = hostOf(with, initiator, hostIP);
            if (!Volume::onHost(with, volumeID, host.ID).empty()) {
                operation.endFailed(FAILURE_REFUSED,
                                    std::string("The MappingView was already existed! ") + operation.name());
                return kAlreadyMapped;
            }
            return buildChain(operation, with, volumeID, host);
        });
    });
}

}  // namespace

int CDiskAttachHandlerImpl::attachLunToHost(const std::string& lunID, const std::string& iscsiInitiatorID,
                                            const std::string& hostIP)
{
    return attach<LunVolume>(Operation(attachStyle("attachLunToHost")), m_deviceManager, kLunFetches, lunID,
                             iscsiInitiatorID, hostIP, buildChainForLun);
}

int CDiskAttachHandlerImpl::attachSnapshotToHost(const std::string& snapshotID, const std::string& iscsiInitiatorID,
                                                 const std::string& hostIP)
{
    return attach<SnapshotVolume>(Operation(attachStyle("attachSnapshotToHost")), m_deviceManager, kSnapshotFetches,
                                  snapshotID, iscsiInitiatorID, hostIP, buildChainForSnapshot);
}
