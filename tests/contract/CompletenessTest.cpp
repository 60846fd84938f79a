#include "Completeness.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace brevan::contract {
namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::Not;

const std::vector<HeaderOperation>& operations()
{
    static const std::vector<HeaderOperation> all = readHeaderOperations(BREVAN_PUBLIC_HEADERS);
    return all;
}

/// The rows that do not meet the condition.
template <class Condition>
std::vector<const Row*> rowsWithout(Condition condition)
{
    static const std::vector<Row> all = rowsOf(wholeContract());
    std::vector<const Row*> rest;
    for (const Row& row : all) {
        if (!condition(row)) {
            rest.push_back(&row);
        }
    }
    return rest;
}

std::vector<const Row*> rows()
{
    return rowsWithout([](const Row&) { return false; });
}

bool fails(const Step& step)
{
    return step.kind == Step::Kind::Request && step.answer.sendResult != 0;
}

}  // namespace

TEST(Completeness, FindsEveryOperationInTheHeaders)
{
    std::set<std::string> handlers;
    std::ptrdiff_t ofHandlers = 0;
    for (const HeaderOperation& operation : operations()) {
        handlers.insert(operation.owner);
        ofHandlers += operation.owner == "CDeviceManager" ? 0 : 1;
    }
    EXPECT_EQ(handlers.size(), 13U + 1U);  // the device manager is no handler
    EXPECT_EQ(ofHandlers, 62);
    EXPECT_EQ(operations().size(), 62U + 4U + 1U);  // the session operations, and getHandler
}

TEST(Completeness, LeavesNoGap)
{
    EXPECT_THAT(gaps(operations(), rows()), IsEmpty());
}

TEST(Completeness, MissesAnOperationWithoutRows)
{
    for (const HeaderOperation& operation : operations()) {
        const auto rest = rowsWithout([&](const Row& row) { return row.operation == operation.name; });
        EXPECT_THAT(gaps(operations(), rest), Contains(operation.name + " has no row that succeeds"));
    }
}

TEST(Completeness, MissesEveryRowThatRefusesAnArgument)
{
    const auto rest = rowsWithout([](const Row& row) { return row.refusesArgument; });
    const auto found = gaps(operations(), rest);
    EXPECT_THAT(found, Contains("getLun refuses 0 arguments of 1"));
    EXPECT_THAT(found, Contains("addLunToLunGroup refuses 0 arguments of 2"));
    EXPECT_THAT(found, Contains("loginDevice refuses 0 arguments of 3"));
    EXPECT_THAT(found, Not(Contains("scanSnapshotBeforeDetach refuses 0 arguments of 1")));
}

TEST(Completeness, MissesEveryRequestThatNoRowShowsUnreachable)
{
    const auto rest = rowsWithout([](const Row& row) {
        return std::any_of(row.steps.begin(), row.steps.end(), [](const Step& s) { return fails(s); });
    });
    const auto found = gaps(operations(), rest);
    EXPECT_THAT(found, Contains("getLun is never unreachable at GET /lun/"));
    EXPECT_THAT(found, Contains("detachLunFromHost is never unreachable at PUT /mappingview/remove_associate"));
    EXPECT_THAT(found, Not(Contains("getLun is never refused at GET /lun/")));
}

TEST(Completeness, MissesARowOfNoOperation)
{
    std::vector<const Row*> more = rows();
    Row unknown = *more.front();
    unknown.operation = "makeLun";
    more.push_back(&unknown);
    EXPECT_THAT(gaps(operations(), more), Contains("makeLun is no operation"));
}

TEST(HeaderOperations, ReadsWhatIsPureVirtualInHandlersAlone)
{
    const auto found = operationsOf(
        "\nclass BREVAN_API COneHandler : public CHandler {\npublic:\n    ~COneHandler() override;\n"
        "    virtual int one(const std::string& a,\n             LunQuery& b) = 0;  // = 0;\n"
        "    virtual int two();\n};\nclass BREVAN_API COther {\n    virtual int three() = 0;\n};\n");
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].owner, "COneHandler");
    EXPECT_EQ(found[0].name, "one");
    EXPECT_THAT(found[0].parameters, testing::ElementsAre("const std::string& a", "LunQuery& b"));
}

}  // namespace brevan::contract
