#ifndef BREVAN_HANDLERS_ETHPORTHANDLERIMPL_H
#define BREVAN_HANDLERS_ETHPORTHANDLERIMPL_H

#include <brevan/ETHPortHandler.h>

class CDeviceManagerImpl;

/// Spelled unlike its interface (CETHPortHandler): meant.
class CEthPortHandlerImpl : public CETHPortHandler {
public:
    CEthPortHandlerImpl() = default;
    explicit CEthPortHandlerImpl(CDeviceManagerImpl* manager) : m_deviceManager(manager) {}

    ETHPortMO getETHPort(const std::string& id) override;
    std::vector<ETHPortMO> getETHPortBatch(ETHPortQuery& query) override;

private:
    CDeviceManagerImpl* m_deviceManager = nullptr;
};

#endif
