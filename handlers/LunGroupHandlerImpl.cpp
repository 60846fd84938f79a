#include "handlers/LunGroupHandlerImpl.h"

#include "handlers/BatchPath.h"
#include "handlers/RecordReader.h"
#include "handlers/ResourceOperation.h"

using namespace brevan;

// Filling and emptying a group stands in LunGroupMembership.cpp.

namespace {

constexpr std::uint32_t kAppTypeUnset = 100;
constexpr const char* kIdMissing = "LunGroup id is empty! ";
constexpr ReadBack kReadBack = {"retry get lun group!", {kNotReadableYet, kLunGroupNotThereYet}};

// The log lines name the operation differently: meant.
constexpr OperationStyle kGetObjectNumber = {"getObjNOFromLunGroup", nullptr, nullptr, "getLunNOFromLunGroup"};

constexpr Field<LunGroupMO> kFields[] = {
    text<&LunGroupMO::ID>("ID"),
    text<&LunGroupMO::NAME>("NAME"),
    text<&LunGroupMO::DESCRIPTION>("DESCRIPTION"),
    flag<&LunGroupMO::ISADD2MAPPINGVIEW>("ISADD2MAPPINGVIEW"),
    number32<&LunGroupMO::APPTYPE>("APPTYPE"),
    number64<&LunGroupMO::GROUPTYPE>("GROUPTYPE"),
};

}  // namespace

LunGroupMO CLunGroupHandlerImpl::createLunGroup(LunGroupMO& group)
{
    return perform(ResourceOperation("createLunGroup", m_deviceManager), [&](ResourceOperation& operation) {
        RestRequest body;
        if (!group.ID.empty()) {
            body.BodyAddProperty("ID", group.ID);
        }
        body.BodyAddProperty("TYPE", MOTYPE_LUNGROUP);
        operation.require(!group.NAME.empty(), "LunGroup name is empty! ");
        body.BodyAddProperty("NAME", group.NAME);
        if (!group.DESCRIPTION.empty()) {
            body.BodyAddProperty("DESCRIPTION", group.DESCRIPTION);
        }
        if (group.APPTYPE == kAppTypeUnset) {
            group.APPTYPE = 0;  // in the caller's record too: meant
        }
        body.BodyAddProperty("APPTYPE", static_cast<int>(group.APPTYPE));
        body.BodyAddProperty("GROUPTYPE", 0UL);
        const std::string id = firstId(operation.post("/lungroup/", body));
        return readBack(kReadBack, m_retry, m_deviceManager, [&] { return getLunGroup(id); });
    });
}

void CLunGroupHandlerImpl::deleteLunGroup(const std::string& lunGroupID)
{
    perform(ResourceOperation("deleteLunGroup", m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!lunGroupID.empty(), kIdMissing);
        operation.remove("/lungroup/" + lunGroupID);
    });
}

LunGroupMO CLunGroupHandlerImpl::getLunGroup(const std::string& lunGroupID)
{
    return perform(ResourceOperation("getLunGroup", m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!lunGroupID.empty(), kIdMissing);
        return readFirst(operation.get("/lungroup/" + lunGroupID), kFields);
    });
}

std::vector<LunGroupMO> CLunGroupHandlerImpl::getLunGroupByLun(const std::string& lunID, LunGroupQuery& query)
{
    return perform(ResourceOperation("getLunGroupByLun", m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!lunID.empty(), "lunID is empty! ");
        return getLunGroupByObjList(lunID, query, MOTYPE_LUN, operation.name());
    });
}

std::vector<LunGroupMO> CLunGroupHandlerImpl::getLunGroupBySnapshot(const std::string& snapshotID, LunGroupQuery& query)
{
    return perform(ResourceOperation("getLunGroupBySnapshot", m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!snapshotID.empty(), "snapshotID is empty! ");
        return getLunGroupByObjList(snapshotID, query, MOTYPE_SNAPSHOT, operation.name());
    });
}

std::vector<LunGroupMO> CLunGroupHandlerImpl::getLunGroupByObjList(const std::string& objID, LunGroupQuery& query,
                                                                   MOType objType, const std::string& /*callerName*/)
{
    return perform(ResourceOperation("getLunGroupByObjList", m_deviceManager), [&](ResourceOperation& operation) {
        const LunGroupMO& wanted = query.condition;
        const std::string path = BatchPath("/lungroup/associate?")
                                     .where("ID", wanted.ID)
                                     .where("NAME", wanted.NAME)
                                     .where("ISADD2MAPPINGVIEW", wanted.ISADD2MAPPINGVIEW, -1)
                                     .where("APPTYPE", wanted.APPTYPE, kAppTypeUnset)
                                     .associated(MOTYPE_LUNGROUP, objType, objID)
                                     .range("&", query.rangeStart, query.rangeCount)
                                     .text();
        return readEach(operation.get(path), [this](const std::string& id) { return getLunGroup(id); });
    });
}

LunGroupMO CLunGroupHandlerImpl::getLunGroupByMappingView(const std::string& mappingViewID)
{
    return perform(ResourceOperation("getLunGroupByMappingView", m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!mappingViewID.empty(), "mappingViewID is empty! ");
        const RestResponse reply = operation.get("/lungroup/associate?" + associatedWith(MOTYPE_MAPPINGVIEW, mappingViewID));
        return readFirstNamed(reply, [this](const std::string& id) { return getLunGroup(id); });
    });
}

unsigned int CLunGroupHandlerImpl::getObjNOFromLunGroup(const std::string& lunGroupID)
{
    return perform(ResourceOperation(kGetObjectNumber, m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!lunGroupID.empty(), kIdMissing);
        const unsigned int luns = getCountByAssociate(lunGroupID, "lun");
        return luns + getCountByAssociate(lunGroupID, "snapshot");
    });
}

unsigned int CLunGroupHandlerImpl::getCountByAssociate(const std::string& lunGroupID, const std::string& objWord)
{
    return perform(ResourceOperation("getCountByAssociate", m_deviceManager), [&](ResourceOperation& operation) {
        const RestResponse reply = operation.get("/" + objWord + "/count?" + associatedWith(MOTYPE_LUNGROUP, lunGroupID));
        return replyNumber32(ReplyRecord(reply[0]), "COUNT");
    });
}
