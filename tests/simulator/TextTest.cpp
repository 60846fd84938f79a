#include "simulator/Text.h"

#include <gtest/gtest.h>

using namespace brevan::sim;

TEST(Text, ReadsWholeDecimalNumbersOnly)
{
    EXPECT_EQ(decimal("18446744073709551615"), 18446744073709551615u);
    EXPECT_EQ(decimal("0"), 0u);
    for (const char* bad : {"", "18446744073709551616", "-1", "+1", " 1", "1 ", "1x", "0x1"}) {
        EXPECT_FALSE(decimal(bad)) << bad;
    }
}

TEST(Text, ResolvesEscapesAndRefusesBrokenOnes)
{
    EXPECT_EQ(percentDecoded("a%20b%3A%c3"), "a b:\xc3");
    for (const char* bad : {"%", "%4", "a%4g", "%00"}) {
        EXPECT_FALSE(percentDecoded(bad)) << bad;
    }
}

TEST(Text, SplitsAtWholeSeparators)
{
    EXPECT_EQ(split("NAME:a and ID:b", " and "), (std::vector<std::string>{"NAME:a", "ID:b"}));
    EXPECT_EQ(split("", "/"), (std::vector<std::string>{""}));
    EXPECT_EQ(split("/a/", "/"), (std::vector<std::string>{"", "a", ""}));
}

TEST(Text, CutsLongClientTextsInDescriptions)
{
    EXPECT_EQ(inQuotes("x"), "'x'");
    EXPECT_EQ(inQuotes(std::string(100, 'x')), "'" + std::string(64, 'x') + "...'");
}

TEST(Text, TakesOnlyNamesThatAreSafeAsFileNamesForInitiators)
{
    EXPECT_TRUE(isIscsiName("iqn.2020-01.lab:host"));
    for (const char* bad : {"", "iqn.", "iqn", "host", "iqn.a/../b", "iqn.a b", "iqn.a\nb", "../iqn.a"}) {
        EXPECT_FALSE(isIscsiName(bad)) << bad;
    }
    EXPECT_FALSE(isIscsiName("iqn." + std::string(220, 'x')));
}

TEST(Text, KnowsAddressLiterals)
{
    EXPECT_TRUE(isAddress("127.0.0.1"));
    EXPECT_TRUE(isAddress("::1"));
    EXPECT_FALSE(isAddress("localhost"));
    EXPECT_FALSE(isAddress("127.0.0.256"));
}
