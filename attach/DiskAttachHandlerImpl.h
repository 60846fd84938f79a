#ifndef BREVAN_ATTACH_DISKATTACHHANDLERIMPL_H
#define BREVAN_ATTACH_DISKATTACHHANDLERIMPL_H

#include <brevan/DiskAttachHandler.h>

#include <string>

class CDeviceManagerImpl;
class CMappingViewHandler;

class CDiskAttachHandlerImpl : public CDiskAttachHandler {
public:
    CDiskAttachHandlerImpl() = default;
    explicit CDiskAttachHandlerImpl(CDeviceManagerImpl* manager) : m_deviceManager(manager) {}

    int attachLunToHost(const std::string& lunID, const std::string& iscsiInitiatorID, const std::string& hostIP) override;
    int detachLunFromHost(const std::string& lunID, const std::string& iscsiInitiatorID) override;
    int attachSnapshotToHost(const std::string& snapshotID, const std::string& iscsiInitiatorID,
                             const std::string& hostIP) override;
    int detachSnapshotFromHost(const std::string& snapshotID, const std::string& iscsiInitiatorID) override;

    /// prefix "_" and the current time in whole seconds since the epoch: "host_1700000000".
    static std::string getBuildedName(const std::string& prefix);

    /// Joins a host group and a LUN group to a view. Where that fails the view is deleted again, and nothing is thrown for
    /// it.
    static void addMappingView(const std::string& lunGroupID, const std::string& hostGroupID,
                               const std::string& mappingViewID, CMappingViewHandler& mappingViewHandler,
                               const std::string& operationName);

private:
    CDeviceManagerImpl* m_deviceManager = nullptr;
};

#endif
