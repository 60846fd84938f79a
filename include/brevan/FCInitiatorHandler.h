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

    /// Makes the initiator known to the array and returns it as read back at once. ID (the port name) is needed.
    virtual FCInitiatorMO createFCInitiator(FCInitiatorMO& initiator) = 0;

    virtual void deleteFCInitiator(const std::string& initiatorID) = 0;

    /// The initiator with that ID; a default record where the array answers without one.
    virtual FCInitiatorMO getFCInitiator(const std::string& initiatorID) = 0;

    /// Binds the initiator to a host. Throws also "hostID is empty! ".
    virtual void addFCInitiatorToHost(const std::string& initiatorID, const std::string& hostID) = 0;

    virtual void removeFCInitiatorFromHost(const std::string& initiatorID) = 0;
};

#endif
