#ifndef BREVAN_HANDLERS_HOSTGROUPHANDLERIMPL_H
#define BREVAN_HANDLERS_HOSTGROUPHANDLERIMPL_H

#include "handlers/RetrySettings.h"

#include <brevan/HostGroupHandler.h>

class CHostGroupHandlerImpl : public CHostGroupHandler {
public:
    CHostGroupHandlerImpl() = default;
    explicit CHostGroupHandlerImpl(CDeviceManagerImpl* manager) : m_deviceManager(manager) {}

    HostGroupMO createHostGroup(HostGroupMO& group) override;
    void deleteHostGroup(const std::string& hostGroupID) override;
    HostGroupMO getHostGroup(const std::string& hostGroupID) override;
    void addHostToHostGroup(const std::string& hostID, const std::string& hostGroupID) override;
    std::vector<HostGroupMO> getHostGroupByHost(const std::string& hostID, HostGroupQuery& query) override;
    HostGroupMO getHostGroupByMappingView(const std::string& mappingViewID) override;
    void removeHostFromHostGroup(const std::string& hostID, const std::string& hostGroupID) override;

private:
    CDeviceManagerImpl* m_deviceManager = nullptr;
    brevan::RetrySettings m_retry{0};
};

#endif
