#include "simulator/ControlPort.h"

#include "ArrayClient.h"
#include "HttpsClient.h"
#include "ServedArray.h"

#include <gtest/gtest.h>

using namespace brevan::sim;
using namespace brevan::sim::test;

namespace {

class ControlPortTest : public ::testing::Test {
protected:
    static ServerOptions options()
    {
        ServerOptions made = testOptions();
        made.controlPort = 0;
        made.iscsiInitiators = {"iqn.2020-01.lab:host"};
        return made;
    }
    HttpsReply call(const std::string& method, const std::string& path, const std::string& body = "",
                    const std::vector<std::string>& headers = {})
    {
        return m_control.send(method, path, body, headers);
    }
    Data data(const HttpsReply& reply) { return Data::parse(reply.body); }
    std::string refusal(const std::string& method, const std::string& path, const std::string& body = "")
    {
        const HttpsReply reply = call(method, path, body);
        EXPECT_EQ(reply.status, 400) << path << " " << body;
        return data(reply).at("error").text();
    }
    StartedServer m_server{options()};
    ArrayClient m_client{m_server};
    HttpsClient m_control{"http://127.0.0.1:" + std::to_string(m_server.controlPort()), ""};
};

}  // namespace

TEST_F(ControlPortTest, ListsWhatThereIs)
{
    const HttpsReply reply = call("GET", "/");
    EXPECT_EQ(reply.status, 200);
    for (const char* route : {"POST /faults", "DELETE /faults", "GET /journal", "PUT /link", "GET /chain"}) {
        EXPECT_NE(reply.body.find(route), std::string::npos) << route;
    }
}

TEST_F(ControlPortTest, TakesAFaultScriptAndTellsWhatHasFired)
{
    const HttpsReply added = call("POST", "/faults", R"({"operation": "GET /lun/{id}", "do": ["error 7", "garbage"]})");
    EXPECT_EQ(added.status, 200);
    EXPECT_EQ(data(added).at("left").number(), 2);
    EXPECT_EQ(m_client.get("/lun/1").code, 7);
    const Data told = data(call("GET", "/faults"));
    EXPECT_EQ(told.at("left").number(), 1);
    EXPECT_EQ(told.at("fired").dump(), R"([{"fault":"error 7","operation":"GET /lun/{id}","request":2}])");
    EXPECT_EQ(told.at("waiting").dump(), R"([{"do":["garbage"],"operation":"GET /lun/{id}"}])");
    EXPECT_EQ(data(call("DELETE", "/faults")).dump(), R"({"fired":[],"left":0,"waiting":[]})");
}

TEST_F(ControlPortTest, RefusesAScriptWhole)
{
    const std::string text =
        refusal("POST", "/faults",
                R"([{"operation": "POST /lun", "do": ["pass"]}, {"operation": "POST /lun", "do": ["pass", "status 200"]}])");
    EXPECT_EQ(text, "The fault script is refused, at step 2: the fault 'status 200' needs a whole number from 300 to 599.");
    EXPECT_EQ(refusal("POST", "/faults", "{"), "The fault script is refused, at step 1: it is not JSON at byte 2.");
    EXPECT_EQ(refusal("POST", "/faults", "\xff\xfe").find("The fault script is refused"), 0u);
    EXPECT_EQ(m_server.faultsLeft(), 0u);
}

TEST_F(ControlPortTest, GivesTheJournalAsJson)
{
    m_client.get("/lun/7");
    const Data told = data(call("GET", "/journal"));
    EXPECT_EQ(told.at("requests").number(), 2);
    ASSERT_EQ(told.at("entries").size(), 2u);
    EXPECT_EQ(told.at("entries").at(0u).at("body").text(), R"({"username":"admin","password":"***","scope":0})");
    EXPECT_EQ(told.at("entries").at(1u).at("path").text(), "/lun/7");
    EXPECT_EQ(data(call("GET", "/journal?after=1")).at("entries").size(), 1u);
    EXPECT_EQ(data(call("GET", "/journal?after=99999")).at("entries").size(), 0u);
    EXPECT_EQ(data(call("DELETE", "/journal")).at("requests").number(), 0);
}

TEST_F(ControlPortTest, RefusesParametersThatMeanNothing)
{
    EXPECT_EQ(refusal("GET", "/journal?after=x"), "The value of after is not the number of a request: 'x'.");
    EXPECT_EQ(refusal("GET", "/journal?before=1"), "The parameters 'before=1' are not of the form after=VALUE.");
    EXPECT_EQ(refusal("GET", "/chain?format=png"), "The chain's format is text, json or dot, not 'png'.");
}

TEST_F(ControlPortTest, ChangesTheLink)
{
    EXPECT_EQ(data(call("GET", "/link")).dump(), R"({"bandwidth":"unlimited","latency":"0s"})");
    EXPECT_EQ(data(call("PUT", "/link", R"({"latency":"5ms"})")).dump(), R"({"bandwidth":"unlimited","latency":"5ms"})");
    EXPECT_EQ(data(call("PUT", "/link", R"({"bandwidth":"1MB/s"})")).dump(), R"({"bandwidth":"1MB/s","latency":"5ms"})");
}

TEST_F(ControlPortTest, ChangesNothingOfTheLinkByABadRequest)
{
    for (const char* body : {"", "[]", "7", "{", R"({"latency":5})", R"({"latency":"5"})", R"({"bandwidth":"fast"})",
                             R"({"latency":"1s","bandwidth":"0B/s"})", R"({"latency":"1s","speed":"1MB/s"})"}) {
        refusal("PUT", "/link", body);
    }
    EXPECT_EQ(data(call("GET", "/link")).dump(), R"({"bandwidth":"unlimited","latency":"0s"})");
}

TEST_F(ControlPortTest, GivesTheChainAsTextDataOrPicture)
{
    const Chain chain(m_client, "iqn.2020-01.lab:host", "0");
    const HttpsReply text = call("GET", "/chain");
    EXPECT_NE(text.headers.find("Content-Type: text/plain"), std::string::npos);
    EXPECT_NE(text.body.find("iqn.2020-01.lab:host"), std::string::npos);
    EXPECT_NO_THROW(data(call("GET", "/chain?format=json")));
    EXPECT_EQ(call("GET", "/chain", "", {"Accept: application/json"}).body, call("GET", "/chain?format=json").body);
    const HttpsReply dot = call("GET", "/chain", "", {"Accept: text/vnd.graphviz"});
    EXPECT_EQ(dot.body, call("GET", "/chain?format=dot").body);
    EXPECT_EQ(dot.body.find("digraph"), 0u) << dot.body;
    EXPECT_EQ(call("GET", "/chain?format=text", "", {"Accept: application/json"}).body, text.body);
}

TEST_F(ControlPortTest, KnowsNoOtherPathsAndMethods)
{
    EXPECT_EQ(call("GET", "/nosuch").status, 404);
    EXPECT_EQ(call("GET", "/faults/").status, 404);
    const HttpsReply wrongMethod = call("PUT", "/faults", "{}");
    EXPECT_EQ(wrongMethod.status, 405);
    EXPECT_NE(wrongMethod.headers.find("Allow: GET, POST, DELETE"), std::string::npos);
}

TEST_F(ControlPortTest, IsForThisMachineOnly)
{
    EXPECT_EQ(call("GET", "/faults", "", {"Host: evil.example"}).status, 403);
    EXPECT_EQ(call("GET", "/faults", "", {"Host: localhost:1"}).status, 200);
    EXPECT_EQ(m_server.requestCount(), 1u) << "what comes to the control port is no request to the array";
}

TEST_F(ControlPortTest, RefusesWhatIsTooLong)
{
    const HttpsReply reply = call("POST", "/faults", std::string(2000000, 'x'));
    EXPECT_EQ(reply.status, 413);
    EXPECT_EQ(data(reply).at("error").text(), "The request body is larger than 1048576 bytes.");
}

TEST(ControlPort, IsOffUnlessItIsAskedFor)
{
    StartedServer server;
    EXPECT_EQ(server.controlPort(), 0);
}
