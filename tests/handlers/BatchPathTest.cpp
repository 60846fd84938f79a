#include "handlers/BatchPath.h"

#include <gtest/gtest.h>

namespace brevan::test {
namespace {

TEST(BatchPath, WritesNoFilterWhereNoConditionIsSet)
{
    EXPECT_EQ(BatchPath("/lun/associate?")
                  .where("ID", "")
                  .where("STATUS", 0, 0)
                  .associated(MOTYPE_LUN, MOTYPE_LUNGROUP, "4")
                  .text(),
              "/lun/associate?TYPE=11&ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=4");
}

TEST(BatchPath, JoinsConditionsInTheirOrder)
{
    EXPECT_EQ(BatchPath("/a?").where("NAME", "n").text(), "/a?filter=NAME:n");
    EXPECT_EQ(BatchPath("/a?").where("NAME", "n").where("ID", "").where("STATUS", 1, 0).where("ID", "7").text(),
              "/a?filter=NAME:n and STATUS:1 and ID:7");
}

TEST(BatchPath, EndsItsConditionsOnlyWhereThereAreAny)
{
    EXPECT_EQ(BatchPath("/a?").endFilter().text(), "/a?");
    EXPECT_EQ(BatchPath("/a?").where("NAME", "n").endFilter().text(), "/a?filter=NAME:n&");
    EXPECT_EQ(BatchPath("/a?").where("NAME", "n").associated(MOTYPE_HOST, MOTYPE_LUN, "1").text(),
              "/a?filter=NAME:n&TYPE=21&ASSOCIATEOBJTYPE=11&ASSOCIATEOBJID=1");
}

TEST(BatchPath, ComparesNumbersWithWhatMeansNotSet)
{
    EXPECT_EQ(BatchPath("/a?").where("T", 0, 100).text(), "/a?filter=T:0");
    EXPECT_EQ(BatchPath("/a?").where("T", 100, 100).text(), "/a?");
    EXPECT_EQ(BatchPath("/a?").where("T", -1, -1).where("U", 0, -1).text(), "/a?filter=U:0");
    EXPECT_EQ(BatchPath("/a?").where("T", 4294967295, 0).text(), "/a?filter=T:4294967295");
}

struct Range {
    std::uint64_t start;
    std::uint64_t count;
    const char* text;
};

class RangeOfBatch : public testing::TestWithParam<Range> {};

TEST_P(RangeOfBatch, EndsBehindItsLastRecord)
{
    EXPECT_EQ(BatchPath("/a?").range("", GetParam().start, GetParam().count).text(), std::string("/a?") + GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Ranges, RangeOfBatch,
    testing::Values(Range{0, 0, ""}, Range{10, 0, ""}, Range{10, 5, "range=[10-15]"}, Range{0, 100, "range=[0-100]"},
                    Range{18446744073709551614U, 1, "range=[18446744073709551614-18446744073709551615]"}),
    [](const auto& tested) { return "Row" + std::to_string(tested.index); });

TEST(BatchPath, PutsThePrefixBeforeARangeOnly)
{
    EXPECT_EQ(BatchPath("/a?").range("&", 1, 2).text(), "/a?&range=[1-3]");
    EXPECT_EQ(BatchPath("/a?").range("&", 1, 0).text(), "/a?");
}

TEST(BatchPath, LeavesValuesAsTheyAre)
{
    EXPECT_EQ(BatchPath("/a?").where("NAME", "a b&c=%s").text(), "/a?filter=NAME:a b&c=%s");
    EXPECT_EQ(associatedWith(MOTYPE_MAPPINGVIEW, "x y"), "ASSOCIATEOBJTYPE=245&ASSOCIATEOBJID=x y");
}

}  // namespace
}  // namespace brevan::test
