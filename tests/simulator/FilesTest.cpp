#include "simulator/Files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <system_error>

using namespace brevan::sim;

namespace {

class Files : public ::testing::Test {
protected:
    ~Files() override { std::filesystem::remove_all(m_directory); }
    std::string m_directory = makePrivateDirectory();
};

}  // namespace

TEST_F(Files, ReplacesAWholeFileAndLeavesNoScratchFile)
{
    writeFileAtomically(m_directory + "/f", "a longer first content");
    writeFileAtomically(m_directory + "/f", "second");
    EXPECT_EQ(readFile(m_directory + "/f", 100), "second");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_directory), {}), 1);
}

TEST_F(Files, NamesTheFileThatCannotBeWrittenOrRead)
{
    try {
        writeFileAtomically(m_directory + "/none/f", "x");
        FAIL();
    } catch (const std::system_error& error) {
        EXPECT_NE(std::string(error.what()).find(m_directory + "/none/f: No such file"), std::string::npos) << error.what();
    }
    EXPECT_THROW(readFile(m_directory + "/none", 10), std::system_error);
}

TEST_F(Files, RefusesAFileThatIsTooLarge)
{
    writeFileAtomically(m_directory + "/f", "12345");
    EXPECT_EQ(readFile(m_directory + "/f", 5), "12345");
    EXPECT_THROW(readFile(m_directory + "/f", 4), std::runtime_error);
}

TEST_F(Files, MakesADirectoryThatOnlyItsOwnerMayEnter)
{
    const auto permissions = std::filesystem::status(m_directory).permissions();
    EXPECT_EQ(permissions & std::filesystem::perms::mask, std::filesystem::perms::owner_all);
}
