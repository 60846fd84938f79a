#include "simulator/VolumeFiles.h"

#include "simulator/Files.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <filesystem>
#include <fstream>

using namespace brevan::sim;

namespace {

class VolumeFilesTest : public ::testing::Test {
protected:
    ~VolumeFilesTest() override { std::filesystem::remove_all(m_directory); }
    void write(const std::string& file, std::streamoff where, const std::string& text)
    {
        std::fstream stream(file, std::ios::in | std::ios::out | std::ios::binary);
        stream.seekp(where);
        stream << text;
    }
    std::string read(const std::string& file, std::streamoff where, std::size_t count)
    {
        std::string text(count, '?');
        std::ifstream stream(file, std::ios::binary);
        stream.seekg(where);
        stream.read(text.data(), static_cast<std::streamsize>(count));
        return text;
    }
    std::string m_directory = makePrivateDirectory();
    VolumeFiles m_files{m_directory, "6aaa"};
};

constexpr std::uint64_t kGib = 1024 * 1024 * 1024;

}  // namespace

TEST_F(VolumeFilesTest, MakesASparseFileOfTheVolumesSize)
{
    const std::string file = m_files.prepare({"6aaa1", kGib});
    struct stat status = {};
    ASSERT_EQ(stat(file.c_str(), &status), 0);
    EXPECT_EQ(static_cast<std::uint64_t>(status.st_size), kGib);
    EXPECT_LT(status.st_blocks, 100);
    EXPECT_EQ(std::filesystem::path(file).is_absolute(), true);
}

TEST_F(VolumeFilesTest, KeepsTheDataOfAVolumeThatIsPreparedAgain)
{
    const std::string file = m_files.prepare({"6aaa1", 4096});
    write(file, 100, "data");
    EXPECT_EQ(read(m_files.prepare({"6aaa1", 4096}), 100, 4), "data");
}

TEST_F(VolumeFilesTest, CopiesDataAndHoles)
{
    const std::string source = m_files.prepare({"6aaa1", kGib});
    write(source, 5000, "first");
    write(source, static_cast<std::streamoff>(kGib - 6), "second");
    m_files.copy("6aaa1", {"6aaa2", kGib});
    write(source, 5000, "later");
    const std::string copy = m_files.prepare({"6aaa2", kGib});
    EXPECT_EQ(read(copy, 5000, 5), "first");
    EXPECT_EQ(read(copy, static_cast<std::streamoff>(kGib - 6), 6), "second");
    struct stat status = {};
    ASSERT_EQ(stat(copy.c_str(), &status), 0);
    EXPECT_LT(status.st_blocks, 10000);
}

TEST_F(VolumeFilesTest, CopiesNothingOfAVolumeThatWasNeverWritten)
{
    m_files.copy("6aaa1", {"6aaa2", 4096});
    EXPECT_EQ(read(m_files.prepare({"6aaa2", 4096}), 0, 4), std::string(4, '\0'));
}

TEST_F(VolumeFilesTest, RemovesItsOwnFilesOnly)
{
    m_files.prepare({"6aaa1", 4096});
    m_files.prepare({"6aaa2", 4096});
    m_files.prepare({"6bbb1", 4096});
    m_files.remove("6aaa1");
    EXPECT_FALSE(std::filesystem::exists(m_directory + "/6aaa1.img"));
    m_files.removeAll();
    EXPECT_FALSE(std::filesystem::exists(m_directory + "/6aaa2.img"));
    EXPECT_TRUE(std::filesystem::exists(m_directory + "/6bbb1.img"));
}

TEST_F(VolumeFilesTest, RemovesCopiesThatWereNotFinished)
{
    writeFileAtomically(m_directory + "/6aaa1.img.part", "half");
    writeFileAtomically(m_directory + "/6aaa1.img", "whole");
    writeFileAtomically(m_directory + "/other.part", "not ours");
    m_files.makeDirectory();
    EXPECT_FALSE(std::filesystem::exists(m_directory + "/6aaa1.img.part"));
    EXPECT_TRUE(std::filesystem::exists(m_directory + "/6aaa1.img"));
    EXPECT_TRUE(std::filesystem::exists(m_directory + "/other.part"));
}
