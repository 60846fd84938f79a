#include "simulator/LioDriver.h"

#include "simulator/Files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>
#include <system_error>

using namespace brevan::sim;

namespace {

namespace fs = std::filesystem;

constexpr const char* kTarget = "iqn.2020-01.lab:array";
constexpr const char* kHost = "iqn.2020-01.lab:host";
const ExposedVolume kFirst{"60123456000000000000000000000001", 1048576};
const ExposedVolume kSecond{"60123456000000000000000000000002", 2097152};

/// What the kernel does on top of a plain file system: entries that come and go with their directory, and the order it
/// insists on.
class FakeConfigfs : public ConfigTree {
public:
    explicit FakeConfigfs(std::string root, int failAt = 0) : m_root(std::move(root)), m_failAt(failAt) {}
    void makeDirectory(const std::string& path) override
    {
        if (--m_failAt == 0) {
            throw std::system_error(ENOMEM, std::generic_category(), path);
        }
        ConfigTree::makeDirectory(path);
        const std::string parent = fs::path(path).parent_path().filename().string();
        const std::string name = fs::path(path).filename().string();
        if (name == "tpgt_1") {
            addGroups(path, {"acls", "attrib", "lun", "np"});
        } else if (parent == "fileio_0") {
            addGroups(path, {"wwn"});
        }
    }
    void removeDirectory(const std::string& path) override
    {
        for (const fs::directory_entry& entry : fs::directory_iterator(path)) {
            const bool ours = entry.is_symlink() || (entry.is_directory() && !isDefaultGroup(entry.path()));
            if (ours) {
                throw std::system_error(ENOTEMPTY, std::generic_category(), path);
            }
        }
        fs::remove_all(path);
    }

private:
    static void addGroups(const std::string& path, std::initializer_list<const char*> names)
    {
        for (const char* name : names) {
            fs::create_directory(path + "/" + name);
        }
    }
    static bool isDefaultGroup(const fs::path& path)
    {
        const std::string name = path.filename().string();
        const bool known = name == "acls" || name == "attrib" || name == "lun" || name == "np" || name == "wwn";
        return known &&
               std::none_of(fs::directory_iterator(path), {}, [](const auto& entry) { return entry.is_directory(); });
    }

    std::string m_root;
    int m_failAt;
};

class LioDriverTest : public ::testing::Test {
protected:
    LioDriverTest() { fs::create_directories(m_root + "/core"); }
    ~LioDriverTest() override { fs::remove_all(m_directory); }
    LioOptions options() const { return {m_root, kTarget, "127.0.0.1:3260", m_directory + "/volumes", "60123456", false}; }
    LioDriver driver(int failAt = 0) const { return LioDriver(options(), std::make_unique<FakeConfigfs>(m_root, failAt)); }
    std::string value(const std::string& path) const { return readFile(m_root + "/" + path, 1000); }
    bool isThere(const std::string& path) const { return fs::exists(fs::symlink_status(m_root + "/" + path)); }
    /// The volume behind a LUN of an initiator; empty where there is none.
    std::string mapped(const std::string& initiator, unsigned number) const
    {
        const fs::path link = fs::path(m_tpg) / "acls" / initiator / ("lun_" + std::to_string(number)) / "lun";
        if (!fs::is_symlink(link)) {
            return {};
        }
        const fs::path exported = fs::read_symlink(link);
        return fs::directory_iterator(exported)->path().filename().string();
    }

    std::string m_directory = makePrivateDirectory();
    std::string m_root = m_directory + "/target";
    std::string m_tpg = m_root + "/iscsi/" + kTarget + "/tpgt_1";
};

}  // namespace

TEST_F(LioDriverTest, SetsUpATargetThatAsksForNoSecret)
{
    driver().start();
    const std::string group = std::string("iscsi/") + kTarget + "/tpgt_1";
    EXPECT_TRUE(isThere(group + "/np/127.0.0.1:3260"));
    EXPECT_EQ(value(group + "/attrib/authentication"), "0");
    EXPECT_EQ(value(group + "/enable"), "1");
}

TEST_F(LioDriverTest, LetsAnInitiatorLogInBeforeItSeesAnything)
{
    LioDriver lio = driver();
    lio.start();
    lio.apply({{kHost, {}}});
    EXPECT_TRUE(fs::is_directory(m_tpg + "/acls/" + kHost));
    lio.apply({});
    EXPECT_FALSE(fs::exists(m_tpg + "/acls/" + kHost));
}

TEST_F(LioDriverTest, WritesTheWwnIntoCompanyIdAndSerial)
{
    LioDriver lio = driver();
    lio.start();
    lio.apply({{kHost, {{1, kFirst}}}});
    const std::string store = "core/fileio_0/" + kFirst.wwn;
    EXPECT_EQ(value(store + "/wwn/company_id"), "0x012345");
    EXPECT_EQ(value(store + "/wwn/vpd_unit_serial"), "6000000000000000000000001");
    EXPECT_EQ(value(store + "/enable"), "1");
    const std::string file = m_directory + "/volumes/" + kFirst.wwn + ".img";
    EXPECT_EQ(value(store + "/control"), "fd_dev_name=" + file + ",fd_dev_size=1048576");
    EXPECT_EQ(fs::file_size(file), 1048576u);
}

TEST_F(LioDriverTest, MapsUnderTheNumbersOfThePlan)
{
    LioDriver lio = driver();
    lio.start();
    lio.apply({{kHost, {{1, kFirst}, {7, kSecond}}}, {"iqn.other", {{3, kSecond}}}});
    EXPECT_EQ(mapped(kHost, 1), kFirst.wwn);
    EXPECT_EQ(mapped(kHost, 7), kSecond.wwn);
    EXPECT_EQ(mapped("iqn.other", 3), kSecond.wwn);
    EXPECT_EQ(mapped("iqn.other", 1), "");
}

TEST_F(LioDriverTest, PutsAnotherVolumeUnderANumberThatWasFreed)
{
    LioDriver lio = driver();
    lio.start();
    lio.apply({{kHost, {{1, kFirst}}}});
    lio.apply({{kHost, {{1, kSecond}}}});
    EXPECT_EQ(mapped(kHost, 1), kSecond.wwn);
    EXPECT_FALSE(isThere("core/fileio_0/" + kFirst.wwn));
}

TEST_F(LioDriverTest, LeavesAloneWhatDoesNotChange)
{
    LioDriver lio = driver();
    lio.start();
    lio.apply({{kHost, {{1, kFirst}}}});
    const std::string control = "core/fileio_0/" + kFirst.wwn + "/control";
    fs::remove(m_root + "/" + control);
    lio.apply({{kHost, {{1, kFirst}, {2, kSecond}}}});
    EXPECT_FALSE(isThere(control)) << "the volume was made anew under the host's feet";
    EXPECT_EQ(mapped(kHost, 1), kFirst.wwn);
}

TEST_F(LioDriverTest, KeepsTheDataOfAVolumeThatIsUnmappedForAWhile)
{
    LioDriver lio = driver();
    lio.start();
    lio.apply({{kHost, {{1, kFirst}}}});
    const std::string file = m_directory + "/volumes/" + kFirst.wwn + ".img";
    writeFileAtomically(file, "pattern");
    lio.apply({{kHost, {}}});
    lio.apply({{kHost, {{1, kFirst}}}});
    EXPECT_EQ(readFile(file, 2000000).substr(0, 7), "pattern");
}

TEST_F(LioDriverTest, GivesANewVolumeNothingOfAnOldFile)
{
    LioDriver lio = driver();
    lio.start();
    const std::string file = m_directory + "/volumes/" + kFirst.wwn + ".img";
    writeFileAtomically(file, "old");
    lio.createVolume(kFirst);
    lio.apply({{kHost, {{1, kFirst}}}});
    EXPECT_EQ(readFile(file, 2000000).substr(0, 3), std::string(3, '\0'));
}

TEST_F(LioDriverTest, LeavesNothingOfItsOwnAtTheEnd)
{
    fs::create_directories(m_root + "/core/fileio_0/stranger");
    LioDriver lio = driver();
    lio.start();
    lio.apply({{kHost, {{1, kFirst}, {2, kSecond}}}});
    lio.stop();
    EXPECT_FALSE(isThere(std::string("iscsi/") + kTarget));
    EXPECT_FALSE(isThere("core/fileio_0/" + kFirst.wwn));
    EXPECT_TRUE(isThere("core/fileio_0/stranger"));
    EXPECT_TRUE(fs::is_empty(m_directory + "/volumes"));
    lio.stop();
}

TEST_F(LioDriverTest, ClearsAwayWhatAKilledRunHasLeft)
{
    LioDriver killed = driver();
    killed.start();
    killed.apply({{kHost, {{1, kFirst}}}});
    LioDriver next = driver();
    next.start();
    EXPECT_FALSE(fs::exists(m_tpg + "/acls/" + kHost));
    EXPECT_FALSE(isThere("core/fileio_0/" + kFirst.wwn));
    next.apply({{kHost, {{1, kSecond}}}});
    EXPECT_EQ(mapped(kHost, 1), kSecond.wwn);
}

TEST_F(LioDriverTest, PutsAFailureRightWithTheNextPlan)
{
    driver().start();
    const ExposurePlan before{{kHost, {{1, kFirst}}}};
    const ExposurePlan after{{kHost, {{1, kFirst}, {2, kSecond}}}, {"iqn.other", {{1, kSecond}}}};
    constexpr int kDirectoriesMade = 5;
    for (int failAt = 1; failAt <= kDirectoriesMade; ++failAt) {
        driver().apply(before);
        LioDriver lio = driver(failAt);
        EXPECT_THROW(lio.apply(after), std::system_error) << failAt;
        lio.apply(before);
        EXPECT_EQ(mapped(kHost, 1), kFirst.wwn);
        EXPECT_FALSE(fs::exists(m_tpg + "/acls/iqn.other")) << failAt;
        EXPECT_FALSE(isThere("core/fileio_0/" + kSecond.wwn)) << failAt;
        lio.apply(after);
        EXPECT_EQ(mapped(kHost, 2), kSecond.wwn) << failAt;
        EXPECT_EQ(mapped("iqn.other", 1), kSecond.wwn) << failAt;
    }
}

TEST_F(LioDriverTest, SaysWhatToDoWhereTheKernelHasNoTarget)
{
    fs::remove_all(m_root);
    try {
        driver().start();
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_NE(std::string(error.what()).find("mount configfs"), std::string::npos) << error.what();
    }
}

TEST_F(LioDriverTest, RefusesOptionsThatTheKernelWouldMisread)
{
    const auto refused = [this](const std::function<void(LioOptions&)>& change) {
        LioOptions changed = options();
        change(changed);
        EXPECT_THROW(LioDriver(changed, std::make_unique<ConfigTree>()), std::invalid_argument);
    };
    refused([](LioOptions& changed) { changed.target = "iqn.a/.."; });
    refused([](LioOptions& changed) { changed.portal = "127.0.0.1"; });
    refused([](LioOptions& changed) { changed.portal = "../x:1"; });
    refused([](LioOptions& changed) { changed.volumeDirectory = ""; });
    refused([](LioOptions& changed) { changed.volumeDirectory = "/a,fd_dev_size=1"; });
}
