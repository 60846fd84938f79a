#include "handlers/HostHandlerImpl.h"

#include "handlers/RecordReader.h"
#include "handlers/ResourceOperation.h"

#include <utility>

using namespace brevan;

namespace {

constexpr std::uint32_t kOperatingSystemUnset = 100;
constexpr ReadBack kReadBack = {"retry get host!", {kNotReadableYet, 0}};

constexpr Field<HostMO> kFields[] = {
    text<&HostMO::ID>("ID"),
    text<&HostMO::NAME>("NAME"),
    type<&HostMO::PARENTTYPE>("PARENTTYPE"),
    text<&HostMO::LOCATION>("LOCATION"),
    number32<&HostMO::HEALTHSTATUS>("HEALTHSTATUS"),
    number32<&HostMO::RUNNINGSTATUS>("RUNNINGSTATUS"),
    text<&HostMO::DESCRIPTION>("DESCRIPTION"),
    number32<&HostMO::OPERATIONSYSTEM>("OPERATIONSYSTEM"),
    flag<&HostMO::ISADD2HOSTGROUP>("ISADD2HOSTGROUP"),
    text<&HostMO::IP>("IP"),
    text<&HostMO::PARENTID>("PARENTID"),
};

// Sent in this order, each only where it is set.
constexpr std::pair<const char*, std::string HostMO::*> kOptionalTexts[] = {
    {"PARENTID", &HostMO::PARENTID},
    {"LOCATION", &HostMO::LOCATION},
    {"DESCRIPTION", &HostMO::DESCRIPTION},
    {"IP", &HostMO::IP},
};

}  // namespace

HostMO CHostHandlerImpl::createHost(HostMO& host)
{
    return perform(ResourceOperation("createHost", m_deviceManager), [&](ResourceOperation& operation) {
        RestRequest body;
        if (!host.ID.empty()) {
            body.BodyAddProperty("ID", host.ID);
        }
        body.BodyAddProperty("TYPE", MOTYPE_HOST);
        operation.require(!host.NAME.empty(), "Host name is empty! ");
        body.BodyAddProperty("NAME", host.NAME);
        operation.require(host.OPERATIONSYSTEM != kOperatingSystemUnset, "OperationSystem value is initial value! ");
        body.BodyAddProperty("OPERATIONSYSTEM", static_cast<int>(host.OPERATIONSYSTEM));
        if (host.PARENTTYPE != 0) {
            body.BodyAddProperty("PARENTTYPE", static_cast<int>(host.PARENTTYPE));
        }
        for (const auto& [key, member] : kOptionalTexts) {
            if (!(host.*member).empty()) {
                body.BodyAddProperty(key, host.*member);
            }
        }
        const std::string id = firstId(operation.post("/host", body));
        return readBack(kReadBack, m_retry, m_deviceManager, [&] { return getHost(id); });
    });
}

HostMO CHostHandlerImpl::getHost(const std::string& hostID)
{
    return perform(ResourceOperation("getHost", m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!hostID.empty(), "hostID is empty! ");
        return readFirst(operation.get("/host/" + hostID), kFields);
    });
}
