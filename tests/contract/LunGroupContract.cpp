#include "Contract.h"

namespace brevan::contract {
namespace {

const char* const kThree = R"({"ID":"3"})";
const char* const kReadThree = "ID:3 ISADD2MAPPINGVIEW:0 APPTYPE:0";
const char* const kReadFour = "ID:4 ISADD2MAPPINGVIEW:0 APPTYPE:0";

/// The slash at its end is meant.
const char* const kCreate = R"(POST /lungroup/ {"TYPE":256,"NAME":"g","APPTYPE":0,"GROUPTYPE":0ul})";

LunGroupMO create(Sdk& sdk, const std::string& name)
{
    LunGroupMO group;
    group.NAME = name;
    return sdk.lunGroup().createLunGroup(group);
}

const Call kCreateGroup = [](Sdk& sdk) { return create(sdk, "g"); };

Operation createLunGroup()
{
    return Operation("createLunGroup")
        .succeeds("read back at once", kCreateGroup,
                  done("createLunGroup", {send(kCreate, kThree), done("getLunGroup", send("GET /lungroup/3", kThree))}),
                  kReadThree)
        .failsAt(kCreate, {"createLunGroup"})
        .failsAt("GET /lungroup/3", {"createLunGroup", "getLunGroup"})
        .succeeds(
            "every key that is optional",
            [](Sdk& sdk) {
                LunGroupMO group;
                group.ID = "3";
                group.NAME = "g";
                group.DESCRIPTION = "d";
                group.APPTYPE = 5;
                group.GROUPTYPE = 9;  // not sent
                return sdk.lunGroup().createLunGroup(group);
            },
            done("createLunGroup",
                 {send(R"(POST /lungroup/ {"ID":"3","TYPE":256,"NAME":"g","DESCRIPTION":"d","APPTYPE":5,"GROUPTYPE":0ul})",
                       kThree),
                  done("getLunGroup", send("GET /lungroup/3", kThree))}),
            kReadThree)
        .succeeds(
            "an APPTYPE that is not set becomes 0 in the caller's record, too",
            [](Sdk& sdk) {
                LunGroupMO group;
                group.NAME = "g";
                sdk.lunGroup().createLunGroup(group);
                return group;
            },
            done("createLunGroup", {send(kCreate, kThree), done("getLunGroup", send("GET /lungroup/3", kThree))}),
            "NAME:g APPTYPE:0")
        .refuses("LunGroup name is empty! ", [](Sdk& sdk) { return create(sdk, ""); });
}

Steps notYet(int code)
{
    return failed("getLunGroup", sendRefused("GET /lungroup/3", "getLunGroup", code), code);
}

/// Two codes mean "not yet"; what the last read throws comes out.
Operation createLunGroupReadsBack()
{
    const Steps again = {"info: retry get lun group!", "sleep: 70000"};
    const Steps found = done("getLunGroup", send("GET /lungroup/3", kThree));
    return Operation("createLunGroup")
        .row("not yet readable twice, each in its way, then readable", kCreateGroup,
             done("createLunGroup", {send(kCreate, kThree), notYet(1077949006), again, notYet(1077949001), again, found}),
             kReadThree)
        .withRetries(2, 70000)
        .row("never readable: retryTimes + 1 reads", kCreateGroup,
             failed("createLunGroup", {send(kCreate, kThree), notYet(1077949006), again, notYet(1077949006)}, 1077949006),
             exception(1077949006, refusedText("getLunGroup", 1077949006)))
        .withRetries(1, 70000)
        .row("no retries", kCreateGroup, failed("createLunGroup", {send(kCreate, kThree), notYet(1077949001)}, 1077949001),
             exception(1077949001, refusedText("getLunGroup", 1077949001)))
        .withRetries(0, 70000);
}

Operation deleteLunGroup()
{
    return Operation("deleteLunGroup")
        .succeeds(
            "one request", [](Sdk& sdk) { sdk.lunGroup().deleteLunGroup("3"); },
            done("deleteLunGroup", send("DELETE /lungroup/3")))
        .failsAt("DELETE /lungroup/3", {"deleteLunGroup"})
        .refuses("LunGroup id is empty! ", [](Sdk& sdk) { sdk.lunGroup().deleteLunGroup(""); });
}

Operation getLunGroup()
{
    const Call get = [](Sdk& sdk) { return sdk.lunGroup().getLunGroup("3"); };
    return Operation("getLunGroup")
        .succeeds("every field", get,
                  done("getLunGroup",
                       send("GET /lungroup/3", R"({"ID":"3","NAME":"g","DESCRIPTION":"d","ISADD2MAPPINGVIEW":"true",)"
                                               R"("APPTYPE":"5","GROUPTYPE":"9"})")),
                  "ID:3 NAME:g DESCRIPTION:d ISADD2MAPPINGVIEW:1 APPTYPE:5 GROUPTYPE:9")
        .failsAt("GET /lungroup/3", {"getLunGroup"})
        .succeeds("no record", get, done("getLunGroup", send("GET /lungroup/3")), "")
        .succeeds("a record without ID", get, done("getLunGroup", send("GET /lungroup/3", R"({"NAME":"g"})")), "")
        .succeeds("only the exact text is true", get,
                  done("getLunGroup", send("GET /lungroup/3", R"({"ID":"3","ISADD2MAPPINGVIEW":"TRUE"})")), kReadThree)
        .refuses("LunGroup id is empty! ", [](Sdk& sdk) { return sdk.lunGroup().getLunGroup(""); });
}

LunGroupQuery every()
{
    LunGroupMO group;
    group.ID = "3";
    group.NAME = "g";
    group.ISADD2MAPPINGVIEW = 0;
    group.APPTYPE = 0;
    return LunGroupQuery(group, 0, 100);
}

Operation batch(const std::string& name, const std::string& message, const std::string& associate,
                std::vector<LunGroupMO> (CLunGroupHandler::*get)(const std::string&, LunGroupQuery&))
{
    const auto with = [get](const char* id, LunGroupQuery query) {
        return [=](Sdk& sdk) mutable { return (sdk.lunGroup().*get)(id, query); };
    };
    const std::string all = "GET /lungroup/associate?TYPE=256&" + associate;
    const std::string filtered =
        "GET /lungroup/associate?filter=ID:3 and NAME:g and ISADD2MAPPINGVIEW:0 and APPTYPE:0&TYPE=256&" + associate +
        "&range=[0-100]";
    return Operation(name)
        .succeeds("all, one read for each", with("7", LunGroupQuery()),
                  done(name, done("getLunGroupByObjList", {send(all, R"([{"ID":"3"},{"NAME":"without ID"},{"ID":"4"}])"),
                                                           done("getLunGroup", send("GET /lungroup/3", kThree)),
                                                           done("getLunGroup", send("GET /lungroup/4", R"({"ID":"4"})"))})),
                  std::string("[") + kReadThree + "] [" + kReadFour + "]")
        .failsAt(all, {name, "getLunGroupByObjList"})
        .failsAt("GET /lungroup/4", {name, "getLunGroupByObjList", "getLunGroup"})
        .succeeds("with every condition and a range", with("7", every()),
                  done(name, done("getLunGroupByObjList", send(filtered))))
        .refuses(message, with("", LunGroupQuery()));
}

Operation getLunGroupByMappingView()
{
    const char* const kList = "GET /lungroup/associate?ASSOCIATEOBJTYPE=245&ASSOCIATEOBJID=50";
    const Call get = [](Sdk& sdk) { return sdk.lunGroup().getLunGroupByMappingView("50"); };
    return Operation("getLunGroupByMappingView")
        .succeeds("read by its ID", get,
                  done("getLunGroupByMappingView",
                       {send(kList, R"([{"ID":"3"}])"), done("getLunGroup", send("GET /lungroup/3", kThree))}),
                  kReadThree)
        .failsAt(kList, {"getLunGroupByMappingView"})
        .failsAt("GET /lungroup/3", {"getLunGroupByMappingView", "getLunGroup"})
        .succeeds("a view without LUN group", get, done("getLunGroupByMappingView", send(kList)), "")
        .refuses("mappingViewID is empty! ", [](Sdk& sdk) { return sdk.lunGroup().getLunGroupByMappingView(""); });
}

/// Its enter and leave lines have another name; its record and its messages have its own.
Operation getObjNOFromLunGroup()
{
    const char* const kLuns = "GET /lun/count?ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=3";
    const char* const kSnapshots = "GET /snapshot/count?ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=3";
    return Operation("getObjNOFromLunGroup")
        .succeeds(
            "LUNs and snapshots", [](Sdk& sdk) { return sdk.lunGroup().getObjNOFromLunGroup("3"); },
            {"info: enter getLunNOFromLunGroup successfully!", done("getCountByAssociate", send(kLuns, R"({"COUNT":"3"})")),
             done("getCountByAssociate", send(kSnapshots, R"({"COUNT":"2"})")), "record: getObjNOFromLunGroup 0",
             "info: leave getLunNOFromLunGroup successfully!"},
            "5")
        .failsAt(kLuns, {"getObjNOFromLunGroup", "getCountByAssociate"})
        .failsAt(kSnapshots, {"getObjNOFromLunGroup", "getCountByAssociate"})
        .refusal(
            "no ID", [](Sdk& sdk) { return sdk.lunGroup().getObjNOFromLunGroup(""); },
            {"info: enter getLunNOFromLunGroup successfully!", "error: LunGroup id is empty! getObjNOFromLunGroup",
             "record: getObjNOFromLunGroup 1"},
            exception("LunGroup id is empty! getObjNOFromLunGroup"));
}

}  // namespace

Table lunGroupContract()
{
    return {createLunGroup(),
            createLunGroupReadsBack(),
            deleteLunGroup(),
            getLunGroup(),
            batch("getLunGroupByLun", "lunID is empty! ", "ASSOCIATEOBJTYPE=11&ASSOCIATEOBJID=7",
                  &CLunGroupHandler::getLunGroupByLun),
            batch("getLunGroupBySnapshot", "snapshotID is empty! ", "ASSOCIATEOBJTYPE=27&ASSOCIATEOBJID=7",
                  &CLunGroupHandler::getLunGroupBySnapshot),
            getLunGroupByMappingView(),
            getObjNOFromLunGroup()};
}

BREVAN_CONTRACT(LunGroup, rowsOf(lunGroupContract()));

}  // namespace brevan::contract
