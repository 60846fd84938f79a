#include "handlers/LunHandlerImpl.h"

#include "handlers/BatchPath.h"
#include "handlers/RecordReader.h"
#include "handlers/ResourceOperation.h"

#include <limits>

using namespace brevan;

namespace {

constexpr int kStoragePool = 216;
constexpr unsigned int kSectorShift = 9;  // the array counts sectors of 512 bytes
constexpr std::int32_t kThin = 1;
constexpr std::int32_t kAllocTypeUnset = 100;
constexpr std::uint64_t kHighestUsagePercent = 100;
constexpr std::uint64_t kUnsetCapacity = std::numeric_limits<std::uint64_t>::max();
constexpr ReadBack kReadBack = {"retry get lun!", {kNotReadableYet, 0}, 200000, true};

/// Sectors as bytes, in sectors of the size that the array states. A product beyond 64 bits is no size.
template <std::uint64_t LunMO::*Member>
void readBytes(LunMO& lun, const ReplyRecord& from, const char* key)
{
    const std::uint64_t sectors = replySize(from, key);
    const std::uint64_t sectorSize = replySize(from, "SECTORSIZE");
    if (__builtin_mul_overflow(sectors, sectorSize, &(lun.*Member))) {
        throw UnusableReply();
    }
}

void readThinUsage(LunMO& lun, const ReplyRecord& from, const char* key)
{
    if (lun.ALLOCTYPE == kThin && from.find(key) != nullptr) {
        lun.THINCAPACITYUSAGE = replyNumber64(from, key);
    }
}

constexpr Field<LunMO> kFields[] = {
    text<&LunMO::ID>("ID"),
    text<&LunMO::NAME>("NAME"),
    // The parent is always a pool; the reply's own PARENTTYPE is not looked at.
    {"PARENTTYPE", [](LunMO& lun, const ReplyRecord&, const char*) { lun.PARENTTYPE = kStoragePool; }},
    text<&LunMO::PARENTID>("PARENTID"),
    text<&LunMO::PARENTNAME>("PARENTNAME"),
    number32<&LunMO::HEALTHSTATUS>("HEALTHSTATUS"),
    number32<&LunMO::RUNNINGSTATUS>("RUNNINGSTATUS"),
    text<&LunMO::DESCRIPTION>("DESCRIPTION"),
    number32<&LunMO::ALLOCTYPE>("ALLOCTYPE"),
    {"CAPACITY", readBytes<&LunMO::CAPACITY>},
    {"ALLOCCAPACITY", readBytes<&LunMO::ALLOCCAPACITY>},
    size64<&LunMO::allocCapacitySectors>("ALLOCCAPACITY"),
    {"THINCAPACITYUSAGE", readThinUsage},
    flag<&LunMO::EXPOSEDTOINITIATOR>("EXPOSEDTOINITIATOR"),
    text<&LunMO::WWN>("WWN"),
    text<&LunMO::OWNINGCONTROLLER>("OWNINGCONTROLLER"),
    text<&LunMO::WORKINGCONTROLLER>("WORKINGCONTROLLER"),
    flag<&LunMO::ISADD2LUNGROUP>("ISADD2LUNGROUP"),
};

void addAllocation(RestRequest& body, const LunMO& lun)
{
    if (lun.ALLOCTYPE != kThin) {
        body.BodyAddProperty("ALLOCTYPE", 0);
        return;
    }
    body.BodyAddProperty("ALLOCTYPE", kThin);
    // An allocation that is not set goes out shifted as it is.
    body.BodyAddProperty("INITIALALLOCCAPACITY", static_cast<unsigned long long>(lun.ALLOCCAPACITY >> kSectorShift));
    if (lun.THINCAPACITYUSAGE <= kHighestUsagePercent) {
        body.BodyAddProperty("THINCAPACITYUSAGE", static_cast<unsigned long long>(lun.THINCAPACITYUSAGE));
    }
}

void addFixedPolicies(RestRequest& body, const LunMO& lun)
{
    const CLunUserSettableFeature fixed;
    body.BodyAddProperty("MIRRORPOLICY", static_cast<unsigned long>(fixed.MIRRORPOLICY));
    body.BodyAddProperty("WRITEPOLICY", static_cast<unsigned long>(fixed.WRITEPOLICY));
    body.BodyAddProperty("PREFETCHPOLICY", static_cast<unsigned long>(fixed.PREFETCHPOLICY));
    if (fixed.PREFETCHPOLICY == 1 || fixed.PREFETCHPOLICY == 2) {
        body.BodyAddProperty("PREFETCHVALUE", static_cast<unsigned long>(fixed.PREFETCHVALUE));
    }
    if (!lun.OWNINGCONTROLLER.empty()) {
        body.BodyAddProperty("OWNINGCONTROLLER", lun.OWNINGCONTROLLER);
    }
    body.BodyAddProperty("DATATRANSFERPOLICY", static_cast<unsigned long>(fixed.DATATRANSFERPOLICY));
    body.BodyAddProperty("INITIALDISTRIBUTEPOLICY", static_cast<unsigned long>(fixed.INITIALDISTRIBUTEPOLICY));
}

}  // namespace

LunMO CLunHandlerImpl::createLun(LunMO& lun)
{
    return perform(ResourceOperation("createLun", m_deviceManager), [&](ResourceOperation& operation) {
        RestRequest body;
        if (!lun.ID.empty()) {
            body.BodyAddProperty("ID", lun.ID);
        }
        body.BodyAddProperty("TYPE", MOTYPE_LUN);
        operation.require(!lun.NAME.empty(), "Lun name is empty! ");
        body.BodyAddProperty("NAME", lun.NAME);
        body.BodyAddProperty("PARENTTYPE", kStoragePool);
        operation.require(!lun.PARENTID.empty(), "ParentID is empty! ");
        body.BodyAddProperty("PARENTID", lun.PARENTID);
        operation.require(lun.CAPACITY != kUnsetCapacity, "Capacity value is initial value");  // no blank: meant
        body.BodyAddProperty("CAPACITY", static_cast<unsigned long long>(lun.CAPACITY >> kSectorShift));
        if (!lun.DESCRIPTION.empty()) {
            body.BodyAddProperty("DESCRIPTION", lun.DESCRIPTION);
        }
        addAllocation(body, lun);
        addFixedPolicies(body, lun);
        const std::string id = firstId(operation.post("/lun", body));
        return readBack(kReadBack, m_retry, m_deviceManager, [&] { return getLun(id); });
    });
}

LunMO CLunHandlerImpl::getLun(const std::string& lunId)
{
    return perform(ResourceOperation("getLun", m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!lunId.empty(), "lunID is empty! ");
        return readFirst(operation.get("/lun/" + lunId), kFields);
    });
}

std::vector<LunMO> CLunHandlerImpl::getLunByLunGroup(const std::string& lunGroupId, LunQuery& query)
{
    return perform(ResourceOperation("getLunByLunGroup", m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!lunGroupId.empty(), "LunGroup id is empty! ");
        return getLunByCondition(lunGroupId, MOTYPE_LUNGROUP, query, operation.name());
    });
}

std::vector<LunMO> CLunHandlerImpl::getLunByHost(const std::string& hostId, LunQuery& query)
{
    return perform(ResourceOperation("getLunByHost", m_deviceManager), [&](ResourceOperation& operation) {
        operation.require(!hostId.empty(), "hostID is empty! ");
        return getLunByCondition(hostId, MOTYPE_HOST, query, operation.name());
    });
}

std::vector<LunMO> CLunHandlerImpl::getLunByCondition(const std::string& objId, MOType objType, LunQuery& query,
                                                      const std::string& /*callerName*/)
{
    return perform(ResourceOperation("getLunByCondition", m_deviceManager), [&](ResourceOperation& operation) {
        const LunMO& wanted = query.condition;
        const std::string path = BatchPath("/lun/associate?")
                                     .where("ID", wanted.ID)
                                     .where("NAME", wanted.NAME)
                                     .where("PARENTID", wanted.PARENTID)
                                     .where("ALLOCTYPE", wanted.ALLOCTYPE, kAllocTypeUnset)
                                     .where("RUNNINGSTATUS", wanted.RUNNINGSTATUS, 0)
                                     .where("HEALTHSTATUS", wanted.HEALTHSTATUS, 0)
                                     .where("ISADD2LUNGROUP", wanted.ISADD2LUNGROUP, -1)
                                     .associated(MOTYPE_LUN, objType, objId)
                                     .range("&", query.rangeStart, query.rangeCount)
                                     .text();
        return readEach(operation.get(path), [this](const std::string& id) { return getLun(id); });
    });
}
