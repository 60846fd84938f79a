#include "AttachSteps.h"

// A detach throws for its arguments only and always returns 0. Initiator "0" means every host: the volume leaves all its LUN groups.

namespace brevan::contract {
namespace {

/// One of the two operations.
struct Detach {
    const Volume& volume;
    std::string name;
    std::string idMessage;
    int (CDiskAttachHandler::*call)(const std::string&, const std::string&);

    Call from(const char* initiator) const { return with("7", initiator); }
    Call with(const char* id, const char* initiator) const
    {
        return [method = call, id, initiator](Sdk& sdk) { return (sdk.attach().*method)(id, initiator); };
    }
};

const Detach kDetachLun = {kLun, "detachLunFromHost", "lunID is empty! ", &CDiskAttachHandler::detachLunFromHost};
const Detach kDetachSnapshot = {kSnapshot, "detachSnapshotFromHost", "snapshotID is empty! ",
                                &CDiskAttachHandler::detachSnapshotFromHost};

const std::string kCountLuns = "GET /lun/count?ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=";
const std::string kCountSnapshots = "GET /snapshot/count?ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=";
const char* const kHostGroups = "GET /hostgroup/associate?TYPE=14&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=21";

std::string removeRequest(const Volume& volume, const std::string& group)
{
    return "DELETE /lungroup/associate?ID=" + group + "&ASSOCIATEOBJTYPE=" + volume.type + "&ASSOCIATEOBJID=7";
}

Steps takeOut(const Volume& volume, const std::string& group)
{
    return done(volume.remove(), done("removeObjFromLunGroup",
                                      {send(removeRequest(volume, group)),
                                       "info: remove " + volume.word + " (7) from lun group(" + group + ") success "}));
}

/// What is left in the group; its enter and leave lines have another name.
Steps countLeft(const std::string& group, const std::string& luns, const std::string& snapshots)
{
    return {"info: enter getLunNOFromLunGroup successfully!",
            done("getCountByAssociate", send(kCountLuns + group, R"({"COUNT":")" + luns + R"("})")),
            done("getCountByAssociate", send(kCountSnapshots + group, R"({"COUNT":")" + snapshots + R"("})")),
            "record: getObjNOFromLunGroup 0", "info: leave getLunNOFromLunGroup successfully!"};
}

std::string viewsRequest(const std::string& type, const std::string& id)
{
    return "GET /mappingview/associate?TYPE=245&ASSOCIATEOBJTYPE=" + type + "&ASSOCIATEOBJID=" + id;
}

Steps viewsOf(const std::string& operation, const std::string& type, const std::string& id,
              const std::vector<std::string>& views)
{
    return done(operation,
                done("getMappingViewByCondition", listed(viewsRequest(type, id), "getMappingView", "/mappingview/", views)));
}

std::string unhookRequest(const std::string& group, const std::string& view)
{
    return R"(PUT /mappingview/remove_associate {"ID":")" + view +
           R"(","TYPE":245,"ASSOCIATEOBJTYPE":256ul,"ASSOCIATEOBJID":")" + group + R"("})";
}

Steps unhook(const std::string& group, const std::string& view)
{
    return done("removeLunGroupFromMappingView",
                {"info: enter removeAssociateFromMaskingView successfully!", send(unhookRequest(group, view)),
                 "record: removeAssociateFromMappingView 0", "info: leave removeAssociateFromMaskingView successfully!"});
}

Steps deleteGroup(const std::string& group)
{
    return done("deleteLunGroup", send("DELETE /lungroup/" + group));
}

std::string groupsRequest(const Volume& volume)
{
    return "GET /lungroup/associate?TYPE=256&ASSOCIATEOBJTYPE=" + volume.type + "&ASSOCIATEOBJID=7";
}

Steps groupsOf(const Volume& volume, const std::vector<std::string>& groups)
{
    return done("getLunGroupBy" + volume.capital,
                done("getLunGroupByObjList", listed(groupsRequest(volume), "getLunGroup", "/lungroup/", groups)));
}

/// Every LUN group of the volume: it leaves them all, and those that it leaves empty leave their views and go.
Operation fromEveryHost(const Detach& detach)
{
    const Volume& volume = detach.volume;
    const std::vector<std::string> counting = {"getObjNOFromLunGroup", "getCountByAssociate"};
    const Steps end = caught(detach.name);
    return Operation(detach.name)
        .succeeds("a group that still holds something, and one that is left empty in two views", detach.from("0"),
                  {enter(detach.name), readVolume(volume), groupsOf(volume, {"30", "31"}), takeOut(volume, "30"),
                   countLeft("30", "0", "1"), takeOut(volume, "31"), countLeft("31", "0", "0"),
                   viewsOf("getMappingViewByLunGroup", "256", "31", {"50", "51"}), unhook("31", "50"), unhook("31", "51"),
                   deleteGroup("31"), closing(detach.name)},
                  "0")
        .endsAt("GET " + volume.readPath + "7", {volume.read()}, end, "0")
        .endsAt(groupsRequest(volume), {"getLunGroupBy" + volume.capital, "getLunGroupByObjList"}, end, "0")
        .endsAt("GET /lungroup/31", {"getLunGroupBy" + volume.capital, "getLunGroupByObjList", "getLunGroup"}, end, "0")
        .endsAt(kCountLuns + "30", counting, end, "0")
        .endsAt(kCountSnapshots + "31", counting, end, "0")
        .endsAt(viewsRequest("256", "31"), {"getMappingViewByLunGroup", "getMappingViewByCondition"}, end, "0")
        .endsAt("GET /mappingview/51", {"getMappingViewByLunGroup", "getMappingViewByCondition", "getMappingView"}, end, "0")
        .endsAt(unhookRequest("31", "50"), {"removeLunGroupFromMappingView", "removeAssociateFromMappingView"}, end, "0")
        .endsAt("DELETE /lungroup/31", {"deleteLunGroup"}, end, "0");
}

/// The volume that stays in its group: told by no result, the count decides.
Steps notTakenOut(const Volume& volume, const Steps& request, int code, const std::string& warning, int result)
{
    return failed(volume.remove(),
                  {failed("removeObjFromLunGroup", request, code), warning, "error: leave " + volume.remove() + " failed."},
                  result);
}

/// What is missing on the way ends the detach at once: an error line and a record with code 1, but no leave line, and result 0.
Steps missing(const Detach& detach, const std::string& message)
{
    return {"error: " + message + detach.name, record(detach.name, 1)};
}

Operation fromEveryHostOtherwise(const Detach& detach)
{
    const Volume& volume = detach.volume;
    const std::string request = removeRequest(volume, "30");
    const Steps start = {enter(detach.name), readVolume(volume)};
    const Steps after = {countLeft("30", "1", "0"), closing(detach.name)};
    return Operation(detach.name)
        .succeeds("in no LUN group", detach.from("0"),
                  {start, groupsOf(volume, {}), missing(detach, "LunGroup do not exist! ")}, "0")
        .succeeds("a group left empty that is in no view", detach.from("0"),
                  {start, groupsOf(volume, {"30"}), takeOut(volume, "30"), countLeft("30", "0", "0"),
                   viewsOf("getMappingViewByLunGroup", "256", "30", {}), deleteGroup("30"), closing(detach.name)},
                  "0")
        .row("the array refuses to take it out", detach.from("0"),
             {start, groupsOf(volume, {"30"}),
              notTakenOut(volume, sendRefused(request, "removeObjFromLunGroup"), kRefused,
                          "warn: remove obj (7) to lungroup(30) failed., errCode: 50331651", kRefused),
              after},
             "0")
        .withRetries(0, 70000)
        .row("no reply to taking it out", detach.from("0"),
             {start, groupsOf(volume, {"30"}),
              notTakenOut(volume, sendUnreachable(request, "removeObjFromLunGroup"), kUnreachable,
                          "warn: remove " + volume.word + " (7) from lun group(30) failed ", -1),
              after},
             "0")
        .withRetries(0, 70000);
}

Operation checks(const Detach& detach)
{
    const std::string volumeId = detach.volume.isLun() ? "lunID" : "snapshotID";
    return Operation(detach.name)
        .refuses(detach.idMessage, detach.with("", "0"))
        .refuses("iscsiInitiatorID is empty! ", detach.from(""))
        .row("no such volume", detach.from("0"),
             {enter(detach.name), done(detach.volume.read(), send("GET " + detach.volume.readPath + "7")),
              "error: The " + volumeId + " is not valid! " + detach.name, caught(detach.name)},
             "0")
        .row("no such initiator", detach.from("iqn"),
             {enter(detach.name), readVolume(detach.volume), done("getIscsiInitiator", send("GET /iscsi_initiator/iqn")),
              "error: The iscsiInitiatorID is not valid! " + detach.name, caught(detach.name)},
             "0");
}

Steps hostGroups(const std::vector<std::string>& groups)
{
    return done("getHostGroupByHost", listed(kHostGroups, "getHostGroup", "/hostgroup/", groups));
}

/// The LUN group of a view; "" where it has none.
Steps groupOf(const std::string& view, const std::string& group)
{
    const std::string request = "GET /lungroup/associate?ASSOCIATEOBJTYPE=245&ASSOCIATEOBJID=" + view;
    return done("getLunGroupByMappingView",
                group.empty() ? send(request) : listed(request, "getLunGroup", "/lungroup/", {group}));
}

Steps volumeIn(const Volume& volume, const std::string& group, const std::vector<std::string>& found)
{
    return volumesOf(volume, "LunGroup", "256", group, found);
}

/// Host groups of the initiator's host, their views, the views' LUN groups.
Operation fromOneHost(const Detach& detach)
{
    const Volume& volume = detach.volume;
    const std::string groupRequest = "GET /lungroup/associate?ASSOCIATEOBJTYPE=245&ASSOCIATEOBJID=51";
    const std::string views = "getMappingViewByHostGroup";
    const Steps end = caught(detach.name);
    return Operation(detach.name)
        .succeeds("a view without LUN group, one without the volume, one whose group is left empty", detach.from("iqn"),
                  {enter(detach.name), readVolume(volume), readInitiator("21"), readHost(), hostGroups({"40"}),
                   viewsOf(views, "14", "40", {"50", "51", "52"}), groupOf("50", ""), groupOf("51", "30"),
                   volumeIn(volume, "30", {}), groupOf("52", "31"), volumeIn(volume, "31", {"7"}), takeOut(volume, "31"),
                   countLeft("31", "0", "0"), unhook("31", "52"), deleteGroup("31"), closing(detach.name)},
                  "0")
        .endsAt("GET /iscsi_initiator/iqn", {"getIscsiInitiator"}, end, "0")
        .endsAt("GET /host/21", {"getHost"}, end, "0")
        .endsAt(kHostGroups, {"getHostGroupByHost"}, end, "0")
        .endsAt("GET /hostgroup/40", {"getHostGroupByHost", "getHostGroup"}, end, "0")
        .endsAt(viewsRequest("14", "40"), {views, "getMappingViewByCondition"}, end, "0")
        .endsAt("GET /mappingview/50", {views, "getMappingViewByCondition", "getMappingView"}, end, "0")
        .endsAt(groupRequest, {"getLunGroupByMappingView"}, end, "0")
        .endsAt("GET /lungroup/30", {"getLunGroupByMappingView", "getLunGroup"}, end, "0")
        .endsAt(volumesRequest(volume, "256", "31"), {volume.read() + "ByLunGroup", volume.read() + "ByCondition"}, end, "0")
        .endsAt(kCountSnapshots + "31", {"getObjNOFromLunGroup", "getCountByAssociate"}, end, "0")
        .endsAt(unhookRequest("31", "52"), {"removeLunGroupFromMappingView", "removeAssociateFromMappingView"}, end, "0")
        .endsAt("DELETE /lungroup/31", {"deleteLunGroup"}, end, "0");
}

Operation fromOneHostOtherwise(const Detach& detach)
{
    const Volume& volume = detach.volume;
    const Steps begin = {enter(detach.name), readVolume(volume)};
    const Steps start = {begin, readInitiator("21")};
    const Steps noView = missing(detach, "MappingView was not existed! ");
    const Steps noHost = missing(detach, "Host was not existed! ");
    return Operation(detach.name)
        .succeeds("the group still holds something", detach.from("iqn"),
                  {start, readHost(), hostGroups({"40"}), viewsOf("getMappingViewByHostGroup", "14", "40", {"50"}),
                   groupOf("50", "30"), volumeIn(volume, "30", {"7"}), takeOut(volume, "30"), countLeft("30", "2", "1"),
                   closing(detach.name)},
                  "0")
        .succeeds("no view", detach.from("iqn"),
                  {start, readHost(), hostGroups({"40"}), viewsOf("getMappingViewByHostGroup", "14", "40", {}), noView}, "0")
        .succeeds("no host group", detach.from("iqn"), {start, readHost(), hostGroups({}), noView}, "0")
        .succeeds("no such host", detach.from("iqn"), {start, done("getHost", send("GET /host/21")), noHost}, "0")
        .succeeds("an initiator without host", detach.from("iqn"), {begin, readInitiator(""), noHost}, "0");
}

}  // namespace

Table detachContract()
{
    Table table;
    for (const Detach* detach : {&kDetachLun, &kDetachSnapshot}) {
        table.push_back(fromEveryHost(*detach));
        table.push_back(fromEveryHostOtherwise(*detach));
        table.push_back(fromOneHost(*detach));
        table.push_back(fromOneHostOtherwise(*detach));
        table.push_back(checks(*detach));
    }
    return table;
}

BREVAN_CONTRACT(Detach, rowsOf(detachContract()));

}  // namespace brevan::contract
