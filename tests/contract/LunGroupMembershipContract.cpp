#include "Contract.h"

// Putting LUNs and snapshots into LUN groups and taking them out. Every failure is swallowed; the four retry loops differ.

namespace brevan::contract {
namespace {

constexpr int kAlreadyMember = 1077936862;
constexpr int kAlsoAlreadyMember = 1077948997;
constexpr int kNoMember = 1077948996;
constexpr int kSessionGone = -401;

/// What is particular to one of the four.
struct Change {
    const char* name;
    const char* worker;
    const char* request;
    const char* idMessage;
    const char* success;
    const char* noReply;
    const char* refusal;    ///< the code follows
    const char* lastWords;  ///< when it has failed for good
    bool tellsResult;
    Call call;
};

const Change kAddLun = {"addLunToLunGroup",
                        "addObjToLunGroup",
                        R"(POST /lungroup/associate {"ID":"3","ASSOCIATEOBJTYPE":11,"ASSOCIATEOBJID":"7"})",
                        "lunID is empty! ",
                        "info: add lun (7) to lun group(3) success ",
                        "warn: add lun (7) to lun group(3) failed ",
                        "warn: add obj(7) to lungroup(3) failed., errCode: ",
                        "error: addObjToLunGroup failed.",
                        false,
                        [](Sdk& sdk) { sdk.lunGroup().addLunToLunGroup("7", "3"); }};

const Change kAddSnapshot = {"addSnapshotToLunGroup",
                             "addObjToLunGroup",
                             R"(POST /lungroup/associate {"ID":"3","ASSOCIATEOBJTYPE":27,"ASSOCIATEOBJID":"7"})",
                             "snapshotID is empty! ",
                             "info: add snapshot (7) to lun group(3) success ",
                             "warn: add snapshot (7) to lun group(3) failed ",
                             "warn: add obj(7) to lungroup(3) failed., errCode: ",
                             "error: leave addObjToLunGroup failed.",
                             true,
                             [](Sdk& sdk) { return sdk.lunGroup().addSnapshotToLunGroup("7", "3"); }};

const Change kRemoveLun = {"removeLunFromLunGroup",
                           "removeObjFromLunGroup",
                           "DELETE /lungroup/associate?ID=3&ASSOCIATEOBJTYPE=11&ASSOCIATEOBJID=7",
                           "lunID is empty! ",
                           "info: remove lun (7) from lun group(3) success ",
                           "warn: remove lun (7) from lun group(3) failed ",
                           "warn: remove obj (7) to lungroup(3) failed., errCode: ",
                           "error: leave removeLunFromLunGroup failed.",
                           false,
                           [](Sdk& sdk) { sdk.lunGroup().removeLunFromLunGroup("7", "3"); }};

const Change kRemoveSnapshot = {"removeSnapshotFromLunGroup",
                                "removeObjFromLunGroup",
                                "DELETE /lungroup/associate?ID=3&ASSOCIATEOBJTYPE=27&ASSOCIATEOBJID=7",
                                "snapshotID is empty! ",
                                "info: remove snapshot (7) from lun group(3) success ",
                                "warn: remove snapshot (7) from lun group(3) failed ",
                                "warn: remove obj (7) to lungroup(3) failed., errCode: ",
                                "error: leave removeSnapshotFromLunGroup failed.",
                                true,
                                [](Sdk& sdk) { return sdk.lunGroup().removeSnapshotFromLunGroup("7", "3"); }};

/// One try that fails: what the worker writes before it swallows the failure.
Steps unreachableTry(const Change& change)
{
    return {failed(change.worker, sendUnreachable(change.request, change.worker), kUnreachable), change.noReply};
}

Steps refusedTry(const Change& change, int code)
{
    return {failed(change.worker, sendRefused(change.request, change.worker, code), code),
            change.refusal + std::to_string(code)};
}

Steps toleratedTry(const Change& change, int code, const char* remark)
{
    return {failed(change.worker, sendRefused(change.request, change.worker, code), code), remark};
}

Steps again(const Change& change, int triesLeft)
{
    return {std::string("info: retry ") + change.worker + ": " + std::to_string(triesLeft), "sleep: 70000"};
}

Steps givenUp(const Change& change, const Steps& tries, int code)
{
    return failed(change.name, {tries, change.lastWords}, code);
}

std::string resultOf(const Change& change, int code)
{
    return change.tellsResult ? std::to_string(code) : "";
}

Steps succeeding(const Change& change)
{
    return done(change.worker, {send(change.request), change.success});
}

/// What the four have in common.
Operation membership(const Change& change)
{
    return Operation(change.name)
        .succeeds("at once", change.call, done(change.name, succeeding(change)), resultOf(change, 0))
        .row("unreachable twice, then done", change.call,
             done(change.name,
                  {unreachableTry(change), again(change, 2), unreachableTry(change), again(change, 1), succeeding(change)}),
             resultOf(change, 0))
        .withRetries(2, 70000)
        .row("unreachable for good: retryTimes + 1 tries", change.call,
             givenUp(change, {unreachableTry(change), again(change, 1), unreachableTry(change)}, -1), resultOf(change, -1))
        .withRetries(1, 70000)
        .row("refused for good", change.call,
             givenUp(change, {refusedTry(change, kRefused), again(change, 1), refusedTry(change, kRefused)}, kRefused),
             resultOf(change, kRefused))
        .withRetries(1, 70000)
        .row("no retries", change.call, givenUp(change, refusedTry(change, kRefused), kRefused), resultOf(change, kRefused))
        .withRetries(0, 70000);
}

Operation adding(const Change& change)
{
    const char* const kRemark = "warn: the object was already in the lun group, ignore it.";
    Operation operation(change.name);
    for (const int code : {kAlreadyMember, kAlsoAlreadyMember}) {
        operation.row("already a member", change.call, done(change.name, toleratedTry(change, code, kRemark)),
                      resultOf(change, 0));
    }
    return operation;
}

Operation removing(const Change& change)
{
    return Operation(change.name)
        .row("no member", change.call,
             done(change.name, toleratedTry(change, kNoMember, "warn: the obj was not in the lun group")),
             resultOf(change, 0));
}

/// A session that is gone is not tried again.
Operation givesUpAtOnce(const Change& change, int code)
{
    return Operation(change.name)
        .row("not tried again after " + std::to_string(code), change.call, givenUp(change, refusedTry(change, code), code),
             resultOf(change, code))
        .withRetries(3, 70000);
}

/// addLunToLunGroup alone tries again after every failure.
Operation triesAgain(const Change& change, int code)
{
    return Operation(change.name)
        .row("tried again after " + std::to_string(code), change.call,
             givenUp(change, {refusedTry(change, code), again(change, 1), refusedTry(change, code)}, code),
             resultOf(change, code))
        .withRetries(1, 70000);
}

template <class Calling>
Operation checks(const Change& change, Calling calling)
{
    return Operation(change.name)
        .refuses(change.idMessage, [calling](Sdk& sdk) { calling(sdk, "", "3"); })
        .refuses("LunGroup id is empty! ", [calling](Sdk& sdk) { calling(sdk, "7", ""); });
}

Table arguments()
{
    return {checks(kAddLun, [](Sdk& sdk, const char* id, const char* group) { sdk.lunGroup().addLunToLunGroup(id, group); }),
            checks(kAddSnapshot,
                   [](Sdk& sdk, const char* id, const char* group) { sdk.lunGroup().addSnapshotToLunGroup(id, group); }),
            checks(kRemoveLun,
                   [](Sdk& sdk, const char* id, const char* group) { sdk.lunGroup().removeLunFromLunGroup(id, group); }),
            checks(kRemoveSnapshot, [](Sdk& sdk, const char* id, const char* group) {
                sdk.lunGroup().removeSnapshotFromLunGroup(id, group);
            })};
}

}  // namespace

Table lunGroupMembershipContract()
{
    Table table = {membership(kAddLun),
                   adding(kAddLun),
                   triesAgain(kAddLun, kSessionGone),
                   triesAgain(kAddLun, kNoMember),
                   membership(kAddSnapshot),
                   adding(kAddSnapshot),
                   givesUpAtOnce(kAddSnapshot, kSessionGone),
                   givesUpAtOnce(kAddSnapshot, kNoMember),
                   membership(kRemoveLun),
                   removing(kRemoveLun),
                   givesUpAtOnce(kRemoveLun, kSessionGone),
                   membership(kRemoveSnapshot),
                   removing(kRemoveSnapshot),
                   givesUpAtOnce(kRemoveSnapshot, kSessionGone)};
    const Table more = arguments();
    table.insert(table.end(), more.begin(), more.end());
    return table;
}

BREVAN_CONTRACT(LunGroupMembership, rowsOf(lunGroupMembershipContract()));

}  // namespace brevan::contract
