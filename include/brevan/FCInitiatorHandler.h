#ifndef BREVAN_FCINITIATORHANDLER_H
#define BREVAN_FCINITIATORHANDLER_H

#include <brevan/Handler.h>
#include <brevan/InitiatorRecords.h>

#include <string>

/// Fibre Channel initiators: create, read, delete, bind to a host. See CHandler for what holds for every operation.
/// Every operation throws "fcInitiatorID is empty! " for an empty ID.
class BREVAN_API CFCInitiatorHandler : public CHandler {
public:
    ~CFCInitiatorHandler() override;

    /// Makes the initiator known to the array and returns it as read back at once, without a pause and without trying
    /// again: a read that fails comes out as its exception, and the initiator exists all the same. ID (the port name) is
    /// needed; with PARENTID it is bound to that host.
    virtual FCInitiatorMO createFCInitiator(FCInitiatorMO& initiator) = 0;

    /// Forgets the initiator. One request.
    virtual void deleteFCInitiator(const std::string& initiatorID) = 0;

    /// The initiator with that ID; a default record where the array answers without one.
    virtual FCInitiatorMO getFCInitiator(const std::string& initiatorID) = 0;

    /// Binds the initiator to a host. Throws also "hostID is empty! ".
    virtual void addFCInitiatorToHost(const std::string& initiatorID, const std::string& hostID) = 0;

    /// Frees the initiator from its host. One request.
    virtual void removeFCInitiatorFromHost(const std::string& initiatorID) = 0;
};

#endif
