#ifndef BREVAN_HANDLERS_FCOEPORTHANDLERIMPL_H
#define BREVAN_HANDLERS_FCOEPORTHANDLERIMPL_H

#include <brevan/FCoEPortHandler.h>

class CDeviceManagerImpl;

class CFCoEPortHandlerImpl : public CFCoEPortHandler {
public:
    CFCoEPortHandlerImpl() = default;
    explicit CFCoEPortHandlerImpl(CDeviceManagerImpl* manager) : m_deviceManager(manager) {}

    FCoEPortMO getFCoEPort(const std::string& id) override;
    std::vector<FCoEPortMO> getFCoEPortBatch(FCoEPortQuery& query) override;

private:
    CDeviceManagerImpl* m_deviceManager = nullptr;
};

#endif
