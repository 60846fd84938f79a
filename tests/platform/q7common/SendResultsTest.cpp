#include "platform/q7common/SendResults.h"

#include <gtest/gtest.h>

namespace brevan {
namespace {

Delivery delivery(CURLcode result, int timesSent, bool hasReplyHead = false)
{
    Delivery made;
    made.result = result;
    made.timesSent = timesSent;
    made.hasReplyHead = hasReplyHead;
    return made;
}

TEST(SendResult, SaysThatNothingWasSentOnlyWhereThatIsSure)
{
    for (const CURLcode result : {CURLE_COULDNT_CONNECT, CURLE_OPERATION_TIMEDOUT, CURLE_SSL_CONNECT_ERROR,
                                  CURLE_OUT_OF_MEMORY, CURLE_COULDNT_RESOLVE_HOST, CURLE_SEND_ERROR}) {
        EXPECT_EQ(resultOf(delivery(result, 0)), REST_NO_CONNECTION) << result;
        EXPECT_NE(resultOf(delivery(result, 1)), REST_NO_CONNECTION) << result;
    }
}

TEST(SendResult, TellsTrustFromConnection)
{
    EXPECT_EQ(resultOf(delivery(CURLE_PEER_FAILED_VERIFICATION, 0)), REST_NOT_TRUSTED);
    EXPECT_EQ(resultOf(delivery(CURLE_SSL_PINNEDPUBKEYNOTMATCH, 0)), REST_NOT_TRUSTED);
}

TEST(SendResult, TellsALostConnectionFromACutReply)
{
    EXPECT_EQ(resultOf(delivery(CURLE_RECV_ERROR, 1)), REST_CONNECTION_LOST);
    EXPECT_EQ(resultOf(delivery(CURLE_RECV_ERROR, 1, true)), REST_UNUSABLE_REPLY);
    EXPECT_EQ(resultOf(delivery(CURLE_OPERATION_TIMEDOUT, 1, true)), REST_TIMED_OUT);
    EXPECT_EQ(resultOf(delivery(CURLE_OK, 1, true)), REST_ANSWERED);
}

TEST(SendResult, HasAdviceForEveryFailure)
{
    for (int result = REST_UNKNOWN_SESSION; result <= REST_REPLY_TOO_LARGE; ++result) {
        EXPECT_STRNE(adviceFor(static_cast<REST_SEND_RESULT_E>(result)), "") << result;
    }
}

TEST(SendResult, ExplainsARepetitionThatWasNotMade)
{
    EXPECT_EQ(reasonOf(delivery(CURLE_ABORTED_BY_CALLBACK, 1), "x"), "the array closed the connection before it replied");
    EXPECT_EQ(reasonOf(delivery(CURLE_COULDNT_CONNECT, 0), "x"), "x");
}

TEST(SendResult, CutsALongPath)
{
    const std::string line = failureLine(REST_DELETE, "/" + std::string(1000, 'x'), "s", REST_NO_CONNECTION, "why");
    EXPECT_EQ(line.find("DELETE /xxx"), 0U);
    EXPECT_LT(line.size(), 500U);
    EXPECT_NE(line.find("... to s failed: why. Check address"), std::string::npos);
}

}  // namespace
}  // namespace brevan
