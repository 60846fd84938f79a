#include "Contract.h"

namespace brevan::contract {
namespace {

const std::string kThick =
    R"(POST /lun {"TYPE":11,"NAME":"vol","PARENTTYPE":216,"PARENTID":"0","CAPACITY":2097152ull,"ALLOCTYPE":0,)"
    R"("MIRRORPOLICY":1ul,"WRITEPOLICY":1ul,"PREFETCHPOLICY":3ul,"DATATRANSFERPOLICY":0ul,"INITIALDISTRIBUTEPOLICY":0ul})";

LunMO newLun()
{
    LunMO lun;
    lun.NAME = "vol";
    lun.PARENTID = "0";
    lun.CAPACITY = 1073741824;
    return lun;
}

LunMO newThickLun()
{
    LunMO lun = newLun();
    lun.ID = "7";
    lun.DESCRIPTION = "d";
    lun.OWNINGCONTROLLER = "0A";
    lun.ALLOCTYPE = 0;
    return lun;
}

LunMO newThinLun(std::uint64_t allocated, std::uint64_t usage)
{
    LunMO lun = newLun();
    lun.ALLOCTYPE = 1;
    lun.ALLOCCAPACITY = allocated;
    lun.THINCAPACITYUSAGE = usage;
    return lun;
}

LunMO create(Sdk& sdk, LunMO lun)
{
    return sdk.lun().createLun(lun);
}

/// A record with nothing but its ID, and what is read from it: the parent is always a pool, a text that is missing counts as 0.
const char* const kSeven = R"({"ID":"7"})";
const char* const kReadSeven = "ID:7 PARENTTYPE:216 ALLOCTYPE:0 CAPACITY:0 ALLOCCAPACITY:0 ISADD2LUNGROUP:0";
const char* const kReadEight = "ID:8 PARENTTYPE:216 ALLOCTYPE:0 CAPACITY:0 ALLOCCAPACITY:0 ISADD2LUNGROUP:0";

const char* const kFullRecord =
    R"({"ID":"7","NAME":"vol","PARENTID":"0","PARENTNAME":"pool","HEALTHSTATUS":"1","RUNNINGSTATUS":"27","DESCRIPTION":"d",)"
    R"("ALLOCTYPE":"1","SECTORSIZE":"512","CAPACITY":"2097152","ALLOCCAPACITY":"2048","THINCAPACITYUSAGE":"60",)"
    R"("EXPOSEDTOINITIATOR":"true","WWN":"6a0b","OWNINGCONTROLLER":"0A","WORKINGCONTROLLER":"0B","ISADD2LUNGROUP":"true"})";
const char* const kFullLun =
    "ID:7 NAME:vol PARENTTYPE:216 PARENTID:0 PARENTNAME:pool HEALTHSTATUS:1 RUNNINGSTATUS:27 DESCRIPTION:d ALLOCTYPE:1 "
    "CAPACITY:1073741824 ALLOCCAPACITY:1048576 allocCapacitySectors:2048 THINCAPACITYUSAGE:60 EXPOSEDTOINITIATOR:1 WWN:6a0b "
    "OWNINGCONTROLLER:0A WORKINGCONTROLLER:0B ISADD2LUNGROUP:1";

/// The pause before the first read is the LUN's alone.
const char* const kFirstPause = "sleep: 200000";

Steps notYet()
{
    return failed("getLun", sendRefused("GET /lun/7", "getLun", kNotYetReadable), kNotYetReadable);
}

/// With the pause, and one read that goes well.
Steps createdBy(const std::string& request)
{
    return done("createLun", {send(request, kSeven), kFirstPause, done("getLun", send("GET /lun/7", kSeven))});
}

/// What the create does after its request and the first pause.
Steps thickThen(const Steps& readBack)
{
    return {send(kThick, kSeven), kFirstPause, readBack};
}

const Call kCreateThick = [](Sdk& sdk) { return create(sdk, newLun()); };

Operation createLun()
{
    return Operation("createLun")
        .succeeds("a thick LUN, the bytes as sectors", kCreateThick, createdBy(kThick), kReadSeven)
        .failsAt(kThick, {"createLun"})
        .refuses("Lun name is empty! ", [](Sdk& sdk) { return create(sdk, LunMO()); })
        .refuses("ParentID is empty! ",
                 [](Sdk& sdk) {
                     LunMO lun = newLun();
                     lun.PARENTID = "";
                     return create(sdk, lun);
                 })
        // No blank before the operation's name.
        .refuses("Capacity value is initial value", [](Sdk& sdk) {
            LunMO lun = newLun();
            lun.CAPACITY = UINT64_MAX;
            return create(sdk, lun);
        });
}

Operation createOtherLuns()
{
    return Operation("createLun")
        .succeeds(
            "every key that is optional for a thick LUN", [](Sdk& sdk) { return create(sdk, newThickLun()); },
            createdBy(R"(POST /lun {"ID":"7","TYPE":11,"NAME":"vol","PARENTTYPE":216,"PARENTID":"0","CAPACITY":2097152ull,)"
                      R"("DESCRIPTION":"d","ALLOCTYPE":0,"MIRRORPOLICY":1ul,"WRITEPOLICY":1ul,"PREFETCHPOLICY":3ul,)"
                      R"("OWNINGCONTROLLER":"0A","DATATRANSFERPOLICY":0ul,"INITIALDISTRIBUTEPOLICY":0ul})"),
            kReadSeven)
        .succeeds(
            "a thin LUN, its usage up to 100", [](Sdk& sdk) { return create(sdk, newThinLun(1048576, 100)); },
            createdBy(R"(POST /lun {"TYPE":11,"NAME":"vol","PARENTTYPE":216,"PARENTID":"0","CAPACITY":2097152ull,)"
                      R"("ALLOCTYPE":1,"INITIALALLOCCAPACITY":2048ull,"THINCAPACITYUSAGE":100ull,"MIRRORPOLICY":1ul,)"
                      R"("WRITEPOLICY":1ul,"PREFETCHPOLICY":3ul,"DATATRANSFERPOLICY":0ul,"INITIALDISTRIBUTEPOLICY":0ul})"),
            kReadSeven)
        .succeeds(
            "a usage above 100 is left out; an allocation that is not set is the largest number, shifted",
            [](Sdk& sdk) { return create(sdk, newThinLun(UINT64_MAX, 101)); },
            createdBy(R"(POST /lun {"TYPE":11,"NAME":"vol","PARENTTYPE":216,"PARENTID":"0","CAPACITY":2097152ull,)"
                      R"("ALLOCTYPE":1,"INITIALALLOCCAPACITY":36028797018963967ull,"MIRRORPOLICY":1ul,"WRITEPOLICY":1ul,)"
                      R"("PREFETCHPOLICY":3ul,"DATATRANSFERPOLICY":0ul,"INITIALDISTRIBUTEPOLICY":0ul})"),
            kReadSeven);
}

/// Where the array gives no record in the end the operation still goes well, with an empty record.
Operation createLunReadsBack()
{
    const Steps again = {"info: retry get lun!", "sleep: 70000"};
    const Steps found = done("getLun", send("GET /lun/7", kSeven));
    return Operation("createLun")
        .row("not yet readable twice, then readable", kCreateThick,
             done("createLun", thickThen({notYet(), again, notYet(), again, found})), kReadSeven)
        .withRetries(2, 70000)
        .row("never readable: retryTimes + 1 reads", kCreateThick, done("createLun", thickThen({notYet(), again, notYet()})),
             "")
        .withRetries(1, 70000)
        .row("no retries", kCreateThick, done("createLun", thickThen(notYet())), "")
        .withRetries(0, 70000)
        .row("the array refuses the read", kCreateThick,
             done("createLun", thickThen(failed("getLun", sendRefused("GET /lun/7", "getLun"), kRefused))), "")
        // No reply is another matter: this comes out.
        .row("the read gets no reply", kCreateThick,
             failed("createLun", thickThen(failed("getLun", sendUnreachable("GET /lun/7", "getLun"), kUnreachable)),
                    kUnreachable),
             unreachable("getLun"));
}

Operation getLun()
{
    const Call get = [](Sdk& sdk) { return sdk.lun().getLun("7"); };
    return Operation("getLun")
        .succeeds("every field", get, done("getLun", send("GET /lun/7", kFullRecord)), kFullLun)
        .failsAt("GET /lun/7", {"getLun"})
        .succeeds("no record", get, done("getLun", send("GET /lun/7")), "")
        .succeeds("a record without ID", get, done("getLun", send("GET /lun/7", R"({"NAME":"vol"})")), "")
        .succeeds("a thick LUN: its usage is not read", get,
                  done("getLun", send("GET /lun/7", R"({"ID":"7","ALLOCTYPE":"0","THINCAPACITYUSAGE":"60"})")), kReadSeven)
        .refuses("lunID is empty! ", [](Sdk& sdk) { return sdk.lun().getLun(""); });
}

/// A reply that cannot be read is one that did not come.
Operation getUnusableLun()
{
    const Call get = [](Sdk& sdk) { return sdk.lun().getLun("7"); };
    const auto with = [](const char* data) {
        return failed("getLun", {send("GET /lun/7", data), "error: url error or internet error getLun"}, kUnusable);
    };
    return Operation("getLun")
        .row("a record that is no object", get, with(R"(["seven"])"), unreachable("getLun"))
        .row("a capacity that is no number", get, with(R"({"ID":"7","CAPACITY":"much"})"), unreachable("getLun"))
        .row("a capacity beyond 64 bits", get, with(R"({"ID":"7","SECTORSIZE":"512","CAPACITY":"36028797018963968"})"),
             unreachable("getLun"));
}

LunQuery every()
{
    LunMO lun;
    lun.ID = "7";
    lun.NAME = "vol";
    lun.PARENTID = "0";
    lun.ALLOCTYPE = 1;
    lun.RUNNINGSTATUS = 27;
    lun.HEALTHSTATUS = 1;
    lun.ISADD2LUNGROUP = 1;
    return LunQuery(lun, 10, 5);
}

Operation batch(const std::string& name, const std::string& message, const std::string& associate,
                std::vector<LunMO> (CLunHandler::*get)(const std::string&, LunQuery&))
{
    const std::string all = "GET /lun/associate?TYPE=11&" + associate;
    const std::string filtered =
        "GET /lun/associate?filter=ID:7 and NAME:vol and PARENTID:0 and ALLOCTYPE:1 and RUNNINGSTATUS:27 and "
        "HEALTHSTATUS:1 and ISADD2LUNGROUP:1&TYPE=11&" +
        associate + "&range=[10-15]";
    LunMO outside;
    outside.ISADD2LUNGROUP = 0;
    const auto with = [get](const char* id, LunQuery query) {
        return [=](Sdk& sdk) mutable { return (sdk.lun().*get)(id, query); };
    };
    return Operation(name)
        .succeeds("all, one read for each", with("3", LunQuery()),
                  done(name, done("getLunByCondition", {send(all, R"([{"ID":"7"},{"NAME":"without ID"},{"ID":"8"}])"),
                                                        done("getLun", send("GET /lun/7", kSeven)),
                                                        done("getLun", send("GET /lun/8", R"({"ID":"8"})"))})),
                  std::string("[") + kReadSeven + "] [" + kReadEight + "]")
        .failsAt(all, {name, "getLunByCondition"})
        .failsAt("GET /lun/8", {name, "getLunByCondition", "getLun"})
        .succeeds("with every condition and a range", with("3", every()),
                  done(name, done("getLunByCondition", send(filtered))))
        .succeeds(
            "with a tri-state that is set to 0", with("3", LunQuery(outside, 9, 0)),
            done(name, done("getLunByCondition", send("GET /lun/associate?filter=ISADD2LUNGROUP:0&TYPE=11&" + associate))))
        .refuses(message, with("", LunQuery()));
}

}  // namespace

Table lunContract()
{
    return {createLun(),
            createOtherLuns(),
            createLunReadsBack(),
            getLun(),
            getUnusableLun(),
            batch("getLunByLunGroup", "LunGroup id is empty! ", "ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=3",
                  &CLunHandler::getLunByLunGroup),
            batch("getLunByHost", "hostID is empty! ", "ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=3", &CLunHandler::getLunByHost)};
}

BREVAN_CONTRACT(Lun, rowsOf(lunContract()));

}  // namespace brevan::contract
