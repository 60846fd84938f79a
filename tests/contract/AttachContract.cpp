#include "AttachSteps.h"

// After its argument checks an attach throws nothing. What fails on the array is caught: a record with code 1, then the end as usual.

namespace brevan::contract {
namespace {

/// One of the two operations.
struct Attach {
    const Volume& volume;
    std::string name;
    std::string idMessage;
    int (CDiskAttachHandler::*call)(const std::string&, const std::string&, const std::string&);

    Call with(const char* id, const char* initiator) const
    {
        return [method = call, id, initiator](Sdk& sdk) { return (sdk.attach().*method)(id, initiator, "10.0.0.5"); };
    }
};

const Attach kAttachLun = {kLun, "attachLunToHost", "lunID is empty! ", &CDiskAttachHandler::attachLunToHost};
const Attach kAttachSnapshot = {kSnapshot, "attachSnapshotToHost", "snapshotID is empty! ",
                                &CDiskAttachHandler::attachSnapshotToHost};

const char* const kNewHost = R"(POST /host {"TYPE":21,"NAME":"host_1614834367","OPERATIONSYSTEM":0,"IP":"10.0.0.5"})";
const char* const kBind = R"(PUT /iscsi_initiator/iqn {"PARENTTYPE":21,"PARENTID":"21"})";
const char* const kNewLunGroup = R"(POST /lungroup/ {"TYPE":256,"NAME":"lungroup_1614834367","APPTYPE":0,"GROUPTYPE":0ul})";
const char* const kNewHostGroup = R"(POST /hostgroup {"TYPE":14,"NAME":"hostgroup_1614834367"})";
const char* const kAddHost = R"(POST /hostgroup/associate {"ID":"40","ASSOCIATEOBJTYPE":21,"ASSOCIATEOBJID":"21"})";
const char* const kNewView = R"(POST /mappingview {"TYPE":245,"NAME":"mappingview_1614834367","ENABLEINBANDCOMMAND":false})";
const char* const kJoinHostGroup =
    R"(PUT /mappingview/create_associate {"TYPE":245,"ID":"50","ASSOCIATEOBJTYPE":14ul,"ASSOCIATEOBJID":"40"})";
const char* const kJoinLunGroup =
    R"(PUT /mappingview/create_associate {"TYPE":245,"ID":"50","ASSOCIATEOBJTYPE":256ul,"ASSOCIATEOBJID":"30"})";
const char* const kNoJoin = "error: MappingView add HostGroup or add LunGroup fail! ";

std::string addVolume(const Volume& volume)
{
    return R"(POST /lungroup/associate {"ID":"30","ASSOCIATEOBJTYPE":)" + volume.type + R"(,"ASSOCIATEOBJID":"7"})";
}

Steps makeHost()
{
    return {done("createHost", {send(kNewHost, idRecord("21")), readHost()}), done("addIscsiInitiatorToHost", send(kBind))};
}

Steps makeLunGroup()
{
    return done("createLunGroup",
                {send(kNewLunGroup, idRecord("30")), done("getLunGroup", send("GET /lungroup/30", idRecord("30")))});
}

Steps fillLunGroup(const Volume& volume)
{
    return done(volume.add(), done("addObjToLunGroup", {send(addVolume(volume)),
                                                        "info: add " + volume.word + " (7) to lun group(30) success "}));
}

Steps makeHostGroup()
{
    return {done("createHostGroup",
                 {send(kNewHostGroup, idRecord("40")), done("getHostGroup", send("GET /hostgroup/40", idRecord("40")))}),
            done("addHostToHostGroup", send(kAddHost))};
}

Steps makeView()
{
    return done("createMappingView",
                {send(kNewView, idRecord("50")), done("getMappingView", send("GET /mappingview/50", idRecord("50")))});
}

Steps joinHostGroup()
{
    return done("addHostGroupToMappingView", done("associateWithMaskingView", send(kJoinHostGroup)));
}

Steps joinLunGroup()
{
    return done("addLunGroupToMappingView", done("associateWithMaskingView", send(kJoinLunGroup)));
}

/// A LUN's group is made first, a snapshot's after the host group.
Steps makeGroups(const Volume& volume)
{
    return volume.isLun() ? Steps{makeLunGroup(), fillLunGroup(volume), makeHostGroup()}
                          : Steps{makeHostGroup(), makeLunGroup(), fillLunGroup(volume)};
}

/// Volume, initiator with its host, and that the host does not see the volume yet.
Steps found(const Volume& volume)
{
    return {readVolume(volume), readInitiator("21"), readHost(), volumesOf(volume, "Host", "21", "21", {})};
}

/// An initiator without host gets one. What fails on the way is caught.
Operation attaches(const Attach& attach)
{
    const Volume& volume = attach.volume;
    const std::string read = volume.read();
    const Steps end = caught(attach.name);
    return Operation(attach.name)
        .succeeds("with a new host", attach.with("7", "iqn"),
                  {enter(attach.name), readVolume(volume), readInitiator(""), makeHost(),
                   volumesOf(volume, "Host", "21", "21", {}), makeGroups(volume), makeView(), joinHostGroup(),
                   joinLunGroup(), closing(attach.name)},
                  "0")
        .endsAt("GET " + volume.readPath + "7", {read}, end, "0")
        .endsAt("GET /iscsi_initiator/iqn", {"getIscsiInitiator"}, end, "0")
        .endsAt(kNewHost, {"createHost"}, end, "0")
        .endsAt("GET /host/21", {"createHost", "getHost"}, end, "0")
        .endsAt(kBind, {"addIscsiInitiatorToHost"}, end, "0")
        .endsAt(volumesRequest(volume, "21", "21"), {read + "ByHost", read + "ByCondition"}, end, "0")
        .endsAt(kNewLunGroup, {"createLunGroup"}, end, "0")
        .endsAt("GET /lungroup/30", {"createLunGroup", "getLunGroup"}, end, "0")
        .endsAt(kNewHostGroup, {"createHostGroup"}, end, "0")
        .endsAt("GET /hostgroup/40", {"createHostGroup", "getHostGroup"}, end, "0")
        .endsAt(kNewView, {"createMappingView"}, end, "0")
        .endsAt("GET /mappingview/50", {"createMappingView", "getMappingView"}, end, "0");
}

Operation reuses(const Attach& attach)
{
    const Volume& volume = attach.volume;
    const Steps known = {enter(attach.name), readVolume(volume), readInitiator("21"), readHost()};
    return Operation(attach.name)
        .succeeds("an initiator with a host keeps it", attach.with("7", "iqn"),
                  {known, volumesOf(volume, "Host", "21", "21", {}), makeGroups(volume), makeView(), joinHostGroup(),
                   joinLunGroup(), closing(attach.name)},
                  "0")
        .endsAt("GET /host/21", {"getHost"}, caught(attach.name), "0")
        // No leave line.
        .succeeds("already visible: 1, and nothing is made", attach.with("7", "iqn"),
                  {known, volumesOf(volume, "Host", "21", "21", {"7"}),
                   "error: The MappingView was already existed! " + attach.name, record(attach.name, 1)},
                  "1")
        .refuses(attach.idMessage, attach.with("", "iqn"))
        .refuses("iscsiInitiatorID is empty! ", attach.with("7", ""));
}

/// An ID that the array does not know ends the attach like a failure of the array.
Operation unknown(const Attach& attach)
{
    const std::string volumeId = attach.volume.isLun() ? "lunID" : "snapshotID";
    return Operation(attach.name)
        .row("no such volume", attach.with("7", "iqn"),
             {enter(attach.name), done(attach.volume.read(), send("GET " + attach.volume.readPath + "7")),
              "error: The " + volumeId + " is not valid! " + attach.name, caught(attach.name)},
             "0")
        .row("no such initiator", attach.with("7", "iqn"),
             {enter(attach.name), readVolume(attach.volume), done("getIscsiInitiator", send("GET /iscsi_initiator/iqn")),
              "error: The iscsiInitiatorID is not valid! " + attach.name, caught(attach.name)},
             "0");
}

/// The view that could not be filled is deleted, everything else stays, and the attach ends as if it had gone well.
Operation undoesTheView(const Attach& attach)
{
    const std::string join = "associateWithMaskingView";
    const Steps start = {enter(attach.name), found(attach.volume), makeGroups(attach.volume), makeView()};
    const Steps noHostGroup =
        failed("addHostGroupToMappingView", failed(join, sendRefused(kJoinHostGroup, join), kRefused), kRefused);
    const Steps noLunGroup = {
        joinHostGroup(),
        failed("addLunGroupToMappingView", failed(join, sendUnreachable(kJoinLunGroup, join), kUnreachable), kUnreachable)};
    const char* const kDelete = "DELETE /mappingview/50";
    const Steps undone = {kNoJoin + attach.name, done("deleteMappingView", send(kDelete))};
    return Operation(attach.name)
        .row("the host group is refused", attach.with("7", "iqn"), {start, noHostGroup, undone, closing(attach.name)}, "0")
        .row("the LUN group gets no reply", attach.with("7", "iqn"), {start, noLunGroup, undone, closing(attach.name)}, "0")
        .row("the view cannot be deleted", attach.with("7", "iqn"),
             {start, noHostGroup, kNoJoin + attach.name,
              failed("deleteMappingView", sendRefused(kDelete, "deleteMappingView"), kRefused), caught(attach.name)},
             "0");
}

/// A failed membership of the host is swallowed: the attach goes on.
Steps hostNotAdded(const Steps& request, int code, const std::string& warning)
{
    return {done("createHostGroup",
                 {send(kNewHostGroup, idRecord("40")), done("getHostGroup", send("GET /hostgroup/40", idRecord("40")))}),
            failed("addHostToHostGroup", request, code), "warn: " + warning + "addHostToHostGroup"};
}

/// Without retries.
Steps volumeNotAdded(const Volume& volume, const Steps& request, int code, const std::string& warning, int result)
{
    const std::string lastWords =
        volume.isLun() ? "error: addObjToLunGroup failed." : "error: leave addObjToLunGroup failed.";
    return failed(volume.add(), {failed("addObjToLunGroup", request, code), warning, lastWords}, result);
}

Steps unreachableAdd(const Volume& volume)
{
    return volumeNotAdded(volume, sendUnreachable(addVolume(volume), "addObjToLunGroup"), kUnreachable,
                          "warn: add " + volume.word + " (7) to lun group(30) failed ", -1);
}

Steps refusedAdd(const Volume& volume)
{
    return volumeNotAdded(volume, sendRefused(addVolume(volume), "addObjToLunGroup"), kRefused,
                          "warn: add obj(7) to lungroup(30) failed., errCode: 50331651", kRefused);
}

Operation hostStaysOutside(const Attach& attach)
{
    const Volume& volume = attach.volume;
    const Steps lunGroup = {makeLunGroup(), fillLunGroup(volume)};
    const auto with = [&](const Steps& hostGroup) -> Steps {
        return {
            enter(attach.name),  found(volume),   volume.isLun() ? Steps{lunGroup, hostGroup} : Steps{hostGroup, lunGroup},
            makeView(),          joinHostGroup(), joinLunGroup(),
            closing(attach.name)};
    };
    const std::string add = "addHostToHostGroup";
    return Operation(attach.name)
        .row("the host is refused", attach.with("7", "iqn"),
             with(hostNotAdded(sendRefused(kAddHost, add), kRefused, "addHostToHostGroup exception. ")), "0")
        .row("no reply for the host", attach.with("7", "iqn"),
             with(hostNotAdded(sendUnreachable(kAddHost, add), kUnreachable, "add host to host group failed. ")), "0");
}

/// Not examined for a LUN: the attach goes on with an empty group.
Operation lunStaysOutside()
{
    const auto with = [](const Steps& notAdded) -> Steps {
        return {enter("attachLunToHost"),  found(kLun), makeLunGroup(),  notAdded,
                makeHostGroup(),           makeView(),  joinHostGroup(), joinLunGroup(),
                closing("attachLunToHost")};
    };
    const Call attach = kAttachLun.with("7", "iqn");
    return Operation("attachLunToHost")
        .row("the LUN is refused", attach, with(refusedAdd(kLun)), "0")
        .withRetries(0, 70000)
        .row("no reply for the LUN", attach, with(unreachableAdd(kLun)), "0")
        .withRetries(0, 70000);
}

/// For a snapshot this ends the attach at once, with neither leave line nor record.
Operation snapshotStaysOutside()
{
    const auto with = [](const Steps& notAdded) -> Steps {
        return {enter("attachSnapshotToHost"),
                found(kSnapshot),
                makeHostGroup(),
                makeLunGroup(),
                notAdded,
                "error: leave attachSnapshotToHost failed!"};
    };
    const Call attach = kAttachSnapshot.with("7", "iqn");
    return Operation("attachSnapshotToHost")
        .row("the snapshot is refused", attach, with(refusedAdd(kSnapshot)), "-1")
        .withRetries(0, 70000)
        .row("no reply for the snapshot", attach, with(unreachableAdd(kSnapshot)), "-1")
        .withRetries(0, 70000);
}

}  // namespace

Table attachContract()
{
    return {attaches(kAttachLun),      reuses(kAttachLun),
            unknown(kAttachLun),       hostStaysOutside(kAttachLun),
            lunStaysOutside(),         undoesTheView(kAttachLun),
            attaches(kAttachSnapshot), reuses(kAttachSnapshot),
            unknown(kAttachSnapshot),  hostStaysOutside(kAttachSnapshot),
            snapshotStaysOutside(),    undoesTheView(kAttachSnapshot)};
}

BREVAN_CONTRACT(Attach, rowsOf(attachContract()));

}  // namespace brevan::contract
