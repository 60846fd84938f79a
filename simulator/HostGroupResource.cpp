#include "ApiError.h"
#include "Objects.h"
#include "Text.h"

namespace brevan::sim {

namespace {

Answer createHostGroup(RequestContext& context)
{
    const NewObject group = beginObject(context, hostGroupKind());
    context.database().insert("host_group", {{"id", group.id},
                                             {"name", group.name},
                                             {"description", context.body.text("DESCRIPTION")},
                                             {"unsettled", std::int64_t{context.array.options.settleReads}}});
    return recordAnswer(context, hostGroupKind(), group.id);
}

Answer removeHostGroup(RequestContext& context)
{
    return removeObject(context, hostGroupKind(),
                        {{"SELECT 1 FROM mapping_view WHERE host_group_id = ?", kHostGroupInView,
                          "is in a mapping view: remove it there first."}});
}

Answer addHost(RequestContext& context)
{
    const AssociationRequest request = associationFromBody(context, hostGroupKind(), {ObjectType::kHost});
    if (context.database().execute("INSERT OR IGNORE INTO host_group_member VALUES (?, ?)",
                                   {request.owner, request.member}) != 1) {
        throw ApiError(kHostAlreadyInHostGroup, described(hostKind(), request.memberText) +
                                                    " is already in the host group " + inQuotes(request.ownerText) + ".");
    }
    context.exposureChanged = true;
    return {};
}

Answer removeHost(RequestContext& context)
{
    const AssociationRequest request = associationFromQuery(context, hostGroupKind(), {ObjectType::kHost});
    if (context.database().execute("DELETE FROM host_group_member WHERE group_id = ? AND host_id = ?",
                                   {request.owner, request.member}) != 1) {
        throw ApiError(kNotInHostGroup, described(hostKind(), request.memberText) + " is not in the host group " +
                                            inQuotes(request.ownerText) + ".");
    }
    context.exposureChanged = true;
    return {};
}

}  // namespace

const ResourceKind& hostGroupKind()
{
    static const ResourceKind kKind{
        "host group",
        "host_group",
        ObjectType::kHostGroup,
        kUnknownHostGroup,
        true,
        true,
        "1",
        {
            {"ID", "id", Form::kText, Match::kNumber},
            {"NAME", "name", Form::kText, Match::kText},
            {"TYPE", "14"},
            {"DESCRIPTION", "description"},
            {"ISADD2MAPPINGVIEW",
             "iif(EXISTS (SELECT 1 FROM mapping_view WHERE host_group_id = host_group.id), 'true', 'false')", Form::kText,
             Match::kFlag},
        },
        {
            {ObjectType::kHost, "id IN (SELECT group_id FROM host_group_member WHERE host_id = ?)"},
            {ObjectType::kMappingView, "id = (SELECT host_group_id FROM mapping_view WHERE id = ?)"},
        }};
    return kKind;
}

void addHostGroupRoutes(Router& router)
{
    addReadRoutes(router, hostGroupKind(), "/hostgroup", "/hostgroup");
    router.add({"POST", "/hostgroup", createHostGroup});
    router.add({"POST", "/hostgroup/associate", addHost});
    // A host is put into a group under "/hostgroup" and taken out of it under "/host".
    router.add({"DELETE", "/host/associate", removeHost});
    router.add({"DELETE", "/hostgroup/{id}", removeHostGroup});
}

}  // namespace brevan::sim
