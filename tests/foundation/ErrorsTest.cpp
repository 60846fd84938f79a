#include <brevan/Errors.h>

#include <gtest/gtest.h>

#include <type_traits>

namespace {

static_assert(std::is_base_of_v<std::exception, PlimAPIException>);
static_assert(std::is_base_of_v<PlimAPIException, PlimAPIExceptionWithErrCode>);

TEST(Exception, PutsItsWordBeforeTheTextWithoutABlank)
{
    EXPECT_STREQ(PlimAPIException("lunID is empty! getLun").what(), "Exception:lunID is empty! getLun");
    EXPECT_STREQ(PlimAPIException("").what(), "Exception:");
}

TEST(Exception, KeepsTextThatLooksLikeAFormat)
{
    EXPECT_STREQ(PlimAPIException("50% of %s\n%n").what(), "Exception:50% of %s\n%n");
}

TEST(Exception, CarriesTheArraysCodeWithItsSign)
{
    EXPECT_EQ(PlimAPIExceptionWithErrCode(-401, "gone").getErrCode(), -401);
    EXPECT_EQ(PlimAPIExceptionWithErrCode(0x4040324E, "").getErrCode(), 1077949006);
}

template <class Caught>
std::string textCaughtAs()
{
    try {
        throw PlimAPIExceptionWithErrCode(7, "refused");
    } catch (const Caught& failure) {
        return failure.what();
    }
}

TEST(Exception, ReadsTheSameWhateverTypeItIsCaughtAs)
{
    EXPECT_EQ(textCaughtAs<PlimAPIExceptionWithErrCode>(), "Exception:refused");
    EXPECT_EQ(textCaughtAs<PlimAPIException>(), "Exception:refused");
    EXPECT_EQ(textCaughtAs<std::exception>(), "Exception:refused");
}

TEST(Exception, IsCopiedWhole)
{
    const PlimAPIExceptionWithErrCode refusal(9, "text");
    PlimAPIExceptionWithErrCode copy(refusal);
    EXPECT_STREQ(copy.what(), "Exception:text");
    EXPECT_EQ(copy.getErrCode(), 9);
    copy = PlimAPIExceptionWithErrCode(3, "other");
    EXPECT_STREQ(copy.what(), "Exception:other");
    EXPECT_EQ(copy.getErrCode(), 3);
    PlimAPIException base("a");
    base = PlimAPIException("b");
    EXPECT_STREQ(base.what(), "Exception:b");
}

}  // namespace
