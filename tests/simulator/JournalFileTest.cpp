#include "simulator/JournalFile.h"

#include "Fields.h"

#include "simulator/Files.h"
#include "simulator/Journal.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <filesystem>
#include <system_error>

using namespace brevan::sim;
using namespace brevan::sim::test;

namespace {

class JournalFileTest : public ::testing::Test {
protected:
    ~JournalFileTest() override { std::filesystem::remove_all(m_directory); }
    std::string m_directory = makePrivateDirectory();
    std::string m_path = m_directory + "/journal";
};

JournalEntry entry(std::uint64_t number)
{
    JournalEntry made;
    made.number = number;
    return made;
}

}  // namespace

TEST_F(JournalFileTest, AddsALineForEachEntryAlsoAfterARestart)
{
    for (const std::uint64_t number : {1U, 2U}) {
        JournalFile(m_path).write(entry(number));
    }
    const std::string text = readFile(m_path, 10000);
    const std::size_t end = text.find('\n');
    EXPECT_EQ(Data::parse(text.substr(0, end)).at("number").number(), 1);
    EXPECT_EQ(Data::parse(text.substr(end + 1)).at("number").number(), 2);
    EXPECT_EQ(text.back(), '\n');
}

TEST_F(JournalFileTest, IsForItsUserOnly)
{
    JournalFile file(m_path);
    struct stat status {};
    ASSERT_EQ(stat(m_path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST_F(JournalFileTest, SaysWhichFileCannotBeOpened)
{
    try {
        JournalFile file(m_directory + "/none/journal");
        FAIL();
    } catch (const std::system_error& error) {
        EXPECT_EQ(std::string(error.what()).find("cannot write the journal " + m_directory + "/none/journal"), 0u);
    }
}

TEST_F(JournalFileTest, IsGivenUpOnceWhenTheDiskIsFull)
{
    ::testing::internal::CaptureStderr();
    JournalFile file("/dev/full");
    file.write(entry(1));
    file.write(entry(2));
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "the journal /dev/full ends here: No space left on device\n");
}
