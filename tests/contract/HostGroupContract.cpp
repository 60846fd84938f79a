#include "ReadBack.h"

// "HostGroupID is empty" has no blank at its end, unlike the others: the operation's name follows directly.

namespace brevan::contract {
namespace {

constexpr int kAlreadyMember = 1077937501;

const char* const kRecord = R"({"ID":"40"})";
const char* const kRead = "ID:40 ISADD2MAPPINGVIEW:0";
const char* const kCreate = R"(POST /hostgroup {"TYPE":14,"NAME":"g"})";

HostGroupMO create(Sdk& sdk, const std::string& name)
{
    HostGroupMO group;
    group.NAME = name;
    return sdk.hostGroup().createHostGroup(group);
}

const Call kCreateGroup = [](Sdk& sdk) { return create(sdk, "g"); };
const Steps kFound = done("getHostGroup", send("GET /hostgroup/40", kRecord));

/// The ID comes last in the body, unlike in the other creates.
Operation createHostGroup()
{
    return Operation("createHostGroup")
        .succeeds("read back at once", kCreateGroup, done("createHostGroup", {send(kCreate, kRecord), kFound}), kRead)
        .failsAt(kCreate, {"createHostGroup"})
        .failsAt("GET /hostgroup/40", {"createHostGroup", "getHostGroup"})
        .succeeds(
            "every key that is optional",
            [](Sdk& sdk) {
                HostGroupMO group;
                group.ID = "40";
                group.NAME = "g";
                group.DESCRIPTION = "d";
                return sdk.hostGroup().createHostGroup(group);
            },
            done("createHostGroup",
                 {send(R"(POST /hostgroup {"TYPE":14,"NAME":"g","DESCRIPTION":"d","ID":"40"})", kRecord), kFound}),
            kRead)
        .refuses("HostGroup name is empty! ", [](Sdk& sdk) { return create(sdk, ""); });
}

Operation createHostGroupReadsBack()
{
    return readsBack({"createHostGroup", kCreateGroup, send(kCreate, kRecord), "getHostGroup", "GET /hostgroup/40", kFound,
                      "retry get host group!", kRead});
}

Operation deleteHostGroup()
{
    return Operation("deleteHostGroup")
        .succeeds(
            "one request", [](Sdk& sdk) { sdk.hostGroup().deleteHostGroup("40"); },
            done("deleteHostGroup", send("DELETE /hostgroup/40")))
        .failsAt("DELETE /hostgroup/40", {"deleteHostGroup"})
        .refuses("HostGroupID is empty", [](Sdk& sdk) { sdk.hostGroup().deleteHostGroup(""); });
}

Operation getHostGroup()
{
    const Call get = [](Sdk& sdk) { return sdk.hostGroup().getHostGroup("40"); };
    return Operation("getHostGroup")
        .succeeds("every field", get,
                  done("getHostGroup",
                       send("GET /hostgroup/40", R"({"ID":"40","NAME":"g","DESCRIPTION":"d","ISADD2MAPPINGVIEW":"true"})")),
                  "ID:40 NAME:g DESCRIPTION:d ISADD2MAPPINGVIEW:1")
        .failsAt("GET /hostgroup/40", {"getHostGroup"})
        .succeeds("no record", get, done("getHostGroup", send("GET /hostgroup/40")), "")
        .succeeds("a record without ID", get, done("getHostGroup", send("GET /hostgroup/40", R"({"NAME":"g"})")), "")
        .refuses("HostGroupID is empty", [](Sdk& sdk) { return sdk.hostGroup().getHostGroup(""); });
}

/// A failed request has its error line and its record; then it is swallowed: a warning, no leave line, and the caller learns nothing.
Steps swallowed(const std::string& operation, const Steps& request, int code, const std::string& warning)
{
    return {failed(operation, request, code), "warn: " + warning + operation};
}

Operation addHostToHostGroup()
{
    const std::string name = "addHostToHostGroup";
    const char* const kAdd = R"(POST /hostgroup/associate {"ID":"40","ASSOCIATEOBJTYPE":21,"ASSOCIATEOBJID":"21"})";
    const Call add = [](Sdk& sdk) { sdk.hostGroup().addHostToHostGroup("21", "40"); };
    return Operation(name)
        .succeeds("one request", add, done(name, send(kAdd)))
        .row("already a member", add,
             swallowed(name, sendRefused(kAdd, name, kAlreadyMember), kAlreadyMember,
                       "the host was already in the host group, ignore it. "),
             "")
        .row("refused", add, swallowed(name, sendRefused(kAdd, name), kRefused, "addHostToHostGroup exception. "), "")
        .row("unreachable", add,
             swallowed(name, sendUnreachable(kAdd, name), kUnreachable, "add host to host group failed. "), "")
        .refuses("hostID is empty! ", [](Sdk& sdk) { sdk.hostGroup().addHostToHostGroup("", "40"); })
        .refuses("HostGroupID is empty", [](Sdk& sdk) { sdk.hostGroup().addHostToHostGroup("21", ""); });
}

/// The path begins with the host's resource, not with the group's.
Operation removeHostFromHostGroup()
{
    const std::string name = "removeHostFromHostGroup";
    const char* const kRemove = "DELETE /host/associate?ID=40&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=21";
    const char* const kWarning = "remove host from host group failed. ";
    const Call remove = [](Sdk& sdk) { sdk.hostGroup().removeHostFromHostGroup("21", "40"); };
    return Operation(name)
        .succeeds("one request", remove, done(name, send(kRemove)))
        .row("refused", remove, swallowed(name, sendRefused(kRemove, name), kRefused, kWarning), "")
        .row("unreachable", remove, swallowed(name, sendUnreachable(kRemove, name), kUnreachable, kWarning), "")
        .refuses("hostID is empty! ", [](Sdk& sdk) { sdk.hostGroup().removeHostFromHostGroup("", "40"); })
        .refuses("HostGroupID is empty", [](Sdk& sdk) { sdk.hostGroup().removeHostFromHostGroup("21", ""); });
}

Operation getHostGroupByHost()
{
    HostGroupMO condition;
    condition.ID = "40";
    condition.NAME = "g";
    const auto with = [](const char* id, HostGroupQuery query) {
        return [=](Sdk& sdk) mutable { return sdk.hostGroup().getHostGroupByHost(id, query); };
    };
    const char* const kAll = "GET /hostgroup/associate?TYPE=14&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=21";
    return Operation("getHostGroupByHost")
        .succeeds("all, one read for each", with("21", HostGroupQuery()),
                  done("getHostGroupByHost", {send(kAll, R"([{"ID":"40"},{"NAME":"without ID"}])"), kFound}),
                  std::string("[") + kRead + "]")
        .failsAt(kAll, {"getHostGroupByHost"})
        .failsAt("GET /hostgroup/40", {"getHostGroupByHost", "getHostGroup"})
        .succeeds("with every condition and a range", with("21", HostGroupQuery(condition, 10, 5)),
                  done("getHostGroupByHost",
                       send("GET /hostgroup/associate?filter=ID:40 and NAME:g&TYPE=14&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=21"
                            "&range=[10-15]")))
        .refuses("hostID is empty! ", with("", HostGroupQuery()));
}

Operation getHostGroupByMappingView()
{
    const char* const kList = "GET /hostgroup/associate?ASSOCIATEOBJTYPE=245&ASSOCIATEOBJID=50";
    const Call get = [](Sdk& sdk) { return sdk.hostGroup().getHostGroupByMappingView("50"); };
    return Operation("getHostGroupByMappingView")
        .succeeds("read by its ID", get, done("getHostGroupByMappingView", {send(kList, R"([{"ID":"40"}])"), kFound}), kRead)
        .failsAt(kList, {"getHostGroupByMappingView"})
        .failsAt("GET /hostgroup/40", {"getHostGroupByMappingView", "getHostGroup"})
        .succeeds("a view without host group", get, done("getHostGroupByMappingView", send(kList)), "")
        .refuses("mappingViewID is empty! ", [](Sdk& sdk) { return sdk.hostGroup().getHostGroupByMappingView(""); });
}

}  // namespace

Table hostGroupContract()
{
    return {createHostGroup(),    createHostGroupReadsBack(), deleteHostGroup(),    getHostGroup(),
            addHostToHostGroup(), removeHostFromHostGroup(),  getHostGroupByHost(), getHostGroupByMappingView()};
}

BREVAN_CONTRACT(HostGroup, rowsOf(hostGroupContract()));

}  // namespace brevan::contract
