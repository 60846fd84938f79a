#include "simulator/RequestPipeline.h"

#include "ArrayClient.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace brevan::sim;
using namespace brevan::sim::test;

namespace {

/// A driver that fails on demand and notes what it was told.
class FailingDriver : public NoExposure {
public:
    void apply(const ExposurePlan& plan) override
    {
        m_plans.push_back(plan);
        if (m_failures > 0) {
            --m_failures;
            throw std::runtime_error("no such device");
        }
    }
    int m_failures = 0;
    std::vector<ExposurePlan> m_plans;
};

struct PipelineFixture {
    PipelineFixture()
    {
        furnish(array);
        auto owned = std::make_unique<FailingDriver>();
        driver = owned.get();
        array.exposure = std::move(owned);
        const SessionStore::Credentials session = array.sessions.open("admin", 0);
        request.token = session.token;
        request.cookie = session.cookie;
    }
    Data send(const std::string& method, const std::string& path, const std::string& body = "")
    {
        request.method = method;
        request.target = "/deviceManager/rest/210000000001" + path;
        request.body = body;
        return Data::parse(pipeline.handle(request).body);
    }
    int code(const std::string& method, const std::string& path, const std::string& body = "")
    {
        return send(method, path, body).at("error").at("code").number();
    }

    Array array{testOptions()};
    RequestPipeline pipeline{array};
    FailingDriver* driver;
    WireRequest request;
};

}  // namespace

TEST(RequestPipeline, AnswersAnErrorWithAnEmptyRecordACodeAndAText)
{
    PipelineFixture fixture;
    const Data reply = fixture.send("GET", "/lun/77");
    EXPECT_EQ(reply.at("data"), Fields());
    EXPECT_EQ(reply.at("error"),
              (Fields{{"code", static_cast<int>(kUnknownLun)}, {"description", "The LUN '77' does not exist."}}));
}

TEST(RequestPipeline, AnswersUnknownPathsWith404AndAnArrayError)
{
    ArrayFixture array;
    for (const char* path : {"/nosuch", "/LUN/1", "", "/"}) {
        const Reply reply = array.client.get(path);
        EXPECT_EQ(reply.status, 404u) << path;
        EXPECT_EQ(reply.code, kUnknownOperation) << path;
    }
    EXPECT_EQ(array.client.send({"GET", "/", "", "", ""}).code, kUnknownOperation);
    EXPECT_EQ(array.client.send({"GET", "", "", "", ""}).code, kUnknownOperation);
    EXPECT_EQ(array.client.send("PATCH", "/lun").code, kUnknownOperation);
}

TEST(RequestPipeline, RefusesAnotherDevice)
{
    ArrayFixture array;
    WireRequest request{"GET", "/deviceManager/rest/other/lun", array.client.m_token, array.client.m_cookie, ""};
    EXPECT_EQ(array.client.send(request).code, kUnknownDevice);
    request.target = "/deviceManager/rest//server/logininfo";
    EXPECT_EQ(array.client.send(request).code, kUnknownDevice);
    request.token.clear();
    EXPECT_EQ(array.client.send(request).code, kNoSession);
}

TEST(RequestPipeline, AnswersBrokenInputWithAnErrorOfItsOwn)
{
    PipelineFixture fixture;
    EXPECT_EQ(fixture.code("POST", "/lun", "{"), kBadBody);
    EXPECT_EQ(fixture.code("POST", "/lun", std::string(1000000, '[')), kBadBody);
    EXPECT_EQ(fixture.code("GET", "/lun?range=x"), kBadQuery);
    EXPECT_EQ(fixture.code("GET", "/lun/\xff\xfe"), kUnknownLun);
    EXPECT_EQ(fixture.code("GET", "/lun/%00"), kUnknownOperation);
    EXPECT_EQ(fixture.code("GET", "/lun/" + std::string(15000, '9')), kUnknownLun);
}

TEST(RequestPipeline, UndoesAChangeThatCannotBeExposed)
{
    PipelineFixture fixture;
    fixture.driver->m_failures = 1;
    const Data reply = fixture.send("POST", "/iscsi_initiator", R"({"ID":"iqn.lab:a"})");
    EXPECT_EQ(reply.at("error").at("code"), kExposureFailed);
    EXPECT_EQ(reply.at("error").at("description"), "The volumes could not be exposed: no such device");
    EXPECT_EQ(fixture.code("GET", "/iscsi_initiator/iqn.lab:a"), kUnknownIscsiInitiator);
    ASSERT_EQ(fixture.driver->m_plans.size(), 2u);
    EXPECT_EQ(fixture.driver->m_plans[0].size(), 1u);
    EXPECT_EQ(fixture.driver->m_plans[1].size(), 0u);
}

TEST(RequestPipeline, TellsTheDriverOnlyOfChangesThatMatterToIt)
{
    PipelineFixture fixture;
    fixture.send("POST", "/lungroup/", R"({"NAME":"g"})");
    fixture.send("POST", "/lun", R"({"NAME":"l","PARENTID":"0","CAPACITY":8})");
    fixture.send("GET", "/lun");
    EXPECT_TRUE(fixture.driver->m_plans.empty());
}

TEST(RequestPipeline, UsesAFaultInsteadOfTheOperation)
{
    ArrayFixture array;
    array.server.failNext("POST /lungroup", 1077949001, "not yet");
    array.server.failNext("GET /lun/{id}", -401);
    const Reply refused = array.client.post("/lungroup/", {{"NAME", "g"}});
    EXPECT_EQ(refused.code, 1077949001);
    EXPECT_EQ(refused.description, "not yet");
    EXPECT_EQ(array.server.faultsLeft(), 1u);
    EXPECT_EQ(array.client.post("/lungroup/", {{"NAME", "g"}}).code, 0);
    EXPECT_EQ(array.client.get("/lun/1").code, -401);
    EXPECT_EQ(array.server.faultsLeft(), 0u);
    EXPECT_THROW(array.server.failNext("POST /nosuch", 1), std::invalid_argument);
}

TEST(RequestPipeline, WritesEveryRequestIntoTheJournal)
{
    ArrayFixture array;
    array.server.clearJournal();
    array.client.get("/lun/7");
    array.client.get("/lun?filter=NAME:a%20b&");
    array.client.get("/nosuch");
    const auto entries = array.server.journal();
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_EQ(entries[0].method, "GET");
    EXPECT_EQ(entries[0].path, "/lun/7");
    EXPECT_EQ(entries[0].operation, "GET /lun/{id}");
    EXPECT_EQ(entries[0].code, kUnknownLun);
    EXPECT_EQ(entries[1].path, "/lun?filter=NAME:a b&");
    EXPECT_EQ(entries[2].operation, "");
    EXPECT_EQ(array.server.requestCount(), 3u);
}

TEST(RequestPipeline, LogsALineForARequestWithoutSecretsAndWithoutForgedLines)
{
    std::vector<std::string> lines;
    ServerOptions options = testOptions();
    options.requestLog = [&lines](const std::string& line) { lines.push_back(line); };
    ArrayFixture array(options);
    array.client.get("/lun/7%0aGET /forged");
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0].find("POST /sessions -> 0 ("), 0u) << lines[0];
    EXPECT_EQ(lines[0].find("secret"), std::string::npos);
    EXPECT_EQ(lines[1].find('\n'), std::string::npos);
}
