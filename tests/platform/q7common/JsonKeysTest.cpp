#include "platform/q7common/JsonKeys.h"

#include <gtest/gtest.h>
#include <json/reader.h>

#include <memory>
#include <string>

namespace brevan {
namespace {

bool repeatsAKey(const std::string& text)
{
    Json::Value value;
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    EXPECT_TRUE(reader->parse(text.data(), text.data() + text.size(), &value, nullptr)) << text;
    return hasKeyTwice(text, value);
}

TEST(JsonKeys, MayStandOnceInEachObject)
{
    for (const char* text : {"{}", "[]", "[1,2]", R"({"a":1})", R"({"a":{"a":{"a":1}},"b":[{"a":1},{"a":2}]})",
                             R"([[{"a":[]}],{}])", R"({"":""})"}) {
        EXPECT_FALSE(repeatsAKey(text)) << text;
    }
}

TEST(JsonKeys, AreSeenTwiceAtEveryDepth)
{
    for (const char* text : {R"({"a":1,"a":1})", R"({"b":{"a":1,"a":{}}})", R"([1,[{"a":1,"b":2,"a":3}]])", R"({"":1,"":2})",
                             R"({"a":{},"a":{"b":1}})", R"({"a":{"b":1},"a":{}})", R"({"\u0061":1,"a":2})"}) {
        EXPECT_TRUE(repeatsAKey(text)) << text;
    }
}

TEST(JsonKeys, AreNoColonsInsideOfStrings)
{
    for (const char* text :
         {R"({"a:b":"c:d:e"})", R"(["\":","\\",":"])", R"({"a\\":":\\\":","\\\\":"\\\"::"})", R"(["\\\\\\\":"])"}) {
        EXPECT_FALSE(repeatsAKey(text)) << text;
    }
    EXPECT_TRUE(repeatsAKey(R"({"a\"":":","a\"":":"})"));
    EXPECT_TRUE(repeatsAKey(R"({"a":1,"a":2,"b":")" + std::string(255, ':') + "\"}"));
}

TEST(JsonKeys, AreCountedInALongTextOfEscapesInNoTime)
{
    std::string text(1 << 20, '\\');
    EXPECT_FALSE(repeatsAKey("[\"" + text + "\"]"));
    text.clear();
    for (int count = 0; count < 1 << 19; ++count) {
        text += "\\\"";
    }
    EXPECT_FALSE(repeatsAKey("[\"" + text + "\"]"));
}

}  // namespace
}  // namespace brevan
