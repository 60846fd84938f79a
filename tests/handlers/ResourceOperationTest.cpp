#include "handlers/ResourceOperation.h"

#include "RequestTests.h"

#include <cstdint>
#include <stdexcept>

namespace brevan::test {

Lines logOf(const RequestRow& row, const Lines& inner, int code)
{
    Lines lines = entered(row.name, inner, code);
    if (row.logName != nullptr) {
        lines.front() = std::string("info: enter ") + row.logName + " successfully!";
    }
    if (code == 0 && row.logName != nullptr) {
        lines.back() = std::string("info: leave ") + row.logName + " successfully!";
    }
    for (auto outer = row.around.rbegin(); outer != row.around.rend(); ++outer) {
        lines = entered(*outer, lines, code);
    }
    return lines;
}

void RequestFixture::expectUnusable(const Answer& reply)
{
    const std::string line = std::string("url error or internet error ") + GetParam().name;
    expect(GetParam().request, reply);
    EXPECT_EQ(thrown(), "Exception:" + line);
    EXPECT_EQ(newLog(), logOf(GetParam(), {"error: " + line}, 1009));
    EXPECT_EQ(lastFailure().code, FAILURE_UNUSABLE_REPLY);
}

TEST_P(FailingRequest, FailsWhereNoReplyComes)
{
    for (const int result : {1001, 1003, 1005, 1007, 1010, -1, 5}) {
        const std::string line = std::string("url error or internet error ") + GetParam().name;
        expect(GetParam().request, sendFailure(result));
        EXPECT_EQ(thrown(), "Exception:" + line);
        EXPECT_EQ(newLog(), logOf(GetParam(), {"error: " + line}, result));
        EXPECT_EQ(lastFailure().operation, GetParam().name);
        EXPECT_EQ(lastFailure().code, result);
        EXPECT_EQ(lastFailure().text, line);
    }
}

TEST_P(FailingRequest, FailsWhereTheArrayRefuses)
{
    for (const int code : {1077949061, -401}) {
        const std::string line =
            "get error response, error code:" + std::to_string(code) + ", description:100%s\nof %n " + GetParam().name;
        expect(GetParam().request, refusal(code, "100%s\nof %n"));
        EXPECT_EQ(thrown(), "Exception:" + line + " / " + std::to_string(code));
        EXPECT_EQ(newLog(), logOf(GetParam(), {"error: " + line}, code));
        EXPECT_EQ(lastFailure().code, code);
    }
}

TEST_P(FailingRequest, LetsNoForeignExceptionThrough)
{
    Answer thrower = answer("");
    thrower.before = [] { throw std::runtime_error("50%s"); };
    expect(GetParam().request, thrower);
    const std::string line = std::string("unexpected failure: 50%s ") + GetParam().name;
    EXPECT_EQ(thrown(), "Exception:" + line);
    EXPECT_EQ(newLog(), logOf(GetParam(), {"error: " + line}, 1));
}

TEST_P(PlainRequest, GoesWellUnderTheSession)
{
    expect(GetParam().request, answer(""));
    EXPECT_EQ(thrown(), "nothing");
    EXPECT_EQ(newLog(), logOf(GetParam(), {}, 0));
    EXPECT_EQ(recorder.handles(), std::vector<unsigned int>{sessionHandle(&manager)});
    EXPECT_TRUE(lastFailure().empty());
    EXPECT_TRUE(fakeClock.sleeps().empty());
}

TEST_P(ListRequest, FailsWhereAnEntryHasTheWrongShape)
{
    for (const char* list : {R"([{"ID":["7"]}])", R"([{"ID":{}}])", "[7]", R"(["7"])", "[true]", R"([[{"ID":"7"}]])"}) {
        expectUnusable(answer(list));
    }
}

TEST_P(ListRequest, SkipsEntriesWithoutAnId)
{
    for (const char* list : {"[]", "[{}]", R"([{"NAME":"a"}])", R"({"NAME":"a"})", "[null]"}) {
        expect(GetParam().request, answer(list));
        EXPECT_EQ(thrown(), "nothing") << list;
        EXPECT_EQ(newLog(), logOf(GetParam(), {}, 0));
    }
}

TEST_P(CreateRequest, FailsWhereTheNewIdIsNoText)
{
    for (const char* record : {R"({"ID":["7"]})", R"({"ID":{}})", "[7]", R"(["7"])"}) {
        expectUnusable(answer(record));
    }
    EXPECT_TRUE(fakeClock.sleeps().empty());
}

TEST_P(RefusedArgument, SendsNothing)
{
    const std::string line = std::string(GetParam().message) + GetParam().name;
    EXPECT_EQ(thrownBy([this] { GetParam().call(manager); }), "Exception:" + line);
    EXPECT_EQ(newLog(), failed(GetParam().name, line, 1));
    EXPECT_TRUE(recorder.handles().empty());
    EXPECT_EQ(lastFailure().operation, GetParam().name);
    EXPECT_EQ(lastFailure().code, FAILURE_REFUSED);
    EXPECT_EQ(lastFailure().text, line);
}

TEST(SessionHandle, IsTheAddressCutTo32Bits)
{
    const auto* manager = reinterpret_cast<const CDeviceManagerImpl*>(std::uintptr_t{0x7FFE12345678F0U});
    EXPECT_EQ(sessionHandle(manager), 0x345678F0U);
    EXPECT_EQ(sessionHandle(nullptr), 0U);
}

class ResourceRequest : public SdkTest {};

TEST_F(ResourceRequest, IsSentInItsModeWithItsBody)
{
    expect("GET /a", answer(""));
    expect(R"(POST /b {"K":"v"})", answer(""));
    expect(R"(PUT /c {"N":7})", answer(""));
    expect("DELETE /d", answer(""));
    perform(ResourceOperation("four", &manager), [](ResourceOperation& operation) {
        operation.get("/a");
        RestRequest post;
        post.BodyAddProperty("K", "v");
        operation.post("/b", post);
        RestRequest put;
        put.BodyAddProperty("N", 7);
        operation.put("/c", put);
        operation.remove("/d");
    });
    EXPECT_EQ(recorder.handles(), std::vector<unsigned int>(4, sessionHandle(&manager)));
}

TEST_F(ResourceRequest, OfAHandlerWithoutADeviceManagerHasTheHandleZero)
{
    expect("GET /a", sendFailure(1001));
    EXPECT_EQ(thrownBy([] {
                  perform(ResourceOperation("getLun", nullptr), [](ResourceOperation& operation) { operation.get("/a"); });
              }),
              "Exception:url error or internet error getLun");
    EXPECT_EQ(recorder.handles(), std::vector<unsigned int>{0});
}

TEST_F(ResourceRequest, ReturnsTheReply)
{
    expect("GET /a", answer(R"([{"ID":"1"},{"ID":"2"}])"));
    const unsigned int count = perform(ResourceOperation("getLun", &manager),
                                       [](ResourceOperation& operation) { return operation.get("/a").count(); });
    EXPECT_EQ(count, 2U);
}

TEST_F(ResourceRequest, IsEndedWhereTheExceptionOfATransportIsSwallowed)
{
    Answer thrower = answer("");
    thrower.before = [] { throw std::runtime_error("broken"); };
    expect("GET /a", thrower);
    perform(ResourceOperation("addHostToHostGroup", &manager), [](ResourceOperation& operation) {
        try {
            operation.get("/a");
        } catch (const PlimAPIException&) {
        }
    });
    EXPECT_EQ(newLog(), failed("addHostToHostGroup", "unexpected failure: broken addHostToHostGroup", 1));
}

}  // namespace brevan::test
