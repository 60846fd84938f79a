#include "ApiError.h"
#include "Objects.h"
#include "Records.h"
#include "Text.h"

namespace brevan::sim {

namespace {

constexpr std::int64_t kSectorBytes = 512;

/// A snapshot before its data is there.
struct NewSnapshot {
    NewObject object;
    std::int64_t lun = 0;
    std::int64_t capacity = 0;  ///< sectors
    std::string description;
    std::string wwn;
};

ExposedVolume volumeOf(const std::string& wwn, const NewSnapshot& snapshot)
{
    return {wwn, static_cast<std::uint64_t>(snapshot.capacity * kSectorBytes)};
}

/// The snapshot is there, once its data is; where that failed, nothing of it stays but its ID, which never comes back.
Answer finishSnapshot(RequestContext& context, const NewSnapshot& snapshot, std::list<SnapshotInMaking>::iterator place,
                      const std::exception_ptr& failure)
{
    context.array.snapshotsInMaking.erase(place);
    if (failure) {
        context.array.exposure->removeVolume(volumeOf(snapshot.wwn, snapshot));
        std::rethrow_exception(failure);
    }
    context.database().insert("snapshot", {{"id", snapshot.object.id},
                                           {"name", snapshot.object.name},
                                           {"lun_id", snapshot.lun},
                                           {"description", snapshot.description},
                                           {"capacity", snapshot.capacity},
                                           {"wwn", snapshot.wwn}});
    return recordAnswer(context, snapshotKind(), snapshot.object.id);
}

void copyLater(RequestContext& context, const NewSnapshot& snapshot)
{
    Array& array = context.array;
    const std::string source = context.database().text("SELECT wwn FROM lun WHERE id = ?", {snapshot.lun});
    const auto place = std::make_shared<std::list<SnapshotInMaking>::iterator>();
    context.afterwards.emplace_back([&array, snapshot, place] {
        *place = array.snapshotsInMaking.insert(array.snapshotsInMaking.end(), {snapshot.object.name, snapshot.lun});
    });
    context.longWork = LongWork{[&array, source, snapshot] {
                                    array.exposure->copyVolume(volumeOf(source, snapshot), volumeOf(snapshot.wwn, snapshot));
                                },
                                [snapshot, place](RequestContext& inner, const std::exception_ptr& failure) {
                                    return finishSnapshot(inner, snapshot, *place, failure);
                                }};
}

Answer createSnapshot(RequestContext& context)
{
    NewSnapshot snapshot;
    snapshot.object = beginObject(context, snapshotKind());
    for (const SnapshotInMaking& other : context.array.snapshotsInMaking) {
        if (other.name == snapshot.object.name) {
            throw ApiError(kNameTaken, "A snapshot with the name " + inQuotes(other.name) + " exists already.");
        }
    }
    if (context.body.number("PARENTTYPE", 65535).value_or(11) != 11) {
        throw ApiError(kBadParameter, "The parent of a snapshot is a LUN: PARENTTYPE must be 11.");
    }
    const Value lun = existingId(context.database(), lunKind(), context.body.requireText("PARENTID"));
    snapshot.lun = std::get<std::int64_t>(lun);
    snapshot.capacity = context.database().number("SELECT capacity FROM lun WHERE id = ?", {lun});
    snapshot.description = context.body.text("DESCRIPTION");
    snapshot.wwn = newWwn(context.array);
    copyLater(context, snapshot);
    return {kDone, "0", R"({"ID":")" + std::to_string(snapshot.object.id) + "\"}"};
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
