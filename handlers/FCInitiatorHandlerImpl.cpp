#include "handlers/FCInitiatorHandlerImpl.h"

#include "handlers/RecordReader.h"
#include "handlers/ResourceOperation.h"

#include <brevan/StorageRecords.h>

using namespace brevan;

namespace {

constexpr const char* kIdMissing = "fcInitiatorID is empty! ";

constexpr Field<FCInitiatorMO> kFields[] = {
    text<&FCInitiatorMO::ID>("ID"),
    textIfPresent<&FCInitiatorMO::NAME>("NAME"),
    textIfPresent<&FCInitiatorMO::PARENTID>("PARENTID"),
    textIfPresent<&FCInitiatorMO::PARENTNAME>("PARENTNAME"),
    number32<&FCInitiatorMO::HEALTHSTATUS>("HEALTHSTATUS"),
    number32<&FCInitiatorMO::RUNNINGSTATUS>("RUNNINGSTATUS"),
    flag<&FCInitiatorMO::ISFREE>("ISFREE"),
};

}  // namespace

FCInitiatorMO CFCInitiatorHandlerImpl::createFCInitiator(FCInitiatorMO& initiator)
{
    return perform(ResourceOperation("createFCInitiator", m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!initiator.ID.empty(), kIdMissing);
        RestRequest body;
        body.BodyAddProperty("ID", initiator.ID);
        if (!initiator.PARENTID.empty()) {
            body.BodyAddProperty("PARENTID", initiator.PARENTID);
            body.BodyAddProperty("PARENTTYPE", MOTYPE_HOST);
        }
        if (!initiator.NAME.empty()) {
            body.BodyAddProperty("NAME", initiator.NAME);
        }
        return getFCInitiator(firstId(operation.post("/fc_initiator", body)));
    });
}

void CFCInitiatorHandlerImpl::deleteFCInitiator(const std::string& initiatorID)
{
    perform(ResourceOperation("deleteFCInitiator", m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!initiatorID.empty(), kIdMissing);
        operation.remove("/fc_initiator/" + initiatorID);
    });
}

FCInitiatorMO CFCInitiatorHandlerImpl::getFCInitiator(const std::string& initiatorID)
{
    return perform(ResourceOperation("getFCInitiator", m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!initiatorID.empty(), kIdMissing);
        return readFirst(operation.get("/fc_initiator/" + initiatorID), kFields);
    });
}

void CFCInitiatorHandlerImpl::addFCInitiatorToHost(const std::string& initiatorID, const std::string& hostID)
{
    perform(ResourceOperation("addFCInitiatorToHost", m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!initiatorID.empty(), kIdMissing);
        operation.require(!hostID.empty(), "hostID is empty! ");
        RestRequest body;
        body.BodyAddProperty("PARENTTYPE", MOTYPE_HOST);
        body.BodyAddProperty("PARENTID", hostID);
        operation.put("/fc_initiator/" + initiatorID, body);
    });
}

void CFCInitiatorHandlerImpl::removeFCInitiatorFromHost(const std::string& initiatorID)
{
    perform(ResourceOperation("removeFCInitiatorFromHost", m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!initiatorID.empty(), kIdMissing);
        RestRequest body;
        body.BodyAddProperty("ID", initiatorID);
        operation.put("/fc_initiator/remove_fc_from_host", body);
    });
}
