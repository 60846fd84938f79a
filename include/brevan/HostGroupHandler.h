#ifndef BREVAN_HOSTGROUPHANDLER_H
#define BREVAN_HOSTGROUPHANDLER_H

#include <brevan/Handler.h>
#include <brevan/StorageRecords.h>

#include <string>
#include <vector>

/// Host groups: create, read, delete, fill and empty. See CHandler for what holds for every operation.
/// The message "HostGroupID is empty" has no blank at its end; the operation's name follows directly.
class BREVAN_API CHostGroupHandler : public CHandler {
public:
    ~CHostGroupHandler() override;

    /// Creates the group and returns it as the array has it. NAME is needed. Read back like a host
    /// (CHostHandler::createHost). Throws "HostGroup name is empty! ".
    virtual HostGroupMO createHostGroup(HostGroupMO& group) = 0;

    /// Throws "HostGroupID is empty".
    virtual void deleteHostGroup(const std::string& hostGroupID) = 0;

    /// The group with that ID; a default record where the array answers without one. Throws "HostGroupID is empty".
    virtual HostGroupMO getHostGroup(const std::string& hostGroupID) = 0;

    /// Puts a host into a group. A request that fails has its error line and its record as elsewhere, then a warning
    /// instead of the leave line, and is not reported otherwise, save by brevan::lastFailure(); a host that is already in
    /// the group is no failure. Throws "hostID is empty! ", "HostGroupID is empty".
    virtual void addHostToHostGroup(const std::string& hostID, const std::string& hostGroupID) = 0;

    /// The groups that hold a host and meet the condition (ID, NAME). Throws "hostID is empty! ".
    virtual std::vector<HostGroupMO> getHostGroupByHost(const std::string& hostID, HostGroupQuery& query) = 0;

    /// The group of a mapping view; a default record where it has none. Throws "mappingViewID is empty! ".
    virtual HostGroupMO getHostGroupByMappingView(const std::string& mappingViewID) = 0;

    /// Takes a host out of a group. Failures as for addHostToHostGroup. Throws "hostID is empty! ", "HostGroupID is empty".
    virtual void removeHostFromHostGroup(const std::string& hostID, const std::string& hostGroupID) = 0;
};

#endif
