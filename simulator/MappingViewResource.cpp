#include "ApiError.h"
#include "Objects.h"
#include "Text.h"

namespace brevan::sim {

namespace {

constexpr std::initializer_list<ObjectType> kGroups{ObjectType::kLunGroup, ObjectType::kHostGroup};

std::string columnOf(ObjectType type)
{
    return type == ObjectType::kLunGroup ? "lun_group_id" : "host_group_id";
}

Answer createMappingView(RequestContext& context)
{
    const NewObject view = beginObject(context, mappingViewKind());
    context.database().insert("mapping_view", {{"id", view.id},
                                               {"name", view.name},
                                               {"description", context.body.text("DESCRIPTION")},
                                               {"in_band", std::int64_t{context.body.flag("ENABLEINBANDCOMMAND") ? 1 : 0}},
                                               {"unsettled", std::int64_t{context.array.options.settleReads}}});
    return recordAnswer(context, mappingViewKind(), view.id);
}

/// What a view joins stays; only the view is gone.
Answer removeMappingView(RequestContext& context)
{
    return removeObject(context, mappingViewKind(), {});
}

Answer associate(RequestContext& context)
{
    const AssociationRequest request = associationFromBody(context, mappingViewKind(), kGroups);
    const std::string column = columnOf(request.type);
    if (context.database().execute("UPDATE mapping_view SET " + column + " = ? WHERE id = ? AND " + column + " IS NULL",
                                   {request.member, request.owner}) == 1) {
        context.exposureChanged = true;
        return {};
    }
    if (context.database().exists("SELECT 1 FROM mapping_view WHERE id = ? AND " + column + " = ?",
                                  {request.owner, request.member})) {
        throw ApiError(kAlreadyInView, described(*request.memberKind, request.memberText) +
                                           " is already in the mapping view " + inQuotes(request.ownerText) + ".");
    }
    throw ApiError(kViewHasAnother, described(mappingViewKind(), request.ownerText) + " has another " +
                                        request.memberKind->name +
                                        " already: a view joins one LUN group and one host group.");
}

Answer dissociate(RequestContext& context)
{
    const AssociationRequest request = associationFromBody(context, mappingViewKind(), kGroups);
    const std::string column = columnOf(request.type);
    if (context.database().execute("UPDATE mapping_view SET " + column + " = NULL WHERE id = ? AND " + column + " = ?",
                                   {request.owner, request.member}) != 1) {
        throw ApiError(kNotInView, described(*request.memberKind, request.memberText) + " is not in the mapping view " +
                                       inQuotes(request.ownerText) + ".");
    }
    context.exposureChanged = true;
    return {};
}

}  // namespace

const ResourceKind& mappingViewKind()
{
    static const ResourceKind kKind{"mapping view",
                                    "mapping_view",
                                    ObjectType::kMappingView,
                                    kUnknownMappingView,
                                    true,
                                    true,
                                    "1",
                                    {
                                        {"ID", "id", Form::kText, Match::kNumber},
                                        {"NAME", "name", Form::kText, Match::kText},
                                        {"TYPE", "245"},
                                        {"DESCRIPTION", "description"},
                                        {"ENABLEINBANDCOMMAND", "iif(in_band = 1, 'true', 'false')"},
                                    },
                                    {
                                        {ObjectType::kLunGroup, "lun_group_id = ?"},
                                        {ObjectType::kHostGroup, "host_group_id = ?"},
                                    }};
    return kKind;
}

void addMappingViewRoutes(Router& router)
{
    addReadRoutes(router, mappingViewKind(), "/mappingview", "/mappingview");
    router.add({"POST", "/mappingview", createMappingView});
    router.add({"PUT", "/mappingview/create_associate", associate});
    router.add({"PUT", "/mappingview/remove_associate", dissociate});
    router.add({"DELETE", "/mappingview/{id}", removeMappingView});
}

}  // namespace brevan::sim
