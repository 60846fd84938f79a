#include "HttpsSession.h"
#include "ProgramFixture.h"

#include "simulator/Database.h"
#include "simulator/Text.h"

#include <set>

using namespace brevan::sim;
using namespace brevan::sim::test;

namespace {

constexpr const char* kInitiator = "iqn.2020-01.lab:host";

/// The program with a database, ended and started again in every way.
class Restart : public Program {
protected:
    void startArray(std::vector<std::string> more = {})
    {
        std::filesystem::remove(file("port"));
        more.insert(more.end(), {"--db", file("array.db"), "--port-file", file("port"), "--ca-file", file("ca.pem"),
                                 "--iscsi-initiator", kInitiator});
        start(more);
        m_port = port();
        ASSERT_NE(m_port, "") << content("errors");
    }
    HttpsSession session() const { return HttpsSession(m_port, file("ca.pem")); }
    void endBy(int signal)
    {
        kill(m_pid, signal);
        exitStatus();
    }
    std::string outputOf(std::vector<std::string> arguments)
    {
        const pid_t array = m_pid;
        start(std::move(arguments));
        EXPECT_EQ(exitStatus(), 0) << content("errors");
        m_pid = array;
        return content("output");
    }
    std::string m_port;
};

std::string make(HttpsSession& session, const std::string& path, const std::string& body)
{
    return HttpsSession::field(session.send("POST", path, body), "ID");
}

std::string association(const std::string& owner, int type, const std::string& member)
{
    return R"({"ID":")" + owner + R"(","ASSOCIATEOBJTYPE":)" + std::to_string(type) + R"(,"ASSOCIATEOBJID":")" + member +
           "\"}";
}

/// What exposes a new LUN to the initiator; the LUN's WWN.
std::string expose(HttpsSession& session)
{
    const std::string lun = session.send("POST", "/lun", R"({"NAME":"l","PARENTID":"0","CAPACITY":2048})");
    const std::string host = make(session, "/host", R"({"NAME":"h","OPERATIONSYSTEM":0})");
    session.send("PUT", std::string("/iscsi_initiator/") + kInitiator, R"({"PARENTTYPE":21,"PARENTID":")" + host + "\"}");
    const std::string hostGroup = make(session, "/hostgroup", R"({"NAME":"hg"})");
    const std::string lunGroup = make(session, "/lungroup/", R"({"NAME":"lg"})");
    const std::string view = make(session, "/mappingview", R"({"NAME":"v"})");
    session.send("POST", "/hostgroup/associate", association(hostGroup, 21, host));
    session.send("POST", "/lungroup/associate", association(lunGroup, 11, HttpsSession::field(lun, "ID")));
    session.send("PUT", "/mappingview/create_associate", association(view, 14, hostGroup));
    session.send("PUT", "/mappingview/create_associate", association(view, 256, lunGroup));
    return HttpsSession::field(lun, "WWN");
}

}  // namespace

TEST_F(Restart, AfterAKillHasAllThatWasAnswered)
{
    startArray();
    HttpsSession first = session();
    std::vector<std::string> answered;
    std::thread killer;
    for (std::string reply = "begin"; !reply.empty();) {
        const std::string name = "lun" + std::to_string(answered.size());
        reply = first.send("POST", "/lun", R"({"NAME":")" + name + R"(","PARENTID":"0","CAPACITY":8,"ALLOCTYPE":1})");
        if (!reply.empty()) {
            answered.push_back(HttpsSession::field(reply, "ID") + " " + HttpsSession::field(reply, "WWN"));
        }
        if (answered.size() == 100 && !killer.joinable()) {
            killer = std::thread([pid = m_pid] { kill(pid, SIGKILL); });
        }
    }
    killer.join();
    exitStatus();
    startArray();
    HttpsSession second = session();
    std::set<std::string> ids;
    for (const std::string& lun : answered) {
        const std::string id = lun.substr(0, lun.find(' '));
        EXPECT_EQ(id + " " + HttpsSession::field(second.send("GET", "/lun/" + id), "WWN"), lun);
        ids.insert(id);
    }
    const std::string next = make(second, "/lun", R"({"NAME":"next","PARENTID":"0","CAPACITY":8,"ALLOCTYPE":1})");
    EXPECT_GT(decimal(next), decimal(answered.back().substr(0, answered.back().find(' '))));
    EXPECT_EQ(ids.size(), answered.size());
}

TEST_F(Restart, NeverGivesAnIdOrAWwnTwice)
{
    startArray();
    HttpsSession first = session();
    const std::string lun = first.send("POST", "/lun", R"({"NAME":"l","PARENTID":"0","CAPACITY":8})");
    first.send("DELETE", "/lun/" + HttpsSession::field(lun, "ID"));
    endBy(SIGTERM);
    startArray();
    HttpsSession second = session();
    const std::string again = second.send("POST", "/lun", R"({"NAME":"l","PARENTID":"0","CAPACITY":8})");
    EXPECT_GT(decimal(HttpsSession::field(again, "ID")), decimal(HttpsSession::field(lun, "ID")));
    EXPECT_GT(HttpsSession::field(again, "WWN"), HttpsSession::field(lun, "WWN"));
}

TEST_F(Restart, ExposesAgainWhatWasExposedAndCleansUpBeforeAndAfter)
{
    const std::vector<std::string> tree{"--exposure", "tree", "--tree-directory", file("tree")};
    const std::string list = std::string("tree/") + kInitiator;
    startArray(tree);
    HttpsSession first = session();
    const std::string line = "1 " + expose(first) + " 1048576\n";
    EXPECT_EQ(content(list), line);
    endBy(SIGKILL);
    EXPECT_EQ(content(list), line);
    writeFileAtomically(file("tree/iqn.2020-01.lab:of-a-killed-run"), "1 6aa 512\n");
    writeFileAtomically(file(list), "7 6bb 512\n");
    startArray(tree);
    EXPECT_EQ(content(list), line);
    EXPECT_FALSE(std::filesystem::exists(file("tree/iqn.2020-01.lab:of-a-killed-run")));
    endBy(SIGTERM);
    EXPECT_TRUE(std::filesystem::is_empty(file("tree")));
    startArray(tree);
    EXPECT_EQ(content(list), line);
}

TEST_F(Restart, IsNotPossibleWhileTheArrayRuns)
{
    startArray();
    const pid_t array = m_pid;
    start({"--db", file("array.db")});
    EXPECT_EQ(exitStatus(), 1);
    m_pid = array;
    EXPECT_EQ(content("errors"),
              "brevan-array-sim: " + file("array.db") + " is in use: another simulated array runs on it\n");
}

TEST_F(Restart, LeavesInventoryAndChainAsTheyWere)
{
    startArray();
    HttpsSession first = session();
    const std::string wwn = expose(first);
    const std::string inventory = outputOf({"--dump", "--db", file("array.db")});
    const std::string chain = outputOf({"--chain", "--db", file("array.db")});
    EXPECT_NE(chain.find("LUN number 1: LUN 8 l, 1048576 bytes, WWN " + wwn), std::string::npos) << chain;
    endBy(SIGKILL);
    EXPECT_EQ(outputOf({"--dump", "--db", file("array.db")}), inventory);
    EXPECT_EQ(outputOf({"--dump", "--db", file("array.db"), "--output", file("seed.json")}), "");
    EXPECT_EQ(outputOf({"--dump", "--seed", file("seed.json")}), inventory);
    EXPECT_EQ(outputOf({"--chain", "--seed", file("seed.json")}), chain);
    EXPECT_EQ(outputOf({"--chain", "--format", "dot", "--seed", file("seed.json")}).substr(0, 9), "digraph c");
}

TEST_F(Restart, NeedsADatabaseThatIsThere)
{
    start({"--dump", "--db", file("none.db")});
    EXPECT_EQ(exitStatus(), 1);
    EXPECT_NE(content("errors").find(file("none.db")), std::string::npos) << content("errors");
    EXPECT_FALSE(std::filesystem::exists(file("none.db")));
    {
        const Database empty(file("empty.db"));
    }
    start({"--chain", "--db", file("empty.db")});
    EXPECT_EQ(exitStatus(), 1);
    EXPECT_EQ(content("errors"), "brevan-array-sim: " + file("empty.db") + " has no array yet\n");
    writeFileAtomically(file("seed.json"), "{\"version\": 1, \"hosts\": [{}]}");
    start({"--dump", "--seed", file("seed.json")});
    EXPECT_EQ(exitStatus(), 1);
    EXPECT_EQ(content("errors"), "brevan-array-sim: " + file("seed.json") + ": hosts[0].NAME: the value is missing\n");
}
