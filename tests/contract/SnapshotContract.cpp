#include "Contract.h"

namespace brevan::contract {
namespace {

const char* const kReadSeven = "ID:7 USERCAPACITY:0 CONSUMEDCAPACITY:0";
const char* const kReadEight = "ID:8 USERCAPACITY:0 CONSUMEDCAPACITY:0";

/// The single read's path is in capitals, the list's is not.
Operation getSnapshot()
{
    const Call get = [](Sdk& sdk) { return sdk.snapshot().getSnapshot("7"); };
    return Operation("getSnapshot")
        .succeeds(
            "every field", get,
            done("getSnapshot",
                 send("GET /SNAPSHOT/7",
                      R"({"ID":"7","NAME":"snap","PARENTTYPE":11,"PARENTID":"5","PARENTNAME":"vol","HEALTHSTATUS":"1",)"
                      R"("RUNNINGSTATUS":"43","DESCRIPTION":"d","USERCAPACITY":"2097152","CONSUMEDCAPACITY":"8",)"
                      R"("WWN":"6a0c"})")),
            "ID:7 NAME:snap PARENTTYPE:11 PARENTID:5 PARENTNAME:vol HEALTHSTATUS:1 RUNNINGSTATUS:43 DESCRIPTION:d "
            "USERCAPACITY:2097152 CONSUMEDCAPACITY:8 WWN:6a0c")
        .failsAt("GET /SNAPSHOT/7", {"getSnapshot"})
        .succeeds("no record", get, done("getSnapshot", send("GET /SNAPSHOT/7")), "")
        .succeeds("a record without ID", get, done("getSnapshot", send("GET /SNAPSHOT/7", R"({"NAME":"snap"})")), "")
        .refuses("snapshotID is empty! ", [](Sdk& sdk) { return sdk.snapshot().getSnapshot(""); });
}

SnapshotQuery every()
{
    SnapshotMO snapshot;
    snapshot.ID = "7";
    snapshot.NAME = "snap";
    snapshot.PARENTID = "5";
    snapshot.RUNNINGSTATUS = 43;
    snapshot.HEALTHSTATUS = 1;
    return SnapshotQuery(snapshot, 10, 5);
}

SnapshotQuery named()
{
    SnapshotMO snapshot;
    snapshot.NAME = "snap";
    return SnapshotQuery(snapshot, 9, 0);
}

Operation batch(const std::string& name, const std::string& message, const std::string& associate,
                std::vector<SnapshotMO> (CSnapshotHandler::*get)(const std::string&, SnapshotQuery&))
{
    const auto with = [get](const char* id, SnapshotQuery query) {
        return [=](Sdk& sdk) mutable { return (sdk.snapshot().*get)(id, query); };
    };
    const std::string all = "GET /snapshot/associate?TYPE=27&" + associate;
    const std::string filtered =
        "GET /snapshot/associate?filter=ID:7 and NAME:snap and PARENTID:5 and RUNNINGSTATUS:43 and HEALTHSTATUS:1&TYPE=27&" +
        associate + "&range=[10-15]";
    return Operation(name)
        .succeeds(
            "all, one read for each", with("3", SnapshotQuery()),
            done(name, done("getSnapshotByCondition", {send(all, R"([{"ID":"7"},{"NAME":"without ID"},{"ID":"8"}])"),
                                                       done("getSnapshot", send("GET /SNAPSHOT/7", R"({"ID":"7"})")),
                                                       done("getSnapshot", send("GET /SNAPSHOT/8", R"({"ID":"8"})"))})),
            std::string("[") + kReadSeven + "] [" + kReadEight + "]")
        .failsAt(all, {name, "getSnapshotByCondition"})
        .failsAt("GET /SNAPSHOT/8", {name, "getSnapshotByCondition", "getSnapshot"})
        .succeeds("with every condition and a range", with("3", every()),
                  done(name, done("getSnapshotByCondition", send(filtered))))
        .succeeds("a count of 0 is no range, whatever the start", with("3", named()),
                  done(name, done("getSnapshotByCondition",
                                  send("GET /snapshot/associate?filter=NAME:snap&TYPE=27&" + associate))))
        .refuses(message, with("", SnapshotQuery()));
}

}  // namespace

Table snapshotContract()
{
    return {getSnapshot(),
            batch("getSnapshotByLunGroup", "LunGroup id is empty! ", "ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=3",
                  &CSnapshotHandler::getSnapshotByLunGroup),
            batch("getSnapshotByHost", "hostID is empty! ", "ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=3",
                  &CSnapshotHandler::getSnapshotByHost)};
}

BREVAN_CONTRACT(Snapshot, rowsOf(snapshotContract()));

}  // namespace brevan::contract
