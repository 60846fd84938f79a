#include "simulator/HttpService.h"

#include <gtest/gtest.h>

using namespace brevan::sim;

namespace {

/// Keeps what it was asked.
class Notes : public HttpService {
public:
    WireReply answer(const WireRequest& request) override
    {
        m_request = request;
        return {200, "body", {{"X-Further", "value"}}};
    }
    WireReply refuse(const Refusal& refusal) override { return {refusal.status, refusal.text, {}}; }
    WireRequest m_request;
};

std::string reply(const std::string& bytes)
{
    Notes notes;
    return exchange(notes, HttpLimits(), bytes);
}

}  // namespace

TEST(HttpMessages, HandsOnWhatAServiceNeedsToKnow)
{
    Notes notes;
    exchange(notes, HttpLimits(),
             "PUT /a?b=c HTTP/1.1\r\nHost: array\r\nibasetoken: t\r\nCookie: c\r\nAccept: text/plain\r\nContent-Length: "
             "2\r\n\r\n{}");
    EXPECT_EQ(notes.m_request.method, "PUT");
    EXPECT_EQ(notes.m_request.target, "/a?b=c");
    EXPECT_EQ(notes.m_request.host, "array");
    EXPECT_EQ(notes.m_request.token, "t");
    EXPECT_EQ(notes.m_request.cookie, "c");
    EXPECT_EQ(notes.m_request.accept, "text/plain");
    EXPECT_EQ(notes.m_request.body, "{}");
}

TEST(HttpMessages, WritesAReplyWithItsHeadersAndLength)
{
    EXPECT_EQ(reply("GET / HTTP/1.1\r\n\r\n"),
              "HTTP/1.1 200 OK\r\nContent-Type: application/json; charset=utf-8\r\nCache-Control: no-store\r\n"
              "X-Further: value\r\nContent-Length: 4\r\n\r\nbody");
}

TEST(HttpMessages, SaysNothingToARequestThatHasNoEnd)
{
    EXPECT_EQ(reply(""), "");
    EXPECT_EQ(reply("GET / HTTP/1.1\r\nHost"), "");
    EXPECT_EQ(reply("POST / HTTP/1.1\r\nContent-Length: 5\r\n\r\n{}"), "");
}

TEST(HttpMessages, SaysWhatIsWrongWithWhatIsNoRequest)
{
    EXPECT_EQ(reply("hello\r\n\r\n").find("HTTP/1.1 400 Bad Request\r\n"), 0u);
    EXPECT_EQ(reply("GET / HTTP/1.1\r\nContent-Length: x\r\n\r\n").find("HTTP/1.1 400 Bad Request\r\n"), 0u);
    EXPECT_EQ(reply("GET / HTTP/1.1\r\nContent-Length: 2000000\r\n\r\n").find("HTTP/1.1 413 Payload Too Large\r\n"), 0u);
    EXPECT_EQ(reply("GET /" + std::string(20000, 'x')).find("HTTP/1.1 431 Request Header Fields Too Large\r\n"), 0u);
}
