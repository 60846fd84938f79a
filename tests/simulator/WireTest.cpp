// The exchanges of tests/fixtures/wire, as the array answers them.
#include "tests/wire/Exchange.h"

#include "Fields.h"

#include "simulator/ArrayServer.h"

#include <gtest/gtest.h>

#include <regex>

using namespace brevan::sim;
using brevan::sim::test::Data;
using brevan::test::Exchange;
using brevan::test::readExchanges;

namespace {

/// The array of the exchanges, and what it has told that differs from run to run.
class Story {
public:
    Story() : m_server(options())
    {
        const std::string lun = m_server.addLun("base", "0", 1024 * 1024 * 1024);
        const std::string snapshot = m_server.addSnapshot("base_before", lun);
        EXPECT_EQ(lun + " " + snapshot, "8 9");
    }

    WireReply send(const Exchange& exchange)
    {
        const std::string base = "/deviceManager/rest/" + m_server.deviceId();
        std::string target = (exchange.isSessionRequest() ? "" : base) + exchange.path();
        target = std::regex_replace(target, std::regex(" "), "%20");
        WireReply reply = m_server.handle({exchange.method(), target, m_token, m_cookie, exchange.request.body});
        for (const auto& [name, value] : reply.headers) {
            m_cookie = name == "Set-Cookie" ? value.substr(0, value.find(';')) : m_cookie;
        }
        const Data body = Data::parse(reply.body);
        if (body.contains("data") && body.at("data").contains("iBaseToken")) {
            m_token = body.at("data").at("iBaseToken").text();
        }
        return reply;
    }

private:
    static ServerOptions options()
    {
        ServerOptions options;
        options.password = "secret";
        options.deviceId = "210000000001";
        options.iscsiInitiators = {"iqn.1993-08.org.debian:01:c0ffee"};
        return options;
    }

    ArrayServer m_server;
    std::string m_token;
    std::string m_cookie;
};

/// The header lines as one text, with "<cookie>" for what differs.
std::string headersOf(const WireReply& reply)
{
    std::string text;
    for (const auto& [name, value] : reply.headers) {
        text += name + ": " + std::regex_replace(value, std::regex("session=[0-9a-f]{64};"), "session=<cookie>;") + "\n";
    }
    return text;
}

std::string joined(const std::vector<std::string>& lines)
{
    std::string text;
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    return text;
}

}  // namespace

TEST(Wire, IsAnsweredByTheArrayAsItIsWritten)
{
    Story story;
    const std::vector<Exchange> exchanges = readExchanges(BREVAN_WIRE_FIXTURES);
    ASSERT_GT(exchanges.size(), 70u);
    for (const Exchange& exchange : exchanges) {
        SCOPED_TRACE(exchange.name);
        const WireReply reply = story.send(exchange);
        EXPECT_EQ(std::to_string(reply.status), exchange.reply.first);
        EXPECT_EQ(headersOf(reply), joined(exchange.reply.headers));
        EXPECT_EQ(Data::parse(reply.body).contains("data"), Data::parse(exchange.reply.body).contains("data"));
        EXPECT_EQ(Data::parse(reply.body).differenceFrom(Data::parse(exchange.reply.body)), "") << reply.body;
    }
}
