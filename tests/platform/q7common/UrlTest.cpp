#include "platform/q7common/Url.h"

#include <gtest/gtest.h>

namespace brevan {
namespace {

std::string readBack(const std::string& url)
{
    const std::optional<Server> server = parseServer(url);
    return server.has_value() ? baseUrl(*server) : "";
}

TEST(ServerUrl, KeepsHostAndPort)
{
    EXPECT_EQ(readBack("https://192.0.2.1:8088"), "https://192.0.2.1:8088");
    EXPECT_EQ(readBack("HTTPS://array-1.example.com:1"), "https://array-1.example.com:1");
}

TEST(ServerUrl, PutsAnIpv6AddressInBrackets)
{
    EXPECT_EQ(readBack("https://2001:db8::1:8088"), "https://[2001:db8::1]:8088");
    EXPECT_EQ(readBack("https://[2001:db8::1]:8088"), "https://[2001:db8::1]:8088");
}

TEST(ServerUrl, IsNoneWhereAPartIsMissingOrTooMuch)
{
    for (const char* url : {"", "https://", "https://:1", "https://a", "https://a:", "https://a:0", "https://a:65536",
                            "https://a:1/", "https://a:x", "https://a b:1", "https://u@a:1", "http://a:1", "https://[a]:1",
                            "https://::zz:1", "https://fe80::1%eth0:1", "https://[]:1", "https://a:-1", "https://a:+1"}) {
        EXPECT_EQ(readBack(url), "") << url;
    }
    EXPECT_EQ(readBack(std::string("https://::1\0x:1", 15)), "");
}

TEST(Path, IsRefusedWithControlCharactersParentSegmentsOrWithoutASlash)
{
    EXPECT_EQ(checkPath("/lun/1?filter=a b&range=[0-1]"), PathFault::None);
    EXPECT_EQ(checkPath("/a..b/..c/x?y=/../"), PathFault::None);
    EXPECT_EQ(checkPath(""), PathFault::NotAbsolute);
    EXPECT_EQ(checkPath("lun"), PathFault::NotAbsolute);
    EXPECT_EQ(checkPath("/lun\x7f"), PathFault::ControlCharacter);
    EXPECT_EQ(checkPath(std::string_view("/a\0", 3)), PathFault::ControlCharacter);
    EXPECT_EQ(checkPath("/x?a\tb"), PathFault::ControlCharacter);
    EXPECT_EQ(checkPath("/.."), PathFault::ParentSegment);
    EXPECT_EQ(checkPath("/a/../b"), PathFault::ParentSegment);
    EXPECT_EQ(checkPath("/a/..?x"), PathFault::ParentSegment);
}

TEST(Path, KeepsWhatStructuresIt)
{
    EXPECT_EQ(encodePath("/a?b=c&d=e:[0-1]/~._!$()*,;@"), "/a?b=c&d=e:[0-1]/~._!$()*,;@");
}

TEST(Path, EncodesWhatAUrlDoesNotAllow)
{
    EXPECT_EQ(encodePath(" #%\"'<>\\^`{|}+"), "%20%23%25%22%27%3c%3e%5c%5e%60%7b%7c%7d%2b");
    EXPECT_EQ(encodePath("\xc3\xa4\xff"), "%c3%a4%ff");
}

TEST(Path, HasWordsForEachFault)
{
    EXPECT_STREQ(describe(PathFault::ParentSegment), "the path holds a \"..\" segment");
    EXPECT_STREQ(describe(PathFault::ControlCharacter), "the path holds a control character");
}

}  // namespace
}  // namespace brevan
