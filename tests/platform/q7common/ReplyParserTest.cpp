#include "platform/q7common/Reply.h"

#include <gtest/gtest.h>

namespace brevan {
namespace {

bool isUsable(std::string_view text)
{
    Reply reply;
    return parseReply(text, reply) == nullptr;
}

TEST(ReplyParser, ReadsCodeAndDescription)
{
    Reply reply;
    ASSERT_EQ(parseReply(R"( {"error":{"code":1077949006,"description":"not yet"}} )", reply), nullptr);
    EXPECT_EQ(reply.code, 1077949006);
    EXPECT_EQ(reply.description, "not yet");
    EXPECT_TRUE(reply.data.isNull());
}

TEST(ReplyParser, ReadsACodeThatIsText)
{
    Reply reply;
    ASSERT_EQ(parseReply(R"({"error":{"code":"-401"}})", reply), nullptr);
    EXPECT_EQ(reply.code, -401);
}

TEST(ReplyParser, RefusesCodesThatAreNoWholeNumber)
{
    for (const char* code : {"\"\"", "\"1x\"", "\" 1\"", "\"+1\"", "1.5", "null", "true", "{}", "[]", "9999999999",
                             "\"9999999999\"", "1e999"}) {
        EXPECT_FALSE(isUsable(std::string(R"({"error":{"code":)") + code + "}}")) << code;
    }
}

TEST(ReplyParser, ReadsOneRecordAListAndNone)
{
    Reply reply;
    ASSERT_EQ(parseReply(R"({"data":{"ID":"1"},"error":{"code":0}})", reply), nullptr);
    EXPECT_TRUE(reply.data.isObject());
    reply = Reply();
    ASSERT_EQ(parseReply(R"({"data":[{"ID":"1"},{}],"error":{"code":0}})", reply), nullptr);
    EXPECT_EQ(reply.data.size(), 2U);
    for (const char* none : {"{}", "[]", "null"}) {
        reply = Reply();
        ASSERT_EQ(parseReply(std::string(R"({"data":)") + none + R"(,"error":{"code":0}})", reply), nullptr);
        EXPECT_TRUE(reply.data.isNull());
    }
}

TEST(ReplyParser, RefusesRecordsThatAreNoObjects)
{
    for (const char* data : {"\"text\"", "5", "true", "[5]", "[{},null]", "[[{}]]"}) {
        EXPECT_FALSE(isUsable(std::string(R"({"data":)") + data + R"(,"error":{"code":0}})")) << data;
    }
}

TEST(ReplyParser, RefusesWhatIsNoReply)
{
    for (const char* text :
         {"", " ", "null", "5", "[]", "{}", R"({"error":0})", R"({"error":{}})", "{\"error\":{\"code\":0}", "<html>",
          R"({"error":{"code":0}}x)", R"({'error':{'code':0}})", R"({"error":{"code":0},})", R"(/**/{"error":{"code":0}})",
          R"({"error":{"code":0,"description":[]}})", R"({"error":{"code":NaN}})"}) {
        EXPECT_FALSE(isUsable(text)) << text;
    }
}

TEST(ReplyParser, RefusesKeysGivenTwice)
{
    EXPECT_FALSE(isUsable(R"({"error":{"code":0,"code":5}})"));
    EXPECT_FALSE(isUsable(R"({"error":{"code":0},"data":{"ID":"1","ID":"2"}})"));
}

TEST(ReplyParser, RefusesABareNul)
{
    const std::string good = R"({"error":{"code":0}})";
    EXPECT_FALSE(isUsable(good + '\0'));
    EXPECT_FALSE(isUsable(good + '\0' + "garbage"));
}

TEST(ReplyParser, KeepsAnEscapedNul)
{
    Reply reply;
    ASSERT_EQ(parseReply(R"({"error":{"code":0,"description":"a\u0000b"}})", reply), nullptr);
    EXPECT_EQ(reply.description, std::string("a\0b", 3));
}

TEST(ReplyParser, RefusesDeepNesting)
{
    EXPECT_FALSE(isUsable(std::string(100000, '[')));
    EXPECT_FALSE(isUsable(R"({"error":{"code":0},"data":{"x":)" + std::string(100, '[') + std::string(100, ']') + "}}"));
    EXPECT_TRUE(isUsable(R"({"error":{"code":0},"data":{"x":)" + std::string(20, '[') + std::string(20, ']') + "}}"));
}

TEST(ReplyParser, ReadsGoodRepliesAfterBadOnes)
{
    EXPECT_FALSE(isUsable(std::string(1000, '[')));
    EXPECT_TRUE(isUsable(R"({"error":{"code":0}})"));
}

TEST(ReplyParser, RefusesEveryBeginningOfAReply)
{
    const std::string text = R"({"data":[{"ID":"1","NAME":"\u00e4"}],"error":{"code":0,"description":"0"}})";
    for (std::size_t length = 0; length < text.size(); ++length) {
        EXPECT_FALSE(isUsable(std::string_view(text).substr(0, length))) << length;
    }
    EXPECT_TRUE(isUsable(text));
}

}  // namespace
}  // namespace brevan
