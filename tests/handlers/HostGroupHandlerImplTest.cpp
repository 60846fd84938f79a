#include "handlers/HostGroupHandlerImpl.h"

#include "RecordTests.h"

#include <stdexcept>

namespace brevan::test {
namespace {

constexpr const char* kRecord = R"({"ID":"7","NAME":"g","DESCRIPTION":"d","ISADD2MAPPINGVIEW":"true"})";

template <class Body>
Call with(Body body)
{
    return on<CHostGroupHandlerImpl>(body);
}

RequestRow create(const std::string& body, const HostGroupMO& group)
{
    return {"createHostGroup", {}, "POST /hostgroup {" + body + "}", with([group](auto& handler) {
                HostGroupMO wanted = group;
                handler.createHostGroup(wanted);
            })};
}

const std::vector<RequestRow> kCreates = {
    create(R"("TYPE":14,"NAME":"g")", {"", "g", "", -1}),
    create(R"("TYPE":14,"NAME":"g","DESCRIPTION":"d","ID":"9")", {"9", "g", "d", 1}),
};

RequestRow batch(const std::string& path, const HostGroupQuery& query)
{
    return {"getHostGroupByHost", {}, "GET /hostgroup/associate?" + path, with([query](auto& handler) {
                HostGroupQuery asked = query;
                handler.getHostGroupByHost("4", asked);
            })};
}

const std::vector<RequestRow> kLists = {
    batch("TYPE=14&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=4", {}),
    batch("filter=ID:1&TYPE=14&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=4", {{"1", "", "", -1}, 10, 0}),
    batch("filter=ID:1 and NAME:n&TYPE=14&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=4&range=[10-15]",
          {{"1", "n", "no condition", 1}, 10, 5}),
    {"getHostGroupByMappingView",
     {},
     "GET /hostgroup/associate?ASSOCIATEOBJTYPE=245&ASSOCIATEOBJID=4",
     with([](auto& handler) { handler.getHostGroupByMappingView("4"); })},
};

const RequestRow kRead = {"getHostGroup", {}, "GET /hostgroup/7", with([](auto& handler) { handler.getHostGroup("7"); })};
const std::vector<RequestRow> kSingles = {
    kRead, {"deleteHostGroup", {}, "DELETE /hostgroup/7", with([](auto& handler) { handler.deleteHostGroup("7"); })}};

BREVAN_INSTANTIATE(FailingRequest, kSingles);
BREVAN_INSTANTIATE(PlainRequest, kSingles);
BREVAN_INSTANTIATE(ListRequest, kLists);
BREVAN_INSTANTIATE(CreateRequest, kCreates);
INSTANTIATE_TEST_SUITE_P(Create, FailingRequest, testing::ValuesIn(kCreates));
INSTANTIATE_TEST_SUITE_P(List, FailingRequest, testing::ValuesIn(kLists));
INSTANTIATE_TEST_SUITE_P(List, PlainRequest, testing::ValuesIn(kLists));

const std::vector<RefusalRow> kRefusals = {
    {"createHostGroup", "HostGroup name is empty! ", create("", {"9", "", "d", -1}).call},
    {"deleteHostGroup", "HostGroupID is empty", with([](auto& handler) { handler.deleteHostGroup(""); })},
    {"getHostGroup", "HostGroupID is empty", with([](auto& handler) { handler.getHostGroup(""); })},
    {"addHostToHostGroup", "hostID is empty! ", with([](auto& handler) { handler.addHostToHostGroup("", ""); })},
    {"addHostToHostGroup", "HostGroupID is empty", with([](auto& handler) { handler.addHostToHostGroup("3", ""); })},
    {"removeHostFromHostGroup", "hostID is empty! ", with([](auto& handler) { handler.removeHostFromHostGroup("", ""); })},
    {"removeHostFromHostGroup", "HostGroupID is empty",
     with([](auto& handler) { handler.removeHostFromHostGroup("3", ""); })},
    {"getHostGroupByMappingView", "mappingViewID is empty! ",
     with([](auto& handler) { handler.getHostGroupByMappingView(""); })},
    {"getHostGroupByHost", "hostID is empty! ", with([](auto& handler) {
         HostGroupQuery query;
         handler.getHostGroupByHost("", query);
     })},
};
BREVAN_INSTANTIATE(RefusedArgument, kRefusals);

INSTANTIATE_TEST_SUITE_P(HostGroup, RecordReply,
                         testing::Values(RecordRow{"getHostGroup", kRead.request, kRecord, {}, kRead.call}));

/// The two membership changes: their failures end in a warning and nothing else.
const RequestRow kAdd = {"addHostToHostGroup",
                         {},
                         R"(POST /hostgroup/associate {"ID":"7","ASSOCIATEOBJTYPE":21,"ASSOCIATEOBJID":"3"})",
                         with([](auto& handler) { handler.addHostToHostGroup("3", "7"); })};
const RequestRow kRemove = {"removeHostFromHostGroup",
                            {},
                            "DELETE /host/associate?ID=7&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=3",
                            with([](auto& handler) { handler.removeHostFromHostGroup("3", "7"); })};
INSTANTIATE_TEST_SUITE_P(Membership, PlainRequest, testing::Values(kAdd, kRemove));

Answer throwing()
{
    Answer result = answer("");
    result.before = [] { throw std::runtime_error("50%s"); };
    return result;
}

struct SwallowedRow {
    const char* what;
    RequestRow change;
    Answer answer;
    std::string error;  ///< the operation's name follows
    int code;
    const char* warning;  ///< the operation's name follows
    bool isFailure;
};

class SwallowedFailure : public SdkTest, public testing::WithParamInterface<SwallowedRow> {};

TEST_P(SwallowedFailure, IsLoggedAndGoesNoFurther)
{
    const SwallowedRow& row = GetParam();
    const std::string name = row.change.name;
    expect(row.change.request, row.answer);
    EXPECT_EQ(thrownBy([&] { row.change.call(manager); }), "nothing");
    Lines lines = failed(name, row.error + name, row.code);
    lines.push_back("warn: " + std::string(row.warning) + name);
    EXPECT_EQ(newLog(), lines);
    EXPECT_EQ(lastFailure().code, row.isFailure ? row.code : 0);
    EXPECT_TRUE(fakeClock.sleeps().empty());
}

std::string errorText(int code)
{
    return "get error response, error code:" + std::to_string(code) + ", description:50%s\n ";
}

constexpr const char* kUnsent = "url error or internet error ";
constexpr const char* kNotRemoved = "remove host from host group failed. ";

INSTANTIATE_TEST_SUITE_P(
    Ways, SwallowedFailure,
    testing::Values(SwallowedRow{"AlreadyAdded", kAdd, refusal(1077937501, "50%s\n"), errorText(1077937501), 1077937501,
                                 "the host was already in the host group, ignore it. ", false},
                    SwallowedRow{"AddRefused", kAdd, refusal(-401, "50%s\n"), errorText(-401), -401,
                                 "addHostToHostGroup exception. ", true},
                    SwallowedRow{"AddUnsent", kAdd, sendFailure(1005), kUnsent, 1005, "add host to host group failed. ",
                                 true},
                    SwallowedRow{"AddForeign", kAdd, throwing(), "unexpected failure: 50%s ", 1,
                                 "add host to host group failed. ", true},
                    SwallowedRow{"RemoveRefused", kRemove, refusal(1077937501, "50%s\n"), errorText(1077937501), 1077937501,
                                 kNotRemoved, true},
                    SwallowedRow{"RemoveUnsent", kRemove, sendFailure(1007), kUnsent, 1007, kNotRemoved, true},
                    SwallowedRow{"RemoveForeign", kRemove, throwing(), "unexpected failure: 50%s ", 1, kNotRemoved, true}),
    [](const auto& tested) { return std::string(tested.param.what); });

class HostGroupHandler : public SdkTest {
protected:
    CHostGroupHandlerImpl handler{&manager};
};

TEST_F(HostGroupHandler, ReadsEveryFieldOfAGroup)
{
    expect("GET /hostgroup/7", answer(kRecord));
    const HostGroupMO group = handler.getHostGroup("7");
    EXPECT_EQ(group.ID, "7");
    EXPECT_EQ(group.NAME, "g");
    EXPECT_EQ(group.DESCRIPTION, "d");
    EXPECT_EQ(group.ISADD2MAPPINGVIEW, 1);
}

TEST_F(HostGroupHandler, ReadsEachGroupOfAHost)
{
    expect(kLists[0].request, answer(R"([{"ID":"7"},{},{"ID":"8"}])"));
    expect("GET /hostgroup/7", answer(kRecord));
    expect("GET /hostgroup/8", answer(""));
    HostGroupQuery query;
    const auto groups = handler.getHostGroupByHost("4", query);
    ASSERT_EQ(groups.size(), 2U);
    EXPECT_EQ(groups[0].NAME, "g");
    EXPECT_EQ(groups[1].ID, "");
}

TEST_F(HostGroupHandler, ReadsTheGroupOfAView)
{
    expect(kLists[3].request, answer(R"([{"ID":"7"},{"ID":"8"}])"));
    expect("GET /hostgroup/7", answer(kRecord));
    EXPECT_EQ(handler.getHostGroupByMappingView("4").NAME, "g");
    EXPECT_EQ(newLog(), entered("getHostGroupByMappingView", entered("getHostGroup")));
}

TEST_F(HostGroupHandler, PassesTheFailureOfANestedReadOn)
{
    expect(kLists[3].request, answer(R"([{"ID":"7"}])"));
    expect("GET /hostgroup/7", answer(R"({"ID":"7","NAME":[]})"));
    const std::string line = "url error or internet error getHostGroup";
    EXPECT_EQ(thrownBy([&] { handler.getHostGroupByMappingView("4"); }), "Exception:" + line);
    EXPECT_EQ(newLog(), entered("getHostGroupByMappingView", failed("getHostGroup", line, 1009), 1009));
}

}  // namespace
}  // namespace brevan::test
