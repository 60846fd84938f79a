// The main job against the simulated array and a real kernel: runs as root inside the kernel host's guest and nowhere else.
#include "support/HostClient.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <future>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

using brevan::lastFailure;
using brevan::sim::ArrayServer;
using brevan::test::HostClient;
using brevan::test::trust;
using brevan::test::waitForNewSecond;

constexpr const char* kOtherInitiator = "iqn.2020-01.lab:somebody-else";

/// The standard output of a command that has to succeed.
std::string run(const std::string& command)
{
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(popen((command + " 2>&1").c_str(), "r"), pclose);
    std::string output;
    for (int c = 0; (c = std::fgetc(pipe.get())) != EOF;) {
        output += static_cast<char>(c);
    }
    if (pclose(pipe.release()) != 0) {
        throw std::runtime_error(command + " failed: " + output);
    }
    return output;
}

std::string ownInitiator()
{
    std::ifstream file("/etc/iscsi/initiatorname.iscsi");
    std::string line;
    std::getline(file, line);
    return line.substr(line.find('=') + 1);
}

brevan::sim::ServerOptions arrayOptions(const std::string& folder)
{
    auto options = brevan::test::arrayOptions(folder);
    options.volumeDirectory = folder + "/volumes";
    options.iscsiInitiators = {ownInitiator(), kOtherInitiator};
    return options;
}

/// One array with the kernel's iSCSI target behind it, to which this host is logged in, for all tests; a session for each.
class EndToEnd : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        auto options = arrayOptions("/tmp/array");
        options.exposure = brevan::sim::Exposure::kLio;
        array = std::make_unique<ArrayServer>(options);
        array->start();
        run("iscsiadm -m discovery -t st -p 127.0.0.1");
        run("iscsiadm -m node --login");
    }

    static void TearDownTestSuite()
    {
        run("iscsiadm -m session -u");
        array.reset();
    }

    void SetUp() override
    {
        trust(*array);
        ASSERT_EQ(client.login(*array), 1) << lastFailure().text;
    }

    /// Whether the array shows the volume to this host.
    static bool isExposed(const std::string& wwn)
    {
        auto plan = array->exposed();
        for (const auto& [number, volume] : plan[ownInitiator()]) {
            if (volume.wwn == wwn) {
                return true;
            }
        }
        return false;
    }

    static std::unique_ptr<ArrayServer> array;
    HostClient client{ownInitiator()};
};

std::unique_ptr<ArrayServer> EndToEnd::array;

/// The host forgets a disk that was detached: by hand, since the array cannot make it.
void deleteDisk(const std::string& wwn)
{
    run("echo 1 >/sys/block/$(basename $(readlink /dev/disk/by-id/wwn-0x" + wwn + "))/device/delete && udevadm settle");
}

TEST_F(EndToEnd, FindsTheDiskOfAnAttachedLunAndDetachesIt)
{
    const LunMO lun = client.createLun();
    waitForNewSecond();
    ASSERT_EQ(client.attach(lun.ID), 0);
    ASSERT_TRUE(lastFailure().empty()) << lastFailure().text;
    const std::string path = client.scan(lun.ID);
    ASSERT_NE(path, "") << lastFailure().text;
    EXPECT_TRUE(isExposed(lun.WWN));
    EXPECT_NE(run("sg_inq -p 0x83 " + path).find(lun.WWN), std::string::npos);
    client.detach(lun.ID);
    EXPECT_TRUE(lastFailure().empty()) << lastFailure().text;
    EXPECT_FALSE(isExposed(lun.WWN));
    deleteDisk(lun.WWN);
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
    EXPECT_EQ(lastFailure().code, brevan::FAILURE_SESSION_EXPIRED);
    EXPECT_EQ(lastFailure().advice, "Log in again.");
    EXPECT_EQ(client.scan(lun.ID), "");
    EXPECT_EQ(lastFailure().code, brevan::FAILURE_SESSION_EXPIRED);
    ASSERT_EQ(client.login(*array), 1);
    EXPECT_EQ(client.get<CLunHandler>(HANDLER_LUN).getLun(lun.ID).ID, lun.ID);
}

TEST_F(EndToEnd, TellsThatTheArrayHasStopped)
{
    ArrayServer brief(arrayOptions("/tmp/brief"));
    brief.start();
    trust(brief);
    HostClient other(ownInitiator());
    ASSERT_EQ(other.login(brief), 1) << lastFailure().text;
    const LunMO lun = other.createLun();
    brief.stop();
    EXPECT_EQ(other.attach(lun.ID), 0);
    // Whether the end of the warm connection is noticed before or after the request went out is a matter of microseconds.
    EXPECT_TRUE(lastFailure().code == brevan::FAILURE_NO_CONNECTION || lastFailure().code == brevan::FAILURE_CONNECTION_LOST)
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
std::future<brevan::Failure> attachInNewSecond(const ArrayServer& array, const std::string& lunId)
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
        const brevan::Failure ofFirst = one.get();
        const brevan::Failure ofSecond = other.get();
        if (ofFirst.empty() && ofSecond.empty()) {
            continue;
        }
        EXPECT_NE(ofFirst.empty(), ofSecond.empty()) << ofFirst.text << " / " << ofSecond.text;
        const brevan::Failure& why = ofFirst.empty() ? ofSecond : ofFirst;
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
