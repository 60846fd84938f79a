#include "Objects.h"

namespace brevan::sim {

namespace {

/// All kinds of ports share a table; what only one kind has stands in its column "details".
ResourceKind portKind(const char* name, int unknownCode, const char* restriction)
{
    return {name,
            "port",
            ObjectType::kNone,
            unknownCode,
            true,
            false,
            restriction,
            {
                {"ID", "id", Form::kText, Match::kNumber},
                {"NAME", "name", Form::kText, Match::kText},
                {"LOCATION", "location"},
                {"HEALTHSTATUS", "health", Form::kText, Match::kNumber},
                {"RUNNINGSTATUS", "running", Form::kText, Match::kNumber},
                {"LOGICTYPE", "logic_type", Form::kText, Match::kNumber},
                {"", "details", Form::kMembers},
            },
            {}};
}

}  // namespace

void addPortRoutes(Router& router)
{
    static const ResourceKind kFcPort = portKind("FC port", kUnknownFcPort, "kind = 'FC_PORT'");
    static const ResourceKind kFcoePort = portKind("FCoE port", kUnknownFcoePort, "kind = 'FCoE_PORT'");
    static const ResourceKind kEthPort = portKind("Ethernet port", kUnknownEthPort, "kind = 'ETH_PORT'");
    addReadRoutes(router, kFcPort, "/FC_PORT", "/FC_PORT");
    addReadRoutes(router, kFcoePort, "/FCoE_PORT", "/FCoE_PORT");
    addReadRoutes(router, kEthPort, "/ETH_PORT", "/ETH_PORT");
}

}  // namespace brevan::sim
