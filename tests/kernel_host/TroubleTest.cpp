// What goes wrong between attach and disk, on a real kernel: each scan ends, says why, and the next one finds the disk. Runs inside the
// kernel host and nowhere else.
#include "ClientProcess.h"
#include "HostDisks.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <future>

namespace brevan::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

class Trouble : public KernelHost {
protected:
    static void SetUpTestSuite()
    {
        KernelHost::SetUpTestSuite();
        logoutInitiator();  // a session that has lost its target is given up after 3 s instead of 120
        run("iscsiadm -m node -o update -n node.session.timeo.replacement_timeout -v 3 && iscsiadm -m node --login");
    }
    void SetUp() override
    {
        KernelHost::SetUp();
        lun = attachedLun();
    }
    void TearDown() override
    {
        for (const std::string& name : diskNames()) {
            deleteDisk(name);
        }
        client.detach(lun.ID);
    }

    /// A scan in the midst of whose rescan something happens.
    std::string scanAnd(const std::function<void()>& event)
    {
        RescanRecorder::hold("do_uprescan");
        auto scanning = std::async(std::launch::async, [this] {
            std::string path = client.scan(lun.ID);
            failure = lastFailure();
            return path;
        });
        EXPECT_TRUE(eventually([] { return RescanRecorder::callsOf("begin do_uprescan") == 1; }));
        event();
        RescanRecorder::letGo("do_uprescan");
        return scanning.get();
    }
    void expectFoundNow() { EXPECT_NE(client.scan(lun.ID), "") << lastFailure().text; }

    RescanRecorder recorder;
    LunMO lun;
    Failure failure;
};

TEST_F(Trouble, OfAnInitiatorThatIsLoggedOutInTheRescan)
{
    EXPECT_EQ(scanAnd(logoutInitiator), "");
    EXPECT_THAT(failure.text, HasSubstr(lun.WWN));
    EXPECT_THAT(failure.advice, HasSubstr("the initiator is logged in"));
    run("iscsiadm -m node --login");
    expectFoundNow();
}

TEST_F(Trouble, OfATargetThatIsGoneInTheRescan)
{
    const std::string group = run("echo -n /sys/kernel/config/target/iscsi/iqn*/tpgt_1");
    EXPECT_EQ(scanAnd([&] { run("echo 0 >" + group + "/enable; sleep 1"); }), "");
    EXPECT_THAT(failure.text, HasSubstr(lun.WWN));
    run("echo 1 >" + group + "/enable");
    EXPECT_TRUE(eventually([] { return run("iscsiadm -m session -P 1 || true").find("LOGGED IN") != std::string::npos; }));
    expectFoundNow();
}

TEST_F(Trouble, OfASessionThatExpiredBetweenAttachAndScan)
{
    array->endAllSessions();
    EXPECT_EQ(client.scan(lun.ID), "");
    EXPECT_EQ(lastFailure().code, FAILURE_SESSION_EXPIRED);
    EXPECT_EQ(RescanRecorder::calls().size(), 0U);
    ASSERT_EQ(client.login(*array), 1);
    expectFoundNow();
}

/// The client is a process of its own, which begins when the disk is full: its logs are there, and empty.
TEST_F(Trouble, OfAFullDiskOfLogsStopsNothing)
{
    const std::string logs = std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path() / "lib/logs";
    run("mount -t tmpfs -o size=1M none " + logs + " && (cat /dev/zero >" + logs + "/full 2>/dev/null || true)");
    EXPECT_EQ(run("find " + logs + " -name '*kernel_host_client*'"), "");
    ClientProcess scanning(*array, {"scan", lun.ID});
    const auto said = scanning.said();
    EXPECT_NE(said.at("result"), "") << said.at("text");
    EXPECT_THAT(run("find " + logs + " -name '*kernel_host_client*' -size 0"),
                AllOf(HasSubstr(".run.log"), HasSubstr(".interface.log")));
    EXPECT_EQ(run("find " + logs + " -name '*kernel_host_client*' -size +0"), "");
    EXPECT_EQ(std::filesystem::space(logs).available, 0U);
    run("umount -l " + logs);
    expectFoundNow();
}

/// A real disk whose model is what the busy wait looks for: lsscsi lists it.
TEST_F(Trouble, OfATemporaryDeviceThatStaysListedIsWaitedFor)
{
    addDebugDisk("inq_product=tmp-block");
    EXPECT_THAT(run("lsscsi"), HasSubstr("tmp-block"));
    auto gone = std::async(std::launch::async, [] {
        std::this_thread::sleep_for(std::chrono::seconds(20));
        const auto end = std::chrono::steady_clock::now();
        removeDebugDisk();
        return end;
    });
    expectFoundNow();
    const auto found = std::chrono::steady_clock::now();
    EXPECT_GE(found, gone.get()) << "the scan did not wait for it";
}

}  // namespace
}  // namespace brevan::test
