#ifndef BREVAN_HANDLERS_HOSTHANDLERIMPL_H
#define BREVAN_HANDLERS_HOSTHANDLERIMPL_H

#include "handlers/RetrySettings.h"

#include <brevan/HostHandler.h>

class CHostHandlerImpl : public CHostHandler {
public:
    CHostHandlerImpl() = default;
    explicit CHostHandlerImpl(CDeviceManagerImpl* manager) : m_deviceManager(manager) {}

    HostMO createHost(HostMO& host) override;
    HostMO getHost(const std::string& hostID) override;

private:
    CDeviceManagerImpl* m_deviceManager = nullptr;
    brevan::RetrySettings m_retry{0};
};

#endif
