#ifndef BREVAN_LUNGROUPHANDLER_H
#define BREVAN_LUNGROUPHANDLER_H

#include <brevan/Handler.h>
#include <brevan/StorageRecords.h>

#include <string>
#include <vector>

/// LUN groups: create, read, delete, fill and empty. See CHandler for what holds for every operation.
///
/// The four membership changes throw only for empty IDs. A change that fails is repeated up to retryTimes times with the
/// pause between (CDeviceManager::getInstance); an object that is already in the group, or already out of it, counts as
/// done. A session that is gone (-401) ends the tries at once, save for addLunToLunGroup, which is repeated whatever the
/// failure was. A change that failed for good has its last code (-1 without a usable reply) in its record, and no leave
/// line.
class BREVAN_API CLunGroupHandler : public CHandler {
public:
    ~CLunGroupHandler() override;

    /// Creates the group and returns it as the array has it. NAME is needed; an APPTYPE that is not set (100) becomes 0, in
    /// the caller's record too. Reads the group at once, again while the array cannot give it yet (1077949006, 1077949001)
    /// and tries are left; otherwise the read's exception comes out: the group exists all the same. Throws "LunGroup name
    /// is empty! ".
    virtual LunGroupMO createLunGroup(LunGroupMO& group) = 0;

    /// Throws "LunGroup id is empty! ".
    virtual void deleteLunGroup(const std::string& lunGroupID) = 0;

    /// The group with that ID; a default record where the array answers without one. Throws "LunGroup id is empty! ".
    virtual LunGroupMO getLunGroup(const std::string& lunGroupID) = 0;

    /// Puts a LUN into a group. Tells no failure by a result: brevan::lastFailure() does.
    /// Throws "lunID is empty! ", "LunGroup id is empty! ".
    virtual void addLunToLunGroup(const std::string& lunID, const std::string& lunGroupID) = 0;

    /// Takes a LUN out of a group. Tells no failure by a result: brevan::lastFailure() does.
    /// Throws "lunID is empty! ", "LunGroup id is empty! ".
    virtual void removeLunFromLunGroup(const std::string& lunID, const std::string& lunGroupID) = 0;

    /// The groups that hold a LUN and meet the condition (ID, NAME, ISADD2MAPPINGVIEW, APPTYPE). Throws "lunID is empty! ".
    virtual std::vector<LunGroupMO> getLunGroupByLun(const std::string& lunID, LunGroupQuery& query) = 0;

    /// The group of a mapping view; a default record where it has none. Throws "mappingViewID is empty! ".
    virtual LunGroupMO getLunGroupByMappingView(const std::string& mappingViewID) = 0;

    /// Puts a snapshot into a group. 0: it is in; the array's code, or -1 for a request without a usable reply: it is not.
    /// Throws "snapshotID is empty! ", "LunGroup id is empty! ".
    virtual int addSnapshotToLunGroup(const std::string& snapshotID, const std::string& lunGroupID) = 0;

    /// Takes a snapshot out of a group. Results and exceptions as for adding one.
    virtual int removeSnapshotFromLunGroup(const std::string& snapshotID, const std::string& lunGroupID) = 0;

    /// The groups that hold a snapshot, with the conditions of getLunGroupByLun. Throws "snapshotID is empty! ".
    virtual std::vector<LunGroupMO> getLunGroupBySnapshot(const std::string& snapshotID, LunGroupQuery& query) = 0;

    /// How many LUNs and snapshots a group holds. Two requests. Throws "LunGroup id is empty! ".
    virtual unsigned int getObjNOFromLunGroup(const std::string& lunGroupID) = 0;
};

#endif
