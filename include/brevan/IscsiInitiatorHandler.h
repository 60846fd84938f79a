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

    /// Makes the initiator known to the array and returns it as read back at once, without a pause and without trying
    /// again: a read that fails comes out as its exception, and the initiator exists all the same. ID (the iSCSI name) is
    /// needed; a parent is named by PARENTID and PARENTTYPE 21. With USECHAP and a mode other than "0" the CHAP settings
    /// are sent; names or secrets that are missing there are written to the logs, each as an error line and a record with
    /// code 1, and the array is left to refuse them. At its end it writes "enter createIscsiInitiator successfully!" again.
    virtual IscsiInitiatorMO createIscsiInitiator(IscsiInitiatorMO& initiator) = 0;

    /// Forgets the initiator. One request.
    virtual void deleteIscsiInitiator(const std::string& initiatorID) = 0;

    /// Changes name, parent and CHAP settings. Reads the initiator first: an old secret (CHAPOLDPASSWORD) is sent only
    /// where the array holds one, a new one only where the record has it. Without USECHAP, or with both modes "0", CHAP is
    /// switched off. PARENTTYPE is not looked at: a PARENTID is that of a host. An empty ID fails in that
    /// read, under its name. At its end it writes "enter modifyIscsiInitiator successfully!" again.
    virtual void modifyIscsiInitiator(IscsiInitiatorMO& initiator) = 0;

    /// The initiator with that ID; a default record where the array answers without one.
    virtual IscsiInitiatorMO getIscsiInitiator(const std::string& initiatorID) = 0;

    /// Binds the initiator to a host. Throws also "hostID is empty! ".
    virtual void addIscsiInitiatorToHost(const std::string& initiatorID, const std::string& hostID) = 0;

    /// Frees the initiator from its host. One request.
    virtual void removeIscsiInitiatorFromHost(const std::string& initiatorID) = 0;
};

#endif
