#ifndef BREVAN_HANDLERS_MAPPINGVIEWHANDLERIMPL_H
#define BREVAN_HANDLERS_MAPPINGVIEWHANDLERIMPL_H

#include "handlers/RetrySettings.h"

#include <brevan/MappingViewHandler.h>

class CMappingViewHandlerImpl : public CMappingViewHandler {
public:
    CMappingViewHandlerImpl() = default;
    explicit CMappingViewHandlerImpl(CDeviceManagerImpl* manager) : m_deviceManager(manager) {}

    MappingViewMO createMappingView(MappingViewMO& view) override;
    void deleteMappingView(const std::string& mappingViewID) override;
    MappingViewMO getMappingView(const std::string& mappingViewID) override;
    void addLunGroupToMappingView(const std::string& lunGroupID, const std::string& mappingViewID) override;
    void removeLunGroupFromMappingView(const std::string& lunGroupID, const std::string& mappingViewID) override;
    void addHostGroupToMappingView(const std::string& hostGroupID, const std::string& mappingViewID) override;
    void removeHostGroupFromMappingView(const std::string& hostGroupID, const std::string& mappingViewID) override;
    std::vector<MappingViewMO> getMappingViewByLunGroup(const std::string& lunGroupID, MappingViewQuery& query) override;
    std::vector<MappingViewMO> getMappingViewByHostGroup(const std::string& hostGroupID, MappingViewQuery& query) override;

    // The workers behind these. Their requests do not use the caller's name.
    void associateWithMaskingView(const std::string& objID, const std::string& mappingViewID, MOType objType,
                                  const std::string& callerName);
    void removeAssociateFromMappingView(const std::string& objID, const std::string& mappingViewID, MOType objType,
                                        const std::string& callerName);
    std::vector<MappingViewMO> getMappingViewByCondition(const std::string& objID, MOType objType, MappingViewQuery& query,
                                                         const std::string& callerName);

private:
    CDeviceManagerImpl* m_deviceManager = nullptr;
    brevan::RetrySettings m_retry{0};
};

#endif
