#include "Contract.h"

// The three kinds of port differ in their names, their paths and their records only.

namespace brevan::contract {
namespace {

/// Key, value and how the field shows them.
struct Full {
    const char* record;
    const char* shown;
};

const Full kFCPort = {
    R"("ID":"7","NAME":"p","LOCATION":"l","HEALTHSTATUS":"1","RUNNINGSTATUS":"10","LOGICTYPE":"0","RUNSPEED":"-1",)"
    R"("CONFSPEED":"16000","WWN":"2100","INIORTGT":"3","FCRUNMODE":"2","LOSTSIGNALS":"4","BADCHARNUMBER":"5","LOSTSYNC":"6",)"
    R"("LINKFAIL":"7","STARTTIME":"1614834367","FLOGINDELAYTIMES":"8","MAXSUPPORTSPEED":"32000")",
    "ID:7 NAME:p LOCATION:l HEALTHSTATUS:1 RUNNINGSTATUS:10 LOGICTYPE:0 RUNSPEED:-1 CONFSPEED:16000 WWN:2100 INIORTGT:3 "
    "FCRUNMODE:2 LOSTSIGNALS:4 BADCHARNUMBER:5 LOSTSYNC:6 LINKFAIL:7 STARTTIME:1614834367 FLOGINDELAYTIMES:8 "
    "MAXSUPPORTSPEED:32000"};

const Full kFCoEPort = {
    R"("ID":"7","NAME":"p","LOCATION":"l","HEALTHSTATUS":"1","RUNNINGSTATUS":"10","LOGICTYPE":"0","RUNSPEED":"-1",)"
    R"("WWN":"2100","INIORTGT":"3","ERRORPACKETS":"4","LOSTPACKETS":"5","OVERFLOWEDPACKETS":"6","STARTTIME":"1614834367",)"
    R"("VLANID":"100")",
    "ID:7 NAME:p LOCATION:l HEALTHSTATUS:1 RUNNINGSTATUS:10 LOGICTYPE:0 RUNSPEED:-1 WWN:2100 INIORTGT:3 ERRORPACKETS:4 "
    "LOSTPACKETS:5 OVERFLOWEDPACKETS:6 STARTTIME:1614834367 VLANID:100"};

const Full kETHPort = {
    R"("ID":"7","NAME":"p","LOCATION":"l","HEALTHSTATUS":"1","RUNNINGSTATUS":"10","LOGICTYPE":"0","MACADDRESS":"02:00",)"
    R"("INIORTGT":"3","MTU":"1500","ISCSITCPPORT":"3260","ISCSINAME":"iqn","ERRORPACKETS":"4","LOSTPACKETS":"5",)"
    R"("OVERFLOWEDPACKETS":"6","STARTTIME":"1614834367","SPEED":"10000","IPV4MASK":"255.0.0.0","IPV4ADDRESS":"10.0.0.9",)"
    R"("IPV6MASK":"64","IPV6ADDRESS":"fd00::9")",
    "ID:7 NAME:p LOCATION:l HEALTHSTATUS:1 RUNNINGSTATUS:10 LOGICTYPE:0 MACADDRESS:02:00 INIORTGT:3 MTU:1500 "
    "ISCSITCPPORT:3260 ISCSINAME:iqn ERRORPACKETS:4 LOSTPACKETS:5 OVERFLOWEDPACKETS:6 STARTTIME:1614834367 SPEED:10000 "
    "IPV4MASK:255.0.0.0 IPV4ADDRESS:10.0.0.9 IPV6MASK:64 IPV6ADDRESS:fd00::9"};

template <class Get>
Operation single(const std::string& name, const std::string& path, const std::string& message, const Full& full, Get get)
{
    const Call call = [get](Sdk& sdk) { return get(sdk, "7"); };
    const std::string request = "GET " + path + "/7";
    return Operation(name)
        .succeeds("every field", call, done(name, send(request, std::string("{") + full.record + "}")), full.shown)
        .failsAt(request, {name})
        .succeeds("no record", call, done(name, send(request)), "")
        .succeeds("a record without ID", call, done(name, send(request, R"({"NAME":"p"})")), "")
        .refuses(message, [get](Sdk& sdk) { return get(sdk, ""); });
}

template <class Query, class Condition>
Query queryOf(Condition condition, const char* id, const char* name, std::uint32_t logicType, std::uint64_t start,
              std::uint64_t count)
{
    condition.ID = id;
    condition.NAME = name;
    condition.LOGICTYPE = logicType;
    return Query(condition, start, count);
}

/// The list holds the records whole: no read for each. A query that is not set leaves the question mark, or the ampersand, at the end.
template <class Query, class Get>
Operation batch(const std::string& name, const std::string& path, const Full& full, Get get)
{
    using Condition = decltype(Query::condition);
    const auto with = [get](const char* id, const char* port, std::uint32_t logicType, std::uint64_t start,
                            std::uint64_t count) {
        return [=](Sdk& sdk) {
            Query query = queryOf<Query>(Condition(), id, port, logicType, start, count);
            return get(sdk, query);
        };
    };
    const std::string all = "GET " + path + "?";
    const std::string reply = std::string(R"([{)") + full.record + R"(},{"NAME":"without ID"}])";
    return Operation(name)
        .succeeds("all", with("", "", 100, 0, 0), done(name, send(all, reply)), std::string("[") + full.shown + "]")
        .failsAt(all, {name})
        .succeeds("with every condition and a range", with("7", "p", 0, 10, 5),
                  done(name, send(all + "filter=ID:7 and NAME:p and LOGICTYPE:0&range=[10-15]")))
        .succeeds("with a condition", with("", "p", 100, 9, 0), done(name, send(all + "filter=NAME:p&")))
        .succeeds("with a range", with("", "", 100, 0, 100), done(name, send(all + "range=[0-100]")));
}

}  // namespace

Table portContract()
{
    return {
        single("getFCPort", "/FC_PORT", "fcPortID is empty! ", kFCPort,
               [](Sdk& sdk, const char* id) { return sdk.fcPort().getFCPort(id); }),
        batch<FCPortQuery>("getFCPortBatch", "/FC_PORT", kFCPort,
                           [](Sdk& sdk, FCPortQuery& query) { return sdk.fcPort().getFCPortBatch(query); }),
        single("getFCoEPort", "/FCoE_PORT", "fcoePortID is empty! ", kFCoEPort,
               [](Sdk& sdk, const char* id) { return sdk.fcoePort().getFCoEPort(id); }),
        batch<FCoEPortQuery>("getFCoEPortBatch", "/FCoE_PORT", kFCoEPort,
                             [](Sdk& sdk, FCoEPortQuery& query) { return sdk.fcoePort().getFCoEPortBatch(query); }),
        single("getETHPort", "/ETH_PORT", "ethPortID is empty! ", kETHPort,
               [](Sdk& sdk, const char* id) { return sdk.ethPort().getETHPort(id); }),
        batch<ETHPortQuery>("getETHPortBatch", "/ETH_PORT", kETHPort,
                            [](Sdk& sdk, ETHPortQuery& query) { return sdk.ethPort().getETHPortBatch(query); }),
    };
}

BREVAN_CONTRACT(Port, rowsOf(portContract()));

}  // namespace brevan::contract
