#include "simulator/ConfigTree.h"

#include "simulator/Files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <system_error>

using namespace brevan::sim;

namespace {

class ConfigTreeTest : public ::testing::Test {
protected:
    ~ConfigTreeTest() override { std::filesystem::remove_all(m_root); }
    std::string m_root = makePrivateDirectory();
    ConfigTree m_tree;
};

}  // namespace

TEST_F(ConfigTreeTest, TellsDirectoriesAndLinksApart)
{
    m_tree.makeDirectory(m_root + "/b");
    m_tree.makeDirectory(m_root + "/a");
    m_tree.write(m_root + "/file", "1");
    m_tree.link(m_root + "/a", m_root + "/link");
    EXPECT_EQ(m_tree.directories(m_root), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(m_tree.links(m_root), (std::vector<std::string>{"link"}));
    EXPECT_EQ(m_tree.linkedName(m_root + "/link"), "a");
    EXPECT_EQ(m_tree.linkedName(m_root + "/a"), "");
    EXPECT_TRUE(m_tree.directories(m_root + "/nosuch").empty());
}

TEST_F(ConfigTreeTest, ReplacesAValueAsAWhole)
{
    m_tree.write(m_root + "/value", "a longer one");
    m_tree.write(m_root + "/value", "0");
    EXPECT_EQ(readFile(m_root + "/value", 100), "0");
}

TEST_F(ConfigTreeTest, NamesThePathOfAFailure)
{
    const std::string path = m_root + "/none/x";
    for (const auto& attempt : std::vector<std::function<void()>>{
             [&] { m_tree.makeDirectory(path); }, [&] { m_tree.removeDirectory(path); }, [&] { m_tree.write(path, "1"); },
             [&] { m_tree.link("a", path); }, [&] { m_tree.unlink(path); }}) {
        try {
            attempt();
            ADD_FAILURE();
        } catch (const std::system_error& error) {
            EXPECT_NE(std::string(error.what()).find(path), std::string::npos) << error.what();
            EXPECT_EQ(error.code().value(), ENOENT);
        }
    }
}
