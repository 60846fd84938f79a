#include "ReadBack.h"

namespace brevan::contract {
namespace {

const char* const kRecord = R"({"ID":"21"})";
const char* const kRead = "ID:21 OPERATIONSYSTEM:0 ISADD2HOSTGROUP:0";
const char* const kCreate = R"(POST /host {"TYPE":21,"NAME":"h","OPERATIONSYSTEM":0})";

HostMO create(Sdk& sdk, const std::string& name, std::uint32_t system)
{
    HostMO host;
    host.NAME = name;
    host.OPERATIONSYSTEM = system;
    return sdk.host().createHost(host);
}

const Call kCreateHost = [](Sdk& sdk) { return create(sdk, "h", 0); };
const Steps kFound = done("getHost", send("GET /host/21", kRecord));

Operation createHost()
{
    return Operation("createHost")
        .succeeds("read back at once", kCreateHost, done("createHost", {send(kCreate, kRecord), kFound}), kRead)
        .failsAt(kCreate, {"createHost"})
        .failsAt("GET /host/21", {"createHost", "getHost"})
        .succeeds(
            "every key that is optional",
            [](Sdk& sdk) {
                HostMO host;
                host.ID = "21";
                host.NAME = "h";
                host.OPERATIONSYSTEM = 7;
                host.PARENTTYPE = 14;
                host.PARENTID = "40";
                host.LOCATION = "l";
                host.DESCRIPTION = "d";
                host.IP = "10.0.0.5";
                return sdk.host().createHost(host);
            },
            done("createHost",
                 {send(R"(POST /host {"ID":"21","TYPE":21,"NAME":"h","OPERATIONSYSTEM":7,"PARENTTYPE":14,"PARENTID":"40",)"
                       R"("LOCATION":"l","DESCRIPTION":"d","IP":"10.0.0.5"})",
                       kRecord),
                  kFound}),
            kRead)
        .refuses("Host name is empty! ", [](Sdk& sdk) { return create(sdk, "", 0); })
        .refuses("OperationSystem value is initial value! ", [](Sdk& sdk) { return create(sdk, "h", 100); });
}

Operation createHostReadsBack()
{
    return readsBack(
        {"createHost", kCreateHost, send(kCreate, kRecord), "getHost", "GET /host/21", kFound, "retry get host!", kRead});
}

Operation getHost()
{
    const Call get = [](Sdk& sdk) { return sdk.host().getHost("21"); };
    return Operation("getHost")
        .succeeds(
            "every field", get,
            done("getHost",
                 send("GET /host/21",
                      R"({"ID":"21","NAME":"h","PARENTTYPE":14,"LOCATION":"l","HEALTHSTATUS":"1","RUNNINGSTATUS":"27",)"
                      R"("DESCRIPTION":"d","OPERATIONSYSTEM":"7","ISADD2HOSTGROUP":"true","IP":"10.0.0.5",)"
                      R"("PARENTID":"40"})")),
            "ID:21 NAME:h PARENTTYPE:14 PARENTID:40 LOCATION:l HEALTHSTATUS:1 RUNNINGSTATUS:27 DESCRIPTION:d "
            "OPERATIONSYSTEM:7 IP:10.0.0.5 ISADD2HOSTGROUP:1")
        .failsAt("GET /host/21", {"getHost"})
        .succeeds("no record", get, done("getHost", send("GET /host/21")), "")
        .succeeds("a record without ID", get, done("getHost", send("GET /host/21", R"({"NAME":"h"})")), "")
        .refuses("hostID is empty! ", [](Sdk& sdk) { return sdk.host().getHost(""); });
}

}  // namespace

Table hostContract()
{
    return {createHost(), createHostReadsBack(), getHost()};
}

BREVAN_CONTRACT(Host, rowsOf(hostContract()));

}  // namespace brevan::contract
