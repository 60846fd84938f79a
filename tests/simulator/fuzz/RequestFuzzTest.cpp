// Throws mutated requests at the HTTP parser and all operations, in process. BREVAN_FUZZ_REQUESTS and BREVAN_FUZZ_SEED set how
// many and which; both are printed.
#include "RequestMaker.h"

#include "simulator/Array.h"
#include "simulator/ControlPort.h"
#include "simulator/Link.h"
#include "simulator/RequestPipeline.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdlib>
#include <iostream>
#include <map>
#include <set>

using namespace brevan::sim;
using namespace brevan::sim::test;

namespace {

using nlohmann::json;

constexpr std::uint64_t kRequestsPerArray = 400;

std::uint64_t setting(const char* variable, std::uint64_t usual)
{
    const char* text = std::getenv(variable);
    return text == nullptr ? usual : std::strtoull(text, nullptr, 10);
}

ServerOptions fuzzOptions()
{
    ServerOptions options;
    options.password = "secret";
    options.journalEntries = 1;
    options.maxSessions = 20000;
    return options;
}

/// An array as a service, with a session that is opened anew when the fuzz has closed it.
class FuzzedArray : public HttpService {
public:
    FuzzedArray()
    {
        Dice dice(1);
        furnish(m_array);
        for (Pieces& pieces : requestsToFurnish()) {
            address(pieces, dice);
            const std::string bytes = requestBytes(pieces, dice);
            const std::string reply = exchange(*this, HttpLimits(), bytes);
            EXPECT_NE(reply.find("\"code\":0,"), std::string::npos) << bytes << "\n" << reply;
        }
    }
    WireReply answer(const WireRequest& request) override { return m_pipeline.handle(request); }
    WireReply refuse(const Refusal& refusal) override { return m_pipeline.refuse(refusal); }

    /// Addressed to this array, from a client that is logged in; sometimes not quite.
    void address(Pieces& pieces, Dice& dice)
    {
        if (m_array.sessions.find(m_session.token, m_session.cookie) == nullptr) {
            m_session = m_array.sessions.open("admin", 0);
        }
        pieces.path = (dice.oneIn(60) ? "/deviceManager/rest/xxxx" : "/deviceManager/rest/210000000001") + pieces.path;
        if (!dice.oneIn(60)) {
            pieces.headers.push_back("iBaseToken: " + m_session.token);
            pieces.headers.push_back("Cookie: " + m_session.cookie);
        }
    }
    JournalEntry last() { return m_pipeline.journal().entries().back(); }
    RequestPipeline& pipeline() { return m_pipeline; }

private:
    Array m_array{fuzzOptions()};
    RequestPipeline m_pipeline{m_array};
    SessionStore::Credentials m_session;
};

struct SplitReply {
    unsigned status = 0;
    std::string headers;
    std::string body;
};

/// A failure unless it is a whole HTTP reply whose length is right.
SplitReply splitReply(const std::string& bytes)
{
    const std::size_t end = bytes.find("\r\n\r\n");
    if (bytes.compare(0, 9, "HTTP/1.1 ") != 0 || end == std::string::npos) {
        ADD_FAILURE() << "no HTTP reply";
        return {};
    }
    SplitReply reply{static_cast<unsigned>(std::stoul(bytes.substr(9, 3))), bytes.substr(0, end + 2), bytes.substr(end + 4)};
    const std::string length = "\r\nContent-Length: " + std::to_string(reply.body.size()) + "\r\n";
    EXPECT_NE(reply.headers.find(length), std::string::npos);
    return reply;
}

bool isRecords(const json& data)
{
    const auto isObject = [](const json& record) { return record.is_object(); };
    return data.is_object() || (data.is_array() && std::all_of(data.begin(), data.end(), isObject));
}

/// Whether it is {"data": records or nothing, "error": {"code": number, "description": text}} and nothing else.
bool isArrayReply(const SplitReply& reply)
{
    static const std::set<unsigned> kStatus{200, 400, 404, 413, 431};
    const json body = json::parse(reply.body, nullptr, false);
    if (kStatus.count(reply.status) == 0 || !body.is_object() || !body.contains("error") || !body["error"].is_object()) {
        return false;
    }
    const json& error = body["error"];
    const bool hasData = body.contains("data");
    return error.size() == 2 && error.value("code", json()).is_number_integer() &&
           error.value("description", json()).is_string() && (!hasData || isRecords(body["data"])) &&
           body.size() == (hasData ? 2u : 1u);
}

/// How often each operation was carried out, and how many requests had an answer at all.
struct Tally {
    std::map<std::string, std::uint64_t> done;
    std::uint64_t answered = 0;
};

std::string fuzzedBytes(FuzzedArray& array, Dice& dice)
{
    Pieces pieces = rightRequest(dice);
    array.address(pieces, dice);
    mutate(pieces, dice);
    std::string bytes = requestBytes(pieces, dice);
    if (dice.oneIn(6)) {
        mutate(bytes, dice);
    }
    return bytes;
}

void fuzzOnce(FuzzedArray& array, Dice& dice, Tally& tally)
{
    const std::string bytes = fuzzedBytes(array, dice);
    const std::string reply = exchange(array, HttpLimits(), bytes);
    if (reply.empty()) {
        return;  // the mutated bytes end before the request does
    }
    ++tally.answered;
    ASSERT_TRUE(isArrayReply(splitReply(reply))) << bytes << "\n" << reply;
    const JournalEntry entry = array.last();
    ASSERT_NE(entry.code, kInternal) << bytes << "\n" << reply;
    if (entry.code == kDone) {
        ++tally.done[entry.operation];
    }
}

std::string controlBytes(Dice& dice)
{
    constexpr const char* kPaths[] = {"/",     "/faults", "/journal",          "/journal?after=1",
                                      "/link", "/chain",  "/chain?format=dot", "/nosuch"};
    constexpr const char* kMethods[] = {"GET", "POST", "PUT", "DELETE"};
    constexpr const char* kBodies[] = {
        R"({"operation": "POST /lungroup", "do": ["error 1077949006", "status 503", "stall 2s", "reset before", "cut 40"]})",
        R"([{"operation": "GET /lun/{id}", "do": ["reset after", "garbage", "wrong types", "upper case", "session gone", "pass"]}])",
        R"({"latency": "5ms", "bandwidth": "1MB/s"})"};
    const std::string body = dice.from(kBodies);
    std::string bytes = std::string(dice.from(kMethods)) + " " + dice.from(kPaths) + " HTTP/1.1\r\nHost: 127.0.0.1\r\n" +
                        "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
    if (!dice.oneIn(4)) {
        mutate(bytes, dice);
    }
    return bytes;
}

}  // namespace

TEST(RequestFuzz, GetsAWellFormedAnswerToEveryMutatedRequest)
{
    const std::uint64_t requests = setting("BREVAN_FUZZ_REQUESTS", 50000);
    const std::uint64_t seed = setting("BREVAN_FUZZ_SEED", 1);
    std::cout << requests << " requests, seed " << seed << std::endl;
    Dice dice(seed);
    Tally tally;
    for (std::uint64_t sent = 0; sent < requests && !HasFatalFailure();) {
        FuzzedArray array;
        for (const std::uint64_t end = std::min(requests, sent + kRequestsPerArray); sent < end && !HasFatalFailure();
             ++sent) {
            fuzzOnce(array, dice, tally);
        }
    }
    std::uint64_t done = 0;
    for (const auto& [operation, count] : tally.done) {
        done += count;
    }
    std::cout << tally.answered << " answered, " << done << " carried out by " << tally.done.size() << " operations"
              << std::endl;
    // A fuzz that only ever gets refusals at the door would prove little.
    if (requests >= 50000) {
        EXPECT_GT(tally.answered, requests / 2);
        EXPECT_GT(done, requests / 5);
        EXPECT_GT(tally.done.size(), 60u);
    }
}

TEST(RequestFuzz, GetsAWellFormedAnswerFromTheControlPort)
{
    FuzzedArray array;
    Link link;
    ControlPort control(array.pipeline(), link);
    Dice dice(setting("BREVAN_FUZZ_SEED", 1));
    std::set<unsigned> statuses;
    for (int sent = 0; sent < 5000 && !HasFailure(); ++sent) {
        const std::string bytes = controlBytes(dice);
        const std::string reply = exchange(control, HttpLimits(), bytes);
        if (!reply.empty()) {
            const SplitReply split = splitReply(reply);
            const bool isJson = split.headers.find("Content-Type: application/json") != std::string::npos;
            EXPECT_TRUE(!isJson || json::accept(split.body)) << bytes << "\n" << reply;
            statuses.insert(split.status);
        }
    }
    EXPECT_EQ(statuses, (std::set<unsigned>{200, 400, 403, 404, 405}));
}
