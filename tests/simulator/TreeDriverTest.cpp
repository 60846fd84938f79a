#include "simulator/TreeDriver.h"

#include "ArrayClient.h"

#include "simulator/Files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>

using namespace brevan::sim;
using namespace brevan::sim::test;

namespace {

constexpr const char* kInitiator = "iqn.2020-01.lab:host";

class TreeDriverFiles : public ::testing::Test {
protected:
    ~TreeDriverFiles() override { std::filesystem::remove_all(m_directory); }
    std::string list() const { return readFile(m_directory + "/" + kInitiator, 10000); }
    bool isThere() const { return std::filesystem::exists(m_directory + "/" + kInitiator); }
    std::string m_directory = makePrivateDirectory();
};

}  // namespace

TEST_F(TreeDriverFiles, ListVolumesInTheOrderOfTheirNumbers)
{
    TreeDriver driver(m_directory);
    driver.start();
    driver.apply({{kInitiator, {{10, {"6b", 1024}}, {2, {"6a", 512}}}}});
    EXPECT_EQ(list(), "2 6a 512\n10 6b 1024\n");
    driver.apply({{kInitiator, {}}});
    EXPECT_EQ(list(), "");
}

TEST_F(TreeDriverFiles, VanishWithTheirInitiatorAndAtTheEnd)
{
    TreeDriver driver(m_directory);
    driver.start();
    driver.apply({{kInitiator, {}}});
    EXPECT_TRUE(isThere());
    driver.apply({});
    EXPECT_FALSE(isThere());
    driver.apply({{kInitiator, {}}});
    driver.stop();
    EXPECT_FALSE(isThere());
}

TEST_F(TreeDriverFiles, OfAnEarlierRunAreClearedAway)
{
    writeFileAtomically(m_directory + "/" + kInitiator, "1 6a 512\n");
    writeFileAtomically(m_directory + "/notes", "mine");
    TreeDriver driver(m_directory);
    driver.start();
    EXPECT_FALSE(isThere());
    EXPECT_TRUE(std::filesystem::exists(m_directory + "/notes"));
}

TEST_F(TreeDriverFiles, FollowTheArray)
{
    ServerOptions options = testOptions();
    options.exposure = Exposure::kTree;
    options.treeDirectory = m_directory;
    options.iscsiInitiators = {kInitiator};
    ArrayFixture array(options);
    array.server.start();
    EXPECT_EQ(list(), "");
    const Chain chain(array.client, kInitiator, "1");
    EXPECT_EQ(list(), "1 " + array.server.volumeWwn(chain.lun) + " 1048576\n");
    array.client.remove("/mappingview/" + chain.view);
    EXPECT_EQ(list(), "");
    array.server.stop();
    EXPECT_FALSE(isThere());
}

TEST(TreeDriver, NeedsADirectory)
{
    EXPECT_THROW(TreeDriver(""), std::invalid_argument);
}
