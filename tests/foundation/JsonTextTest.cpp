#include "foundation/JsonText.h"

#include <gtest/gtest.h>

#include <json/reader.h>

#include <sstream>

namespace brevan::test {
namespace {

struct Row {
    const char* record;
    std::optional<std::string> text;
};

class JsonText : public testing::TestWithParam<Row> {};

TEST_P(JsonText, IsWhatTheArrayWouldWrite)
{
    Json::Value record;
    std::istringstream(GetParam().record) >> record;
    EXPECT_EQ(textOf(record, "ID"), GetParam().text) << GetParam().record;
}

INSTANTIATE_TEST_SUITE_P(Values, JsonText,
                         testing::Values(Row{R"({"ID":"7"})", "7"}, Row{R"({"ID":""})", ""}, Row{R"({"ID":7})", "7"},
                                         Row{R"({"ID":-7})", "-7"}, Row{R"({"ID":true})", "true"},
                                         Row{R"({"ID":18446744073709551615})", "18446744073709551615"},
                                         Row{R"({"ID":null})", ""}, Row{R"({"NAME":"a"})", ""}, Row{"{}", ""},
                                         Row{"null", ""}, Row{R"({"ID":"50% \n%s"})", "50% \n%s"}),
                         [](const auto& tested) { return "Row" + std::to_string(tested.index); });

INSTANTIATE_TEST_SUITE_P(NoText, JsonText,
                         testing::Values(Row{R"({"ID":[]})", std::nullopt}, Row{R"({"ID":["7"]})", std::nullopt},
                                         Row{R"({"ID":{}})", std::nullopt}, Row{R"({"ID":{"ID":"7"}})", std::nullopt},
                                         Row{"7", std::nullopt}, Row{R"("ID")", std::nullopt}, Row{"true", std::nullopt},
                                         Row{R"([{"ID":"7"}])", std::nullopt}),
                         [](const auto& tested) { return "Row" + std::to_string(tested.index); });

}  // namespace
}  // namespace brevan::test
