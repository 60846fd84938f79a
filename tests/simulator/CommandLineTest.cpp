#include "simulator/CommandLine.h"

#include "simulator/Files.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <vector>

using namespace brevan::sim;

namespace {

class CommandLine : public ::testing::Test {
protected:
    CommandLine() { setenv("BREVAN_SIM_PASSWORD", "secret", 1); }
    ~CommandLine() override { unsetenv("BREVAN_SIM_PASSWORD"); }
    std::optional<ProgramOptions> read(std::vector<const char*> arguments)
    {
        arguments.insert(arguments.begin(), "brevan-array-sim");
        return readCommandLine(static_cast<int>(arguments.size()), arguments.data(), m_status, m_output, m_errors);
    }

    int m_status = -1;
    std::ostringstream m_output;
    std::ostringstream m_errors;
};

}  // namespace

TEST_F(CommandLine, HasDefaultsForEverythingButThePassword)
{
    const auto options = read({});
    ASSERT_TRUE(options) << m_errors.str();
    EXPECT_EQ(options->server.address, "127.0.0.1");
    EXPECT_EQ(options->server.port, 0);
    EXPECT_EQ(options->server.password, "secret");
    EXPECT_EQ(options->server.exposure, Exposure::kNone);
    ASSERT_EQ(options->server.pools.size(), 1u);
    EXPECT_EQ(options->server.pools[0].id, "0");
}

TEST_F(CommandLine, TakesRepeatedPoolsAndInitiators)
{
    const auto options =
        read({"--pool", "1:a:10", "--pool", "2:b:20", "--iscsi-initiator", "iqn.a", "--iscsi-initiator", "iqn.b"});
    ASSERT_TRUE(options) << m_errors.str();
    ASSERT_EQ(options->server.pools.size(), 2u);
    EXPECT_EQ(options->server.pools[1].name, "b");
    EXPECT_EQ(options->server.pools[1].gib, 20u);
    EXPECT_EQ(options->server.iscsiInitiators, (std::vector<std::string>{"iqn.a", "iqn.b"}));
}

TEST_F(CommandLine, ReadsThePasswordFromAFileRatherThanFromTheEnvironment)
{
    const std::string directory = makePrivateDirectory();
    writeFileAtomically(directory + "/password", "from file\r\nmore\n");
    const auto options = read({"--password-file", (directory + "/password").c_str()});
    std::filesystem::remove_all(directory);
    ASSERT_TRUE(options) << m_errors.str();
    EXPECT_EQ(options->server.password, "from file");
}

TEST_F(CommandLine, SaysInOneLineWhatIsWrong)
{
    const std::vector<std::pair<std::vector<const char*>, const char*>> cases{
        {{"--nosuch"}, "--nosuch"},
        {{"--port", "70000"}, "--port"},
        {{"--pool", "x"}, "ID:NAME:GIB"},
        {{"--exposure", "magic"}, "--exposure"},
        {{"--settle", "-1"}, "--settle"},
        {{"--exposure", "lio"}, "--volume-directory"},
        {{"--exposure", "tree"}, "--tree-directory"},
        {{"--password-file", "/nosuch/file"}, "/nosuch/file"},
    };
    for (const auto& [arguments, hint] : cases) {
        m_errors.str("");
        EXPECT_FALSE(read(arguments)) << hint;
        EXPECT_EQ(m_status, 2) << hint;
        const std::string text = m_errors.str();
        EXPECT_NE(text.find(hint), std::string::npos) << text;
        EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1) << text;
    }
}

TEST_F(CommandLine, RefusesToStartWithoutAPassword)
{
    unsetenv("BREVAN_SIM_PASSWORD");
    EXPECT_FALSE(read({}));
    EXPECT_EQ(m_status, 2);
    EXPECT_NE(m_errors.str().find("--password-file FILE or set BREVAN_SIM_PASSWORD"), std::string::npos) << m_errors.str();
}

TEST_F(CommandLine, ExplainsEveryFlag)
{
    EXPECT_FALSE(read({"--help"}));
    EXPECT_EQ(m_status, 0);
    for (const char* flag : {"--address", "--port", "--ca-file", "--server-name", "--port-file", "--user", "--password-file",
                             "--device-id", "--pool", "--iscsi-initiator", "--settle", "--log-requests", "--exposure",
                             "--lio-portal", "--lio-target", "--volume-directory", "--tree-directory", "--version"}) {
        EXPECT_NE(m_output.str().find(flag), std::string::npos) << flag;
    }
}

TEST_F(CommandLine, TellsItsVersion)
{
    EXPECT_FALSE(read({"--version"}));
    EXPECT_EQ(m_status, 0);
    EXPECT_EQ(m_output.str().find("brevan-array-sim "), 0u) << m_output.str();
}

TEST_F(CommandLine, TakesWhatMakesTheArrayDifficult)
{
    const auto options =
        read({"--control-port", "0", "--latency", "5ms", "--bandwidth", "1MB/s", "--journal", "/tmp/journal",
              "--journal-entries", "7", "--max-connections", "9", "--connection-idle", "30s"});
    ASSERT_TRUE(options) << m_errors.str();
    EXPECT_EQ(options->server.controlPort, std::uint16_t{0});
    EXPECT_EQ(options->server.latency, std::chrono::milliseconds(5));
    EXPECT_EQ(options->server.bandwidth, 1000000u);
    EXPECT_EQ(options->server.journalFile, "/tmp/journal");
    EXPECT_EQ(options->server.journalEntries, 7u);
    EXPECT_EQ(options->server.limits.connections, 9u);
    EXPECT_EQ(options->server.limits.idle, std::chrono::seconds(30));
    EXPECT_FALSE(read({})->server.controlPort);
}

TEST_F(CommandLine, RefusesAmountsThatMeanNothing)
{
    const std::pair<std::vector<const char*>, const char*> kWrong[] = {
        {{"--latency", "5"}, "--latency: '5' is not a time of at most an hour, such as 5ms or 2s"},
        {{"--connection-idle", "2h"}, "--connection-idle: '2h' is not a time of at most an hour"},
        {{"--connection-idle", "0s"}, "--connection-idle: "},
        {{"--bandwidth", "fast"}, "--bandwidth: 'fast' is not a rate such as 500kB/s or 1MB/s"},
        {{"--max-connections", "0"}, "--max-connections: "},
        {{"--journal-entries", "-1"}, "--journal-entries: "},
        {{"--control-port", "65536"}, "--control-port"}};
    for (const auto& [arguments, text] : kWrong) {
        m_errors.str("");
        EXPECT_FALSE(read(arguments)) << text;
        EXPECT_EQ(m_status, kUsageError);
        EXPECT_NE(m_errors.str().find(text), std::string::npos) << m_errors.str();
    }
}

TEST_F(CommandLine, TakesTheLimitsOfSessions)
{
    const auto options =
        read({"--max-sessions", "3", "--session-idle", "30s", "--lockout-after", "2", "--lockout-time", "500ms"});
    ASSERT_TRUE(options) << m_errors.str();
    EXPECT_EQ(options->server.maxSessions, 3u);
    EXPECT_EQ(options->server.sessionIdle, std::chrono::seconds(30));
    EXPECT_EQ(options->server.lockoutAfter, 2u);
    EXPECT_EQ(options->server.lockoutTime, std::chrono::milliseconds(500));
}

TEST_F(CommandLine, NeedsNoPasswordToWriteWhatIsInADatabase)
{
    unsetenv("BREVAN_SIM_PASSWORD");
    const auto dump = read({"--dump", "--db", "a.db", "--output", "a.json"});
    ASSERT_TRUE(dump) << m_errors.str();
    EXPECT_EQ(dump->task, Task::kDump);
    EXPECT_EQ(dump->server.database, "a.db");
    EXPECT_EQ(dump->output, "a.json");
    const auto chain = read({"--chain", "--seed", "a.json", "--format", "dot"});
    ASSERT_TRUE(chain) << m_errors.str();
    EXPECT_EQ(chain->task, Task::kChain);
    EXPECT_EQ(chain->chainFormat, ChainFormat::kDot);
    EXPECT_FALSE(read({}));
}

TEST_F(CommandLine, RefusesFlagsThatDoNotGoTogether)
{
    const std::vector<std::vector<const char*>> lines{
        {"--dump"},
        {"--dump", "--chain", "--db", "a"},
        {"--dump", "--db", "a", "--seed", "b"},
        {"--chain", "--db", "a", "--format", "svg"},
        {"--format", "json"},
        {"--output", "a"},
        {"--db", ""},
        {"--db", ":memory:"},
        {"--seed", "a", "--pool", "0:p:1"},
        {"--max-sessions", "0"},
        {"--session-idle", "2h"},
        {"--lockout-time", "soon"},
    };
    for (const auto& line : lines) {
        m_errors.str("");
        EXPECT_FALSE(read(line)) << line.back();
        EXPECT_EQ(m_status, kUsageError) << line.back();
        EXPECT_NE(m_errors.str().find("--help explains all flags"), std::string::npos) << m_errors.str();
    }
}
