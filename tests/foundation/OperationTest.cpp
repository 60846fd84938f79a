#include "foundation/Operation.h"

#include "support/SdkTest.h"

#include <stdexcept>

namespace brevan::test {
namespace {

class OperationRun : public SdkTest {
protected:
    template <class Body>
    std::string thrown(const OperationStyle& style, Body body)
    {
        return thrownBy([&] { perform(Operation(style), body); });
    }
};

TEST_F(OperationRun, SaysEnterRecordLeaveAndReturnsTheResult)
{
    EXPECT_EQ(perform(Operation("getLun"), [](Operation&) { return 7; }), 7);
    EXPECT_EQ(newLog(), entered("getLun"));
    EXPECT_TRUE(lastFailure().empty());
}

TEST_F(OperationRun, StartsAfterItsEnterLineAndEndsWithItsRecord)
{
    perform(Operation("getLun"), [&](Operation&) { fakeClock.sleepMicroseconds(1000000); });
    EXPECT_EQ(recorder.records().at(0).at(7), "2021-03-04 05:06:07 089");
    EXPECT_EQ(recorder.records().at(0).at(8), "2021-03-04 05:06:08 089");
}

struct StyleRow {
    OperationStyle style;
    Lines lines;
};

class StyleOfOperation : public OperationRun, public testing::WithParamInterface<StyleRow> {};

TEST_P(StyleOfOperation, DecidesItsLines)
{
    perform(Operation(GetParam().style), [](Operation&) {});
    EXPECT_EQ(newLog(), GetParam().lines);
}

INSTANTIATE_TEST_SUITE_P(
    Styles, StyleOfOperation,
    testing::Values(StyleRow{{"a", "begin", "end"}, {"info: begin", "record: a 0", "info: end"}},
                    StyleRow{{"a", "", ""}, {"record: a 0"}},
                    StyleRow{{"a", nullptr, nullptr, "b"},
                             {"info: enter b successfully!", "record: a 0", "info: leave b successfully!"}},
                    StyleRow{{"a", nullptr, nullptr, nullptr, true},
                             {"info: enter a successfully!", "info: leave a successfully!", "record: a 0"}},
                    StyleRow{{"a", nullptr, nullptr, nullptr, false, false},
                             {"info: enter a successfully!", "info: leave a successfully!"}},
                    StyleRow{{"a", "50%s", "%n"}, {"info: 50%s", "record: a 0", "info: %n"}}),
    [](const auto& tested) { return "Row" + std::to_string(tested.index); });

TEST_F(OperationRun, GoesOnWhereAnArgumentWillDo)
{
    EXPECT_EQ(thrown({"getLun"}, [](Operation& operation) { operation.require(true, "lunID is empty! "); }), "nothing");
    EXPECT_EQ(newLog(), entered("getLun"));
}

/// The ways to fail: each line is logged, kept and thrown, the record carries the code.
struct FailureRow {
    const char* what;
    std::function<void(Operation&)> fail;
    std::string line;
    int code;
    bool refusedByArray;
};

class FailureOfOperation : public OperationRun, public testing::WithParamInterface<FailureRow> {};

TEST_P(FailureOfOperation, IsLoggedRecordedThrownAndKept)
{
    const FailureRow& row = GetParam();
    const std::string code = row.refusedByArray ? " / " + std::to_string(row.code) : "";
    EXPECT_EQ(thrown({"getLun"}, row.fail), "Exception:" + row.line + code);
    EXPECT_EQ(newLog(), failed("getLun", row.line, row.code));
    EXPECT_EQ(lastFailure().operation, "getLun");
    EXPECT_EQ(lastFailure().code, row.code);
    EXPECT_EQ(lastFailure().text, row.line);
}

TEST_P(FailureOfOperation, PassesThroughTheOperationsAroundItWithOneErrorLine)
{
    const FailureRow& row = GetParam();
    thrown({"outer"}, [&](Operation&) { perform(Operation("getLun"), row.fail); });
    EXPECT_EQ(newLog(), entered("outer", failed("getLun", row.line, row.code), row.code));
    EXPECT_EQ(lastFailure().operation, "getLun");
}

TEST_P(FailureOfOperation, IsTurnedIntoAResultWhereTheOperationNeverThrows)
{
    const FailureRow& row = GetParam();
    const int result = performQuietly(Operation("getLun"), 5, [&](Operation& operation) {
        row.fail(operation);
        return 1;
    });
    EXPECT_EQ(result, 5);
    EXPECT_EQ(newLog(), failed("getLun", row.line, row.code));
}

INSTANTIATE_TEST_SUITE_P(
    Ways, FailureOfOperation,
    testing::Values(FailureRow{"Require", [](Operation& o) { o.require(false, "id is empty! "); }, "id is empty! getLun", 1,
                               false},
                    FailureRow{"Refuse", [](Operation& o) { o.refuse("50%s "); }, "50%s getLun", 1, false},
                    FailureRow{"Raise", [](Operation& o) { o.raise("no host! "); }, "no host! getLun", 1, false},
                    FailureRow{"Transport", [](Operation& o) { o.failTransport(1007); },
                               "url error or internet error getLun", 1007, false},
                    FailureRow{"Response", [](Operation& o) { o.failResponse(-401, "100%n\nis %s"); },
                               "get error response, error code:-401, description:100%n\nis %s getLun", -401, true},
                    FailureRow{"UnusableReply", [](Operation&) { throw UnusableReply(); },
                               "url error or internet error getLun", 1009, false},
                    FailureRow{"ForeignException", [](Operation&) { throw std::runtime_error("50%s"); },
                               "unexpected failure: 50%s getLun", 1, false},
                    FailureRow{"ForeignType", [](Operation&) { throw 7; },
                               "unexpected failure: no standard exception getLun", 1, false}),
    [](const auto& tested) { return std::string(tested.param.what); });

TEST_F(OperationRun, PassesOnTheCodeOfARefusalThatItDidNotRaise)
{
    EXPECT_EQ(thrown({"getLun"}, [](Operation&) { throw PlimAPIExceptionWithErrCode(9, "refused"); }),
              "Exception:refused / 9");
    EXPECT_EQ(newLog(), entered("getLun", {}, 9));
}

/// The ways to end without an exception.
struct EndRow {
    const char* what;
    std::function<void(Operation&)> end;
    Lines lines;  ///< behind "enter"
    std::string failure;
};

class EndOfOperation : public OperationRun, public testing::WithParamInterface<EndRow> {};

TEST_P(EndOfOperation, WritesItsLinesAndNoLeave)
{
    EXPECT_EQ(thrown({"a"}, GetParam().end), "nothing");
    Lines expected = {"info: enter a successfully!"};
    expected.insert(expected.end(), GetParam().lines.begin(), GetParam().lines.end());
    EXPECT_EQ(newLog(), expected);
    EXPECT_EQ(lastFailure().text, GetParam().failure);
}

INSTANTIATE_TEST_SUITE_P(
    Ends, EndOfOperation,
    testing::Values(EndRow{"Failed", [](Operation& o) { o.endFailed(7, "50%s"); }, {"error: 50%s", "record: a 7"}, "50%s"},
                    EndRow{"Refused", [](Operation& o) { o.endRefused("no! "); }, {"error: no! a", "record: a 1"}, "no! a"},
                    EndRow{"Recorded", [](Operation& o) { o.endRecorded(-1); }, {"record: a -1"}, ""},
                    EndRow{"Silent", [](Operation& o) { o.endSilently(); }, {}, ""},
                    EndRow{
                        "Succeeded", [](Operation& o) { o.succeed(); }, {"record: a 0", "info: leave a successfully!"}, ""},
                    EndRow{"Noted",
                           [](Operation& o) { o.note("said elsewhere", "advice"); },
                           {"record: a 0", "info: leave a successfully!"},
                           "said elsewhere"},
                    EndRow{"Reported",
                           [](Operation& o) { o.report("%s is empty! "); },
                           {"error: %s is empty! a", "record: a 1", "record: a 0", "info: leave a successfully!"},
                           ""}),
    [](const auto& tested) { return std::string(tested.param.what); });

TEST_F(OperationRun, KeepsTheAdviceOfANote)
{
    perform(Operation("scan"), [](Operation& operation) { operation.note("no disk", "rescan"); });
    EXPECT_EQ(lastFailure().operation, "scan");
    EXPECT_EQ(lastFailure().code, FAILURE_REFUSED);
    EXPECT_EQ(lastFailure().advice, "rescan");
}

TEST_F(OperationRun, ReturnsItsResultWhereNothingFails)
{
    EXPECT_EQ(performQuietly(Operation("loginDevice"), 0, [](Operation&) { return 1; }), 1);
    EXPECT_EQ(newLog(), entered("loginDevice"));
}

}  // namespace
}  // namespace brevan::test
