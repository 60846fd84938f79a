#ifndef BREVAN_LUNHANDLER_H
#define BREVAN_LUNHANDLER_H

#include <brevan/Handler.h>
#include <brevan/StorageRecords.h>

#include <string>
#include <vector>

/// LUNs: create and read. See CHandler for what holds for every operation.
class BREVAN_API CLunHandler : public CHandler {
public:
    ~CLunHandler() override;

    /// Creates the LUN and returns it as the array has it. NAME, PARENTID (the pool) and CAPACITY are needed; thin where
    /// ALLOCTYPE is 1, with ALLOCCAPACITY as its initial allocation (set it: "not set" is sent as the largest number),
    /// thick otherwise. Waits 0.2 s, then reads the LUN; a LUN that the array cannot give yet (1077949006) is read again,
    /// retryTimes times with the pause between (CDeviceManager::getInstance). A default record (empty ID) comes back when
    /// the array answers the last read with an error; a read without a usable reply throws. The LUN exists all the same.
    /// Throws PlimAPIException "Lun name is empty! ", "ParentID is empty! ", "Capacity value is initial value".
    virtual LunMO createLun(LunMO& lun) = 0;

    /// The LUN with that ID; a default record where the array answers without one. Throws "lunID is empty! ".
    virtual LunMO getLun(const std::string& lunId) = 0;

    /// The LUNs of a LUN group that meet the query's condition (ID, NAME, PARENTID, ALLOCTYPE, RUNNINGSTATUS, HEALTHSTATUS,
    /// ISADD2LUNGROUP). Throws "LunGroup id is empty! ".
    virtual std::vector<LunMO> getLunByLunGroup(const std::string& lunGroupId, LunQuery& query) = 0;

    /// The LUNs mapped to a host, with the same conditions. Throws "hostID is empty! ".
    virtual std::vector<LunMO> getLunByHost(const std::string& hostId, LunQuery& query) = 0;
};

#endif
