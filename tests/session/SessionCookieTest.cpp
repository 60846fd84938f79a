#include "session/SessionCookie.h"

#include <gtest/gtest.h>

namespace brevan::test {
namespace {

struct Row {
    const char* what;
    std::vector<std::string> headerLines;
    std::optional<std::string> cookie;
};

class SessionCookie : public testing::TestWithParam<Row> {};

TEST_P(SessionCookie, StandsBetweenItsHeaderAndTheNextSemicolon)
{
    EXPECT_EQ(sessionCookie(GetParam().headerLines), GetParam().cookie);
}

INSTANTIATE_TEST_SUITE_P(
    Headers, SessionCookie,
    testing::Values(Row{"NoHeaders", {}, std::nullopt}, Row{"NoCookie", {"Server: a;", "Date: b;"}, std::nullopt},
                    Row{"BlankKept", {"Set-Cookie: session=abc;path=/; secure"}, " session=abc"},
                    Row{"NoBlank", {"Set-Cookie:session=abc;"}, "session=abc"},
                    Row{"AfterOthers", {"HTTP/1.1 200 OK", "Server: a", "Set-Cookie: s=1; b"}, " s=1"},
                    Row{"FirstOfTwo", {"Set-Cookie: s=1;", "Set-Cookie: s=2;"}, " s=1"},
                    Row{"FirstHasNoSemicolon", {"Set-Cookie: s=1", "Set-Cookie: s=2;"}, std::nullopt},
                    Row{"SemicolonOnlyBefore", {"a;Set-Cookie: s=1"}, std::nullopt},
                    Row{"SemicolonBeforeAndBehind", {"a;Set-Cookie: s=1;b"}, " s=1"}, Row{"Empty", {"Set-Cookie:;"}, ""},
                    Row{"OtherCase", {"set-cookie: s=1;"}, std::nullopt}, Row{"Cut", {"Set-Cookie:"}, std::nullopt}),
    [](const auto& tested) { return std::string(tested.param.what); });

}  // namespace
}  // namespace brevan::test
