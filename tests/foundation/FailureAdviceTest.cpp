#include "foundation/FailureState.h"

#include <brevan/LastFailure.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace brevan::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

class FailureAdvice : public testing::TestWithParam<int> {};

TEST_P(FailureAdvice, IsASentence)
{
    EXPECT_THAT(failureAdvice(GetParam()), EndsWith("."));
}

INSTANTIATE_TEST_SUITE_P(Transport, FailureAdvice,
                         testing::Range<int>(FAILURE_UNKNOWN_SESSION, FAILURE_REPLY_TOO_LARGE + 1));
INSTANTIATE_TEST_SUITE_P(Array, FailureAdvice, testing::Values<int>(FAILURE_SESSION_EXPIRED, 1077949006));

TEST(FailureAdviceText, NamesWhatToChange)
{
    EXPECT_THAT(failureAdvice(FAILURE_NO_CONNECTION), HasSubstr("address and port"));
    EXPECT_THAT(failureAdvice(FAILURE_NOT_TRUSTED), HasSubstr("transport.ini"));
    EXPECT_THAT(failureAdvice(FAILURE_REPLY_TOO_LARGE), HasSubstr("rangeCount"));
    EXPECT_STREQ(failureAdvice(FAILURE_SESSION_EXPIRED), "Log in again.");
}

TEST(FailureAdviceText, IsEmptyWhereNothingGeneralCanBeSaid)
{
    for (const int code : {0, 1, -1, 1000, 1011, 1077936862}) {
        EXPECT_STREQ(failureAdvice(code), "") << code;
    }
}

}  // namespace
}  // namespace brevan::test
