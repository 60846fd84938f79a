#include "platform/q7common/Reply.h"

#include <gtest/gtest.h>

#include <cstring>

namespace brevan {
namespace {

RestResponse responseOf(const char* text)
{
    Reply reply;
    EXPECT_EQ(parseReply(text, reply), nullptr);
    RestResponse response;
    RestResponseAccess::fill(response, std::move(reply), SecretBytes(text, text + std::strlen(text)));
    return response;
}

TEST(Response, IsEmptyAtFirst)
{
    const RestResponse response;
    std::string description = "old";
    EXPECT_EQ(response.count(), 0U);
    EXPECT_TRUE(response[0].isNull());
    EXPECT_EQ(response.getResponseCode(description), 0);
    EXPECT_EQ(description, "");
}

TEST(Response, CountsRecords)
{
    EXPECT_EQ(responseOf(R"({"error":{"code":0}})").count(), 0U);
    EXPECT_EQ(responseOf(R"({"data":{},"error":{"code":0}})").count(), 0U);
    EXPECT_EQ(responseOf(R"({"data":{"ID":"1"},"error":{"code":0}})").count(), 1U);
    EXPECT_EQ(responseOf(R"({"data":[{"ID":"1"},{}],"error":{"code":0}})").count(), 2U);
}

TEST(Response, GivesRecordsByIndexAndNullBeyond)
{
    const RestResponse response = responseOf(R"({"data":[{"ID":"1"},{"ID":"2"}],"error":{"code":0}})");
    EXPECT_EQ(response[1]["ID"].asString(), "2");
    EXPECT_TRUE(response[2].isNull());
    EXPECT_TRUE(response[4294967295U].isNull());
}

TEST(Response, GivesARecordAsOftenAsItIsAsked)
{
    for (const char* text :
         {R"({"data":[{"ID":"1"},{"ID":"2"},{}],"error":{"code":0}})", R"({"data":{"ID":"1"},"error":{"code":0}})"}) {
        const RestResponse response = responseOf(text);
        for (int round = 0; round < 3; ++round) {
            EXPECT_EQ(response[0]["ID"].asString(), "1");
            EXPECT_EQ(response[1]["ID"].asString(), response.count() == 3 ? "2" : "");
            EXPECT_TRUE(response[2].empty());
        }
        std::string description;
        EXPECT_EQ(response.getResponseCode(description), 0);
    }
}

TEST(Response, IsEmptyAfterItWasMoved)
{
    RestResponse first = responseOf(R"({"data":{"ID":"1"},"error":{"code":5,"description":"d"}})");
    const RestResponse second = std::move(first);
    std::string description;
    EXPECT_EQ(second.getResponseCode(description), 5);
    EXPECT_EQ(description, "d");
    EXPECT_EQ(first.count(), 0U);  // NOLINT(bugprone-use-after-move): what it is then is what is tried
}

TEST(Response, ReadsDecimalText)
{
    EXPECT_EQ(RestResponse::str2ul("4294967296"), 4294967296UL);
    EXPECT_EQ(RestResponse::str2ull("18446744073709551615"), 18446744073709551615ULL);
    EXPECT_EQ(RestResponse::str2ull("007"), 7ULL);
}

TEST(Response, ReadsTextThatIsNoDecimalNumberAsZero)
{
    for (const char* text : {"", " ", "abc", "5x", " 5", "5 ", "-5", "+5", "0x10", "1.5", "18446744073709551616"}) {
        EXPECT_EQ(RestResponse::str2ull(text), 0ULL) << text;
        EXPECT_EQ(RestResponse::str2ul(text), 0UL) << text;
    }
    EXPECT_EQ(RestResponse::str2ull(std::string("5\0", 2)), 0ULL);
}

}  // namespace
}  // namespace brevan
