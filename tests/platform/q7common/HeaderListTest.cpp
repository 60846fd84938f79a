#include "platform/q7common/HeaderList.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace brevan {
namespace {

using ::testing::ElementsAre;

TEST(SecretHeader, LeavesOutBlanksBeforeTheValue)
{
    SecretHeader header;
    EXPECT_TRUE(header.set("Cookie", " session=a b"));
    EXPECT_STREQ(header.line(), "Cookie: session=a b");
}

TEST(SecretHeader, IsNoneWithoutAValue)
{
    SecretHeader header;
    EXPECT_TRUE(header.set("Cookie", "x"));
    EXPECT_TRUE(header.set("Cookie", "  "));
    EXPECT_EQ(header.line(), nullptr);
}

TEST(SecretHeader, RefusesControlCharacters)
{
    for (const char* value : {"a\r\nX: y", "a\nb", "a\tb", "\x7f"}) {
        SecretHeader header;
        EXPECT_FALSE(header.set("Cookie", value));
        EXPECT_EQ(header.line(), nullptr);
    }
    SecretHeader header;
    EXPECT_FALSE(header.set("Cookie", std::string_view("a\0b", 3)));
}

TEST(HeaderList, LinksItsLinesInOrder)
{
    HeaderList list;
    EXPECT_EQ(list.list(), nullptr);
    list.add("A: 1");
    list.add(nullptr);
    list.add("B: 2");
    std::vector<std::string> lines;
    for (const curl_slist* node = list.list(); node != nullptr; node = node->next) {
        lines.emplace_back(node->data);
    }
    EXPECT_THAT(lines, ElementsAre("A: 1", "B: 2"));
}

}  // namespace
}  // namespace brevan
