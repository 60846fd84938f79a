#include "attach/AttachCalls.h"
#include "support/ManagerWithout.h"

#include <stdexcept>

namespace brevan::test {
namespace {

class AttachFlow : public FlowTest {
protected:
    const std::string operation = kind.attach;

    Flow upToHost() const { return {readVolume(kind), readInitiator("21"), readHost()}; }

    /// What is asked and made before the step at which the kinds part ways, or before the view.
    Flow upToView() const
    {
        const Flow all = upToHost() + Flow{volumesOnHost(kind, {})} + chain(kind);
        return Flow(all.begin(), all.end() - 3);
    }

    /// The whole attach of an initiator with a host, where one request is answered otherwise.
    void scriptWith(const Call& changed, const Answer& otherwise)
    {
        for (const Call& call : upToHost() + Flow{volumesOnHost(kind, {})} + chain(kind)) {
            if (call[0].request == changed[0].request) {
                expect(call[0].request, otherwise);
            } else {
                script({call});
            }
        }
    }

    /// The volume does not get into the LUN group, tried twice; returns what that logs.
    Lines membershipFailing(const Failing& failing, const std::string& warning, const std::string& end)
    {
        const Call call = addVolume(kind);
        for (int i = 0; i < 2; ++i) {
            expect(call[0].request, failing.answer);
        }
        const Lines once =
            joined({failed("addObjToLunGroup", failing.line("addObjToLunGroup"), failing.code), {"warn: " + warning}});
        const int result = failing.answer.sendResult != 0 ? -1 : failing.code;
        return entered(call[0].within[0], joined({once, {"info: retry addObjToLunGroup: 1"}, once, {"error: " + end}}),
                       result);
    }
};

class AttachLun : public AttachFlow {};
class AttachSnapshot : public AttachFlow {};

INSTANTIATE_TEST_SUITE_P(Volumes, AttachFlow, testing::Values(lunKind(), snapshotKind()),
                         [](const auto& of) { return of.param.capital(); });
INSTANTIATE_TEST_SUITE_P(Only, AttachLun, testing::Values(lunKind()));
INSTANTIATE_TEST_SUITE_P(Only, AttachSnapshot, testing::Values(snapshotKind()));

TEST_P(AttachFlow, BuildsTheWholeChainForAnInitiatorWithoutAHost)
{
    const Lines log = script(wholeAttach(kind));
    EXPECT_EQ(attach(), 0);
    EXPECT_EQ(newLog(), closed(operation, log));
    EXPECT_TRUE(lastFailure().empty());
    EXPECT_THAT(fakeClock.sleeps(), testing::IsEmpty());
}

TEST_P(AttachFlow, KeepsTheHostOfAnInitiatorThatHasOne)
{
    const Lines log = script(upToHost() + Flow{volumesOnHost(kind, {})} + chain(kind));
    EXPECT_EQ(attach(), 0);
    EXPECT_EQ(newLog(), closed(operation, log));
    EXPECT_TRUE(lastFailure().empty());
}

TEST_P(AttachFlow, LeavesTheAddressOutWhereTheCallerHasNone)
{
    script({readVolume(kind), readInitiator("")});
    const Failing refused = {refusal(7, "no"), 7};
    expect(R"(POST /host {"TYPE":21,"NAME":"host_1614834367","OPERATIONSYSTEM":0})", refused.answer);
    EXPECT_EQ(attach("7", "iqn", ""), 0);
}

TEST_P(AttachFlow, ReadsTheTimeAfreshForEachName)
{
    script({readVolume(kind), readInitiator("21")});
    Answer late = answer(R"({"ID":"21"})");
    late.before = [this] { fakeClock.set({1700000000, 0}); };
    expect("GET /host/21", late);
    script({volumesOnHost(kind, {})});
    const std::string group = kind.isLun()
                                  ? R"(/lungroup/ {"TYPE":256,"NAME":"lungroup_1700000000","APPTYPE":0,"GROUPTYPE":0ul})"
                                  : R"(/hostgroup {"TYPE":14,"NAME":"hostgroup_1700000000"})";
    expect("POST " + group, sendFailure(1007));
    EXPECT_EQ(attach(), 0);
}

TEST_P(AttachFlow, RefusesMissingArgumentsBeforeAnythingIsSent)
{
    const struct {
        const char* id;
        const char* initiator;
        std::string message;
    } cases[] = {{"", "", kind.idMissing}, {"7", "", "iscsiInitiatorID is empty! "}};
    for (const auto& [id, initiator, message] : cases) {
        EXPECT_EQ(thrownBy([&, i = id, j = initiator] { attach(i, j); }), "Exception:" + message + operation);
        EXPECT_EQ(newLog(), failed(operation, message + operation, 1));
        EXPECT_EQ(lastFailure().operation, operation);
        EXPECT_EQ(lastFailure().code, FAILURE_REFUSED);
        EXPECT_EQ(lastFailure().text, message + operation);
    }
}

TEST_P(AttachFlow, RefusesToWorkWithoutADeviceManager)
{
    handler = CDiskAttachHandlerImpl();
    EXPECT_EQ(thrownBy([&] { attach(); }), "Exception:deviceManage is NULL! " + operation);
    EXPECT_EQ(newLog(), failed(operation, "deviceManage is NULL! " + operation, 1));
    EXPECT_EQ(lastFailure().text, "deviceManage is NULL! " + operation);
}

TEST_P(AttachFlow, NamesEachHandlerThatTheDeviceManagerDoesNotHave)
{
    for (auto missing = kind.attachHandlers.begin(); missing != kind.attachHandlers.end(); ++missing) {
        ManagerWithout lacking(*missing);
        handler = CDiskAttachHandlerImpl(&lacking);
        const std::string text = missingHandlerText(*missing) + operation;
        EXPECT_EQ(thrownBy([&] { attach(); }), "Exception:" + text);
        EXPECT_EQ(newLog(), failed(operation, text, 1));
        EXPECT_EQ(lacking.asked, std::vector<HANDLERTYPE>(kind.attachHandlers.begin(), missing + 1));
        EXPECT_EQ(lastFailure().text, text);
    }
}

TEST_P(AttachFlow, HidesAnUnknownVolumeBehindItsResult)
{
    Call unknown = readVolume(kind);
    unknown[0].data = "{}";
    const Lines log = script({unknown});
    EXPECT_EQ(attach(), 0);
    EXPECT_EQ(newLog(), closedAfterFailure(operation, joined({log, {"error: " + (kind.idInvalid + operation)}})));
    EXPECT_EQ(lastFailure().text, kind.idInvalid + operation);
    EXPECT_EQ(lastFailure().operation, operation);
}

TEST_P(AttachFlow, HidesAnUnknownInitiatorBehindItsResult)
{
    Call unknown = readInitiator("21");
    unknown[0].data = "{}";
    const Lines log = script({readVolume(kind), unknown});
    EXPECT_EQ(attach(), 0);
    const std::string text = "The iscsiInitiatorID is not valid! " + operation;
    EXPECT_EQ(newLog(), closedAfterFailure(operation, joined({log, {"error: " + text}})));
    EXPECT_EQ(lastFailure().text, text);
}

TEST_P(AttachFlow, HidesThatTheInitiatorsHostIsGone)
{
    Call gone = readHost();
    gone[0].data = "{}";
    const Lines log = script({readVolume(kind), readInitiator("21"), gone});
    EXPECT_EQ(attach(), 0);
    const std::string byHost = "get" + kind.capital() + "ByHost";
    const Lines refused = failed(byHost, "hostID is empty! " + byHost, 1);
    EXPECT_EQ(newLog(), closedAfterFailure(operation, joined({log, refused})));
    EXPECT_EQ(lastFailure().text, "hostID is empty! " + byHost);
}

TEST_P(AttachFlow, GivesOneForAVolumeThatTheHostSeesAlready)
{
    const Lines log = script(upToHost() + Flow{volumesOnHost(kind, {"7"})});
    EXPECT_EQ(attach(), 1);
    EXPECT_EQ(newLog(), endedEarly(operation, log, "The MappingView was already existed! "));
    EXPECT_EQ(lastFailure().text, "The MappingView was already existed! " + operation);
    EXPECT_EQ(lastFailure().code, FAILURE_REFUSED);
}

TEST_P(AttachFlow, StopsAtEachRequestThatFailsAndHidesIt)
{
    const std::set<std::string> tolerated = {"addLunToLunGroup", "addSnapshotToLunGroup", "addHostToHostGroup",
                                             "addHostGroupToMappingView", "addLunGroupToMappingView"};
    failEachStep(operation, wholeAttach(kind), tolerated, [this] { return attach(); });
    failEachStep(operation, upToHost(), {}, [this] { return attach(); });
}

TEST_P(AttachFlow, TakesAnExceptionOfAForeignTypeForAFailureOfItsRequest)
{
    Answer foreign;
    foreign.before = [] { throw std::runtime_error("boom"); };
    expect(std::string("GET ") + kind.readPath + "7", foreign);
    EXPECT_EQ(attach(), 0);
    const std::string text = std::string("unexpected failure: boom ") + kind.read;
    EXPECT_EQ(newLog(), closedAfterFailure(operation, failed(kind.read, text, 1)));
    EXPECT_EQ(lastFailure().text, text);
}

TEST_P(AttachFlow, FailsLikeAnyRequestWhereAReplyHasNoIdToReadBack)
{
    script({readVolume(kind), readInitiator("")});
    expect(newHost()[0].request, answer("{}"));
    EXPECT_EQ(attach(), 0);
    EXPECT_EQ(lastFailure().text, "hostID is empty! getHost");
    EXPECT_EQ(recorder.log().back(), "record: " + operation + " 0");
}

TEST_P(AttachFlow, DeletesAViewThatCannotBeFilledAndKeepsTheRest)
{
    for (const Failing& failing : failures()) {
        for (const Flow& joins : {Flow{joinHostGroup()}, Flow{joinHostGroup(), joinLunGroup()}}) {
            const Flow flow = upToView() + Flow{newView()} + joins;
            const Lines log = scriptUpTo(flow, flow.size() - 1, 0, failing);
            expect("DELETE /mappingview/50", answer(""));
            EXPECT_EQ(attach(), 0);
            const Lines undone = {"error: MappingView add HostGroup or add LunGroup fail! " + operation};
            EXPECT_EQ(newLog(), closed(operation, joined({log, undone, entered("deleteMappingView")})));
            EXPECT_EQ(lastFailure().text, failing.line("associateWithMaskingView"));
            recorder.verify();
        }
    }
}

TEST_P(AttachFlow, EndsAsFailedWhereTheViewCannotEvenBeDeleted)
{
    const Flow flow = upToView() + Flow{newView(), joinHostGroup()};
    const Failing busy = failures().front();
    const Lines log = scriptUpTo(flow, flow.size() - 1, 0, busy);
    expect("DELETE /mappingview/50", busy.answer);
    EXPECT_EQ(attach(), 0);
    const Lines undone = {"error: MappingView add HostGroup or add LunGroup fail! " + operation};
    const Lines kept = failed("deleteMappingView", busy.line("deleteMappingView"), busy.code);
    EXPECT_EQ(newLog(), closedAfterFailure(operation, joined({log, undone, kept})));
    EXPECT_EQ(lastFailure().operation, "associateWithMaskingView");
}

TEST_P(AttachFlow, GoesOnWhereTheHostDoesNotGetIntoItsGroup)
{
    const struct {
        Answer answer;
        const char* warning;
        const char* failedIn;
    } cases[] = {{refusal(50331651, "busy"), "addHostToHostGroup exception. ", "addHostToHostGroup"},
                 {sendFailure(1007), "add host to host group failed. ", "addHostToHostGroup"},
                 {refusal(1077937501, "in"), "the host was already in the host group, ignore it. ", ""}};
    for (const auto& row : cases) {
        scriptWith(addHost(), row.answer);
        EXPECT_EQ(attach(), 0);
        EXPECT_THAT(newLog(), testing::Contains(std::string("warn: ") + row.warning + "addHostToHostGroup"));
        EXPECT_EQ(lastFailure().operation, row.failedIn);
        recorder.verify();
    }
}

TEST_P(AttachFlow, TakesAVolumeThatIsInTheGroupAlreadyAsAdded)
{
    for (const int code : {1077936862, 1077948997}) {
        scriptWith(addVolume(kind), refusal(code, "in"));
        EXPECT_EQ(attach(), 0);
        EXPECT_TRUE(lastFailure().empty());
        recorder.verify();
    }
}

TEST_P(AttachLun, GoesOnWithAnEmptyGroupWhereTheLunDoesNotGetIntoIt)
{
    const Lines first = script(upToHost() + Flow{volumesOnHost(kind, {}), newLunGroup()});
    const Lines membership = membershipFailing(failures().front(), "add obj(7) to lungroup(30) failed., errCode: 50331651",
                                               "addObjToLunGroup failed.");
    const Lines rest = script({newHostGroup(), addHost(), newView(), joinHostGroup(), joinLunGroup()});
    EXPECT_EQ(attach(), 0);
    EXPECT_EQ(newLog(), closed(operation, joined({first, membership, rest})));
    EXPECT_EQ(lastFailure().operation, "addObjToLunGroup");
    EXPECT_THAT(fakeClock.sleeps(), testing::ElementsAre(500000));
}

TEST_P(AttachSnapshot, EndsWithoutAWordWhereTheSnapshotDoesNotGetIntoItsGroup)
{
    const char* const warnings[] = {"add obj(7) to lungroup(30) failed., errCode: 50331651",
                                    "add snapshot (7) to lun group(30) failed "};
    for (std::size_t i = 0; i < failures().size(); ++i) {
        const Lines first = script(upToHost() + Flow{volumesOnHost(kind, {}), newHostGroup(), addHost(), newLunGroup()});
        const Failing failing = failures()[i];
        const Lines membership = membershipFailing(failing, warnings[i], "leave addObjToLunGroup failed.");
        EXPECT_EQ(attach(), -1);
        EXPECT_EQ(newLog(), joined({{"info: enter attachSnapshotToHost successfully!"},
                                    first,
                                    membership,
                                    {"error: leave attachSnapshotToHost failed!"}}));
        EXPECT_EQ(lastFailure().operation, "addObjToLunGroup");
        EXPECT_EQ(lastFailure().code, failing.code);
        recorder.verify();
        fakeClock.set({1614834367, 0});  // the pause between the tries must not change the next names
    }
}

}  // namespace
}  // namespace brevan::test
