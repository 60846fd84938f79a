#include "platform/plimlog/LineText.h"

#include <gtest/gtest.h>

namespace brevan::plimlog {
namespace {

std::string escaped(std::string_view text)
{
    return std::string(LineText(text).view());
}

TEST(LineText, TakesPlainTextAsItIsWithoutACopy)
{
    const std::string text = "enter getLun successfully! [100%] {}";
    const LineText line{std::string_view(text)};
    EXPECT_EQ(line.view(), text);
    EXPECT_EQ(line.view().data(), text.data());
}

TEST(LineText, TakesAnEmptyText)
{
    EXPECT_EQ(escaped(""), "");
}

TEST(LineText, EscapesWhatEndsALine)
{
    EXPECT_EQ(escaped("one\ntwo\r\nthree"), "one\\ntwo\\r\\nthree");
    EXPECT_EQ(escaped("a\u0085b\u2028c\u2029d"), "a\\u0085b\\u2028c\\u2029d");
}

TEST(LineText, EscapesEveryAsciiControlCharacter)
{
    for (int code = 0; code < 0x20; ++code) {
        const std::string line = escaped(std::string(1, static_cast<char>(code)));
        EXPECT_EQ(line[0], '\\') << code;
        EXPECT_EQ(line.find_first_not_of("\\nrtx0123456789abcdef"), std::string::npos) << code;
    }
    EXPECT_EQ(escaped(std::string_view("\0\t\x1b[31m\x7f", 8)), "\\x00\\t\\x1b[31m\\x7f");
}

TEST(LineText, EscapesTheBackslashSoThatTheTextCanBeReadBack)
{
    EXPECT_EQ(escaped("a\\nb"), "a\\\\nb");
}

TEST(LineText, EscapesTheOtherControlCharactersOfUnicodeAndTheMarksThatTurnText)
{
    EXPECT_EQ(escaped("\u0080\u009f"), "\\u0080\\u009f");
    EXPECT_EQ(escaped("\u202a\u202e\u2066\u2069"), "\\u202a\\u202e\\u2066\\u2069");
}

TEST(LineText, KeepsOtherUtf8)
{
    const std::string text = "Gr\u00fc\u00dfe \u20ac \u4f60 \U0001f600 \u00a0 \u2027 \u202f \u2065 \u206a";
    EXPECT_EQ(escaped(text), text);
}

TEST(LineText, EscapesBytesThatAreNoUtf8)
{
    EXPECT_EQ(escaped("a\xff\xfe\x80z"), "a\\xff\\xfe\\x80z");
    EXPECT_EQ(escaped("\xc0\x8a"), "\\xc0\\x8a");                    // a newline in two bytes
    EXPECT_EQ(escaped("\xe0\x80\x8a"), "\\xe0\\x80\\x8a");           // and in three
    EXPECT_EQ(escaped("\xed\xa0\x80"), "\\xed\\xa0\\x80");           // half of a surrogate pair
    EXPECT_EQ(escaped("\xf4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80");  // beyond the last code
}

TEST(LineText, EscapesACharacterThatWasCutInTheMiddle)
{
    EXPECT_EQ(escaped("abc\xe2\x82"), "abc\\xe2\\x82");
    EXPECT_EQ(escaped("\xe2\x82\nx"), "\\xe2\\x82\\nx");
}

TEST(LineText, CutsALongTextAndSaysHowMuchIsMissing)
{
    const std::string text(kLongestText + 10, 'a');
    EXPECT_EQ(escaped(text), std::string(kLongestText, 'a') + " [10 more bytes were cut]");
    EXPECT_EQ(escaped(text.substr(0, kLongestText)), text.substr(0, kLongestText));
}

}  // namespace
}  // namespace brevan::plimlog
