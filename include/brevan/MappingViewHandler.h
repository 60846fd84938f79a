#ifndef BREVAN_MAPPINGVIEWHANDLER_H
#define BREVAN_MAPPINGVIEWHANDLER_H

#include <brevan/Handler.h>
#include <brevan/StorageRecords.h>

#include <string>
#include <vector>

/// Mapping views: create, read, delete, and join groups to them. See CHandler for what holds for every operation.
class BREVAN_API CMappingViewHandler : public CHandler {
public:
    ~CMappingViewHandler() override;

    /// Creates the view and returns it as the array has it. NAME is needed. Read back like a host
    /// (CHostHandler::createHost). Throws "MappingView name is empty! ".
    virtual MappingViewMO createMappingView(MappingViewMO& view) = 0;

    /// Throws "mappingViewID is empty! ".
    virtual void deleteMappingView(const std::string& mappingViewID) = 0;

    /// The view with that ID; a default record where the array answers without one. Throws "mappingViewID is empty! ".
    virtual MappingViewMO getMappingView(const std::string& mappingViewID) = 0;

    /// Each of these four throws for an empty group ID ("LunGroup id is empty! " or "HostGroupID is empty", without a blank
    /// at its end), then for an empty view ID ("mappingViewID is empty! "), and for every request that fails.
    virtual void addLunGroupToMappingView(const std::string& lunGroupID, const std::string& mappingViewID) = 0;
    virtual void removeLunGroupFromMappingView(const std::string& lunGroupID, const std::string& mappingViewID) = 0;
    virtual void addHostGroupToMappingView(const std::string& hostGroupID, const std::string& mappingViewID) = 0;
    virtual void removeHostGroupFromMappingView(const std::string& hostGroupID, const std::string& mappingViewID) = 0;

    /// The views of a LUN group that meet the condition (ID, NAME). Throws "LunGroup id is empty! ".
    virtual std::vector<MappingViewMO> getMappingViewByLunGroup(const std::string& lunGroupID, MappingViewQuery& query) = 0;

    /// The views of a host group that meet the condition (ID, NAME). Throws "HostGroupID is empty".
    virtual std::vector<MappingViewMO> getMappingViewByHostGroup(const std::string& hostGroupID,
                                                                 MappingViewQuery& query) = 0;
};

#endif
