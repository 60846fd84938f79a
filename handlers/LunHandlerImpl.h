#ifndef BREVAN_HANDLERS_LUNHANDLERIMPL_H
#define BREVAN_HANDLERS_LUNHANDLERIMPL_H

#include "handlers/RetrySettings.h"

#include <brevan/LunHandler.h>

class CLunHandlerImpl : public CLunHandler {
public:
    CLunHandlerImpl() = default;
    explicit CLunHandlerImpl(CDeviceManagerImpl* manager) : m_deviceManager(manager) {}

    LunMO createLun(LunMO& lun) override;
    LunMO getLun(const std::string& lunId) override;
    std::vector<LunMO> getLunByLunGroup(const std::string& lunGroupId, LunQuery& query) override;
    std::vector<LunMO> getLunByHost(const std::string& hostId, LunQuery& query) override;

    /// The batch read behind both. The request does not use the caller's name.
    std::vector<LunMO> getLunByCondition(const std::string& objId, MOType objType, LunQuery& query,
                                         const std::string& callerName);

private:
    CDeviceManagerImpl* m_deviceManager = nullptr;
    brevan::RetrySettings m_retry{1};
};

#endif
