#include "foundation/LogLibrary.h"

#include "support/SdkTest.h"

#include <array>

namespace brevan::test {
namespace {

/// A process map made of text. From construction to destruction it is this process's.
class FakeProcessMap final : public ProcessMap {
public:
    FakeProcessMap() : m_real(processMapSeam().replace(*this)) {}
    FakeProcessMap(const FakeProcessMap&) = delete;
    FakeProcessMap& operator=(const FakeProcessMap&) = delete;
    ~FakeProcessMap() override { processMapSeam().replace(m_real); }

    File open() override
    {
        ++opened;
        return File(text.empty() ? nullptr : fmemopen(text.data(), text.size(), "r"));
    }

    std::string text;  ///< empty: cannot be read
    int opened = 0;

private:
    ProcessMap& m_real;
};

std::string mapping(const std::string& path, const std::string& rights = "r-xp")
{
    return "7f0e1c000000-7f0e1c021000 " + rights + " 00001000 fe:01 1836      " + path + "\n";
}

class LogLibrary : public SdkTest {
protected:
    FakeProcessMap map;
    std::array<char, 64> directory{"untouched"};

    int find(const char* module, unsigned int size = 64) { return GetModuleFilePath(module, directory.data(), size); }
};

TEST_F(LogLibrary, IsFoundInTheDirectoryOfItsExecutableMapping)
{
    map.text = mapping("/opt/app/liba.so") + mapping("/else/libb.so", "r--p") + mapping("/opt/lib/brevan/libb.so.1");
    EXPECT_EQ(find("libb.so"), 0);
    EXPECT_STREQ(directory.data(), "/opt/lib/brevan");
}

struct MapRow {
    const char* what;
    std::string text;
    int result;
    const char* directory;
};

class ProcessMapOf : public LogLibrary, public testing::WithParamInterface<MapRow> {};

TEST_P(ProcessMapOf, DecidesWhereTheModuleIs)
{
    map.text = GetParam().text;
    EXPECT_EQ(find("libm.so"), GetParam().result);
    EXPECT_STREQ(directory.data(), GetParam().directory);
}

const std::string kFound = mapping("/found/libm.so");

INSTANTIATE_TEST_SUITE_P(Maps, ProcessMapOf,
                         testing::Values(MapRow{"NothingThatCanBeRead", "", -1, "untouched"},
                                         MapRow{"NoModule", mapping("/opt/libother.so"), -1, "untouched"},
                                         MapRow{"OnlyAReadOnlyMapping", mapping("/opt/libm.so", "r--p"), -1, "untouched"},
                                         MapRow{"OnlyASharedMapping", mapping("/opt/libm.so", "r-xs"), -1, "untouched"},
                                         MapRow{"NoPath", mapping("[libm.so]"), -1, "untouched"},
                                         MapRow{"TheFirstOfTwo", mapping("/first/libm.so") + kFound, 0, "/first"},
                                         MapRow{"RootDirectoryStopsTheScan", mapping("/libm.so") + kFound, -1, "untouched"},
                                         MapRow{"NameInTheDirectory", mapping("/opt/libm.so.d/any.so") + kFound, 0,
                                                "/opt/libm.so.d"},
                                         MapRow{"BlanksInThePath", mapping("/opt/my files/libm.so"), 0, "/opt/my files"},
                                         MapRow{"DeletedFile", mapping("/opt/lib/libm.so (deleted)"), 0, "/opt/lib"},
                                         MapRow{"NoEndOfLine", "1-2 r-xp 0 0:0 1 /opt/libm.so", 0, "/opt"},
                                         MapRow{"Longest", mapping("/" + std::string(62, 'd') + "/libm.so"), 0,
                                                "/dddddddddddddddddddddddddddddddddddddddddddddddddddddddddddddd"},
                                         MapRow{"TooLongStopsTheScan",
                                                mapping("/" + std::string(63, 'd') + "/libm.so") + kFound, -1, "untouched"},
                                         MapRow{"LineLongerThanTheBuffer",
                                                mapping("/" + std::string(2000, 'd') + "/libm.so") + kFound, 0, "/found"}),
                         [](const auto& tested) { return std::string(tested.param.what); });

TEST_F(LogLibrary, IsFoundEvenWhereNoCopyFits)
{
    constexpr unsigned int kBeyondTheLimitOfBoundedCopies = 0x7FFFFFFFU;
    map.text = mapping("/first/libm.so") + mapping("/second/libm.so");
    EXPECT_EQ(find("libm.so", kBeyondTheLimitOfBoundedCopies), 0);
    map.text += mapping("/libm.so") + mapping("/third/libm.so");  // the root directory stops the scan, the result stays
    EXPECT_EQ(find("libm.so", kBeyondTheLimitOfBoundedCopies), 0);
    EXPECT_STRNE(directory.data(), "/third");
}

TEST_F(LogLibrary, WritesNothingIntoABufferWithoutRoom)
{
    map.text = kFound;
    EXPECT_EQ(find("libm.so", 0), -1);
    EXPECT_EQ(find("libm.so", 6), -1);  // "/found" and its terminator take seven
    EXPECT_STREQ(directory.data(), "untouched");
    EXPECT_EQ(find("libm.so", 7), 0);
    EXPECT_STREQ(directory.data(), "/found");
}

TEST_F(LogLibrary, GivesItsOwnDirectory)
{
    map.text = mapping("/usr/lib/brevan/libPlimLogAPI.so.1");
    GetCurrentPath(directory.data(), 64);
    EXPECT_STREQ(directory.data(), "/usr/lib/brevan");
}

TEST_F(LogLibrary, LeavesTheBufferAloneWhereItIsNotMapped)
{
    for (const auto& text : {std::string(), mapping("/libPlimLogAPI.so"), mapping("/usr/lib/libother.so")}) {
        map.text = text;
        GetCurrentPath(directory.data(), 64);
        EXPECT_STREQ(directory.data(), "untouched");
    }
}

TEST_F(LogLibrary, StartsWithSettingsAndLogsBesideIt)
{
    map.text = mapping("/usr/lib/brevan/libPlimLogAPI.so.1");
    EXPECT_EQ(LOG_INIT(), 0);
    EXPECT_EQ(recorder.calls(),
              Lines{"LogInit Plim-Brevan-API-linux-Cpp /usr/lib/brevan/Brevan_API.ini /usr/lib/brevan/logs/"});
}

TEST_F(LogLibrary, StartsWithTheRootDirectoryWhereItsOwnIsNotKnown)
{
    for (const auto& text : {std::string(), mapping("/" + std::string(513, 'd') + "/libPlimLogAPI.so")}) {
        map.text = text;
        EXPECT_EQ(LOG_INIT(), 0);
    }
    const std::string start = "LogInit Plim-Brevan-API-linux-Cpp /Brevan_API.ini /logs/";
    EXPECT_EQ(recorder.calls(), (Lines{start, start}));
    EXPECT_EQ(map.opened, 2);
}

TEST_F(LogLibrary, SaysThatItDidNotStart)
{
    for (const int result : {-1, 1, 77}) {
        recorder.logInitResult = result;
        EXPECT_EQ(LOG_INIT(), -1);
    }
}

TEST_F(LogLibrary, StopsWithTheResultOfTheLibrary)
{
    for (const int result : {0, -1, 5}) {
        recorder.logFiniResult = result;
        EXPECT_EQ(LOG_EXIT(), result);
    }
    const std::string stop = "LogFini Plim-Brevan-API-linux-Cpp";
    EXPECT_EQ(recorder.calls(), (Lines{stop, stop, stop}));
}

TEST(ProcessMap, OfThisProcessNamesItsExecutable)
{
    std::array<char, 1024> directory{};
    EXPECT_EQ(GetModuleFilePath("foundation_tests", directory.data(), 1024), 0);
    EXPECT_EQ(directory[0], '/');
}

}  // namespace
}  // namespace brevan::test
