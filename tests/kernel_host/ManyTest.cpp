// Many disks on one host, and many attaches at once, on a real kernel. Runs inside the kernel host and nowhere else.
#include "ClientProcess.h"
#include "HostDisks.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <future>
#include <set>

namespace brevan::test {
namespace {

constexpr int kAtOnce = 8;

/// An attach as its caller sees it.
struct Attempt {
    std::string lunId;
    std::string result;
    std::string operation;  ///< of lastFailure(); empty: attached
    std::string text;
};

class Many : public KernelHost {
protected:
    void TearDown() override
    {
        for (const std::string& name : diskNames()) {
            deleteDisk(name);
        }
        for (const std::string& id : lunIds) {
            client.get<CDiskAttachHandler>(HANDLER_DISK_ATTACH).detachLunFromHost(id, "0");
        }
        EXPECT_EQ(console.count("/lungroup"), 0) << "detaching from every host clears up after attaches that failed, too";
    }

    LunMO lun()
    {
        LunMO created = client.createLun();
        lunIds.push_back(created.ID);
        wwns.push_back(created.WWN);
        return created;
    }
    bool isAttached(const std::string& id) const { return isExposed(array->volumeWwn(id)); }

    void expectOneAttachASecond(const std::vector<Attempt>& attempts, int viewsBefore);

    ArrayConsole console{*array};
    std::vector<std::string> lunIds;
    std::vector<std::string> wwns;
};

/// Those that came to a name first are attached. Each other one tells why, shows nothing to the host, left no view, and succeeds later.
void Many::expectOneAttachASecond(const std::vector<Attempt>& attempts, int viewsBefore)
{
    const std::set<std::string> creations = {"createHost", "addIscsiInitiatorToHost", "createLunGroup", "createHostGroup",
                                             "createMappingView"};
    int attached = 0;
    for (const Attempt& attempt : attempts) {
        EXPECT_EQ(attempt.result, "0");
        EXPECT_EQ(isAttached(attempt.lunId), attempt.operation.empty()) << attempt.operation << ": " << attempt.text;
        attached += attempt.operation.empty() ? 1 : 0;
        EXPECT_TRUE(attempt.operation.empty() || creations.count(attempt.operation) == 1) << attempt.text;
    }
    std::printf("%d of %d attached, %d failed by their names\n", attached, kAtOnce, kAtOnce - attached);
    EXPECT_GE(attached, 1);
    EXPECT_LT(attached, kAtOnce);
    EXPECT_EQ(console.count("/mappingview"), viewsBefore + attached);
    for (const Attempt& attempt : attempts) {
        waitForNewSecond();
        EXPECT_EQ(client.attach(attempt.lunId), attempt.operation.empty() ? 1 : 0);
        EXPECT_TRUE(isAttached(attempt.lunId)) << lastFailure().text;
    }
    EXPECT_NE(client.scan(attempts.front().lunId), "") << lastFailure().text;
    EXPECT_EQ(linkNames().size(), 2U * kAtOnce);
}

std::time_t secondIn(int seconds)
{
    return std::time(nullptr) + seconds;
}

TEST_F(Many, AttachesOfThreadsInOneSecondFailAllButOne)
{
    for (int i = 0; i < kAtOnce; ++i) {
        lun();
    }
    const int views = console.count("/mappingview");
    const auto when = std::chrono::system_clock::from_time_t(secondIn(3));
    std::vector<std::future<Attempt>> running;
    for (const std::string& id : lunIds) {
        running.push_back(std::async(std::launch::async, [&, id] {
            HostClient own(ownInitiator());
            EXPECT_EQ(own.login(*array), 1);
            std::this_thread::sleep_until(when);
            const int result = own.attach(id);
            return Attempt{id, std::to_string(result), lastFailure().operation, lastFailure().text};
        }));
    }
    std::vector<Attempt> attempts;
    std::transform(running.begin(), running.end(), std::back_inserter(attempts), [](auto& one) { return one.get(); });
    expectOneAttachASecond(attempts, views);
}

TEST_F(Many, AttachesOfProcessesInOneSecondFailAllButOne)
{
    for (int i = 0; i < kAtOnce; ++i) {
        lun();
    }
    const int views = console.count("/mappingview");
    const std::string when = std::to_string(secondIn(8));
    std::vector<std::unique_ptr<ClientProcess>> running;
    for (const std::string& id : lunIds) {
        running.push_back(std::make_unique<ClientProcess>(*array, std::vector<std::string>{"attach", id, when}));
    }
    std::vector<Attempt> attempts;
    for (std::size_t i = 0; i < running.size(); ++i) {
        auto said = running[i]->said();
        attempts.push_back({lunIds[i], said["result"], said["operation"], said["text"]});
    }
    expectOneAttachASecond(attempts, views);
}

double millisecondsSince(std::chrono::steady_clock::time_point begin)
{
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
}

TEST_F(Many, DisksAreFoundEachAndNoOther)
{
    const int wanted = amount("disks", 16);
    std::vector<std::string> paths;
    for (int i = 0; i < wanted; ++i) {
        const LunMO created = lun();
        waitForNewSecond();
        const auto begin = std::chrono::steady_clock::now();
        ASSERT_EQ(client.attach(created.ID), 0);
        const double attached = millisecondsSince(begin);
        ASSERT_TRUE(lastFailure().empty()) << lastFailure().text;
        paths.push_back(client.scan(created.ID));
        std::printf("disks\t%d\tattach_ms\t%.0f\tscan_ms\t%.0f\n", i, attached, millisecondsSince(begin) - attached);
        ASSERT_NE(paths.back(), "") << lastFailure().text;
        EXPECT_EQ(lunNumber(created.WWN), static_cast<unsigned>(i) + 1);
    }
    for (std::size_t i = 0; i < paths.size(); ++i) {
        EXPECT_EQ(wwnBySgInq(paths[i]), wwns[i]);
    }
    EXPECT_EQ(std::set<std::string>(paths.begin(), paths.end()).size(), paths.size());
    EXPECT_EQ(diskNames().size(), paths.size());
    EXPECT_EQ(linkNames().size(), 2 * paths.size());
}

}  // namespace
}  // namespace brevan::test
