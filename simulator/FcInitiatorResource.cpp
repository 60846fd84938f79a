#include "ApiError.h"
#include "Initiators.h"
#include "Text.h"

namespace brevan::sim {

namespace {

Answer createInitiator(RequestContext& context)
{
    const std::string id = context.body.requireText("ID");
    if (!isPortName(id)) {
        throw ApiError(kBadParameter, "The ID " + inQuotes(id) + " is not a port name of 16 hexadecimal digits.");
    }
    requireNewInitiator(context, fcInitiatorKind(), id);
    context.database().insert("fc_initiator", {{"id", id}, {"name", initiatorName(context)}});
    bindToParent(context, fcInitiatorKind(), id);
    return recordAnswer(context, fcInitiatorKind(), id);
}

}  // namespace

const ResourceKind& fcInitiatorKind()
{
    static const ResourceKind kKind{"FC initiator",
                                    "fc_initiator",
                                    ObjectType::kNone,
                                    kUnknownFcInitiator,
                                    false,
                                    false,
                                    "1",
                                    {
                                        {"ID", "id", Form::kText, Match::kText},
                                        {"NAME", "name", Form::kText, Match::kText},
                                        {"PARENTTYPE", "iif(host_id IS NULL, NULL, 21)"},
                                        {"PARENTID", "host_id", Form::kText, Match::kNumber},
                                        {"PARENTNAME", "(SELECT name FROM host WHERE id = fc_initiator.host_id)"},
                                        {"HEALTHSTATUS", "health", Form::kText, Match::kNumber},
                                        {"RUNNINGSTATUS", "running", Form::kText, Match::kNumber},
                                        {"ISFREE", "iif(host_id IS NULL, 'true', 'false')", Form::kText, Match::kFlag},
                                    },
                                    {{ObjectType::kHost, "host_id = ?"}}};
    return kKind;
}

void addFcInitiatorRoutes(Router& router)
{
    addReadRoutes(router, fcInitiatorKind(), "/fc_initiator", "/fc_initiator");
    router.add({"POST", "/fc_initiator", createInitiator});
    router.add({"PUT", "/fc_initiator/remove_fc_from_host",
                [](RequestContext& context) { return unbindInitiator(context, fcInitiatorKind()); }});
    router.add(
        {"PUT", "/fc_initiator/{id}", [](RequestContext& context) { return bindInitiator(context, fcInitiatorKind()); }});
    router.add({"DELETE", "/fc_initiator/{id}",
                [](RequestContext& context) { return removeInitiator(context, fcInitiatorKind()); }});
}

}  // namespace brevan::sim
