#include "handlers/ReplyText.h"

#include "foundation/Operation.h"
#include "handlers/ResourceOperation.h"
#include "support/SdkTest.h"

#include <json/reader.h>

#include <sstream>

namespace brevan::test {
namespace {

Json::Value record(const std::string& value)
{
    Json::Value parsed;
    std::istringstream("{\"K\":" + value + "}") >> parsed;
    return parsed;
}

struct Reading {
    const char* value;  ///< JSON
    const char* text;   ///< empty where absent
    std::uint32_t number32;
    std::uint64_t number64;
    std::int64_t isSigned;
    std::uint32_t type;
    std::int32_t flag;
};

class ReplyValue : public testing::TestWithParam<Reading> {};

TEST_P(ReplyValue, IsReadAsEachKind)
{
    const Json::Value json = record(GetParam().value);
    const ReplyRecord from(json);
    EXPECT_EQ(replyText(from, "K"), GetParam().text);
    EXPECT_EQ(replyNumber32(from, "K"), GetParam().number32);
    EXPECT_EQ(replyNumber64(from, "K"), GetParam().number64);
    EXPECT_EQ(replySigned(from, "K"), GetParam().isSigned);
    EXPECT_EQ(replyType(from, "K"), GetParam().type);
    EXPECT_EQ(replyFlag(from, "K"), GetParam().flag);
}

INSTANTIATE_TEST_SUITE_P(
    Values, ReplyValue,
    testing::Values(Reading{R"("7")", "7", 7, 7, 7, 7, 0}, Reading{"7", "7", 7, 7, 7, 7, 0},
                    Reading{R"("")", "", 0, 0, 0, 0, 0}, Reading{"null", "", 0, 0, 0, 0, 0},
                    Reading{R"("true")", "true", 0, 0, 0, 0, 1}, Reading{"true", "true", 0, 0, 0, 0, 1},
                    Reading{R"("TRUE")", "TRUE", 0, 0, 0, 0, 0}, Reading{R"("1")", "1", 1, 1, 1, 1, 0},
                    Reading{R"("true ")", "true ", 0, 0, 0, 0, 0}, Reading{R"("abc")", "abc", 0, 0, 0, 0, 0},
                    Reading{R"("-1")", "-1", 0, 0, -1, 0, 0}, Reading{"-1", "-1", 0, 0, -1, 4294967295U, 0},
                    Reading{R"("12abc")", "12abc", 0, 0, 12, 0, 0}, Reading{R"(" 12")", " 12", 0, 0, 12, 0, 0},
                    Reading{R"("4294967295")", "4294967295", 4294967295U, 4294967295U, 2147483647, 4294967295U, 0},
                    Reading{R"("18446744073709551616")", "18446744073709551616", 0, 0, 2147483647, 0, 0},
                    Reading{R"("-99999999999999999999")", "-99999999999999999999", 0, 0, -2147483648LL, 0, 0},
                    Reading{"18446744073709551615", "18446744073709551615", 4294967295U, 18446744073709551615U, 2147483647,
                            0, 0},
                    Reading{"1.5", "1.5", 0, 0, 1, 0, 0}),
    [](const auto& tested) { return "Row" + std::to_string(tested.index); });

class UnusableValue : public testing::TestWithParam<const char*> {};

TEST_P(UnusableValue, IsOfNoKind)
{
    const Json::Value json = record(GetParam());
    const ReplyRecord from(json);
    EXPECT_THROW(replyText(from, "K"), UnusableReply);
    EXPECT_THROW(replyNumber32(from, "K"), UnusableReply);
    EXPECT_THROW(replyNumber64(from, "K"), UnusableReply);
    EXPECT_THROW(replySigned(from, "K"), UnusableReply);
    EXPECT_THROW(replyType(from, "K"), UnusableReply);
    EXPECT_THROW(replySize(from, "K"), UnusableReply);
    EXPECT_THROW(replyFlag(from, "K"), UnusableReply);
}

INSTANTIATE_TEST_SUITE_P(Shapes, UnusableValue, testing::Values("[]", "[7]", "{}", R"({"K":"7"})"));

struct Size {
    const char* value;
    std::optional<std::uint64_t> size;  ///< nothing: makes the reply unusable
};

class ReplySize : public testing::TestWithParam<Size> {};

TEST_P(ReplySize, IsNeverGuessed)
{
    const Json::Value json = record(GetParam().value);
    const ReplyRecord from(json);
    if (GetParam().size) {
        EXPECT_EQ(replySize(from, "K"), *GetParam().size);
    } else {
        EXPECT_THROW(replySize(from, "K"), UnusableReply);
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, ReplySize,
                         testing::Values(Size{R"("2097152")", 2097152}, Size{"2097152", 2097152}, Size{R"("0")", 0},
                                         Size{R"("000")", 0}, Size{R"("")", 0}, Size{"null", 0}, Size{R"("007")", 7},
                                         Size{R"("18446744073709551615")", 18446744073709551615U},
                                         Size{R"("18446744073709551616")", std::nullopt}, Size{R"("abc")", std::nullopt},
                                         Size{R"("-1")", std::nullopt}, Size{R"("1 ")", std::nullopt},
                                         Size{R"("+1")", std::nullopt}, Size{"-1", std::nullopt}, Size{"1.5", std::nullopt},
                                         Size{"true", std::nullopt}),
                         [](const auto& tested) { return "Row" + std::to_string(tested.index); });

TEST(AbsentValue, ReadsAsEmptyTextAndAsZero)
{
    for (const Json::Value& json : {Json::Value(), Json::Value(Json::objectValue)}) {
        const ReplyRecord from(json);
        EXPECT_EQ(replyText(from, "K"), "");
        EXPECT_EQ(replyNumber32(from, "K"), 0U);
        EXPECT_EQ(replyNumber64(from, "K"), 0U);
        EXPECT_EQ(replySigned(from, "K"), 0);
        EXPECT_EQ(replyType(from, "K"), 0U);
        EXPECT_EQ(replySize(from, "K"), 0U);
        EXPECT_EQ(replyFlag(from, "K"), 0);
    }
}

TEST(ReplyRecord, FindsEachMemberByItsWholeKey)
{
    Json::Value json;
    std::istringstream(R"({"ID":"1","IDS":"2","":"3","a\u0000b":"4"})") >> json;
    const ReplyRecord record(json);
    EXPECT_EQ(*record.find("ID"), "1");
    EXPECT_EQ(*record.find("IDS"), "2");
    EXPECT_EQ(*record.find(""), "3");
    EXPECT_EQ(*record.find(std::string_view("a\0b", 3)), "4");
    EXPECT_EQ(record.find("a"), nullptr);
    EXPECT_EQ(record.find("I"), nullptr);
}

TEST(ReplyRecord, IsNoneWhereNoObjectStands)
{
    EXPECT_EQ(ReplyRecord(Json::Value()).find("ID"), nullptr);
    for (const Json::Value& json : {Json::Value(Json::arrayValue), Json::Value("ID"), Json::Value(7)}) {
        EXPECT_THROW(ReplyRecord{json}, UnusableReply);
    }
}

class FirstId : public SdkTest {
protected:
    std::string of(const std::string& data)
    {
        expect("GET /a", answer(data));
        return perform(ResourceOperation("getLun", &manager),
                       [](ResourceOperation& operation) { return firstId(operation.get("/a")); });
    }
};

TEST_F(FirstId, IsThatOfTheFirstRecord)
{
    EXPECT_EQ(of(R"({"ID":"7"})"), "7");
    EXPECT_EQ(of(R"([{"ID":"8"},{"ID":"9"}])"), "8");
    EXPECT_EQ(of(R"({"NAME":"a"})"), "");
    EXPECT_EQ(of(""), "");
}

}  // namespace
}  // namespace brevan::test
