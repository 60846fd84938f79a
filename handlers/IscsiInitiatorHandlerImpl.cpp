#include "handlers/IscsiInitiatorHandlerImpl.h"

#include "handlers/ChapSettings.h"
#include "handlers/RecordReader.h"
#include "handlers/ResourceOperation.h"

#include <brevan/StorageRecords.h>

using namespace brevan;

namespace {

constexpr const char* kIdMissing = "iscsiInitiatorID is empty! ";

// The two operations that send CHAP settings close with their "enter" line: meant.
constexpr OperationStyle kCreate = {"createIscsiInitiator", nullptr, "enter createIscsiInitiator successfully!"};
constexpr OperationStyle kModify = {"modifyIscsiInitiator", nullptr, "enter modifyIscsiInitiator successfully!"};

constexpr Field<IscsiInitiatorMO> kFields[] = {
    text<&IscsiInitiatorMO::ID>("ID"),
    textIfPresent<&IscsiInitiatorMO::NAME>("NAME"),
    textIfPresent<&IscsiInitiatorMO::PARENTID>("PARENTID"),
    textIfPresent<&IscsiInitiatorMO::PARENTNAME>("PARENTNAME"),
    number32<&IscsiInitiatorMO::HEALTHSTATUS>("HEALTHSTATUS"),
    number32<&IscsiInitiatorMO::RUNNINGSTATUS>("RUNNINGSTATUS"),
    flag<&IscsiInitiatorMO::ISFREE>("ISFREE"),
    flag<&IscsiInitiatorMO::USECHAP>("USECHAP"),
    textIfPresent<&IscsiInitiatorMO::CHAPNAME>("CHAPNAME"),
    textIfPresent<&IscsiInitiatorMO::CHAPNAMEINITATORVERTARGET>("CHAPNAMEINITATORVERTARGET"),
    textIfPresent<&IscsiInitiatorMO::NORMALVERMODE>("NORMALVERMODE"),
    textIfPresent<&IscsiInitiatorMO::DISCOVERYVERMODE>("DISCOVERYVERMODE"),
};

}  // namespace

IscsiInitiatorMO CIscsiInitiatorHandlerImpl::createIscsiInitiator(IscsiInitiatorMO& initiator)
{
    return perform(ResourceOperation(kCreate, m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!initiator.ID.empty(), kIdMissing);
        RestRequest body;
        body.BodyAddProperty("ID", initiator.ID);
        if (!initiator.PARENTID.empty()) {
            body.BodyAddProperty("PARENTID", initiator.PARENTID);
        }
        if (initiator.PARENTTYPE != 0) {
            body.BodyAddProperty("PARENTTYPE", initiator.PARENTTYPE);
        }
        addChapOfNew(operation, body, initiator);
        if (!initiator.NAME.empty()) {
            body.BodyAddProperty("NAME", initiator.NAME);
        }
        return getIscsiInitiator(firstId(operation.post("/iscsi_initiator", body)));
    });
}

void CIscsiInitiatorHandlerImpl::modifyIscsiInitiator(IscsiInitiatorMO& initiator)
{
    perform(ResourceOperation(kModify, m_deviceManager), [&](ResourceOperation& operation) {
        const IscsiInitiatorMO current = getIscsiInitiator(initiator.ID);  // refuses an empty ID, under its own name: meant
        RestRequest body;
        body.BodyAddProperty("ID", initiator.ID);
        addChapOfChange(body, initiator, current);
        if (!initiator.NAME.empty()) {
            body.BodyAddProperty("NAME", initiator.NAME);
        }
        if (!initiator.PARENTID.empty()) {
            body.BodyAddProperty("PARENTID", initiator.PARENTID);
            body.BodyAddProperty("PARENTTYPE", MOTYPE_HOST);
        }
        operation.put("/iscsi_initiator", body);
    });
}

void CIscsiInitiatorHandlerImpl::deleteIscsiInitiator(const std::string& initiatorID)
{
    perform(ResourceOperation("deleteIscsiInitiator", m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!initiatorID.empty(), kIdMissing);
        operation.remove("/iscsi_initiator/" + initiatorID);
    });
}

IscsiInitiatorMO CIscsiInitiatorHandlerImpl::getIscsiInitiator(const std::string& initiatorID)
{
    return perform(ResourceOperation("getIscsiInitiator", m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!initiatorID.empty(), kIdMissing);
        return readFirst(operation.get("/iscsi_initiator/" + initiatorID), kFields);
    });
}

void CIscsiInitiatorHandlerImpl::addIscsiInitiatorToHost(const std::string& initiatorID, const std::string& hostID)
{
    perform(ResourceOperation("addIscsiInitiatorToHost", m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!initiatorID.empty(), kIdMissing);
        operation.require(!hostID.empty(), "hostID is empty! ");
        RestRequest body;
        body.BodyAddProperty("PARENTTYPE", MOTYPE_HOST);
        body.BodyAddProperty("PARENTID", hostID);
        operation.put("/iscsi_initiator/" + initiatorID, body);
    });
}

void CIscsiInitiatorHandlerImpl::removeIscsiInitiatorFromHost(const std::string& initiatorID)
{
    perform(ResourceOperation("removeIscsiInitiatorFromHost", m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!initiatorID.empty(), kIdMissing);
        RestRequest body;
        body.BodyAddProperty("ID", initiatorID);
        operation.put("/iscsi_initiator/remove_iscsi_from_host", body);
    });
}
