#ifndef BREVAN_HANDLERS_ISCSIINITIATORHANDLERIMPL_H
#define BREVAN_HANDLERS_ISCSIINITIATORHANDLERIMPL_H

#include <brevan/IscsiInitiatorHandler.h>

class CDeviceManagerImpl;

class CIscsiInitiatorHandlerImpl : public CIscsiInitiatorHandler {
public:
    CIscsiInitiatorHandlerImpl() = default;
    explicit CIscsiInitiatorHandlerImpl(CDeviceManagerImpl* manager) : m_deviceManager(manager) {}

    IscsiInitiatorMO createIscsiInitiator(IscsiInitiatorMO& initiator) override;
    void deleteIscsiInitiator(const std::string& initiatorID) override;
    void modifyIscsiInitiator(IscsiInitiatorMO& initiator) override;
    IscsiInitiatorMO getIscsiInitiator(const std::string& initiatorID) override;
    void addIscsiInitiatorToHost(const std::string& initiatorID, const std::string& hostID) override;
    void removeIscsiInitiatorFromHost(const std::string& initiatorID) override;

private:
    CDeviceManagerImpl* m_deviceManager = nullptr;
};

#endif
