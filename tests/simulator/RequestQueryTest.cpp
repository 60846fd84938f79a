#include "simulator/RequestQuery.h"

#include "simulator/ApiError.h"

#include <gtest/gtest.h>

using namespace brevan::sim;

TEST(RequestQuery, ReadsFilterRangeAndValues)
{
    const RequestQuery query("filter=NAME:a%20b and ID:7&TYPE=11&ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=9&range=[10-15]");
    ASSERT_EQ(query.filter().size(), 2u);
    EXPECT_EQ(query.filter()[0], (std::pair<std::string, std::string>{"NAME", "a b"}));
    EXPECT_EQ(query.filter()[1], (std::pair<std::string, std::string>{"ID", "7"}));
    EXPECT_EQ(query.value("ASSOCIATEOBJID"), "9");
    ASSERT_TRUE(query.range());
    EXPECT_EQ(query.range()->first, 10u);
    EXPECT_EQ(query.range()->last, 15u);
}

TEST(RequestQuery, TakesAnEmptyTextAndAnAmpersandAtTheEnd)
{
    EXPECT_TRUE(RequestQuery("").filter().empty());
    EXPECT_EQ(RequestQuery("filter=NAME:p1&").filter().size(), 1u);
}

TEST(RequestQuery, ReadsBracketsThatAreEscaped)
{
    EXPECT_EQ(RequestQuery("range=%5B0-65535%5D").range()->last, 65535u);
}

TEST(RequestQuery, LeavesColonsInFilterValuesAlone)
{
    EXPECT_EQ(RequestQuery("filter=ID:iqn.2020-01.lab:host").filter()[0].second, "iqn.2020-01.lab:host");
}

TEST(RequestQuery, RefusesWhatItDoesNotUnderstand)
{
    for (const char* bad :
         {"filter=NAME", "filter=:x", "filter=", "range=10-15", "range=[15-10]", "range=[a-b]", "range=[]", "range=[-]",
          "range=[1-2", "range=", "range=[0-18446744073709551616]", "NOSUCH=1", "TYPE", "TYPE=1&TYPE=1", "TYPE=%4"}) {
        EXPECT_THROW(RequestQuery{bad}, ApiError) << bad;
    }
}

TEST(RequestQuery, NamesAMissingParameter)
{
    try {
        RequestQuery("TYPE=11").require("ID");
        FAIL();
    } catch (const ApiError& error) {
        EXPECT_EQ(error.code(), kMissingParameter);
        EXPECT_STREQ(error.what(), "The query parameter ID is missing.");
    }
}
