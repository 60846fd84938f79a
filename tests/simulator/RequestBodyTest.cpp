#include "simulator/RequestBody.h"

#include "simulator/ApiError.h"

#include <gtest/gtest.h>

using namespace brevan::sim;

namespace {

int codeOf(const std::function<void()>& work)
{
    try {
        work();
    } catch (const ApiError& error) {
        return error.code();
    }
    return 0;
}

}  // namespace

TEST(RequestBody, ReadsTextsNumbersAndFlags)
{
    const RequestBody body(
        R"({"NAME":"x","CAPACITY":18446744073709551615,"TYPE":"11","ENABLEINBANDCOMMAND":true,"USECHAP":"true"})");
    EXPECT_EQ(body.text("NAME"), "x");
    EXPECT_EQ(body.number("CAPACITY", 18446744073709551615u), 18446744073709551615u);
    EXPECT_EQ(body.number("TYPE", 100), 11u);
    EXPECT_TRUE(body.flag("ENABLEINBANDCOMMAND"));
    EXPECT_TRUE(body.flag("USECHAP"));
    EXPECT_FALSE(body.flag("ABSENT"));
    EXPECT_EQ(body.text("ABSENT"), "");
    EXPECT_FALSE(body.number("ABSENT", 1));
}

TEST(RequestBody, RefusesWhatIsNoFlatObject)
{
    const std::string deep(100000, '[');
    for (const std::string& bad :
         {std::string("{"), std::string("[]"), std::string("7"), std::string("\"x\""), std::string("null"),
          std::string(R"({"a":{}})"), std::string(R"({"a":[]})"), std::string(R"({"a":1,"a":2})"), std::string("{} {}"),
          std::string("{\"a\":\"\xff\"}"), deep, "{\"a\":" + deep}) {
        EXPECT_EQ(codeOf([&bad] { RequestBody body(bad); }), kBadBody) << bad.substr(0, 20);
    }
}

TEST(RequestBody, RefusesTooManyKeys)
{
    std::string text = "{";
    for (int index = 0; index < 65; ++index) {
        text += (index == 0 ? "\"" : ",\"") + std::to_string(index) + "\":0";
    }
    EXPECT_EQ(codeOf([&text] { RequestBody body(text + "}"); }), kBadBody);
}

TEST(RequestBody, RefusesValuesOfAnotherType)
{
    const RequestBody body(R"({"NAME":7,"LONG":"12345","NUL":"a\u0000b","TYPE":-1,"HALF":1.5,"TEXT":"abc","FLAG":1})");
    EXPECT_EQ(codeOf([&] { body.text("NAME"); }), kBadParameter);
    EXPECT_EQ(codeOf([&] { body.text("LONG", 4); }), kBadParameter);
    EXPECT_EQ(codeOf([&] { body.text("NUL"); }), kBadParameter);
    for (const char* key : {"TYPE", "HALF", "TEXT"}) {
        EXPECT_EQ(codeOf([&] { body.number(key, 1000); }), kBadParameter) << key;
    }
    EXPECT_EQ(codeOf([&] { body.flag("FLAG"); }), kBadParameter);
}

TEST(RequestBody, NamesWhatIsMissing)
{
    const RequestBody body(R"({"EMPTY":""})");
    EXPECT_EQ(codeOf([&] { body.requireText("NAME"); }), kMissingParameter);
    EXPECT_EQ(codeOf([&] { body.requireText("EMPTY"); }), kMissingParameter);
    EXPECT_EQ(codeOf([&] { body.requireNumber("TYPE", 1); }), kMissingParameter);
}
