#ifndef BREVAN_SNAPSHOTHANDLER_H
#define BREVAN_SNAPSHOTHANDLER_H

#include <brevan/Handler.h>
#include <brevan/StorageRecords.h>

#include <string>
#include <vector>

/// Snapshots: read. They are made on the array. See CHandler for what holds for every operation.
class BREVAN_API CSnapshotHandler : public CHandler {
public:
    ~CSnapshotHandler() override;

    /// The snapshot with that ID; a default record where the array answers without one. Throws "snapshotID is empty! ".
    virtual SnapshotMO getSnapshot(const std::string& snapshotID) = 0;

    /// The snapshots of a LUN group that meet the query's condition (ID, NAME, PARENTID, RUNNINGSTATUS, HEALTHSTATUS).
    /// Throws "LunGroup id is empty! ".
    virtual std::vector<SnapshotMO> getSnapshotByLunGroup(const std::string& lunGroupID, SnapshotQuery& query) = 0;

    /// The snapshots mapped to a host, with the same conditions. Throws "hostID is empty! ".
    virtual std::vector<SnapshotMO> getSnapshotByHost(const std::string& hostID, SnapshotQuery& query) = 0;
};

#endif
