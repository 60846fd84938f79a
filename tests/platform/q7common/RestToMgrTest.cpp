#include "TransportFixture.h"

#include "RestToMgr.h"

#include <sys/stat.h>

#include <cstdlib>

namespace brevan::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr const char* kSearch = " ls -al /dev/disk/by-id | grep ? | grep -v part | grep scsi-";

/// Runs the library's commands with an "ls" and an "lsscsi" of the test in front of the system's.
class HostCommand : public TransportTest {
protected:
    void SetUp() override
    {
        TransportTest::SetUp();
        m_path = std::getenv("PATH");
        setenv("PATH", (m_tools.file("") + ":" + m_path).c_str(), 1);
    }
    void TearDown() override { setenv("PATH", m_path.c_str(), 1); }

    void addTool(const std::string& name, const std::string& script)
    {
        chmod(m_tools.write(name, "#!/bin/sh\n" + script + "\n").c_str(), 0755);
    }

    int run(const char* line, const std::vector<std::string>& parameters, std::uint64_t code, std::uint64_t type)
    {
        return RestToMgr::ExceSystemCmd(RunShellCmdInfo(line, parameters, code, type, 0), m_lines, m_errorText);
    }

    TemporaryFolder m_tools;
    std::string m_path;
    std::vector<std::string> m_lines;
    std::string m_errorText;
};

TEST_F(HostCommand, AppendsItsOutputAndGivesErrorsFirst)
{
    addTool("lsscsi", "echo '[0] tmp-block a'; echo other; echo '[1] tmp-block b'; echo warning >&2");
    m_lines = {"before"};
    m_errorText = "old";
    EXPECT_EQ(run("lsscsi | grep tmp-block", {}, 100007, 1), 0);
    EXPECT_THAT(m_lines, ElementsAre("before", "[0] tmp-block a", "[1] tmp-block b"));
    EXPECT_EQ(m_errorText, "warning\n[0] tmp-block a\n[1] tmp-block b\n");
    EXPECT_THAT(RunLogRecorder::lines(), IsEmpty());
}

TEST_F(HostCommand, FailsWhereTheLastGrepFindsNothing)
{
    addTool("lsscsi", "echo other");
    EXPECT_EQ(run("lsscsi | grep tmp-block", {}, 100007, 1), 1);
    EXPECT_THAT(m_lines, IsEmpty());
}

TEST_F(HostCommand, PutsTheParameterIntoItsPlace)
{
    addTool("ls", "echo 'scsi-36a -> ../../sda'; echo 'scsi-36a-part1'; echo 'scsi-36b -> ../../sdb'; echo \"$@\" >&2");
    EXPECT_EQ(run(kSearch, {"6a"}, 100008, 0), 0);
    EXPECT_THAT(m_lines, ElementsAre("scsi-36a -> ../../sda"));
    EXPECT_THAT(m_errorText, HasSubstr("-al /dev/disk/by-id\n"));
}

/// What a shell would take for more than text, each with a command that leaves `file` behind.
std::vector<std::string> hostileParameters(const std::string& file)
{
    const std::string command = "touch " + file;
    return {"; " + command,
            "$(" + command + ")",
            "`" + command + "`",
            "| " + command,
            "&& " + command,
            "> " + file,
            "'; " + command + "; '",
            "\"; " + command + "; \"",
            "\\'; " + command,
            "sda' '-e",
            "${IFS}" + command,
            "a b",
            "*",
            "\xff\xfe",
            "?"};
}

TEST_F(HostCommand, HandsAHostileParameterOnAsOneArgumentInQuotes)
{
    addTool("sudo", "printf '%s|' \"$#\" \"$@\"");
    const char* line = "sudo /opt/root_tool/common/security_sudo_v3.sh dev_rescan '?'";
    for (const std::string& hostile : hostileParameters(m_tools.file("ran"))) {
        m_lines.clear();
        EXPECT_EQ(run(line, {hostile}, 100004, 1), 0);
        EXPECT_THAT(m_lines, ElementsAre("3|/opt/root_tool/common/security_sudo_v3.sh|dev_rescan|" + hostile + "|"));
    }
    EXPECT_NE(access(m_tools.file("ran").c_str(), F_OK), 0);
}

TEST_F(HostCommand, HandsAHostileParameterOnAsOneArgumentOutsideQuotes)
{
    addTool("ls", "true");
    addTool("grep", "case $1 in -v | scsi-) exec cat ;; *) printf '%s|' \"$#\" \"$@\" ;; esac");
    for (const std::string& hostile : hostileParameters(m_tools.file("ran"))) {
        m_lines.clear();
        EXPECT_EQ(run(kSearch, {hostile}, 100008, 0), 0);
        EXPECT_THAT(m_lines, ElementsAre("1|" + hostile + "|"));
    }
    EXPECT_NE(access(m_tools.file("ran").c_str(), F_OK), 0);
}

TEST_F(HostCommand, IsRefusedWithABadParameter)
{
    addTool("ls", "touch " + m_tools.file("ran"));
    for (const std::string& bad : {std::string("-e"), std::string(), std::string("a\nb"), std::string("a\0b", 3)}) {
        EXPECT_NE(run(kSearch, {bad}, 100008, 0), 0);
    }
    EXPECT_NE(run(kSearch, {}, 100008, 0), 0);
    EXPECT_NE(run(kSearch, {"a", "b"}, 100008, 0), 0);
    EXPECT_NE(access(m_tools.file("ran").c_str(), F_OK), 0);
    EXPECT_THAT(m_errorText, HasSubstr("Command 100008 did not run: there are more parameters than places for them"));
    EXPECT_EQ(RunLogRecorder::lines().size(), 6U);
}

TEST_F(HostCommand, IsRefusedWhereItIsNoneOfTheLibrary)
{
    EXPECT_NE(run(("touch " + m_tools.file("ran")).c_str(), {}, 100007, 1), 0);
    EXPECT_NE(access(m_tools.file("ran").c_str(), F_OK), 0);
    EXPECT_THAT(m_errorText, HasSubstr("Command 100007 did not run"));
}

TEST_F(HostCommand, EndsWithItsTimeLimit)
{
    useSettings("", "[time]\ncommand_seconds = 0.2\n");
    addTool("lsscsi", "echo tmp-block; sleep 1000");
    EXPECT_NE(run("lsscsi | grep tmp-block", {}, 100007, 1), 0);
    EXPECT_THAT(m_errorText, HasSubstr("did not end within 0.2 seconds"));
    EXPECT_THAT(RunLogRecorder::text(), HasSubstr("E Command 100007: the command did not end"));
}

TEST_F(HostCommand, SaysThatOutputWasDropped)
{
    useSettings("", "[limits]\ncommand_output_kilobytes = 1\n");
    addTool("lsscsi", "yes tmp-block | head -n 1000");
    EXPECT_EQ(run("lsscsi | grep tmp-block", {}, 100007, 1), 0);
    EXPECT_EQ(m_lines.size(), 102U);
    EXPECT_THAT(m_errorText, HasSubstr("bytes of its output were dropped"));
}

TEST_F(HostCommand, SpeaksPlainEnglish)
{
    setenv("LC_ALL", "de_DE.UTF-8", 1);
    addTool("lsscsi", "echo \"tmp-block $LC_ALL\"");
    run("lsscsi | grep tmp-block", {}, 100007, 1);
    unsetenv("LC_ALL");
    EXPECT_THAT(m_lines, ElementsAre("tmp-block C"));
}

}  // namespace
}  // namespace brevan::test
