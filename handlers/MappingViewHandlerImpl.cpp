#include "handlers/MappingViewHandlerImpl.h"

#include "handlers/BatchPath.h"
#include "handlers/RecordReader.h"
#include "handlers/ResourceOperation.h"

using namespace brevan;

namespace {

constexpr const char* kViewIdMissing = "mappingViewID is empty! ";
constexpr const char* kLunGroupIdMissing = "LunGroup id is empty! ";
constexpr const char* kHostGroupIdMissing = "HostGroupID is empty";  // no blank at its end: meant
constexpr ReadBack kReadBack = {"retry get mapping view!", {kNotReadableYet, 0}};

// In the log lines a masking view, everywhere else a mapping view: meant.
constexpr OperationStyle kRemoveAssociate = {"removeAssociateFromMappingView", nullptr, nullptr,
                                             "removeAssociateFromMaskingView"};

constexpr Field<MappingViewMO> kFields[] = {
    text<&MappingViewMO::ID>("ID"),
    text<&MappingViewMO::NAME>("NAME"),
    text<&MappingViewMO::DESCRIPTION>("DESCRIPTION"),
    flag<&MappingViewMO::ENABLEINBANDCOMMAND>("ENABLEINBANDCOMMAND"),
};

/// What the four membership changes share: two checks, then the worker.
template <class Worker>
void changeMembership(ResourceOperation&& operation, const std::string& groupID, const char* groupIdMissing,
                      const std::string& mappingViewID, Worker worker)
{
    perform(operation, [&](ResourceOperation& entered) {
        entered.require(!groupID.empty(), groupIdMissing);
        entered.require(!mappingViewID.empty(), kViewIdMissing);
        worker(entered.name());
    });
}

}  // namespace

MappingViewMO CMappingViewHandlerImpl::createMappingView(MappingViewMO& view)
{
    return perform(ResourceOperation("createMappingView", m_deviceManager), [&](ResourceOperation& operation) {
        RestRequest body;
        if (!view.ID.empty()) {
            body.BodyAddProperty("ID", view.ID);
        }
        body.BodyAddProperty("TYPE", MOTYPE_MAPPINGVIEW);
        operation.require(!view.NAME.empty(), "MappingView name is empty! ");
        body.BodyAddProperty("NAME", view.NAME);
        body.BodyAddProperty("ENABLEINBANDCOMMAND", view.ENABLEINBANDCOMMAND != 0);
        if (!view.DESCRIPTION.empty()) {
            body.BodyAddProperty("DESCRIPTION", view.DESCRIPTION);
        }
        const std::string id = firstId(operation.post("/mappingview", body));
        return readBack(kReadBack, m_retry, m_deviceManager, [&] { return getMappingView(id); });
    });
}

void CMappingViewHandlerImpl::deleteMappingView(const std::string& mappingViewID)
{
    perform(ResourceOperation("deleteMappingView", m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!mappingViewID.empty(), kViewIdMissing);
        operation.remove("/mappingview/" + mappingViewID);
    });
}

MappingViewMO CMappingViewHandlerImpl::getMappingView(const std::string& mappingViewID)
{
    return perform(ResourceOperation("getMappingView", m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!mappingViewID.empty(), kViewIdMissing);
        return readFirst(operation.get("/mappingview/" + mappingViewID), kFields);
    });
}

void CMappingViewHandlerImpl::addLunGroupToMappingView(const std::string& lunGroupID, const std::string& mappingViewID)
{
    changeMembership(
        ResourceOperation("addLunGroupToMappingView", m_deviceManager), lunGroupID, kLunGroupIdMissing, mappingViewID,
        [&](const char* caller) { associateWithMaskingView(lunGroupID, mappingViewID, MOTYPE_LUNGROUP, caller); });
}

void CMappingViewHandlerImpl::removeLunGroupFromMappingView(const std::string& lunGroupID, const std::string& mappingViewID)
{
    changeMembership(
        ResourceOperation("removeLunGroupFromMappingView", m_deviceManager), lunGroupID, kLunGroupIdMissing, mappingViewID,
        [&](const char* caller) { removeAssociateFromMappingView(lunGroupID, mappingViewID, MOTYPE_LUNGROUP, caller); });
}

void CMappingViewHandlerImpl::addHostGroupToMappingView(const std::string& hostGroupID, const std::string& mappingViewID)
{
    changeMembership(
        ResourceOperation("addHostGroupToMappingView", m_deviceManager), hostGroupID, kHostGroupIdMissing, mappingViewID,
        [&](const char* caller) { associateWithMaskingView(hostGroupID, mappingViewID, MOTYPE_HOSTGROUP, caller); });
}

void CMappingViewHandlerImpl::removeHostGroupFromMappingView(const std::string& hostGroupID,
                                                             const std::string& mappingViewID)
{
    changeMembership(ResourceOperation("removeHostGroupFromMappingView", m_deviceManager), hostGroupID, kHostGroupIdMissing,
                     mappingViewID, [&](const char* caller) {
                         removeAssociateFromMappingView(hostGroupID, mappingViewID, MOTYPE_HOSTGROUP, caller);
                     });
}

void CMappingViewHandlerImpl::associateWithMaskingView(const std::string& objID, const std::string& mappingViewID,
                                                       MOType objType, const std::string& /*callerName*/)
{
    perform(ResourceOperation("associateWithMaskingView", m_deviceManager), [&](ResourceOperation& operation) {
        RestRequest body;
        body.BodyAddProperty("TYPE", MOTYPE_MAPPINGVIEW);
        body.BodyAddProperty("ID", mappingViewID);
        body.BodyAddProperty("ASSOCIATEOBJTYPE", static_cast<unsigned long>(objType));
        body.BodyAddProperty("ASSOCIATEOBJID", objID);
        operation.put("/mappingview/create_associate", body);  // PUT, though it adds: meant
    });
}

void CMappingViewHandlerImpl::removeAssociateFromMappingView(const std::string& objID, const std::string& mappingViewID,
                                                             MOType objType, const std::string& /*callerName*/)
{
    perform(ResourceOperation(kRemoveAssociate, m_deviceManager), [&](ResourceOperation& operation) {
        RestRequest body;
        body.BodyAddProperty("ID", mappingViewID);  // before TYPE, unlike when adding: meant
        body.BodyAddProperty("TYPE", MOTYPE_MAPPINGVIEW);
        body.BodyAddProperty("ASSOCIATEOBJTYPE", static_cast<unsigned long>(objType));
        body.BodyAddProperty("ASSOCIATEOBJID", objID);
        operation.put("/mappingview/remove_associate", body);  // PUT, though it removes: meant
    });
}

std::vector<MappingViewMO> CMappingViewHandlerImpl::getMappingViewByLunGroup(const std::string& lunGroupID,
                                                                             MappingViewQuery& query)
{
    return perform(ResourceOperation("getMappingViewByLunGroup", m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!lunGroupID.empty(), kLunGroupIdMissing);
        return getMappingViewByCondition(lunGroupID, MOTYPE_LUNGROUP, query, operation.name());
    });
}

std::vector<MappingViewMO> CMappingViewHandlerImpl::getMappingViewByHostGroup(const std::string& hostGroupID,
                                                                              MappingViewQuery& query)
{
    return perform(ResourceOperation("getMappingViewByHostGroup", m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!hostGroupID.empty(), kHostGroupIdMissing);
        return getMappingViewByCondition(hostGroupID, MOTYPE_HOSTGROUP, query, operation.name());
    });
}

std::vector<MappingViewMO> CMappingViewHandlerImpl::getMappingViewByCondition(const std::string& objID, MOType objType,
                                                                              MappingViewQuery& query,
                                                                              const std::string& /*callerName*/)
{
    return perform(ResourceOperation("getMappingViewByCondition", m_deviceManager), [&](ResourceOperation& operation) {
        const std::string path = BatchPath("/mappingview/associate?")
                                     .where("ID", query.condition.ID)
                                     .where("NAME", query.condition.NAME)
                                     .associated(MOTYPE_MAPPINGVIEW, objType, objID)
                                     .range("&", query.rangeStart, query.rangeCount)
                                     .text();
        return readEach(operation.get(path), [this](const std::string& id) { return getMappingView(id); });
    });
}
