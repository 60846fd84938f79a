#include "Contract.h"

namespace brevan::contract {
namespace {

const char* const kNoId = "fcInitiatorID is empty! ";
const char* const kRecord = R"({"ID":"21000024ff"})";
const Steps kFound = done("getFCInitiator", send("GET /fc_initiator/21000024ff", kRecord));

FCInitiatorMO create(Sdk& sdk, const std::string& id)
{
    FCInitiatorMO initiator;
    initiator.ID = id;
    return sdk.fc().createFCInitiator(initiator);
}

/// Unlike the iSCSI create it has its leave line. There is no pause and no retry.
Operation createFCInitiator()
{
    const char* const kCreate = R"(POST /fc_initiator {"ID":"21000024ff"})";
    return Operation("createFCInitiator")
        .succeeds(
            "read back at once", [](Sdk& sdk) { return create(sdk, "21000024ff"); },
            done("createFCInitiator", {send(kCreate, kRecord), kFound}), "ID:21000024ff")
        .failsAt(kCreate, {"createFCInitiator"})
        .failsAt("GET /fc_initiator/21000024ff", {"createFCInitiator", "getFCInitiator"})
        .succeeds(
            "the parent's type goes with the parent",
            [](Sdk& sdk) {
                FCInitiatorMO initiator;
                initiator.ID = "21000024ff";
                initiator.NAME = "i";
                initiator.PARENTID = "21";
                return sdk.fc().createFCInitiator(initiator);
            },
            done("createFCInitiator",
                 {send(R"(POST /fc_initiator {"ID":"21000024ff","PARENTID":"21","PARENTTYPE":21,"NAME":"i"})", kRecord),
                  kFound}),
            "ID:21000024ff")
        .row(
            "not yet readable: not tried again", [](Sdk& sdk) { return create(sdk, "21000024ff"); },
            failed("createFCInitiator",
                   {send(kCreate, kRecord),
                    failed("getFCInitiator", sendRefused("GET /fc_initiator/21000024ff", "getFCInitiator", kNotYetReadable),
                           kNotYetReadable)},
                   kNotYetReadable),
            exception(kNotYetReadable, refusedText("getFCInitiator", kNotYetReadable)))
        .withRetries(3, 70000)
        .refuses(kNoId, [](Sdk& sdk) { return create(sdk, ""); });
}

Operation deleteFCInitiator()
{
    return Operation("deleteFCInitiator")
        .succeeds(
            "one request", [](Sdk& sdk) { sdk.fc().deleteFCInitiator("21000024ff"); },
            done("deleteFCInitiator", send("DELETE /fc_initiator/21000024ff")))
        .failsAt("DELETE /fc_initiator/21000024ff", {"deleteFCInitiator"})
        .refuses(kNoId, [](Sdk& sdk) { sdk.fc().deleteFCInitiator(""); });
}

Operation getFCInitiator()
{
    const Call get = [](Sdk& sdk) { return sdk.fc().getFCInitiator("21000024ff"); };
    const auto reading = [](const char* record) {
        return done("getFCInitiator", send("GET /fc_initiator/21000024ff", record));
    };
    return Operation("getFCInitiator")
        .succeeds("every field", get,
                  reading(R"({"ID":"21000024ff","NAME":"i","PARENTID":"21","PARENTNAME":"h","HEALTHSTATUS":"1",)"
                          R"("RUNNINGSTATUS":"27","ISFREE":"true"})"),
                  "ID:21000024ff NAME:i PARENTID:21 PARENTNAME:h HEALTHSTATUS:1 RUNNINGSTATUS:27 ISFREE:1")
        .failsAt("GET /fc_initiator/21000024ff", {"getFCInitiator"})
        .succeeds("no record", get, reading(""), "")
        .succeeds("a record without ID", get, reading(R"({"NAME":"i"})"), "")
        .succeeds("only the exact text is true", get, reading(R"({"ID":"21000024ff","ISFREE":"1"})"), "ID:21000024ff")
        .refuses(kNoId, [](Sdk& sdk) { return sdk.fc().getFCInitiator(""); });
}

Operation addFCInitiatorToHost()
{
    const char* const kAdd = R"(PUT /fc_initiator/21000024ff {"PARENTTYPE":21,"PARENTID":"21"})";
    return Operation("addFCInitiatorToHost")
        .succeeds(
            "one request", [](Sdk& sdk) { sdk.fc().addFCInitiatorToHost("21000024ff", "21"); },
            done("addFCInitiatorToHost", send(kAdd)))
        .failsAt(kAdd, {"addFCInitiatorToHost"})
        .refuses(kNoId, [](Sdk& sdk) { sdk.fc().addFCInitiatorToHost("", "21"); })
        .refuses("hostID is empty! ", [](Sdk& sdk) { sdk.fc().addFCInitiatorToHost("21000024ff", ""); });
}

Operation removeFCInitiatorFromHost()
{
    const char* const kRemove = R"(PUT /fc_initiator/remove_fc_from_host {"ID":"21000024ff"})";
    return Operation("removeFCInitiatorFromHost")
        .succeeds(
            "the ID is in the body", [](Sdk& sdk) { sdk.fc().removeFCInitiatorFromHost("21000024ff"); },
            done("removeFCInitiatorFromHost", send(kRemove)))
        .failsAt(kRemove, {"removeFCInitiatorFromHost"})
        .refuses(kNoId, [](Sdk& sdk) { sdk.fc().removeFCInitiatorFromHost(""); });
}

}  // namespace

Table fcInitiatorContract()
{
    return {createFCInitiator(), deleteFCInitiator(), getFCInitiator(), addFCInitiatorToHost(), removeFCInitiatorFromHost()};
}

BREVAN_CONTRACT(FCInitiator, rowsOf(fcInitiatorContract()));

}  // namespace brevan::contract
