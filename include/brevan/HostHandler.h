#ifndef BREVAN_HOSTHANDLER_H
#define BREVAN_HOSTHANDLER_H

#include <brevan/Handler.h>
#include <brevan/StorageRecords.h>

#include <string>

/// Hosts: the array's records of machines. See CHandler for what holds for every operation.
class BREVAN_API CHostHandler : public CHandler {
public:
    ~CHostHandler() override;

    /// Creates the host and returns it as the array has it. NAME and OPERATIONSYSTEM (0: Linux) are needed. Reads the host
    /// at once, again while the array cannot give it yet (1077949006) and tries are left; otherwise the read's exception
    /// comes out: the host exists all the same. Throws "Host name is empty! ", "OperationSystem value is initial value! ".
    virtual HostMO createHost(HostMO& host) = 0;

    /// The host with that ID; a default record where the array answers without one. Throws "hostID is empty! ".
    virtual HostMO getHost(const std::string& hostID) = 0;
};

#endif
