#ifndef BREVAN_HANDLERS_FCPORTHANDLERIMPL_H
#define BREVAN_HANDLERS_FCPORTHANDLERIMPL_H

#include <brevan/FCPortHandler.h>

class CDeviceManagerImpl;

class CFCPortHandlerImpl : public CFCPortHandler {
public:
    CFCPortHandlerImpl() = default;
    explicit CFCPortHandlerImpl(CDeviceManagerImpl* manager) : m_deviceManager(manager) {}

    FCPortMO getFCPort(const std::string& id) override;
    std::vector<FCPortMO> getFCPortBatch(FCPortQuery& query) override;

private:
    CDeviceManagerImpl* m_deviceManager = nullptr;
};

#endif
