#include "attach/AttachCalls.h"
#include "support/ManagerWithout.h"

namespace brevan::test {
namespace {

class DetachFlow : public FlowTest {
protected:
    const std::string operation = kind.detach;

    Flow upToHost() const { return {readVolume(kind), readInitiator("21"), readHost()}; }

    /// Takes the volume, the last in its group, out of the group of one view and deletes the group.
    Flow emptied(const std::string& group, const std::string& view) const
    {
        return {takeOut(kind, group), countIn(group, 0, 0), unjoin(group, view), test::deleteLunGroup(group)};
    }

    /// One host group with one view, whose LUN group holds the volume alone.
    Flow behindOneView() const
    {
        const Flow search = {hostGroups({"40"}), viewsOfHostGroup("40", {"50"}), lunGroupOfView("50", {"30"}),
                             volumesIn(kind, "30", {"7"})};
        return upToHost() + search + emptied("30", "50");
    }

    /// Three groups hold the volume, the first and the last with others, the second alone and in two views.
    Flow everywhere() const
    {
        const Flow first = {takeOut(kind, "31"), countIn("31", 3, 2)};
        const Flow second = {takeOut(kind, "30"), countIn("30", 0, 0), viewsOfLunGroup("30", {"50", "51"}),
                             unjoin("30", "50"),  unjoin("30", "51"),  test::deleteLunGroup("30")};
        const Flow third = {takeOut(kind, "32"), countIn("32", 0, 1)};
        return Flow{readVolume(kind), lunGroupsOf(kind, {"31", "30", "32"})} + first + second + third;
    }
};

INSTANTIATE_TEST_SUITE_P(Volumes, DetachFlow, testing::Values(lunKind(), snapshotKind()),
                         [](const auto& of) { return of.param.capital(); });

TEST_P(DetachFlow, TakesTheVolumeOutOfTheGroupBehindTheHostsView)
{
    const Lines log = script(behindOneView());
    EXPECT_EQ(detach("iqn"), 0);
    EXPECT_EQ(newLog(), closed(operation, log));
    EXPECT_TRUE(lastFailure().empty());
}

TEST_P(DetachFlow, WalksEveryViewOfEveryHostGroup)
{
    const Flow search = {hostGroups({"40", "41", "42"}), viewsOfHostGroup("40", {}), viewsOfHostGroup("41", {"50", "51"})};
    const Flow withoutGroup = {lunGroupOfView("50", {})};
    const Flow withoutVolume = {lunGroupOfView("51", {"31"}), volumesIn(kind, "31", {})};
    const Flow last = {viewsOfHostGroup("42", {"52"}), lunGroupOfView("52", {"32"}), volumesIn(kind, "32", {"7"})};
    const Lines log = script(upToHost() + search + withoutGroup + withoutVolume + last + emptied("32", "52"));
    EXPECT_EQ(detach("iqn"), 0);
    EXPECT_EQ(newLog(), closed(operation, log));
    EXPECT_TRUE(lastFailure().empty());
}

TEST_P(DetachFlow, LeavesAGroupThatHoldsOtherObjectsInItsViews)
{
    for (const auto& [luns, snapshots] : {std::pair(1, 0), std::pair(0, 1), std::pair(3, 2)}) {
        const Flow search = {hostGroups({"40"}), viewsOfHostGroup("40", {"50"}), lunGroupOfView("50", {"30"}),
                             volumesIn(kind, "30", {"7"})};
        const Lines log = script(upToHost() + search + Flow{takeOut(kind, "30"), countIn("30", luns, snapshots)});
        EXPECT_EQ(detach("iqn"), 0);
        EXPECT_EQ(newLog(), closed(operation, log));
        recorder.verify();
    }
}

TEST_P(DetachFlow, TakesTheVolumeOutOfEveryGroupForEveryHost)
{
    const Lines log = script(everywhere());
    EXPECT_EQ(detach("0"), 0);
    EXPECT_EQ(newLog(), closed(operation, log));
    EXPECT_TRUE(lastFailure().empty());
}

TEST_P(DetachFlow, DeletesAnEmptyGroupThatNoViewHolds)
{
    const Lines log = script({readVolume(kind), lunGroupsOf(kind, {"30"}), takeOut(kind, "30"), countIn("30", 0, 0),
                              viewsOfLunGroup("30", {}), test::deleteLunGroup("30")});
    EXPECT_EQ(detach("0"), 0);
    EXPECT_EQ(newLog(), closed(operation, log));
}

TEST_P(DetachFlow, TakesOnlyExactlyZeroForEveryHost)
{
    for (const std::string initiator : {"00", "0 ", " 0", "000"}) {
        script({readVolume(kind)});
        expect("GET /iscsi_initiator/" + initiator, sendFailure(1007));
        EXPECT_EQ(detach(initiator), 0);
        EXPECT_EQ(lastFailure().operation, "getIscsiInitiator");
        recorder.verify();
    }
}

TEST_P(DetachFlow, RefusesMissingArgumentsBeforeAnythingIsSent)
{
    const struct {
        const char* id;
        const char* initiator;
        std::string message;
    } cases[] = {{"", "", kind.idMissing}, {"7", "", "iscsiInitiatorID is empty! "}};
    for (const auto& [id, initiator, message] : cases) {
        EXPECT_EQ(thrownBy([&, i = id, j = initiator] { detach(j, i); }), "Exception:" + message + operation);
        EXPECT_EQ(newLog(), failed(operation, message + operation, 1));
        EXPECT_EQ(lastFailure().text, message + operation);
    }
}

TEST_P(DetachFlow, RefusesToWorkWithoutADeviceManager)
{
    handler = CDiskAttachHandlerImpl();
    EXPECT_EQ(thrownBy([&] { detach("iqn"); }), "Exception:deviceManage is NULL! " + operation);
    EXPECT_EQ(newLog(), failed(operation, "deviceManage is NULL! " + operation, 1));
}

TEST_P(DetachFlow, NamesEachHandlerThatTheDeviceManagerDoesNotHave)
{
    for (auto missing = kind.detachHandlers.begin(); missing != kind.detachHandlers.end(); ++missing) {
        ManagerWithout lacking(*missing);
        handler = CDiskAttachHandlerImpl(&lacking);
        const std::string text = missingHandlerText(*missing) + operation;
        EXPECT_EQ(thrownBy([&] { detach("iqn"); }), "Exception:" + text);
        EXPECT_EQ(newLog(), failed(operation, text, 1));
        EXPECT_EQ(lacking.asked, std::vector<HANDLERTYPE>(kind.detachHandlers.begin(), missing + 1));
        EXPECT_EQ(lastFailure().text, text);
    }
}

TEST_P(DetachFlow, HidesAnUnknownVolumeBehindItsResult)
{
    Call unknown = readVolume(kind);
    unknown[0].data = "{}";
    for (const char* initiator : {"iqn", "0"}) {
        const Lines log = script({unknown});
        EXPECT_EQ(detach(initiator), 0);
        EXPECT_EQ(newLog(), closedAfterFailure(operation, joined({log, {"error: " + (kind.idInvalid + operation)}})));
        EXPECT_EQ(lastFailure().text, kind.idInvalid + operation);
    }
}

TEST_P(DetachFlow, HidesAnUnknownInitiatorBehindItsResult)
{
    Call unknown = readInitiator("21");
    unknown[0].data = "{}";
    const Lines log = script({readVolume(kind), unknown});
    EXPECT_EQ(detach("iqn"), 0);
    const std::string text = "The iscsiInitiatorID is not valid! " + operation;
    EXPECT_EQ(newLog(), closedAfterFailure(operation, joined({log, {"error: " + text}})));
    EXPECT_EQ(lastFailure().text, text);
}

TEST_P(DetachFlow, EndsEarlyWhereThereIsNothingToDetachFrom)
{
    Call hostGone = readHost();
    hostGone[0].data = "{}";
    const Flow initiatorWithHost = {readVolume(kind), readInitiator("21")};
    const struct {
        const char* initiator;
        Flow flow;
        std::string message;
    } cases[] = {
        {"0", {readVolume(kind), lunGroupsOf(kind, {})}, "LunGroup do not exist! "},
        {"iqn", {readVolume(kind), readInitiator("")}, "Host was not existed! "},
        {"iqn", initiatorWithHost + Flow{hostGone}, "Host was not existed! "},
        {"iqn", upToHost() + Flow{hostGroups({})}, "MappingView was not existed! "},
        {"iqn", upToHost() + Flow{hostGroups({"40", "41"}), viewsOfHostGroup("40", {}), viewsOfHostGroup("41", {})},
         "MappingView was not existed! "},
    };
    for (const auto& [initiator, flow, message] : cases) {
        const Lines log = script(flow);
        EXPECT_EQ(detach(initiator), 0);
        EXPECT_EQ(newLog(), endedEarly(operation, log, message));
        EXPECT_EQ(lastFailure().text, message + operation);
        EXPECT_EQ(lastFailure().code, FAILURE_REFUSED);
        recorder.verify();
    }
}

TEST_P(DetachFlow, StopsAtEachRequestThatFailsAndHidesIt)
{
    const std::set<std::string> tolerated = {"removeLunFromLunGroup", "removeSnapshotFromLunGroup"};
    failEachStep(operation, behindOneView(), tolerated, [this] { return detach("iqn"); });
    failEachStep(operation, everywhere(), tolerated, [this] { return detach("0"); });
}

TEST_P(DetachFlow, GoesOnWhereTheVolumeDoesNotLeaveItsGroup)
{
    script({readVolume(kind), lunGroupsOf(kind, {"30"})});
    newLog();
    for (int i = 0; i < 2; ++i) {
        expect(takeOut(kind, "30")[0].request, refusal(50331651, "busy"));
    }
    script({countIn("30", 1, 0)});
    EXPECT_EQ(detach("0"), 0);
    const Lines log = newLog();
    EXPECT_THAT(log, testing::Contains("error: leave remove" + kind.capital() + "FromLunGroup failed."));
    EXPECT_THAT(log, testing::Contains("warn: remove obj (7) to lungroup(30) failed., errCode: 50331651").Times(2));
    EXPECT_EQ(log.back(), "record: " + operation + " 0");
    EXPECT_EQ(lastFailure().operation, "removeObjFromLunGroup");
}

TEST_P(DetachFlow, TakesAVolumeThatLeftTheGroupMeanwhileAsTakenOut)
{
    script({readVolume(kind), lunGroupsOf(kind, {"30"})});
    expect(takeOut(kind, "30")[0].request, refusal(1077948996, "not in"));
    script({countIn("30", 0, 0), viewsOfLunGroup("30", {}), test::deleteLunGroup("30")});
    EXPECT_EQ(detach("0"), 0);
    EXPECT_TRUE(lastFailure().empty());
    EXPECT_EQ(newLog().back(), "record: " + operation + " 0");
}

}  // namespace
}  // namespace brevan::test
