#include "ApiError.h"
#include "Objects.h"
#include "Records.h"
#include "Text.h"

#include <limits>

namespace brevan::sim {

namespace {

constexpr std::uint64_t kAnyNumber = std::numeric_limits<std::uint64_t>::max();
constexpr std::int64_t kSectorBytes = 512;

struct Size {
    bool thin = false;
    std::int64_t capacity = 0;   ///< sectors
    std::int64_t allocated = 0;  ///< sectors that the pool gives at once
    std::int64_t usage = 0;      ///< percent, as the client gave it
};

/// Sizes are compared with the pool's before they are narrowed: a client may send anything up to 2^64 - 1.
Size sizeFor(const RequestContext& context, std::int64_t poolCapacity)
{
    Size size;
    size.thin = context.body.number("ALLOCTYPE", 1).value_or(0) == 1;
    const std::uint64_t capacity = context.body.requireNumber("CAPACITY", kAnyNumber);
    if (capacity == 0 || capacity > static_cast<std::uint64_t>(poolCapacity)) {
        throw ApiError(kBadCapacity, "The capacity of " + std::to_string(capacity) +
                                         " sectors is not between 1 and the pool's " + std::to_string(poolCapacity) + ".");
    }
    size.capacity = static_cast<std::int64_t>(capacity);
    size.allocated = size.capacity;
    if (size.thin) {
        const std::uint64_t initial = context.body.number("INITIALALLOCCAPACITY", kAnyNumber).value_or(0);
        if (initial > capacity) {
            throw ApiError(kBadAllocation, "The initial allocation of " + std::to_string(initial) +
                                               " sectors is larger than the LUN's capacity of " + std::to_string(capacity) +
                                               ".");
        }
        size.allocated = static_cast<std::int64_t>(initial);
        size.usage = static_cast<std::int64_t>(context.body.number("THINCAPACITYUSAGE", 100).value_or(0));
    }
    return size;
}

void allocate(Database& database, const Value& pool, std::int64_t sectors)
{
    if (database.execute("UPDATE pool SET allocated = allocated + ? WHERE id = ? AND allocated + ? <= capacity",
                         {sectors, pool, sectors}) != 1) {
        throw ApiError(kPoolFull,
                       "The LUN needs " + std::to_string(sectors) + " sectors, and the storage pool has only " +
                           std::to_string(database.number("SELECT capacity - allocated FROM pool WHERE id = ?", {pool})) +
                           " left.");
    }
}

std::string settingsOf(const RequestContext& context)
{
    nlohmann::json settings = nlohmann::json::object();
    for (const char* key : {"WRITEPOLICY", "MIRRORPOLICY", "PREFETCHPOLICY", "PREFETCHVALUE", "DATATRANSFERPOLICY",
                            "INITIALDISTRIBUTEPOLICY"}) {
        if (const auto value = context.body.number(key, kAnyNumber)) {
            settings[key] = std::to_string(*value);
        }
    }
    return settings.dump();
}

Answer createLun(RequestContext& context)
{
    Database& database = context.database();
    const NewObject lun = beginObject(context, lunKind());
    if (context.body.number("PARENTTYPE", 65535).value_or(216) != 216) {
        throw ApiError(kBadParameter, "The parent of a LUN is a storage pool: PARENTTYPE must be 216.");
    }
    const Value pool = existingId(database, poolKind(), context.body.requireText("PARENTID"));
    const Size size = sizeFor(context, database.number("SELECT capacity FROM pool WHERE id = ?", {pool}));
    allocate(database, pool, size.allocated);
    const std::string wwn = newWwn(context.array);
    const std::string controller = context.body.text("OWNINGCONTROLLER", 32);
    database.insert("lun", {{"id", lun.id},
                            {"name", lun.name},
                            {"pool_id", pool},
                            {"description", context.body.text("DESCRIPTION")},
                            {"alloc_type", std::int64_t{size.thin ? 1 : 0}},
                            {"capacity", size.capacity},
                            {"allocated", size.allocated},
                            {"thin_usage", size.usage},
                            {"wwn", wwn},
                            {"controller", controller.empty() ? "A" : controller},
                            {"settings", settingsOf(context)},
                            {"unsettled", std::int64_t{context.array.options.settleReads}}});
    context.array.exposure->createVolume({wwn, static_cast<std::uint64_t>(size.capacity * kSectorBytes)});
    return recordAnswer(context, lunKind(), lun.id);
}

Answer removeLun(RequestContext& context)
{
    Database& database = context.database();
    const Value id = existingId(database, lunKind(), context.id);
    const std::string wwn = database.text("SELECT wwn FROM lun WHERE id = ?", {id});
    database.execute(
        "UPDATE pool SET allocated = allocated - (SELECT allocated FROM lun WHERE id = ?1) "
        "WHERE id = (SELECT pool_id FROM lun WHERE id = ?1)",
        {id});
    Answer answer =
        removeObject(context, lunKind(),
                     {{"SELECT 1 FROM lun_group_member WHERE volume_type = 11 AND volume_id = ?", kVolumeInLunGroup,
                       "is in a LUN group: remove it there first."},
                      {"SELECT 1 FROM snapshot WHERE lun_id = ?", kLunHasSnapshots, "has snapshots: delete them first."}});
    for (const SnapshotInMaking& snapshot : context.array.snapshotsInMaking) {
        if (snapshot.lun == std::get<std::int64_t>(id)) {
            throw ApiError(kLunHasSnapshots, described(lunKind(), context.id) + " has snapshots: delete them first.");
        }
    }
    context.afterwards.emplace_back([&context, wwn] { context.array.exposure->removeVolume({wwn, 0}); });
    return answer;
}

}  // namespace

const ResourceKind& lunKind()
{
    static const ResourceKind kKind{
        "LUN",
        "lun",
        ObjectType::kLun,
        kUnknownLun,
        true,
        true,
        "1",
        {
            {"ID", "id", Form::kText, Match::kNumber},
            {"NAME", "name", Form::kText, Match::kText},
            {"TYPE", "11"},
            {"PARENTTYPE", "216"},
            {"PARENTID", "pool_id", Form::kText, Match::kNumber},
            {"PARENTNAME", "(SELECT name FROM pool WHERE id = lun.pool_id)"},
            {"HEALTHSTATUS", "health", Form::kText, Match::kNumber},
            {"RUNNINGSTATUS", "running", Form::kText, Match::kNumber},
            {"DESCRIPTION", "description"},
            {"ALLOCTYPE", "alloc_type", Form::kText, Match::kNumber},
            {"SECTORSIZE", "512"},
            {"CAPACITY", "capacity"},
            {"ALLOCCAPACITY", "allocated"},
            {"THINCAPACITYUSAGE", "iif(alloc_type = 1, thin_usage, NULL)"},
            {"EXPOSEDTOINITIATOR",
             "iif(EXISTS (SELECT 1 FROM lun_number n WHERE n.volume_type = 11 AND n.volume_id = lun.id"
             " AND (EXISTS (SELECT 1 FROM iscsi_initiator WHERE host_id = n.host_id)"
             " OR EXISTS (SELECT 1 FROM fc_initiator WHERE host_id = n.host_id))), 'true', 'false')"},
            {"WWN", "wwn"},
            {"OWNINGCONTROLLER", "controller"},
            {"WORKINGCONTROLLER", "controller"},
            {"ISADD2LUNGROUP",
             "iif(EXISTS (SELECT 1 FROM lun_group_member WHERE volume_type = 11 AND volume_id = lun.id), 'true', 'false')",
             Form::kText, Match::kFlag},
            {"", "settings", Form::kMembers},
        },
        {
            {ObjectType::kLunGroup, "group_id = ? AND volume_type = 11", "lun_group_member.volume_id"},
            {ObjectType::kHost, "host_id = ? AND volume_type = 11", "lun_number.volume_id"},
            {ObjectType::kPool, "pool_id = ?"},
        }};
    return kKind;
}

void addLunRoutes(Router& router)
{
    addReadRoutes(router, lunKind(), "/lun", "/lun");
    router.add({"POST", "/lun", createLun});
    router.add({"DELETE", "/lun/{id}", removeLun});
}

}  // namespace brevan::sim
