#include "ApiError.h"
#include "Objects.h"
#include "Records.h"

namespace brevan::sim {

namespace {

constexpr std::int64_t kSectorBytes = 512;

Answer createSnapshot(RequestContext& context)
{
    Database& database = context.database();
    const NewObject snapshot = beginObject(context, snapshotKind());
    if (context.body.number("PARENTTYPE", 65535).value_or(11) != 11) {
        throw ApiError(kBadParameter, "The parent of a snapshot is a LUN: PARENTTYPE must be 11.");
    }
    const Value lun = existingId(database, lunKind(), context.body.requireText("PARENTID"));
    const std::string wwn = newWwn(context.array);
    const std::int64_t capacity = database.number("SELECT capacity FROM lun WHERE id = ?", {lun});
    database.insert("snapshot", {{"id", snapshot.id},
                                 {"name", snapshot.name},
                                 {"lun_id", lun},
                                 {"description", context.body.text("DESCRIPTION")},
                                 {"capacity", capacity},
                                 {"wwn", wwn}});
    const auto bytes = static_cast<std::uint64_t>(capacity * kSectorBytes);
    context.array.exposure->copyVolume({database.text("SELECT wwn FROM lun WHERE id = ?", {lun}), bytes}, {wwn, bytes});
    return recordAnswer(context, snapshotKind(), snapshot.id);
}

Answer removeSnapshot(RequestContext& context)
{
    const Value id = existingId(context.database(), snapshotKind(), context.id);
    const std::string wwn = context.database().text("SELECT wwn FROM snapshot WHERE id = ?", {id});
    Answer answer = removeObject(context, snapshotKind(),
                                 {{"SELECT 1 FROM lun_group_member WHERE volume_type = 27 AND volume_id = ?",
                                   kVolumeInLunGroup, "is in a LUN group: remove it there first."}});
    context.afterwards.emplace_back([&context, wwn] { context.array.exposure->removeVolume({wwn, 0}); });
    return answer;
}

}  // namespace

const ResourceKind& snapshotKind()
{
    static const ResourceKind kKind{
        "snapshot",
        "snapshot",
        ObjectType::kSnapshot,
        kUnknownSnapshot,
        true,
        false,
        "1",
        {
            {"ID", "id", Form::kText, Match::kNumber},
            {"NAME", "name", Form::kText, Match::kText},
            {"TYPE", "27"},
            {"PARENTTYPE", "11", Form::kNumber},
            {"PARENTID", "lun_id", Form::kText, Match::kNumber},
            {"PARENTNAME", "(SELECT name FROM lun WHERE id = snapshot.lun_id)"},
            {"HEALTHSTATUS", "health", Form::kText, Match::kNumber},
            {"RUNNINGSTATUS", "running", Form::kText, Match::kNumber},
            {"DESCRIPTION", "description"},
            {"USERCAPACITY", "capacity"},
            {"CONSUMEDCAPACITY", "consumed"},
            {"WWN", "wwn"},
        },
        {
            {ObjectType::kLunGroup, "group_id = ? AND volume_type = 27", "lun_group_member.volume_id"},
            {ObjectType::kHost, "host_id = ? AND volume_type = 27", "lun_number.volume_id"},
            {ObjectType::kLun, "lun_id = ?"},
        }};
    return kKind;
}

void addSnapshotRoutes(Router& router)
{
    // One snapshot is read under "/SNAPSHOT", all else is under "/snapshot".
    addReadRoutes(router, snapshotKind(), "/snapshot", "/SNAPSHOT");
    router.add({"POST", "/snapshot", createSnapshot});
    router.add({"DELETE", "/snapshot/{id}", removeSnapshot});
}

}  // namespace brevan::sim
