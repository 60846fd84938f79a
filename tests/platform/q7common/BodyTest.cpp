#include "platform/q7common/Body.h"

#include <gtest/gtest.h>

namespace brevan {
namespace {

std::string textOf(const Body& body)
{
    return std::string(viewOf(body.json()));
}

TEST(Body, IsAnEmptyObjectWithoutMembers)
{
    EXPECT_TRUE(Body().isEmpty());
    EXPECT_EQ(textOf(Body()), "{}");
}

TEST(Body, KeepsTheOrderOfItsKeys)
{
    Body body;
    body.addText("z", "1");
    body.addLiteral("a", "true");
    body.addText("m", "");
    EXPECT_EQ(textOf(body), R"({"z":"1","a":true,"m":""})");
}

TEST(Body, ReplacesAValueAtItsPlace)
{
    Body body;
    body.addText("a", "1");
    body.addText("b", "2");
    body.addLiteral("a", "3");
    EXPECT_EQ(textOf(body), R"({"a":3,"b":"2"})");
}

TEST(Body, EscapesKeysAndValues)
{
    Body body;
    body.addText("k\"", std::string_view("\"\\/\b\x1f\x7f\0x", 8));
    EXPECT_EQ(textOf(body), "{\"k\\\"\":\"\\\"\\\\/\\u0008\\u001f\x7f\\u0000x\"}");
}

TEST(Body, IsInvalidWithTextThatIsNotUtf8)
{
    Body body;
    body.addText("a", "\xc3\xa4 \xf0\x9f\x98\x80");
    EXPECT_TRUE(body.isValid());
    body.addText("b", "\xe4");
    EXPECT_FALSE(body.isValid());
}

TEST(Utf8, IsToldFromOtherBytes)
{
    for (const char* good : {"", "a", "\xc2\x80", "\xdf\xbf", "\xe0\xa0\x80", "\xed\x9f\xbf", "\xef\xbf\xbf",
                             "\xf0\x90\x80\x80", "\xf4\x8f\xbf\xbf"}) {
        EXPECT_TRUE(isUtf8(good)) << good;
    }
    for (const char* bad : {"\x80", "\xc0\xaf", "\xc1\xbf", "\xc3", "\xc3(", "\xe0\x9f\xbf", "\xed\xa0\x80", "\xe2\x82",
                            "\xf0\x8f\xbf\xbf", "\xf4\x90\x80\x80", "\xf5\x80\x80\x80", "\xff"}) {
        EXPECT_FALSE(isUtf8(bad)) << bad;
    }
}

}  // namespace
}  // namespace brevan
