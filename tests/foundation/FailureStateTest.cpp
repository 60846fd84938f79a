#include "foundation/FailureState.h"

#include <brevan/LastFailure.h>

#include <gtest/gtest.h>

#include <thread>

namespace brevan::test {
namespace {

/// An operation as far as the state of failures is concerned.
class Entered {
public:
    Entered() { FailureState::enterOperation(); }
    Entered(const Entered&) = delete;
    Entered& operator=(const Entered&) = delete;
    ~Entered() { FailureState::leaveOperation(); }
};

TEST(LastFailure, TellsOperationCodeTextAndAdvice)
{
    const Entered operation;
    FailureState::note("getLun", FAILURE_SESSION_EXPIRED, "session gone");
    const Failure failure = lastFailure();
    EXPECT_EQ(failure.operation, "getLun");
    EXPECT_EQ(failure.code, -401);
    EXPECT_EQ(failure.text, "session gone");
    EXPECT_EQ(failure.advice, "Log in again.");
    EXPECT_FALSE(failure.empty());
}

TEST(LastFailure, TakesTheAdviceGiven)
{
    const Entered operation;
    FailureState::note("attachLunToHost", FAILURE_NO_CONNECTION, "text", "do that");
    EXPECT_EQ(lastFailure().advice, "do that");
}

TEST(LastFailure, KeepsTheFirstOfSeveral)
{
    const Entered operation;
    FailureState::note("first", 1, "one");
    FailureState::note("second", 2, "two");
    EXPECT_EQ(lastFailure().operation, "first");
    EXPECT_EQ(lastFailure().code, 1);
    EXPECT_EQ(FailureState::passingCode(), 2);
}

TEST(LastFailure, OutlivesItsOperationAndIsClearedByTheNextOutermostOne)
{
    {
        const Entered outer;
        const Entered inner;
        FailureState::note("inner", 5, "text");
    }
    EXPECT_EQ(lastFailure().code, 5);
    const Entered next;
    EXPECT_TRUE(lastFailure().empty());
    EXPECT_EQ(FailureState::passingCode(), 0);
}

TEST(LastFailure, IsNotClearedByANestedOperation)
{
    const Entered outer;
    FailureState::note("outer", 5, "text");
    const Entered inner;
    EXPECT_EQ(lastFailure().code, 5);
}

TEST(LastFailure, IsEachThreadsOwn)
{
    const Entered operation;
    FailureState::note("here", 5, "text");
    bool emptyThere = false;
    std::thread([&] { emptyThere = lastFailure().empty(); }).join();
    EXPECT_TRUE(emptyThere);
    EXPECT_EQ(lastFailure().operation, "here");
}

TEST(LastFailure, TellsOfAShortageThatLeftNoRoomForWords)
{
    const Entered operation;
    FailureState::noteShortage("getLun");
    FailureState::note("later", 5, "text");
    EXPECT_EQ(lastFailure().operation, "getLun");
    EXPECT_EQ(lastFailure().code, FAILURE_REFUSED);
    EXPECT_EQ(lastFailure().text, "memory is exhausted");
    EXPECT_NE(lastFailure().advice, "");
}

TEST(LastFailure, KeepsWhatCameBeforeAShortage)
{
    const Entered operation;
    FailureState::note("first", 5, "text");
    FailureState::noteShortage("getLun");
    EXPECT_EQ(lastFailure().operation, "first");
}

TEST(FailureMark, ForgivesAShortageToo)
{
    const Entered operation;
    const FailureMark mark;
    FailureState::noteShortage("try");
    EXPECT_TRUE(mark.failedSince());
    mark.forgive();
    EXPECT_TRUE(lastFailure().empty());
}

TEST(FailureMark, ForgivesWhatWentWrongSince)
{
    const Entered operation;
    const FailureMark mark;
    EXPECT_FALSE(mark.failedSince());
    FailureState::note("try", 5, "text");
    EXPECT_TRUE(mark.failedSince());
    mark.forgive();
    EXPECT_TRUE(lastFailure().empty());
    EXPECT_FALSE(mark.failedSince());
}

TEST(FailureMark, DoesNotForgiveWhatHadGoneWrongBefore)
{
    const Entered operation;
    FailureState::note("before", 5, "text");
    const FailureMark mark;
    FailureState::note("since", 6, "text");
    mark.forgive();
    EXPECT_EQ(lastFailure().operation, "before");
    EXPECT_FALSE(mark.failedSince());
}

}  // namespace
}  // namespace brevan::test
