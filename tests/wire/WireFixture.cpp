#include "wire/WireFixture.h"

#include "wire/Exchange.h"

#include <map>
#include <regex>
#include <set>

namespace brevan::test {

namespace {

constexpr const char* kServer = "https://192.0.2.10:8088";

const std::map<std::string, Exchange>& exchanges()
{
    static const std::map<std::string, Exchange> kExchanges = [] {
        std::map<std::string, Exchange> byName;
        for (const Exchange& exchange : readExchanges(BREVAN_WIRE_FIXTURES)) {
            byName[exchange.name.substr(exchange.name.find('-') + 1)] = exchange;
        }
        return byName;
    }();
    return kExchanges;
}

std::set<std::string>& used()
{
    static std::set<std::string> names;
    return names;
}

/// The recorder also tells of which C++ type a number was, which cannot be seen on the wire.
std::string withTypes(std::string body)
{
    body = std::regex_replace(body, std::regex("(\"(CAPACITY|INITIALALLOCCAPACITY|THINCAPACITYUSAGE)\":[0-9]+)"), "$1ull");
    body = std::regex_replace(body, std::regex("(\"[A-Z]+POLICY\":[0-9]+)"), "$1ul");
    return std::regex_replace(body, std::regex("(\"GROUPTYPE\":[0-9]+)"), "$1ul");
}

/// In an association of a mapping view the type is such a number, too.
std::string line(const Exchange& exchange)
{
    std::string body = withTypes(exchange.request.body);
    if (exchange.path().rfind("/mappingview/", 0) == 0) {
        body = std::regex_replace(body, std::regex("(\"ASSOCIATEOBJTYPE\":[0-9]+)"), "$1ul");
    }
    return exchange.method() + " " + exchange.path() + (body.empty() ? "" : " " + body);
}

std::string sessionLine(const Exchange& exchange)
{
    const bool login = exchange.request.headers.empty();
    std::string text = exchange.method() + " " + kServer + exchange.path();
    text += login ? " " + exchange.request.body : "";
    for (const std::string& header : exchange.request.headers) {
        const bool token = header.rfind("iBaseToken: ", 0) == 0;
        // The cookie is what stands behind "Set-Cookie:", its blank included.
        text +=
            token ? " [47: " + header.substr(header.find(' ') + 1) + "]" : " [8: " + header.substr(header.find(' ')) + "]";
    }
    return text + (login ? " (flag true)" : " (flag false)");
}

/// Every exchange is there to be used.
class AllExchanges : public testing::Environment {
public:
    void TearDown() override
    {
        if (testing::UnitTest::GetInstance()->test_to_run_count() != testing::UnitTest::GetInstance()->total_test_count()) {
            return;
        }
        for (const auto& [name, exchange] : exchanges()) {
            EXPECT_EQ(used().count(name), 1u) << exchange.name << " is used by no test";
        }
    }
};

testing::Environment* const kAllExchanges = testing::AddGlobalTestEnvironment(new AllExchanges);

}  // namespace

void WireTest::exchange(const std::string& name)
{
    const Exchange& wanted = exchanges().at(name);
    used().insert(name);
    Answer reply;
    reply.reply = wanted.reply.body;
    reply.headerLines = wanted.reply.headers;
    expect(wanted.isSessionRequest() ? sessionLine(wanted) : line(wanted), reply);
}

std::string refusalOf(const std::string& operation, int code, const std::string& description)
{
    return "Exception:get error response, error code:" + std::to_string(code) + ", description:" + description + " " +
           operation + " / " + std::to_string(code);
}

}  // namespace brevan::test
