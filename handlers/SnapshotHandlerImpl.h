#ifndef BREVAN_HANDLERS_SNAPSHOTHANDLERIMPL_H
#define BREVAN_HANDLERS_SNAPSHOTHANDLERIMPL_H

#include <brevan/SnapshotHandler.h>

class CDeviceManagerImpl;

class CSnapshotHandlerImpl : public CSnapshotHandler {
public:
    CSnapshotHandlerImpl() = default;
    explicit CSnapshotHandlerImpl(CDeviceManagerImpl* manager) : m_deviceManager(manager) {}

    SnapshotMO getSnapshot(const std::string& snapshotID) override;
    std::vector<SnapshotMO> getSnapshotByLunGroup(const std::string& lunGroupID, SnapshotQuery& query) override;
    std::vector<SnapshotMO> getSnapshotByHost(const std::string& hostID, SnapshotQuery& query) override;

    /// The batch read behind both. The request does not use the caller's name.
    std::vector<SnapshotMO> getSnapshotByCondition(const std::string& objID, MOType objType, SnapshotQuery& query,
                                                   const std::string& callerName);

private:
    CDeviceManagerImpl* m_deviceManager = nullptr;
};

#endif
