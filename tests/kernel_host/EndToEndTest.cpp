// The main job against the simulated array and a real kernel: runs as root inside the kernel host's guest and nowhere else.
#include "HostDisks.h"
#include "KernelHost.h"

#include <future>

namespace brevan::test {
namespace {

using sim::ArrayServer;
using EndToEnd = KernelHost;

TEST_F(EndToEnd, FindsTheDiskOfAnAttachedLunAndDetachesIt)
{
    const LunMO lun = client.createLun();
    waitForNewSecond();
    ASSERT_EQ(client.attach(lun.ID), 0);
    ASSERT_TRUE(lastFailure().empty()) << lastFailure().text;
    const std::string path = client.scan(lun.ID);
    ASSERT_NE(path, "") << lastFailure().text;
    EXPECT_TRUE(isExposed(lun.WWN));
    EXPECT_EQ(wwnBySgInq(path), lun.WWN);
    client.detach(lun.ID);
    EXPECT_TRUE(lastFailure().empty()) << lastFailure().text;
    EXPECT_FALSE(isExposed(lun.WWN));
    deleteDisk(path);
    EXPECT_EQ(client.scan(lun.ID), "");
    EXPECT_EQ(client.manager->logoutDevice(), 1);
}

TEST_F(EndToEnd, RefusesAWrongPassword)
{
    HostClient other(ownInitiator());
    EXPECT_EQ(other.login(*array, "wrong"), 0);
    EXPECT_EQ(lastFailure().operation, "loginDevice");
    EXPECT_NE(lastFailure().text.find("Login device fail,err msg:"), std::string::npos) << lastFailure().text;
}

TEST_F(EndToEnd, TellsThatTheSessionIsGone)
{
    const LunMO lun = client.createLun();
    array->endAllSessions();
    EXPECT_EQ(client.attach(lun.ID), 0);
    EXPECT_EQ(lastFailure().code, FAILURE_SESSION_EXPIRED);
    EXPECT_EQ(lastFailure().advice, "Log in again.");
    EXPECT_EQ(client.scan(lun.ID), "");
    EXPECT_EQ(lastFailure().code, FAILURE_SESSION_EXPIRED);
    ASSERT_EQ(client.login(*array), 1);
    EXPECT_EQ(client.get<CLunHandler>(HANDLER_LUN).getLun(lun.ID).ID, lun.ID);
}

TEST_F(EndToEnd, TellsThatTheArrayHasStopped)
{
    auto options = lioOptions("/tmp/brief");
    options.exposure = sim::Exposure::kNone;
    ArrayServer brief(options);
    brief.start();
    trust(brief);
    HostClient other(ownInitiator());
    ASSERT_EQ(other.login(brief), 1) << lastFailure().text;
    const LunMO lun = other.createLun();
    brief.stop();
    EXPECT_EQ(other.attach(lun.ID), 0);
    // Whether the end of the warm connection is noticed before or after the request went out is a matter of microseconds.
    EXPECT_TRUE(lastFailure().code == FAILURE_NO_CONNECTION || lastFailure().code == FAILURE_CONNECTION_LOST)
        << lastFailure().text;
    EXPECT_THROW(other.get<CLunHandler>(HANDLER_LUN).getLun(lun.ID), PlimAPIException);
}

TEST_F(EndToEnd, ReturnsOneForALunThatIsMapped)
{
    const LunMO lun = client.createLun();
    waitForNewSecond();
    ASSERT_EQ(client.attach(lun.ID), 0);
    const auto before = array->requestCount();
    waitForNewSecond();
    EXPECT_EQ(client.attach(lun.ID), 1);
    EXPECT_EQ(lastFailure().text, "The MappingView was already existed! attachLunToHost");
    for (const auto& entry : array->journal()) {
        EXPECT_TRUE(entry.number <= before || entry.method == "GET") << entry.method << " " << entry.path;
    }
}

TEST_F(EndToEnd, TellsThatALunIsUnknown)
{
    EXPECT_EQ(client.attach("999999"), 0);
    EXPECT_EQ(lastFailure().operation, "getLun");
    EXPECT_EQ(client.scan("999999"), "");
    EXPECT_EQ(lastFailure().operation, "getLun");
}

TEST_F(EndToEnd, KeepsTheHostOfAnInitiatorThatIsBound)
{
    const LunMO first = client.createLun();
    const LunMO second = client.createLun();
    waitForNewSecond();
    ASSERT_EQ(client.attach(first.ID), 0);
    const std::string host = client.hostOfInitiator();
    waitForNewSecond();
    ASSERT_EQ(client.attach(second.ID), 0);
    ASSERT_TRUE(lastFailure().empty()) << lastFailure().text;
    EXPECT_EQ(client.hostOfInitiator(), host);
    EXPECT_NE(client.scan(second.ID), "") << lastFailure().text;
}

/// An attach that begins with the next second, and what it tells of itself.
std::future<Failure> attachInNewSecond(const ArrayServer& array, const std::string& lunId)
{
    return std::async(std::launch::async, [&array, lunId] {
        HostClient own(ownInitiator());
        EXPECT_EQ(own.login(array), 1) << lastFailure().text;
        waitForNewSecond();
        EXPECT_EQ(own.attach(lunId), 0);
        return lastFailure();
    });
}

TEST_F(EndToEnd, FailsOneOfTwoAttachesInOneSecond)
{
    // On a slow machine one of the two may come to its names a second later: then both are right to succeed.
    for (int attempt = 0; attempt < 20; ++attempt) {
        const LunMO first = client.createLun();
        const LunMO second = client.createLun();
        auto one = attachInNewSecond(*array, first.ID);
        auto other = attachInNewSecond(*array, second.ID);
        const Failure ofFirst = one.get();
        const Failure ofSecond = other.get();
        if (ofFirst.empty() && ofSecond.empty()) {
            continue;
        }
        EXPECT_NE(ofFirst.empty(), ofSecond.empty()) << ofFirst.text << " / " << ofSecond.text;
        const Failure& why = ofFirst.empty() ? ofSecond : ofFirst;
        EXPECT_TRUE(why.operation == "createLunGroup" || why.operation == "createHost") << why.text;
        waitForNewSecond();
        EXPECT_EQ(client.attach(ofFirst.empty() ? second.ID : first.ID), 0);
        EXPECT_TRUE(lastFailure().empty()) << lastFailure().text;
        return;
    }
    FAIL() << "two attaches never came to the same name";
}

TEST_F(EndToEnd, ReturnsNoPathForADiskThatNeverShowsUp)
{
    const LunMO lun = client.createLun();
    waitForNewSecond();
    ASSERT_EQ(client.attach(lun.ID, kOtherInitiator), 0);
    ASSERT_TRUE(lastFailure().empty()) << lastFailure().text;
    EXPECT_EQ(client.scan(lun.ID), "");
    EXPECT_NE(lastFailure().text.find(lun.WWN), std::string::npos) << lastFailure().text;
}

}  // namespace
}  // namespace brevan::test
