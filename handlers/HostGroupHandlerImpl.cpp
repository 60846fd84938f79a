#include "handlers/HostGroupHandlerImpl.h"

#include "handlers/BatchPath.h"
#include "handlers/RecordReader.h"
#include "handlers/ResourceOperation.h"

using namespace brevan;

namespace {

constexpr int kAlreadyInHostGroup = 1077937501;
constexpr const char* kIdMissing = "HostGroupID is empty";  // no blank at its end: meant
constexpr ReadBack kReadBack = {"retry get host group!", {kNotReadableYet, 0}};

constexpr Field<HostGroupMO> kFields[] = {
    text<&HostGroupMO::ID>("ID"),
    text<&HostGroupMO::NAME>("NAME"),
    text<&HostGroupMO::DESCRIPTION>("DESCRIPTION"),
    flag<&HostGroupMO::ISADD2MAPPINGVIEW>("ISADD2MAPPINGVIEW"),
};

void warn(const Operation& operation, const char* text)
{
    COMMLOG(OS_LOG_WARN, "%s%s", text, operation.name());
}

/// Nothing propagates, but lastFailure() tells it, also what had no words of its own yet: memory that ran out before the request.
void swallow(const Operation& operation, const char* text)
{
    warn(operation, text);
    operation.note(std::string(text) + operation.name(), nullptr);
}

}  // namespace

HostGroupMO CHostGroupHandlerImpl::createHostGroup(HostGroupMO& group)
{
    return perform(ResourceOperation("createHostGroup", m_deviceManager), [&](ResourceOperation& operation) {
        RestRequest body;
        body.BodyAddProperty("TYPE", MOTYPE_HOSTGROUP);
        operation.require(!group.NAME.empty(), "HostGroup name is empty! ");
        body.BodyAddProperty("NAME", group.NAME);
        if (!group.DESCRIPTION.empty()) {
            body.BodyAddProperty("DESCRIPTION", group.DESCRIPTION);
        }
        if (!group.ID.empty()) {
            body.BodyAddProperty("ID", group.ID);  // last, unlike in the other creates: meant
        }
        const std::string id = firstId(operation.post("/hostgroup", body));
        return readBack(kReadBack, m_retry, m_deviceManager, [&] { return getHostGroup(id); });
    });
}

void CHostGroupHandlerImpl::deleteHostGroup(const std::string& hostGroupID)
{
    perform(ResourceOperation("deleteHostGroup", m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!hostGroupID.empty(), kIdMissing);
        operation.remove("/hostgroup/" + hostGroupID);
    });
}

HostGroupMO CHostGroupHandlerImpl::getHostGroup(const std::string& hostGroupID)
{
    return perform(ResourceOperation("getHostGroup", m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!hostGroupID.empty(), kIdMissing);
        return readFirst(operation.get("/hostgroup/" + hostGroupID), kFields);
    });
}

void CHostGroupHandlerImpl::addHostToHostGroup(const std::string& hostID, const std::string& hostGroupID)
{
    perform(ResourceOperation("addHostToHostGroup", m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!hostID.empty(), "hostID is empty! ");
        operation.require(!hostGroupID.empty(), kIdMissing);
        RestRequest body;
        body.BodyAddProperty("ID", hostGroupID);
        body.BodyAddProperty("ASSOCIATEOBJTYPE", MOTYPE_HOST);
        body.BodyAddProperty("ASSOCIATEOBJID", hostID);
        const FailureMark before;
        try {
            operation.post("/hostgroup/associate", body);
        } catch (PlimAPIExceptionWithErrCode& refusal) {
            if (refusal.getErrCode() == kAlreadyInHostGroup) {
                warn(operation, "the host was already in the host group, ignore it. ");
                before.forgive();
            } else {
                warn(operation, "addHostToHostGroup exception. ");
            }
        } catch (...) {
            swallow(operation, "add host to host group failed. ");
        }
    });
}

std::vector<HostGroupMO> CHostGroupHandlerImpl::getHostGroupByHost(const std::string& hostID, HostGroupQuery& query)
{
    return perform(ResourceOperation("getHostGroupByHost", m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!hostID.empty(), "hostID is empty! ");
        const std::string path = BatchPath("/hostgroup/associate?")
                                     .where("ID", query.condition.ID)
                                     .where("NAME", query.condition.NAME)
                                     .associated(MOTYPE_HOSTGROUP, MOTYPE_HOST, hostID)
                                     .range("&", query.rangeStart, query.rangeCount)
                                     .text();
        return readEach(operation.get(path), [this](const std::string& id) { return getHostGroup(id); });
    });
}

HostGroupMO CHostGroupHandlerImpl::getHostGroupByMappingView(const std::string& mappingViewID)
{
    return perform(ResourceOperation("getHostGroupByMappingView", m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!mappingViewID.empty(), "mappingViewID is empty! ");
        const RestResponse reply =
            operation.get("/hostgroup/associate?" + associatedWith(MOTYPE_MAPPINGVIEW, mappingViewID));
        return readFirstNamed(reply, [this](const std::string& id) { return getHostGroup(id); });
    });
}

void CHostGroupHandlerImpl::removeHostFromHostGroup(const std::string& hostID, const std::string& hostGroupID)
{
    perform(ResourceOperation("removeHostFromHostGroup", m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!hostID.empty(), "hostID is empty! ");
        operation.require(!hostGroupID.empty(), kIdMissing);
        try {
            // Under "/host" although the ID is the group's: meant.
            operation.remove("/host/associate?ID=" + hostGroupID + "&" + associatedWith(MOTYPE_HOST, hostID));
        } catch (...) {
            swallow(operation, "remove host from host group failed. ");
        }
    });
}
