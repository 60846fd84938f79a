#include "simulator/Secrets.h"

#include <gtest/gtest.h>

using namespace brevan::sim;

TEST(Secrets, MakesRandomHexOfTheLengthAskedFor)
{
    EXPECT_EQ(randomHex(16).size(), 32u);
    EXPECT_EQ(randomHex(16).find_first_not_of("0123456789abcdef"), std::string::npos);
    EXPECT_NE(randomHex(16), randomHex(16));
}

TEST(Secrets, HashesAsTheStandardSays)
{
    // FIPS 180-4, example "abc".
    EXPECT_EQ(sha256("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

TEST(Secrets, ComparesWholeTexts)
{
    EXPECT_TRUE(equalInConstantTime("abc", "abc"));
    EXPECT_TRUE(equalInConstantTime("", ""));
    EXPECT_FALSE(equalInConstantTime("abc", "abd"));
    EXPECT_FALSE(equalInConstantTime("abc", "abcd"));
}

TEST(Secrets, SealsSoThatOnlyTheSecretOpens)
{
    const std::string seal = sealed("s3cret");
    EXPECT_TRUE(opens(seal, "s3cret"));
    EXPECT_FALSE(opens(seal, "S3cret"));
    EXPECT_FALSE(opens("", ""));
    EXPECT_NE(seal, sealed("s3cret"));
    EXPECT_EQ(seal.find("s3cret"), std::string::npos);
}
