// Runs the commands that docs/simulator.md shows for the control port, as they stand there.
#include "ServedArray.h"

#include "simulator/Files.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>

using namespace brevan::sim;
using namespace brevan::sim::test;

namespace {

/// The lines of the first code block in the section with this heading.
std::vector<std::string> documentedCommands(const std::string& heading)
{
    const std::string text = readFile(BREVAN_SIMULATOR_DOCUMENT, 1000000);
    const std::size_t section = text.find("\n" + heading + "\n");
    const std::size_t begin = text.find("\n```sh\n", section) + 7;
    std::istringstream block(text.substr(begin, text.find("\n```", begin) + 1 - begin));
    std::vector<std::string> lines;
    for (std::string line; std::getline(block, line);) {
        lines.push_back(line);
    }
    return lines;
}

class DocumentedCommands : public ::testing::Test {
protected:
    DocumentedCommands()
    {
        // curl is to tell an HTTP error by its exit status.
        writeFileAtomically(m_directory + "/.curlrc", "fail\nshow-error\n");
    }
    ~DocumentedCommands() override { std::filesystem::remove_all(m_directory); }
    static ServerOptions options()
    {
        ServerOptions made = testOptions();
        made.controlPort = 0;
        return made;
    }
    /// What the command prints; a failure where it fails.
    std::string run(const std::string& address, const std::string& command)
    {
        const std::string output = m_directory + "/output";
        const std::string line = "CURL_HOME='" + m_directory + "'; export CURL_HOME; " + address + "; { " + command +
                                 "\n} >'" + output + "' 2>&1";
        EXPECT_EQ(std::system(line.c_str()), 0) << command << "\n" << readFile(output, 100000);
        return readFile(output, 100000);
    }
    /// The document's first line, with this array's port.
    std::string addressLine(std::string line)
    {
        const std::size_t colon = line.rfind(':');
        EXPECT_EQ(line.compare(0, colon, "C=http://127.0.0.1"), 0);
        return line.replace(colon + 1, std::string::npos, std::to_string(m_server.controlPort()));
    }
    std::string m_directory = makePrivateDirectory();
    StartedServer m_server{options()};
    ArrayClient m_client{m_server};
};

}  // namespace

TEST_F(DocumentedCommands, DoWhatTheDocumentSays)
{
    const std::vector<std::string> commands = documentedCommands("## Control port");
    ASSERT_GE(commands.size(), 11u);
    const std::string address = addressLine(commands[0]);
    std::string all;
    std::size_t mostFaults = 0;
    for (std::size_t index = 1; index < commands.size(); ++index) {
        all += run(address, commands[index]);
        mostFaults = std::max(mostFaults, m_server.faultsLeft());
    }
    EXPECT_EQ(mostFaults, 5u) << "the scripts of the document";
    EXPECT_EQ(m_server.faultsLeft(), 0u) << "the document deletes them in the end";
    EXPECT_EQ(m_server.requestCount(), 0u) << "and the journal";
    for (const char* expected : {"POST /faults", "\"stall 2s\"", "\"fired\": []", "\"path\":\"/sessions\"",
                                 "\"latency\": \"5ms\"", "\"bandwidth\": \"unlimited\"", "digraph"}) {
        EXPECT_NE(all.find(expected), std::string::npos) << expected << "\n" << all;
    }
}
