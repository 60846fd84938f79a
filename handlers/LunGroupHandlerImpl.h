#ifndef BREVAN_HANDLERS_LUNGROUPHANDLERIMPL_H
#define BREVAN_HANDLERS_LUNGROUPHANDLERIMPL_H

#include "handlers/RetrySettings.h"

#include <brevan/LunGroupHandler.h>

namespace brevan {
struct MembershipChange;
}

class CLunGroupHandlerImpl : public CLunGroupHandler {
public:
    CLunGroupHandlerImpl() = default;
    explicit CLunGroupHandlerImpl(CDeviceManagerImpl* manager) : m_deviceManager(manager) {}

    LunGroupMO createLunGroup(LunGroupMO& group) override;
    void deleteLunGroup(const std::string& lunGroupID) override;
    LunGroupMO getLunGroup(const std::string& lunGroupID) override;
    void addLunToLunGroup(const std::string& lunID, const std::string& lunGroupID) override;
    void removeLunFromLunGroup(const std::string& lunID, const std::string& lunGroupID) override;
    std::vector<LunGroupMO> getLunGroupByLun(const std::string& lunID, LunGroupQuery& query) override;
    LunGroupMO getLunGroupByMappingView(const std::string& mappingViewID) override;
    int addSnapshotToLunGroup(const std::string& snapshotID, const std::string& lunGroupID) override;
    int removeSnapshotFromLunGroup(const std::string& snapshotID, const std::string& lunGroupID) override;
    std::vector<LunGroupMO> getLunGroupBySnapshot(const std::string& snapshotID, LunGroupQuery& query) override;
    unsigned int getObjNOFromLunGroup(const std::string& lunGroupID) override;

    // The workers behind these. Their requests do not use the caller's name.

    /// Whether a membership change that ended with `result` is worth another try.
    static bool IsNeedRetry(int result, unsigned int triesLeft);

    /// One try. 0: the object is in the group (or out of it), else the array's code, or -1 for anything else. Never throws.
    int addObjToLunGroup(const std::string& objID, const std::string& lunGroupID, MOType objType,
                         const std::string& callerName);
    int removeObjFromLunGroup(const std::string& objID, const std::string& lunGroupID, MOType objType,
                              const std::string& callerName);

    std::vector<LunGroupMO> getLunGroupByObjList(const std::string& objID, LunGroupQuery& query, MOType objType,
                                                 const std::string& callerName);

    /// How many objects of a kind ("lun" or "snapshot") a group holds.
    unsigned int getCountByAssociate(const std::string& lunGroupID, const std::string& objWord);

private:
    int changeMembership(const brevan::MembershipChange& change, const std::string& objID, const std::string& lunGroupID);

    CDeviceManagerImpl* m_deviceManager = nullptr;
    brevan::RetrySettings m_retry{1};
};

#endif
