#include "Contract.h"

// Creating and modifying, which send CHAP settings, write their enter line again where others write their leave line.

namespace brevan::contract {
namespace {

const char* const kNoId = "iscsiInitiatorID is empty! ";
const char* const kRecord = R"({"ID":"iqn"})";
const char* const kGet = "GET /iscsi_initiator/iqn";
const Steps kFound = done("getIscsiInitiator", send(kGet, kRecord));

/// With `settings` on a record that has its ID.
template <class Settings>
IscsiInitiatorMO with(Settings settings)
{
    IscsiInitiatorMO initiator;
    initiator.ID = "iqn";
    settings(initiator);
    return initiator;
}

IscsiInitiatorMO oneWay()
{
    return with([](IscsiInitiatorMO& one) {
        one.USECHAP = 1;
        one.NORMALVERMODE = "1";
        one.CHAPNAME = "user";
        one.CHAPPASSWORD = "secret";
        one.CHAPOLDPASSWORD = "old";
    });
}

IscsiInitiatorMO mutual()
{
    IscsiInitiatorMO both = oneWay();
    both.DISCOVERYVERMODE = "2";
    both.CHAPNAMEINITATORVERTARGET = "target";
    both.CHAPPASSWORDINITATORVERTARGET = "secret2";
    both.CHAPOLDPASSWORDINITATORVERTARGET = "old2";
    return both;
}

Call creating(const IscsiInitiatorMO& initiator)
{
    return [initiator](Sdk& sdk) {
        IscsiInitiatorMO wanted = initiator;
        return sdk.iscsi().createIscsiInitiator(wanted);
    };
}

Call modifying(const IscsiInitiatorMO& initiator)
{
    return [initiator](Sdk& sdk) {
        IscsiInitiatorMO wanted = initiator;
        sdk.iscsi().modifyIscsiInitiator(wanted);
    };
}

/// The repeated enter line is meant.
Steps entersTwice(const std::string& operation, const Steps& between)
{
    return {enter(operation), between, record(operation, 0), enter(operation)};
}

Steps creates(const std::string& members)
{
    return entersTwice("createIscsiInitiator", {send("POST /iscsi_initiator {" + members + "}", kRecord), kFound});
}

/// There is no pause and no retry.
Operation createIscsiInitiator()
{
    const char* const kCreate = R"(POST /iscsi_initiator {"ID":"iqn","USECHAP":"false"})";
    return Operation("createIscsiInitiator")
        .succeeds("read back at once", creating(with([](IscsiInitiatorMO&) {})), creates(R"("ID":"iqn","USECHAP":"false")"),
                  "ID:iqn")
        .failsAt(kCreate, {"createIscsiInitiator"})
        .failsAt(kGet, {"createIscsiInitiator", "getIscsiInitiator"})
        .row("not yet readable: not tried again", creating(with([](IscsiInitiatorMO&) {})),
             failed("createIscsiInitiator",
                    {send(kCreate, kRecord),
                     failed("getIscsiInitiator", sendRefused(kGet, "getIscsiInitiator", kNotYetReadable), kNotYetReadable)},
                    kNotYetReadable),
             exception(kNotYetReadable, refusedText("getIscsiInitiator", kNotYetReadable)))
        .withRetries(3, 70000)
        .succeeds("the parent's type goes by itself", creating(with([](IscsiInitiatorMO& one) { one.PARENTTYPE = 21; })),
                  creates(R"("ID":"iqn","PARENTTYPE":21,"USECHAP":"false")"), "ID:iqn")
        .succeeds("a parent and a name", creating(with([](IscsiInitiatorMO& one) {
                      one.PARENTID = "21";
                      one.PARENTTYPE = 21;
                      one.NAME = "i";
                  })),
                  creates(R"("ID":"iqn","PARENTID":"21","PARENTTYPE":21,"USECHAP":"false","NAME":"i")"), "ID:iqn")
        .refuses(kNoId, creating(IscsiInitiatorMO()));
}

Operation createWithChap()
{
    return Operation("createIscsiInitiator")
        .succeeds("CHAP wanted, but both modes are 0", creating(with([](IscsiInitiatorMO& one) {
                      one.USECHAP = 1;
                      one.CHAPNAME = "user";
                  })),
                  creates(R"("ID":"iqn","USECHAP":"false")"), "ID:iqn")
        .succeeds("one-way CHAP", creating(oneWay()),
                  creates(R"("ID":"iqn","USECHAP":"true","NORMALVERMODE":"1","DISCOVERYVERMODE":"0","CHAPNAME":"user",)"
                          R"("CHAPPASSWORD":"secret")"),
                  "ID:iqn")
        .succeeds("mutual CHAP", creating(mutual()),
                  creates(R"("ID":"iqn","USECHAP":"true","NORMALVERMODE":"1","DISCOVERYVERMODE":"2","CHAPNAME":"user",)"
                          R"("CHAPPASSWORD":"secret","CHAPNAMEINITATORVERTARGET":"target",)"
                          R"("CHAPPASSWORDINITATORVERTARGET":"secret2")"),
                  "ID:iqn")
        // What is missing is told, each with a failed record, and sent all the same: the array is left to refuse it.
        .row("mutual CHAP without names and secrets", creating(with([](IscsiInitiatorMO& one) {
                 one.USECHAP = 1;
                 one.NORMALVERMODE = "2";
             })),
             entersTwice(
                 "createIscsiInitiator",
                 {"error: ChapName is empty! createIscsiInitiator", "record: createIscsiInitiator 1",
                  "error: ChapPassword is empty! createIscsiInitiator", "record: createIscsiInitiator 1",
                  "error: ChapNameTarget is empty! createIscsiInitiator", "record: createIscsiInitiator 1",
                  "error: ChapPasswordTarget is empty! createIscsiInitiator", "record: createIscsiInitiator 1",
                  send(R"(POST /iscsi_initiator {"ID":"iqn","USECHAP":"true","NORMALVERMODE":"2","DISCOVERYVERMODE":"0",)"
                       R"("CHAPNAME":"","CHAPPASSWORD":"","CHAPNAMEINITATORVERTARGET":"",)"
                       R"("CHAPPASSWORDINITATORVERTARGET":""})",
                       kRecord),
                  kFound}),
             "ID:iqn");
}

Operation deleteIscsiInitiator()
{
    return Operation("deleteIscsiInitiator")
        .succeeds(
            "one request", [](Sdk& sdk) { sdk.iscsi().deleteIscsiInitiator("iqn"); },
            done("deleteIscsiInitiator", send("DELETE /iscsi_initiator/iqn")))
        .failsAt("DELETE /iscsi_initiator/iqn", {"deleteIscsiInitiator"})
        .refuses(kNoId, [](Sdk& sdk) { sdk.iscsi().deleteIscsiInitiator(""); });
}

/// The array's current state is read first.
Steps modifies(const std::string& current, const std::string& members)
{
    return entersTwice("modifyIscsiInitiator", {done("getIscsiInitiator", send(kGet, R"({"ID":"iqn")" + current + "}")),
                                                send("PUT /iscsi_initiator {" + members + "}")});
}

Operation modifyIscsiInitiator()
{
    const char* const kModify = R"(PUT /iscsi_initiator {"ID":"iqn","USECHAP":"false"})";
    return Operation("modifyIscsiInitiator")
        .succeeds("no CHAP wanted: switched off", modifying(with([](IscsiInitiatorMO&) {})),
                  modifies("", R"("ID":"iqn","USECHAP":"false")"))
        .failsAt(kGet, {"modifyIscsiInitiator", "getIscsiInitiator"})
        .failsAt(kModify, {"modifyIscsiInitiator"})
        .succeeds("a name and a parent, whose type goes with it", modifying(with([](IscsiInitiatorMO& one) {
                      one.NAME = "i";
                      one.PARENTID = "21";
                  })),
                  modifies("", R"("ID":"iqn","USECHAP":"false","NAME":"i","PARENTID":"21","PARENTTYPE":21)"))
        .succeeds("a parent's type alone is not sent", modifying(with([](IscsiInitiatorMO& one) { one.PARENTTYPE = 21; })),
                  modifies("", R"("ID":"iqn","USECHAP":"false")"))
        // The read refuses it, under its own name.
        .refusal("no ID", modifying(IscsiInitiatorMO()),
                 failed("modifyIscsiInitiator",
                        failed("getIscsiInitiator", "error: iscsiInitiatorID is empty! getIscsiInitiator", 1), 1),
                 exception("iscsiInitiatorID is empty! getIscsiInitiator"));
}

Operation modifyWithChap()
{
    const char* const kOneWay =
        R"("ID":"iqn","USECHAP":"true","NORMALVERMODE":"1","DISCOVERYVERMODE":"0","CHAPNAME":"user","CHAPPASSWORD":"secret")";
    const std::string both =
        R"("ID":"iqn","USECHAP":"true","NORMALVERMODE":"1","DISCOVERYVERMODE":"2","CHAPNAME":"user","CHAPPASSWORD":"secret")";
    const char* const kOldOneWay = R"(,"CHAPOLDPASSWORD":"old")";
    const char* const kTarget = R"(,"CHAPNAMEINITATORVERTARGET":"target","CHAPPASSWORDINITATORVERTARGET":"secret2")";
    return Operation("modifyIscsiInitiator")
        .succeeds("both modes are 0", modifying(with([](IscsiInitiatorMO& one) { one.USECHAP = 1; })),
                  modifies("", R"("ID":"iqn","USECHAP":"false")"))
        .succeeds("first secret: no old one goes with it", modifying(oneWay()), modifies("", kOneWay))
        .succeeds("another secret: the old one goes with it", modifying(oneWay()),
                  modifies(R"(,"USECHAP":"true")", std::string(kOneWay) + kOldOneWay))
        .succeeds("no new secret: neither name nor old secret goes", modifying(with([](IscsiInitiatorMO& one) {
                      one.USECHAP = 1;
                      one.NORMALVERMODE = "2";
                      one.CHAPNAME = "user";
                      one.CHAPOLDPASSWORD = "old";
                  })),
                  modifies(R"(,"USECHAP":"true","NORMALVERMODE":"2")",
                           R"("ID":"iqn","USECHAP":"true","NORMALVERMODE":"2","DISCOVERYVERMODE":"0")"))
        .succeeds("first mutual secret", modifying(mutual()),
                  modifies(R"(,"USECHAP":"true","NORMALVERMODE":"1")", both + kOldOneWay + kTarget))
        .succeeds("another mutual secret: the old one goes with it", modifying(mutual()),
                  modifies(R"(,"USECHAP":"true","DISCOVERYVERMODE":"2")",
                           both + kOldOneWay + kTarget + R"(,"CHAPOLDPASSWORDINITATORVERTARGET":"old2")"));
}

Operation getIscsiInitiator()
{
    const Call get = [](Sdk& sdk) { return sdk.iscsi().getIscsiInitiator("iqn"); };
    return Operation("getIscsiInitiator")
        // Secrets are not read back; the parent's type is not either.
        .succeeds(
            "every field", get,
            done("getIscsiInitiator",
                 send(kGet, R"({"ID":"iqn","NAME":"i","PARENTID":"21","PARENTNAME":"h","PARENTTYPE":"21",)"
                            R"("HEALTHSTATUS":"1","RUNNINGSTATUS":"27","ISFREE":"true","USECHAP":"true",)"
                            R"("CHAPNAME":"user","CHAPPASSWORD":"secret","CHAPNAMEINITATORVERTARGET":"target",)"
                            R"("NORMALVERMODE":"1","DISCOVERYVERMODE":"2"})")),
            "ID:iqn NAME:i PARENTID:21 PARENTNAME:h HEALTHSTATUS:1 RUNNINGSTATUS:27 ISFREE:1 USECHAP:1 NORMALVERMODE:1 "
            "DISCOVERYVERMODE:2 CHAPNAME:user CHAPNAMEINITATORVERTARGET:target")
        .failsAt(kGet, {"getIscsiInitiator"})
        .succeeds("no record", get, done("getIscsiInitiator", send(kGet)), "")
        .succeeds("a record without ID", get, done("getIscsiInitiator", send(kGet, R"({"NAME":"i"})")), "")
        .succeeds("only the exact text is true", get,
                  done("getIscsiInitiator", send(kGet, R"({"ID":"iqn","ISFREE":"TRUE","USECHAP":"1"})")), "ID:iqn")
        .refuses(kNoId, [](Sdk& sdk) { return sdk.iscsi().getIscsiInitiator(""); });
}

Operation addIscsiInitiatorToHost()
{
    const char* const kAdd = R"(PUT /iscsi_initiator/iqn {"PARENTTYPE":21,"PARENTID":"21"})";
    return Operation("addIscsiInitiatorToHost")
        .succeeds(
            "one request", [](Sdk& sdk) { sdk.iscsi().addIscsiInitiatorToHost("iqn", "21"); },
            done("addIscsiInitiatorToHost", send(kAdd)))
        .failsAt(kAdd, {"addIscsiInitiatorToHost"})
        .refuses(kNoId, [](Sdk& sdk) { sdk.iscsi().addIscsiInitiatorToHost("", "21"); })
        .refuses("hostID is empty! ", [](Sdk& sdk) { sdk.iscsi().addIscsiInitiatorToHost("iqn", ""); });
}

Operation removeIscsiInitiatorFromHost()
{
    const char* const kRemove = R"(PUT /iscsi_initiator/remove_iscsi_from_host {"ID":"iqn"})";
    return Operation("removeIscsiInitiatorFromHost")
        .succeeds(
            "the ID is in the body", [](Sdk& sdk) { sdk.iscsi().removeIscsiInitiatorFromHost("iqn"); },
            done("removeIscsiInitiatorFromHost", send(kRemove)))
        .failsAt(kRemove, {"removeIscsiInitiatorFromHost"})
        .refuses(kNoId, [](Sdk& sdk) { sdk.iscsi().removeIscsiInitiatorFromHost(""); });
}

}  // namespace

Table iscsiInitiatorContract()
{
    return {createIscsiInitiator(), createWithChap(),    deleteIscsiInitiator(),    modifyIscsiInitiator(),
            modifyWithChap(),       getIscsiInitiator(), addIscsiInitiatorToHost(), removeIscsiInitiatorFromHost()};
}

BREVAN_CONTRACT(IscsiInitiator, rowsOf(iscsiInitiatorContract()));

}  // namespace brevan::contract
