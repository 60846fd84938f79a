#include "ApiError.h"
#include "Objects.h"
#include "Text.h"

namespace brevan::sim {

namespace {

constexpr std::initializer_list<ObjectType> kVolumes{ObjectType::kLun, ObjectType::kSnapshot};

Answer createLunGroup(RequestContext& context)
{
    const NewObject group = beginObject(context, lunGroupKind());
    context.database().insert(
        "lun_group", {{"id", group.id},
                      {"name", group.name},
                      {"description", context.body.text("DESCRIPTION")},
                      {"app_type", static_cast<std::int64_t>(context.body.number("APPTYPE", 65535).value_or(0))},
                      {"group_type", static_cast<std::int64_t>(context.body.number("GROUPTYPE", 65535).value_or(0))},
                      {"unsettled", std::int64_t{context.array.options.settleReads}}});
    return recordAnswer(context, lunGroupKind(), group.id);
}

Answer removeLunGroup(RequestContext& context)
{
    return removeObject(context, lunGroupKind(),
                        {{"SELECT 1 FROM mapping_view WHERE lun_group_id = ?", kLunGroupInView,
                          "is in a mapping view: remove it there first."}});
}

Answer addMember(RequestContext& context)
{
    const AssociationRequest request = associationFromBody(context, lunGroupKind(), kVolumes);
    const Value type = static_cast<std::int64_t>(request.type);
    if (context.database().execute("INSERT OR IGNORE INTO lun_group_member VALUES (?, ?, ?)",
                                   {request.owner, type, request.member}) != 1) {
        throw ApiError(request.type == ObjectType::kLun ? kLunAlreadyInLunGroup : kSnapshotAlreadyInLunGroup,
                       described(*request.memberKind, request.memberText) + " is already in the LUN group " +
                           inQuotes(request.ownerText) + ".");
    }
    context.exposureChanged = true;
    return {};
}

Answer removeMember(RequestContext& context)
{
    const AssociationRequest request = associationFromQuery(context, lunGroupKind(), kVolumes);
    const Value type = static_cast<std::int64_t>(request.type);
    if (context.database().execute("DELETE FROM lun_group_member WHERE group_id = ? AND volume_type = ? AND volume_id = ?",
                                   {request.owner, type, request.member}) != 1) {
        throw ApiError(kNotInLunGroup, described(*request.memberKind, request.memberText) + " is not in the LUN group " +
                                           inQuotes(request.ownerText) + ".");
    }
    context.exposureChanged = true;
    return {};
}

}  // namespace

const ResourceKind& lunGroupKind()
{
    static const ResourceKind kKind{
        "LUN group",
        "lun_group",
        ObjectType::kLunGroup,
        kUnknownLunGroup,
        true,
        true,
        "1",
        {
            {"ID", "id", Form::kText, Match::kNumber},
            {"NAME", "name", Form::kText, Match::kText},
            {"TYPE", "256"},
            {"DESCRIPTION", "description"},
            {"ISADD2MAPPINGVIEW",
             "iif(EXISTS (SELECT 1 FROM mapping_view WHERE lun_group_id = lun_group.id), 'true', 'false')", Form::kText,
             Match::kFlag},
            {"APPTYPE", "app_type", Form::kText, Match::kNumber},
            {"GROUPTYPE", "group_type", Form::kText, Match::kNumber},
        },
        {
            {ObjectType::kLun, "id IN (SELECT group_id FROM lun_group_member WHERE volume_type = 11 AND volume_id = ?)"},
            {ObjectType::kSnapshot,
             "id IN (SELECT group_id FROM lun_group_member WHERE volume_type = 27 AND volume_id = ?)"},
            {ObjectType::kMappingView, "id = (SELECT lun_group_id FROM mapping_view WHERE id = ?)"},
        }};
    return kKind;
}

void addLunGroupRoutes(Router& router)
{
    addReadRoutes(router, lunGroupKind(), "/lungroup", "/lungroup");
    router.add({"POST", "/lungroup/", createLunGroup});
    router.add({"DELETE", "/lungroup/associate", removeMember});
    router.add({"POST", "/lungroup/associate", addMember});
    router.add({"DELETE", "/lungroup/{id}", removeLunGroup});
}

}  // namespace brevan::sim
