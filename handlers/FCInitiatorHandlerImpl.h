#ifndef BREVAN_HANDLERS_FCINITIATORHANDLERIMPL_H
#define BREVAN_HANDLERS_FCINITIATORHANDLERIMPL_H

#include <brevan/FCInitiatorHandler.h>

class CDeviceManagerImpl;

class CFCInitiatorHandlerImpl : public CFCInitiatorHandler {
public:
    CFCInitiatorHandlerImpl() = default;
    explicit CFCInitiatorHandlerImpl(CDeviceManagerImpl* manager) : m_deviceManager(manager) {}

    FCInitiatorMO createFCInitiator(FCInitiatorMO& initiator) override;
    void deleteFCInitiator(const std::string& initiatorID) override;
    FCInitiatorMO getFCInitiator(const std::string& initiatorID) override;
    void addFCInitiatorToHost(const std::string& initiatorID, const std::string& hostID) override;
    void removeFCInitiatorFromHost(const std::string& initiatorID) override;

private:
    CDeviceManagerImpl* m_deviceManager = nullptr;
};

#endif
