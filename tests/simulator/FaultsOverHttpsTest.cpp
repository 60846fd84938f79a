// Every kind of fault as a client meets it, over a real connection.
#include "ScriptedFaults.h"
#include "ServedArray.h"

#include "simulator/ErrorCodes.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

using namespace brevan::sim;
using namespace brevan::sim::test;

namespace {

class FaultsOverHttps : public ::testing::Test {
protected:
    FaultsOverHttps()
    {
        // On a used connection libcurl would send again what was reset.
        m_session.client().set(CURLOPT_FRESH_CONNECT, 1L);
    }
    HttpsReply createLun(const std::string& name = "l")
    {
        return m_session.send("POST", "/lun", R"({"NAME":")" + name + R"(","PARENTID":"0","CAPACITY":8})");
    }
    ScriptedFaults faults(const std::string& list)
    {
        return ScriptedFaults(m_server, R"({"operation": "POST /lun", "do": [)" + list + "]}");
    }
    /// How many LUNs there are: whether a request was carried out.
    std::string luns() { return Data::parse(m_session.get("/lun/count?").body).at("data").at("COUNT").text(); }
    static ServerOptions options()
    {
        ServerOptions made = testOptions();
        made.threads = 1;
        return made;
    }
    StartedServer m_server{options()};
    ServedClient m_session{m_server};
};

}  // namespace

TEST_F(FaultsOverHttps, AnswersAnErrorInsteadOfTheOperation)
{
    const auto script = faults(R"("error 1077949006", "error -5 no way")");
    EXPECT_EQ(codeOf(createLun()), 1077949006);
    const HttpsReply second = createLun();
    EXPECT_EQ(codeOf(second), -5);
    EXPECT_EQ(Data::parse(second.body).at("error").at("description").text(), "no way");
    EXPECT_EQ(luns(), "0");
}

TEST_F(FaultsOverHttps, AnswersAStatusWithAPageThatIsNoJson)
{
    const auto script = faults(R"("status 503", "status 302")");
    const HttpsReply unavailable = createLun();
    EXPECT_EQ(unavailable.status, 503);
    EXPECT_NE(unavailable.headers.find("Content-Type: text/html"), std::string::npos);
    EXPECT_EQ(unavailable.body.find("<html>"), 0u);
    const HttpsReply elsewhere = createLun();
    EXPECT_EQ(elsewhere.status, 302);
    EXPECT_NE(elsewhere.headers.find("Location: /elsewhere"), std::string::npos);
    EXPECT_EQ(luns(), "0");
}

TEST_F(FaultsOverHttps, ResetsTheConnectionBeforeTheRequestIsCarriedOut)
{
    const auto script = faults(R"("reset before")");
    const HttpsReply reply = createLun();
    EXPECT_EQ(reply.result, CURLE_RECV_ERROR) << reply.error;
    EXPECT_NE(reply.error.find("reset by peer"), std::string::npos) << reply.error;
    EXPECT_EQ(luns(), "0");
}

TEST_F(FaultsOverHttps, ResetsTheConnectionAfterTheRequestWasCarriedOut)
{
    const auto script = faults(R"("reset after")");
    const HttpsReply reply = createLun();
    EXPECT_NE(reply.error.find("reset by peer"), std::string::npos) << reply.error;
    EXPECT_EQ(reply.headers, "");
    EXPECT_EQ(luns(), "1");
}

TEST_F(FaultsOverHttps, CutsTheAnswerAndItsConnection)
{
    const auto script = faults(R"("cut 40", "cut 0", "cut 1000000")");
    const HttpsReply reply = createLun();
    EXPECT_NE(reply.result, CURLE_OK);
    EXPECT_EQ(reply.status, 200);
    EXPECT_EQ(reply.body.size(), 40u);
    const HttpsReply empty = createLun("m");
    EXPECT_NE(empty.result, CURLE_OK);
    EXPECT_EQ(empty.body, "");
    const HttpsReply nearlyAll = createLun("n");
    EXPECT_NE(nearlyAll.result, CURLE_OK);
    EXPECT_THROW(Data::parse(nearlyAll.body), std::exception);
    EXPECT_NO_THROW(Data::parse(nearlyAll.body + "}"));
    EXPECT_EQ(luns(), "3");
}

TEST_F(FaultsOverHttps, AnswersWhatIsNotJson)
{
    const auto script = faults(R"("garbage")");
    const HttpsReply reply = createLun();
    EXPECT_EQ(reply.status, 200);
    EXPECT_THROW(Data::parse(reply.body), std::exception);
    EXPECT_EQ(luns(), "1");
}

TEST_F(FaultsOverHttps, AnswersValuesOfWrongTypes)
{
    const auto script = faults(R"("wrong types")");
    const Data reply = Data::parse(createLun().body);
    EXPECT_EQ(reply.at("error").at("code").number(), 0);
    EXPECT_EQ(reply.at("data").at("NAME").at(0u).text(), "l");
    EXPECT_EQ(luns(), "1");
}

TEST_F(FaultsOverHttps, EndsTheSessionOfTheRequestAndNoOther)
{
    const auto script = faults(R"("session gone")");
    ServedClient other(m_server);
    EXPECT_EQ(codeOf(createLun()), kNoSession);
    EXPECT_EQ(codeOf(m_session.get("/lun/count?")), kNoSession);
    EXPECT_EQ(codeOf(other.get("/lun/count?")), kDone);
    EXPECT_EQ(Data::parse(other.get("/lun/count?").body).at("data").at("COUNT").text(), "0");
}

TEST_F(FaultsOverHttps, StallsOneClientWithoutHoldingUpOthers)
{
    const auto script = faults(R"("stall 1min", "stall 20ms")");
    m_session.client().set(CURLOPT_TIMEOUT_MS, 400L);
    EXPECT_EQ(createLun().result, CURLE_OPERATION_TIMEDOUT);
    // The server has one thread, and it is free: the stalled answer waits for the rest of its minute.
    m_session.client().set(CURLOPT_TIMEOUT_MS, 20000L);
    EXPECT_EQ(luns(), "1");
    EXPECT_EQ(codeOf(createLun("m")), kDone);
}

TEST_F(FaultsOverHttps, PassesWhereTheScriptSaysSo)
{
    const auto script = faults(R"("pass", "error 7")");
    EXPECT_EQ(codeOf(createLun()), kDone);
    EXPECT_EQ(codeOf(createLun("m")), 7);
    EXPECT_EQ(codeOf(createLun("m")), kDone);
}

TEST_F(FaultsOverHttps, TellsInTheJournalWhatTheClientGotToSee)
{
    const auto script = faults(R"("reset after", "status 503", "pass")");
    for (int index = 0; index < 3; ++index) {
        createLun("l" + std::to_string(index));
    }
    const auto entries = m_server.journal();
    ASSERT_EQ(entries.size(), 4u);
    EXPECT_EQ(entries[1].fault, "reset after");
    EXPECT_EQ(entries[1].status, 0u);
    EXPECT_EQ(entries[2].fault, "status 503");
    EXPECT_EQ(entries[2].status, 503u);
    EXPECT_EQ(entries[3].fault, "pass");
    EXPECT_EQ(entries[3].status, 200u);
    EXPECT_EQ(m_server.faultReport().fired.at(0).request, entries[1].number);
}

TEST_F(FaultsOverHttps, FailsATestThatLeavesFaultsUnused)
{
    EXPECT_NONFATAL_FAILURE(faults(R"("reset before")"), "the fault \"reset before\" of POST /lun was never used");
    EXPECT_EQ(m_server.faultsLeft(), 0u);
}

TEST_F(FaultsOverHttps, IsSlowWhereTheLinkIs)
{
    m_server.setLink(std::chrono::minutes(1));
    m_session.client().set(CURLOPT_TIMEOUT_MS, 400L);
    EXPECT_EQ(m_session.get("/lun/count?").result, CURLE_OPERATION_TIMEDOUT);
    m_server.setLink(std::chrono::milliseconds(5), 1);
    EXPECT_EQ(m_session.get("/lun/count?").result, CURLE_OPERATION_TIMEDOUT);
    m_server.setLink(std::chrono::milliseconds(5), 1000000);
    EXPECT_EQ(luns(), "0");
}
