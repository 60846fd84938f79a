#include "handlers/SnapshotHandlerImpl.h"

#include "handlers/BatchPath.h"
#include "handlers/RecordReader.h"
#include "handlers/ResourceOperation.h"

using namespace brevan;

namespace {

constexpr Field<SnapshotMO> kFields[] = {
    text<&SnapshotMO::ID>("ID"),
    text<&SnapshotMO::NAME>("NAME"),
    type<&SnapshotMO::PARENTTYPE>("PARENTTYPE"),
    text<&SnapshotMO::PARENTID>("PARENTID"),
    text<&SnapshotMO::PARENTNAME>("PARENTNAME"),
    number32<&SnapshotMO::HEALTHSTATUS>("HEALTHSTATUS"),
    number32<&SnapshotMO::RUNNINGSTATUS>("RUNNINGSTATUS"),
    text<&SnapshotMO::DESCRIPTION>("DESCRIPTION"),
    size64<&SnapshotMO::USERCAPACITY>("USERCAPACITY"),
    size64<&SnapshotMO::CONSUMEDCAPACITY>("CONSUMEDCAPACITY"),
    text<&SnapshotMO::WWN>("WWN"),
};

}  // namespace

SnapshotMO CSnapshotHandlerImpl::getSnapshot(const std::string& snapshotID)
{
    return perform(ResourceOperation("getSnapshot", m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!snapshotID.empty(), "snapshotID is empty! ");
        return readFirst(operation.get("/SNAPSHOT/" + snapshotID), kFields);
    });
}

std::vector<SnapshotMO> CSnapshotHandlerImpl::getSnapshotByLunGroup(const std::string& lunGroupID, SnapshotQuery& query)
{
    return perform(ResourceOperation("getSnapshotByLunGroup", m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!lunGroupID.empty(), "LunGroup id is empty! ");
        return getSnapshotByCondition(lunGroupID, MOTYPE_LUNGROUP, query, operation.name());
    });
}

std::vector<SnapshotMO> CSnapshotHandlerImpl::getSnapshotByHost(const std::string& hostID, SnapshotQuery& query)
{
    return perform(ResourceOperation("getSnapshotByHost", m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!hostID.empty(), "hostID is empty! ");
        return getSnapshotByCondition(hostID, MOTYPE_HOST, query, operation.name());
    });
}

std::vector<SnapshotMO> CSnapshotHandlerImpl::getSnapshotByCondition(const std::string& objID, MOType objType,
                                                                     SnapshotQuery& query, const std::string& /*callerName*/)
{
    return perform(ResourceOperation("getSnapshotByCondition", m_deviceManager), [&](ResourceOperation& operation) {
        const SnapshotMO& wanted = query.condition;
        // Lower case here, capitals in the single read: the array knows both.
        const std::string path = BatchPath("/snapshot/associate?")
                                     .where("ID", wanted.ID)
                                     .where("NAME", wanted.NAME)
                                     .where("PARENTID", wanted.PARENTID)
                                     .where("RUNNINGSTATUS", wanted.RUNNINGSTATUS, 0)
                                     .where("HEALTHSTATUS", wanted.HEALTHSTATUS, 0)
                                     .associated(MOTYPE_SNAPSHOT, objType, objID)
                                     .range("&", query.rangeStart, query.rangeCount)
                                     .text();
        return readEach(operation.get(path), [this](const std::string& id) { return getSnapshot(id); });
    });
}
