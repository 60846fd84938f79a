#include "handlers/LunGroupHandlerImpl.h"

#include "RequestTests.h"

#include <stdexcept>

namespace brevan::test {
namespace {

constexpr int kNothing = -1000;  ///< stands for the result of the two changes that return none

/// One of the four changes of a group's members.
struct Change {
    const char* name;
    const char* worker;
    std::string request;
    std::string subject;  ///< "add lun (3) to lun group(7)" and the like
    std::vector<int> tolerated;
    const char* toleratedLine;
    std::string refusedLine;
    std::string retryLine;
    const char* failedLine;
    const char* objectIdMissing;
    bool repeatsWhateverFailed;
    bool hasResult;
    std::function<int(CLunGroupHandlerImpl&, const std::string& object, const std::string& group)> call;
};

const std::vector<Change> kChanges = {
    {"addLunToLunGroup",
     "addObjToLunGroup",
     R"(POST /lungroup/associate {"ID":"7","ASSOCIATEOBJTYPE":11,"ASSOCIATEOBJID":"3"})",
     "add lun (3) to lun group(7)",
     {1077936862, 1077948997},
     "the object was already in the lun group, ignore it.",
     "add obj(3) to lungroup(7) failed.",
     "retry addObjToLunGroup: ",
     "addObjToLunGroup failed.",
     "lunID is empty! ",
     true,
     false,
     [](auto& handler, auto& object, auto& group) {
         handler.addLunToLunGroup(object, group);
         return kNothing;
     }},
    {"addSnapshotToLunGroup",
     "addObjToLunGroup",
     R"(POST /lungroup/associate {"ID":"7","ASSOCIATEOBJTYPE":27,"ASSOCIATEOBJID":"3"})",
     "add snapshot (3) to lun group(7)",
     {1077936862, 1077948997},
     "the object was already in the lun group, ignore it.",
     "add obj(3) to lungroup(7) failed.",
     "retry addObjToLunGroup: ",
     "leave addObjToLunGroup failed.",
     "snapshotID is empty! ",
     false,
     true,
     [](auto& handler, auto& object, auto& group) { return handler.addSnapshotToLunGroup(object, group); }},
    {"removeLunFromLunGroup",
     "removeObjFromLunGroup",
     "DELETE /lungroup/associate?ID=7&ASSOCIATEOBJTYPE=11&ASSOCIATEOBJID=3",
     "remove lun (3) from lun group(7)",
     {1077948996},
     "the obj was not in the lun group",
     "remove obj (3) to lungroup(7) failed.",
     "retry removeObjFromLunGroup: ",
     "leave removeLunFromLunGroup failed.",
     "lunID is empty! ",
     false,
     false,
     [](auto& handler, auto& object, auto& group) {
         handler.removeLunFromLunGroup(object, group);
         return kNothing;
     }},
    {"removeSnapshotFromLunGroup",
     "removeObjFromLunGroup",
     "DELETE /lungroup/associate?ID=7&ASSOCIATEOBJTYPE=27&ASSOCIATEOBJID=3",
     "remove snapshot (3) from lun group(7)",
     {1077948996},
     "the obj was not in the lun group",
     "remove obj (3) to lungroup(7) failed.",
     "retry removeObjFromLunGroup: ",
     "leave removeSnapshotFromLunGroup failed.",
     "snapshotID is empty! ",
     false,
     true,
     [](auto& handler, auto& object, auto& group) { return handler.removeSnapshotFromLunGroup(object, group); }},
};

class Membership : public SdkTest, public testing::WithParamInterface<Change> {
protected:
    CLunGroupHandlerImpl handler{&manager};
    const Change& change = GetParam();

    int run() { return change.call(handler, "3", "7"); }
    int resultOr(int result) const { return change.hasResult ? result : kNothing; }

    std::string refusalText(int code) const
    {
        return "get error response, error code:" + std::to_string(code) + ", description:50%s\n " + change.worker;
    }
    std::string unsentText() const { return std::string("url error or internet error ") + change.worker; }

    // The lines of one try, by how it ends.
    Lines done() const { return entered(change.worker, {"info: " + change.subject + " success "}); }
    Lines tolerated(int code) const { return tried(refusalText(code), code, change.toleratedLine); }
    Lines refused(int code) const
    {
        return tried(refusalText(code), code, change.refusedLine + ", errCode: " + std::to_string(code));
    }
    Lines unsent(int code) const { return tried(unsentText(), code, change.subject + " failed "); }

    Lines tried(const std::string& error, int code, const std::string& warning) const
    {
        Lines lines = failed(change.worker, error, code);
        lines.push_back("warn: " + warning);
        return lines;
    }
    std::string retry(int triesLeft) const { return "info: " + change.retryLine + std::to_string(triesLeft); }

    static Lines joined(const std::vector<Lines>& parts)
    {
        Lines all;
        for (const Lines& part : parts) {
            all.insert(all.end(), part.begin(), part.end());
        }
        return all;
    }
    Lines failedAtLast(const std::vector<Lines>& parts, int code) const
    {
        Lines lines = joined(parts);
        lines.push_back(std::string("error: ") + change.failedLine);
        return entered(change.name, lines, code);
    }
};

TEST_P(Membership, IsChangedByOneRequest)
{
    expect(change.request, answer(""));
    EXPECT_EQ(run(), resultOr(0));
    EXPECT_EQ(newLog(), entered(change.name, done()));
    EXPECT_TRUE(fakeClock.sleeps().empty());
    EXPECT_TRUE(lastFailure().empty());
}

TEST_P(Membership, ThatIsAsItShouldBeAlreadyIsNoFailure)
{
    for (const int code : change.tolerated) {
        expect(change.request, refusal(code, "50%s\n"));
        EXPECT_EQ(run(), resultOr(0));
        EXPECT_EQ(newLog(), entered(change.name, tolerated(code)));
        EXPECT_TRUE(lastFailure().empty());
    }
    EXPECT_TRUE(fakeClock.sleeps().empty());
}

TEST_P(Membership, IsTriedAgainAndThenGivenUp)
{
    useRetries(1, 300);
    expect(change.request, refusal(1077949061, "50%s\n"));
    expect(change.request, refusal(1077949061, "50%s\n"));
    EXPECT_EQ(run(), resultOr(1077949061));
    EXPECT_EQ(newLog(), failedAtLast({refused(1077949061), {retry(1)}, refused(1077949061)}, 1077949061));
    EXPECT_EQ(fakeClock.sleeps(), std::vector<std::uint64_t>{300});
    EXPECT_EQ(lastFailure().code, 1077949061);
    EXPECT_EQ(lastFailure().text, refusalText(1077949061));
}

TEST_P(Membership, IsTriedAgainWhereNoReplyCame)
{
    useRetries(2, 300);
    expect(change.request, sendFailure(1007));
    expect(change.request, sendFailure(1005));
    expect(change.request, sendFailure(1006));
    EXPECT_EQ(run(), resultOr(-1));
    EXPECT_EQ(newLog(), failedAtLast({unsent(1007), {retry(2)}, unsent(1005), {retry(1)}, unsent(1006)}, -1));
    EXPECT_EQ(fakeClock.sleeps(), (std::vector<std::uint64_t>{300, 300}));
    EXPECT_EQ(lastFailure().code, 1006);  // of several tries the last one counts
}

TEST_P(Membership, IsNoFailureWhereALaterTrySucceeds)
{
    useRetries(3, 300);
    expect(change.request, sendFailure(1007));
    expect(change.request, answer(""));
    EXPECT_EQ(run(), resultOr(0));
    EXPECT_EQ(newLog(), entered(change.name, joined({unsent(1007), {retry(3)}, done()})));
    EXPECT_EQ(fakeClock.sleeps(), std::vector<std::uint64_t>{300});
    EXPECT_TRUE(lastFailure().empty());
}

TEST_P(Membership, IsTriedOnceWithoutRetries)
{
    useRetries(0, 300);
    expect(change.request, refusal(1077949061, "50%s\n"));
    EXPECT_EQ(run(), resultOr(1077949061));
    EXPECT_EQ(newLog(), failedAtLast({refused(1077949061)}, 1077949061));
    EXPECT_TRUE(fakeClock.sleeps().empty());
}

TEST_P(Membership, IsRepeatedWithoutASessionOnlyForAddingALun)
{
    useRetries(1, 300);
    expect(change.request, refusal(-401, "50%s\n"));
    std::vector<Lines> tries = {refused(-401)};
    if (change.repeatsWhateverFailed) {
        expect(change.request, refusal(-401, "50%s\n"));
        tries.insert(tries.end(), {{retry(1)}, refused(-401)});
    }
    EXPECT_EQ(run(), resultOr(-401));
    EXPECT_EQ(newLog(), failedAtLast(tries, -401));
    EXPECT_EQ(fakeClock.sleeps().size(), change.repeatsWhateverFailed ? 1U : 0U);
}

TEST_P(Membership, LetsNoForeignExceptionThrough)
{
    useRetries(0, 300);
    Answer thrower = answer("");
    thrower.before = [] { throw std::runtime_error("50%s"); };
    expect(change.request, thrower);
    EXPECT_EQ(run(), resultOr(-1));
    const Lines lines = tried(std::string("unexpected failure: 50%s ") + change.worker, 1, change.subject + " failed ");
    EXPECT_EQ(newLog(), failedAtLast({lines}, -1));
}

TEST_P(Membership, NeedsBothIds)
{
    const std::string object = std::string(change.objectIdMissing) + change.name;
    EXPECT_EQ(thrownBy([&] { change.call(handler, "", ""); }), "Exception:" + object);
    EXPECT_EQ(newLog(), failed(change.name, object, 1));
    const std::string group = std::string("LunGroup id is empty! ") + change.name;
    EXPECT_EQ(thrownBy([&] { change.call(handler, "3", ""); }), "Exception:" + group);
    EXPECT_EQ(newLog(), failed(change.name, group, 1));
}

INSTANTIATE_TEST_SUITE_P(Changes, Membership, testing::ValuesIn(kChanges),
                         [](const auto& tested) { return std::string(tested.param.name); });

class MembershipRetry : public SdkTest {};

TEST_F(MembershipRetry, IsOneWithoutADeviceManager)
{
    CLunGroupHandlerImpl handler;
    expect(kChanges[1].request, sendFailure(1001));
    expect(kChanges[1].request, sendFailure(1001));
    EXPECT_EQ(handler.addSnapshotToLunGroup("3", "7"), -1);
    EXPECT_EQ(fakeClock.sleeps(), std::vector<std::uint64_t>{500000});
}

// A removal answered with "not a member" is a success already, so that code reaches the retry loops only from an add.
TEST_F(MembershipRetry, OfAddingEndsAtNotAMemberForSnapshotsOnly)
{
    useRetries(1, 300);
    CLunGroupHandlerImpl handler(&manager);
    expect(kChanges[1].request, refusal(1077948996, ""));
    EXPECT_EQ(handler.addSnapshotToLunGroup("3", "7"), 1077948996);
    EXPECT_TRUE(fakeClock.sleeps().empty());
    expect(kChanges[0].request, refusal(1077948996, ""));
    expect(kChanges[0].request, refusal(1077948996, ""));
    handler.addLunToLunGroup("3", "7");
    EXPECT_EQ(fakeClock.sleeps(), std::vector<std::uint64_t>{300});
}

TEST_F(MembershipRetry, IsNeededOnlyWhereItCanHelp)
{
    for (const int result : {0, -401, 1077948996}) {
        EXPECT_FALSE(CLunGroupHandlerImpl::IsNeedRetry(result, 1)) << result;
    }
    for (const int result : {-1, 1, 1077936862, 1077948997, 1077949061}) {
        EXPECT_TRUE(CLunGroupHandlerImpl::IsNeedRetry(result, 1)) << result;
        EXPECT_TRUE(CLunGroupHandlerImpl::IsNeedRetry(result, 4294967295U)) << result;
        EXPECT_FALSE(CLunGroupHandlerImpl::IsNeedRetry(result, 0)) << result;
    }
}

}  // namespace
}  // namespace brevan::test
