#include "platform/plimlog/RotatingFile.h"

#include "PlimLogSupport.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <thread>

#include <sys/resource.h>
#include <unistd.h>

namespace brevan::plimlog {
namespace {

constexpr std::uint64_t kLarge = 1 << 20;

LogFileName nameOf(unsigned generation = 0, unsigned instance = 1)
{
    return {"Test", "program", getpid(), instance, LogKind::Run, generation};
}

std::string pathIn(const TestFolder& folder, unsigned generation = 0, unsigned instance = 1)
{
    return folder / nameOf(generation, instance).text();
}

void limitFileSize(rlim_t bytes)
{
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
}

TEST(RotatingFile, HasEachLineWhenTheCallReturns)
{
    const TestFolder folder;
    RotatingFile file(folder.path(), nameOf(), kLarge, 5);
    EXPECT_EQ(file.write("one\n"), 0);
    EXPECT_EQ(readFile(pathIn(folder)), "one\n");
    EXPECT_EQ(file.write("two\n"), 0);
    EXPECT_EQ(readFile(pathIn(folder)), "one\ntwo\n");
}

TEST(RotatingFile, GoesOnBehindWhatAnEarlierProcessOfThisIdLeft)
{
    const TestFolder folder;
    folder.write(nameOf().text(), "old\n");
    RotatingFile file(folder.path(), nameOf(), kLarge, 5);
    EXPECT_EQ(file.write("new\n"), 0);
    EXPECT_EQ(readFile(pathIn(folder)), "old\nnew\n");
}

TEST(RotatingFile, IsMovedAsideWhenTheNextLineDoesNotFit)
{
    const TestFolder folder;
    RotatingFile file(folder.path(), nameOf(), 10, 3);
    for (const char* line : {"11111\n", "222\n", "3333\n", "44444\n", "5555555\n", "66666666\n"}) {
        EXPECT_EQ(file.write(line), 0);
    }
    EXPECT_EQ(readFile(pathIn(folder)), "66666666\n");
    EXPECT_EQ(readFile(pathIn(folder, 1)), "5555555\n");
    EXPECT_EQ(readFile(pathIn(folder, 2)), "44444\n");
    EXPECT_EQ(namesIn(folder.path()).size(), 3U);
}

TEST(RotatingFile, IsEmptiedWhenItIsTheOnlyOne)
{
    const TestFolder folder;
    RotatingFile file(folder.path(), nameOf(), 10, 1);
    EXPECT_EQ(file.write("1111111\n"), 0);
    EXPECT_EQ(file.write("2222222\n"), 0);
    EXPECT_EQ(readFile(pathIn(folder)), "2222222\n");
    EXPECT_EQ(namesIn(folder.path()).size(), 1U);
}

TEST(RotatingFile, RefusesALineThatNoFileCouldHold)
{
    const TestFolder folder;
    RotatingFile file(folder.path(), nameOf(), 10, 3);
    EXPECT_EQ(file.write("12345678901\n"), EFBIG);
    EXPECT_EQ(file.write("1\n"), 0);
    EXPECT_EQ(readFile(pathIn(folder)), "1\n");
}

TEST(RotatingFile, IsMadeAnewWithItsFolderWhenSomebodyRemovedThem)
{
    const TestFolder folder;
    RotatingFile file(folder / "logs/deep", nameOf(), kLarge, 3);
    EXPECT_EQ(file.write("one\n"), 0);
    std::filesystem::remove_all(folder / "logs");
    std::this_thread::sleep_for(RotatingFile::kLookInterval);
    EXPECT_EQ(file.write("two\n"), 0);
    EXPECT_EQ(readFile(folder / "logs/deep/" + nameOf().text()), "two\n");
}

TEST(RotatingFile, ReportsThatItsFolderCannotBeMadeAnewAndRecovers)
{
    const TestFolder folder;
    RotatingFile file(folder / "logs", nameOf(), kLarge, 3);
    EXPECT_EQ(file.write("one\n"), 0);
    std::filesystem::remove_all(folder / "logs");
    folder.write("logs", "a file in its place");
    std::this_thread::sleep_for(RotatingFile::kLookInterval);
    EXPECT_EQ(file.write("two\n"), ENOTDIR);
    std::filesystem::remove(folder / "logs");
    EXPECT_EQ(file.write("three\n"), 0);
    EXPECT_EQ(readFile(folder / "logs/" + nameOf().text()), "three\n");
}

TEST(RotatingFile, TakesANameOfItsOwnWhereAnotherProcessHasTheSameId)
{
    const TestFolder folder;
    RotatingFile first(folder.path(), nameOf(), kLarge, 3);
    RotatingFile second(folder.path(), nameOf(), kLarge, 3);
    EXPECT_EQ(first.write("first\n"), 0);
    EXPECT_EQ(second.write("second\n"), 0);
    EXPECT_EQ(readFile(pathIn(folder)), "first\n");
    EXPECT_EQ(readFile(pathIn(folder, 0, 2)), "second\n");
}

TEST(RotatingFile, GivesItsNameFreeEvenWhileAChildHasTheDescriptor)
{
    const TestFolder folder;
    int released[2];
    ASSERT_EQ(pipe(released), 0);
    auto first = std::make_unique<RotatingFile>(folder.path(), nameOf(), kLarge, 3);
    EXPECT_EQ(first->write("first\n"), 0);
    const pid_t child = startChild([&] {
        close(released[1]);
        char end = 0;
        EXPECT_EQ(read(released[0], &end, 1), 0);
    });
    first.reset();
    RotatingFile second(folder.path(), nameOf(), kLarge, 3);
    EXPECT_EQ(second.write("second\n"), 0);
    close(released[1]);
    close(released[0]);
    EXPECT_EQ(waitForChild(child), 0);
    EXPECT_EQ(readFile(pathIn(folder)), "first\nsecond\n");
}

TEST(RotatingFile, LeavesNothingOfALineForWhichThereIsNoRoom)
{
    const TestFolder folder;
    EXPECT_EQ(inChild([&] {
                  signal(SIGXFSZ, SIG_IGN);
                  RotatingFile file(folder.path(), nameOf(), kLarge, 3);
                  EXPECT_EQ(file.write("12345\n"), 0);
                  limitFileSize(10);
                  EXPECT_EQ(file.write("1234567\n"), EFBIG);  // the kernel takes four bytes of it
                  EXPECT_EQ(readFile(file.path()), "12345\n");
                  limitFileSize(RLIM_INFINITY);
                  EXPECT_EQ(file.write("7\n"), 0);
                  EXPECT_EQ(readFile(file.path()), "12345\n7\n");
              }),
              0);
}

TEST(RotatingFile, StaysBelowTheProcessesOwnLimitOnFileSizes)
{
    const TestFolder folder;
    EXPECT_EQ(inChild([&] {
                  limitFileSize(10);  // a write beyond it would end the process
                  RotatingFile file(folder.path(), nameOf(), kLarge, 3);
                  EXPECT_EQ(file.write("1234567\n"), 0);
                  EXPECT_EQ(file.write("2345678\n"), 0);
                  EXPECT_EQ(file.write("234567890123\n"), EFBIG);
                  EXPECT_EQ(readFile(file.path()), "2345678\n");
              }),
              0);
}

}  // namespace
}  // namespace brevan::plimlog
