#include "scanner/DiskScannerHandlerImpl.h"
#include "support/SdkTest.h"

#include <climits>

namespace brevan::test {
namespace {

using Scanner = CDiskScannerHandlerImpl;
using HexConversion = SdkTest;

std::string decimalOf(std::string hex, int expected = 0)
{
    char text[16] = "untouched";
    EXPECT_EQ(Scanner::HextoDec(text, hex.data(), sizeof text), expected) << hex;
    return text;
}

TEST_F(HexConversion, ReadsHexadecimalNumbersAsSignedOnes)
{
    const std::pair<const char*, const char*> cases[] = {
        {"1a0", "416"},
        {"0", "0"},
        {"", "0"},
        {"0000010a", "266"},
        {"FFFFFFFF", "-1"},
        {"ffffffff", "-1"},
        {"7fffffff", "2147483647"},
        {"80000000", "-2147483648"},
        {"AbCdEf", "11259375"},
        {"9", "9"},
        {"f00000001", "1"},
        {"fffffffffffffffffffffffff", "-1"},
    };
    for (const auto& [hex, decimal] : cases) {
        EXPECT_EQ(decimalOf(hex), decimal) << hex;
    }
}

TEST_F(HexConversion, LeavesTheOutputAloneForWhatIsNoDigit)
{
    for (const char* hex : {"12g4", "g", "1 ", "-1", "0x1", "1\n", "/", ":", "@", "G", "`", "\xff"}) {
        EXPECT_EQ(decimalOf(hex, -1), "untouched") << hex;
    }
}

TEST_F(HexConversion, FailsWhereTheDecimalTextHasNoRoomButNeverWritesBeyondIt)
{
    char hex[] = "80000000";
    for (int size = 0; size <= 12; ++size) {
        char text[16];
        std::fill(std::begin(text), std::end(text), '#');
        EXPECT_EQ(Scanner::HextoDec(text, hex, size), size == 12 ? 0 : -1) << size;
        EXPECT_EQ(text[size], '#');
    }
    char text[] = "#";
    EXPECT_EQ(Scanner::HextoDec(text, hex, -1), -1);
    EXPECT_STREQ(text, "#");
}

TEST_F(HexConversion, AddsEachLetterDigitAtItsPosition)
{
    int sum = 1;
    EXPECT_EQ(Scanner::HexEncode('a', 0, sum), 0);
    EXPECT_EQ(sum, 11);
    EXPECT_EQ(Scanner::HexEncode('F', 2, sum), 0);
    EXPECT_EQ(sum, 11 + 15 * 256);
    for (const char other : {'0', '9', 'g', 'G', '`', '@', '\0', '\xff'}) {
        EXPECT_EQ(Scanner::HexEncode(other, 1, sum), -1);
    }
    EXPECT_EQ(sum, 11 + 15 * 256);
}

TEST_F(HexConversion, RaisesSixteenToAPowerInThirtyTwoBits)
{
    const std::pair<int, int> cases[] = {{0, 1}, {-3, 1}, {INT_MIN, 1}, {1, 16}, {7, 268435456}, {8, 0}, {100, 0}};
    for (const auto& [exponent, power] : cases) {
        EXPECT_EQ(Scanner::CalStep(exponent), power) << exponent;
    }
}

TEST_F(HexConversion, WritesBytesAsLowerCaseDigits)
{
    unsigned char bytes[] = {0x00, 0x0a, 0xAB, 0xff, 0x10};
    char text[16] = "";
    EXPECT_EQ(Scanner::BinaryToAscii(text, sizeof text, bytes, 0, 5), 0);
    EXPECT_STREQ(text, "000aabff10");
    EXPECT_EQ(Scanner::BinaryToAscii(text, sizeof text, bytes, 2, 2), 0);
    EXPECT_STREQ(text, "abff");
}

TEST_F(HexConversion, NeedsRoomForTheTerminatorToo)
{
    unsigned char bytes[] = {1, 2, 3};
    for (int size = -1; size <= 7; ++size) {
        char text[] = "#########";
        EXPECT_EQ(Scanner::BinaryToAscii(text, size, bytes, 0, 3), size == 7 ? 0 : -1) << size;
        EXPECT_STREQ(text, size == 7 ? "010203" : "#########");
    }
}

TEST_F(HexConversion, RefusesACountWhoseTextNoBufferHolds)
{
    unsigned char bytes[] = {1};
    char text[4] = "";
    for (const int count : {INT_MAX, 0x40000000, 0x40000001}) {
        EXPECT_EQ(Scanner::BinaryToAscii(text, sizeof text, bytes, 0, count), -1) << count;
    }
}

TEST_F(HexConversion, WritesHalfAsManyBytesOfALunNumberAsItsLengthSays)
{
    unsigned char bytes[] = {0xDE, 0xad, 0x00, 0x0f, 0x77};
    unsigned char text[11] = "";
    EXPECT_EQ(Scanner::ConvertLUNIDtoAscii(text, 11, bytes, 9), 0);
    EXPECT_STREQ(reinterpret_cast<char*>(text), "dead000f");
    EXPECT_EQ(Scanner::ConvertLUNIDtoAscii(text, 11, bytes, 4), 0);
    EXPECT_STREQ(reinterpret_cast<char*>(text), "dead");
    for (const int size : {9, 8, 0, -1}) {
        EXPECT_EQ(Scanner::ConvertLUNIDtoAscii(text, size, bytes, 9), -1) << size;
    }
    EXPECT_EQ(Scanner::ConvertLUNIDtoAscii(text, 10, bytes, 9), 0);
}

TEST_F(HexConversion, NamesTheArgumentThatIsNull)
{
    unsigned char bytes[4] = {};
    char text[16] = "";
    const struct {
        int result;
        const char* line;
    } cases[] = {
        {Scanner::BinaryToAscii(text, 16, nullptr, 0, 1), "info: pucBuffer is NULL! BinaryToAscii"},
        {Scanner::BinaryToAscii(nullptr, 16, bytes, 0, 1), "info: pszHexBuffer is NULL! BinaryToAscii"},
        {Scanner::BinaryToAscii(nullptr, 16, nullptr, 0, 1), "info: pucBuffer is NULL! BinaryToAscii"},
        {Scanner::ConvertLUNIDtoAscii(nullptr, 11, bytes, 9), "info: puszAsciiLunID is NULL! ConvertLUNIDtoAscii"},
        {Scanner::ConvertLUNIDtoAscii(bytes, 11, nullptr, 9), "info: puszLunLunID is NULL! ConvertLUNIDtoAscii"},
        {Scanner::HextoDec(nullptr, text, 11), "info: pDecStr is NULL! HextoDec"},
        {Scanner::HextoDec(text, nullptr, 11), "info: pHexStr is NULL! HextoDec"},
        {Scanner::GetDiskPage(3, 0x83, nullptr), "info: aucBuffer is NULL! GetDiskPage"},
    };
    Lines expected;
    for (const auto& [result, line] : cases) {
        EXPECT_EQ(result, -1) << line;
        expected.emplace_back(line);
    }
    EXPECT_EQ(newLog(), expected);
}

}  // namespace
}  // namespace brevan::test
