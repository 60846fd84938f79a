#ifndef BREVAN_ISCSIINITIATORHANDLER_H
#define BREVAN_ISCSIINITIATORHANDLER_H

#include <brevan/Handler.h>
#include <brevan/InitiatorRecords.h>

#include <string>

/// iSCSI initiators: create, read, change, delete, bind to a host. See CHandler for what holds for every operation.
/// Every operation throws "iscsiInitiatorID is empty! " for an empty ID.
class BREVAN_API CIscsiInitiatorHandler : public CHandler {
public:
    ~CIscsiInitiatorHandler() override;

    /// Makes the initiator known to the array and returns it as read back at once. ID (the iSCSI name) is needed. With
    /// USECHAP and a mode other than "0" the CHAP settings are sent; names or secrets that are missing there are written to
    /// the logs as errors and the array is left to refuse them. At its end it writes "enter createIscsiInitiator
    /// successfully!" again.
    virtual IscsiInitiatorMO createIscsiInitiator(IscsiInitiatorMO& initiator) = 0;

    virtual void deleteIscsiInitiator(const std::string& initiatorID) = 0;

    /// Changes name, parent and CHAP settings. Reads the initiator first: an old secret (CHAPOLDPASSWORD) is sent only where
    /// the array holds one, a new one only where the record has it. Without USECHAP, CHAP is switched off. An empty ID fails
    /// in that read, under its name. At its end it writes "enter modifyIscsiInitiator successfully!" again.
    virtual void modifyIscsiInitiator(IscsiInitiatorMO& initiator) = 0;

    /// The initiator with that ID; a default record where the array answers without one.
    virtual IscsiInitiatorMO getIscsiInitiator(const std::string& initiatorID) = 0;

    /// Binds the initiator to a host. Throws also "hostID is empty! ".
    virtual void addIscsiInitiatorToHost(const std::string& initiatorID, const std::string& hostID) = 0;

    virtual void removeIscsiInitiatorFromHost(const std::string& initiatorID) = 0;
};

#endif
