#include "ApiError.h"
#include "Objects.h"
#include "Records.h"

namespace brevan::sim {

namespace {

Answer createHost(RequestContext& context)
{
    const NewObject host = beginObject(context, hostKind());
    const std::uint64_t parentType = context.body.number("PARENTTYPE", 65535).value_or(0);
    const std::string parent = context.body.text("PARENTID");
    if (parentType != 0 && parentType != 14) {
        throw ApiError(kBadParameter, "The parent of a host is a host group: PARENTTYPE must be 14.");
    }
    context.database().insert(
        "host", {{"id", host.id},
                 {"name", host.name},
                 {"location", context.body.text("LOCATION")},
                 {"description", context.body.text("DESCRIPTION")},
                 {"operating_system", static_cast<std::int64_t>(context.body.requireNumber("OPERATIONSYSTEM", 65535))},
                 {"ip", context.body.text("IP")},
                 {"unsettled", std::int64_t{context.array.options.settleReads}}});
    if (!parent.empty()) {
        const Value group = existingId(context.database(), hostGroupKind(), parent);
        context.database().insert("host_group_member", {{"group_id", group}, {"host_id", host.id}});
        context.exposureChanged = true;
    }
    return recordAnswer(context, hostKind(), host.id);
}

Answer removeHost(RequestContext& context)
{
    return removeObject(
        context, hostKind(),
        {{"SELECT 1 FROM host_group_member WHERE host_id = ?", kHostInUse, "is in a host group: remove it there first."},
         {"SELECT 1 FROM iscsi_initiator WHERE host_id = ?", kHostInUse, "has iSCSI initiators: remove them first."},
         {"SELECT 1 FROM fc_initiator WHERE host_id = ?", kHostInUse, "has FC initiators: remove them first."}});
}

}  // namespace

const ResourceKind& hostKind()
{
    static const ResourceKind kKind{
        "host",
        "host",
        ObjectType::kHost,
        kUnknownHost,
        true,
        true,
        "1",
        {
            {"ID", "id", Form::kText, Match::kNumber},
            {"NAME", "name", Form::kText, Match::kText},
            {"TYPE", "21"},
            {"PARENTTYPE", "iif(EXISTS (SELECT 1 FROM host_group_member WHERE host_id = host.id), 14, 0)", Form::kNumber},
            {"PARENTID", "coalesce((SELECT min(group_id) FROM host_group_member WHERE host_id = host.id), '')"},
            {"LOCATION", "location"},
            {"HEALTHSTATUS", "health", Form::kText, Match::kNumber},
            {"RUNNINGSTATUS", "running", Form::kText, Match::kNumber},
            {"DESCRIPTION", "description"},
            {"OPERATIONSYSTEM", "operating_system", Form::kText, Match::kNumber},
            {"ISADD2HOSTGROUP", "iif(EXISTS (SELECT 1 FROM host_group_member WHERE host_id = host.id), 'true', 'false')",
             Form::kText, Match::kFlag},
            {"IP", "ip", Form::kText, Match::kText},
        },
        {
            {ObjectType::kHostGroup, "id IN (SELECT host_id FROM host_group_member WHERE group_id = ?)"},
        }};
    return kKind;
}

void addHostRoutes(Router& router)
{
    addReadRoutes(router, hostKind(), "/host", "/host");
    router.add({"POST", "/host", createHost});
    router.add({"DELETE", "/host/{id}", removeHost});
}

}  // namespace brevan::sim
