#include "platform/q7common/HeaderLines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace brevan {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> linesOf(std::string_view line)
{
    std::vector<std::string> lines;
    addHeaderLine(line, lines);
    return lines;
}

TEST(HeaderLine, GetsACanonicalName)
{
    EXPECT_THAT(linesOf("set-cookie: Session=aBc; path=/\r\n"), ElementsAre("Set-Cookie: Session=aBc; path=/"));
    EXPECT_THAT(linesOf("SET-COOKIE:x\n"), ElementsAre("Set-Cookie:x"));
    EXPECT_THAT(linesOf("eTag: \"A\""), ElementsAre("Etag: \"A\""));
}

TEST(HeaderLine, IsLeftOutWithoutAName)
{
    EXPECT_THAT(linesOf("no header\r\n"), IsEmpty());
    EXPECT_THAT(linesOf(": x\r\n"), IsEmpty());
    EXPECT_THAT(linesOf(""), IsEmpty());
}

TEST(Head, HasAFirstAndALastLine)
{
    EXPECT_TRUE(isStatusLine("HTTP/1.1 200 OK\r\n"));
    EXPECT_FALSE(isStatusLine("Http: x\r\n"));
    EXPECT_TRUE(isEndOfHead("\r\n"));
    EXPECT_FALSE(isEndOfHead("A: b\r\n"));
}

}  // namespace
}  // namespace brevan
