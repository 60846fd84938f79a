#include "handlers/LunGroupHandlerImpl.h"

#include "RecordTests.h"

namespace brevan::test {
namespace {

constexpr const char* kRecord =
    R"({"ID":"7","NAME":"g","DESCRIPTION":"d","ISADD2MAPPINGVIEW":"true","APPTYPE":"3","GROUPTYPE":"5"})";

template <class Body>
Call with(Body body)
{
    return on<CLunGroupHandlerImpl>(body);
}

RequestRow create(const std::string& body, const LunGroupMO& group)
{
    return {"createLunGroup", {}, "POST /lungroup/ {" + body + "}", with([group](auto& handler) {
                LunGroupMO wanted = group;
                handler.createLunGroup(wanted);
            })};
}

const std::vector<RequestRow> kCreates = {
    create(R"("TYPE":256,"NAME":"g","APPTYPE":0,"GROUPTYPE":0ul)", {"", "g", "", -1, 100, 0}),
    create(R"("ID":"9","TYPE":256,"NAME":"g","DESCRIPTION":"d","APPTYPE":3,"GROUPTYPE":0ul)", {"9", "g", "d", 1, 3, 5}),
};

RequestRow batch(const char* operation, const std::string& path, const LunGroupQuery& query)
{
    const bool byLun = std::string(operation) == "getLunGroupByLun";
    return {"getLunGroupByObjList", {operation}, "GET /lungroup/associate?" + path, with([byLun, query](auto& handler) {
                LunGroupQuery asked = query;
                byLun ? handler.getLunGroupByLun("4", asked) : handler.getLunGroupBySnapshot("4", asked);
            })};
}

const std::vector<RequestRow> kLists = {
    batch("getLunGroupByLun", "TYPE=256&ASSOCIATEOBJTYPE=11&ASSOCIATEOBJID=4", {}),
    batch("getLunGroupBySnapshot", "TYPE=256&ASSOCIATEOBJTYPE=27&ASSOCIATEOBJID=4&range=[10-15]", {{}, 10, 5}),
    batch("getLunGroupBySnapshot",
          "filter=ID:1 and NAME:n and ISADD2MAPPINGVIEW:0 and APPTYPE:0&TYPE=256&ASSOCIATEOBJTYPE=27&ASSOCIATEOBJID=4",
          {{"1", "n", "no condition", 0, 0, 5}, 10, 0}),
    {"getLunGroupByMappingView",
     {},
     "GET /lungroup/associate?ASSOCIATEOBJTYPE=245&ASSOCIATEOBJID=4",
     with([](auto& handler) { handler.getLunGroupByMappingView("4"); })},
};

const RequestRow kRead = {"getLunGroup", {}, "GET /lungroup/7", with([](auto& handler) { handler.getLunGroup("7"); })};
const RequestRow kCount = {"getCountByAssociate",
                           {},
                           "GET /lun/count?ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=7",
                           with([](auto& handler) { handler.getCountByAssociate("7", "lun"); })};
const std::vector<RequestRow> kSingles = {
    kRead, kCount, {"deleteLunGroup", {}, "DELETE /lungroup/7", with([](auto& handler) { handler.deleteLunGroup("7"); })}};

BREVAN_INSTANTIATE(FailingRequest, kSingles);
BREVAN_INSTANTIATE(PlainRequest, kSingles);
BREVAN_INSTANTIATE(ListRequest, kLists);
BREVAN_INSTANTIATE(CreateRequest, kCreates);
INSTANTIATE_TEST_SUITE_P(Create, FailingRequest, testing::ValuesIn(kCreates));
INSTANTIATE_TEST_SUITE_P(List, FailingRequest, testing::ValuesIn(kLists));
INSTANTIATE_TEST_SUITE_P(List, PlainRequest, testing::ValuesIn(kLists));

const std::vector<RefusalRow> kRefusals = {
    {"createLunGroup", "LunGroup name is empty! ", create("", {"9", "", "d", -1, 100, 0}).call},
    {"deleteLunGroup", "LunGroup id is empty! ", with([](auto& handler) { handler.deleteLunGroup(""); })},
    {"getLunGroup", "LunGroup id is empty! ", with([](auto& handler) { handler.getLunGroup(""); })},
    {"getLunGroupByMappingView", "mappingViewID is empty! ",
     with([](auto& handler) { handler.getLunGroupByMappingView(""); })},
    {"getLunGroupByLun", "lunID is empty! ", with([](auto& handler) {
         LunGroupQuery query;
         handler.getLunGroupByLun("", query);
     })},
    {"getLunGroupBySnapshot", "snapshotID is empty! ", with([](auto& handler) {
         LunGroupQuery query;
         handler.getLunGroupBySnapshot("", query);
     })},
};
BREVAN_INSTANTIATE(RefusedArgument, kRefusals);

INSTANTIATE_TEST_SUITE_P(LunGroup, RecordReply,
                         testing::Values(RecordRow{"getLunGroup", kRead.request, kRecord, {}, kRead.call}));

class LunGroupHandler : public SdkTest {
protected:
    CLunGroupHandlerImpl handler{&manager};
};

TEST_F(LunGroupHandler, ReadsEveryFieldOfAGroup)
{
    expect("GET /lungroup/7", answer(kRecord));
    const LunGroupMO group = handler.getLunGroup("7");
    EXPECT_EQ(group.ID, "7");
    EXPECT_EQ(group.NAME, "g");
    EXPECT_EQ(group.DESCRIPTION, "d");
    EXPECT_EQ(group.ISADD2MAPPINGVIEW, 1);
    EXPECT_EQ(group.APPTYPE, 3U);
    EXPECT_EQ(group.GROUPTYPE, 5U);
}

TEST_F(LunGroupHandler, LeavesTheApplicationTypeThatItSentInTheCallersRecord)
{
    LunGroupMO group;
    group.NAME = "g";
    expect(kCreates[0].request, answer(R"({"ID":"7"})"));
    expect("GET /lungroup/7", answer(kRecord));
    EXPECT_EQ(handler.createLunGroup(group).ID, "7");
    EXPECT_EQ(group.APPTYPE, 0U);
    EXPECT_EQ(newLog(), entered("createLunGroup", entered("getLunGroup")));
}

TEST_F(LunGroupHandler, LeavesTheCallersRecordAloneWhereItIsRefused)
{
    LunGroupMO nameless;
    thrownBy([&] { handler.createLunGroup(nameless); });
    EXPECT_EQ(nameless.APPTYPE, 100U);
}

TEST_F(LunGroupHandler, ReadsTheGroupOfAView)
{
    expect(kLists[3].request, answer(R"([{"ID":"7"},{"ID":"8"}])"));
    expect("GET /lungroup/7", answer(kRecord));
    EXPECT_EQ(handler.getLunGroupByMappingView("4").NAME, "g");
    EXPECT_EQ(newLog(), entered("getLunGroupByMappingView", entered("getLunGroup")));
}

TEST_F(LunGroupHandler, ReadsEachGroupOfALun)
{
    expect(kLists[0].request, answer(R"([{"ID":"7"},{"ID":"8"}])"));
    expect("GET /lungroup/7", answer(kRecord));
    expect("GET /lungroup/8", answer(""));
    LunGroupQuery query;
    const auto groups = handler.getLunGroupByLun("4", query);
    ASSERT_EQ(groups.size(), 2U);
    EXPECT_EQ(groups[0].NAME, "g");
    EXPECT_EQ(groups[1].APPTYPE, 100U);
}

Lines counting(const Lines& inner, int code = 0)
{
    Lines lines = {"info: enter getLunNOFromLunGroup successfully!"};
    lines.insert(lines.end(), inner.begin(), inner.end());
    lines.push_back("record: getObjNOFromLunGroup " + std::to_string(code));
    return lines;
}

Lines twice(Lines lines)
{
    const Lines once = lines;
    lines.insert(lines.end(), once.begin(), once.end());
    return lines;
}

TEST_F(LunGroupHandler, CountsLunsAndSnapshotsUnderAnotherNameInTheRunLog)
{
    expect(kCount.request, answer(R"({"COUNT":"3"})"));
    expect("GET /snapshot/count?ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=7", answer(R"({"COUNT":2})"));
    EXPECT_EQ(handler.getObjNOFromLunGroup("7"), 5U);
    Lines expected = counting(twice(entered("getCountByAssociate")));
    expected.push_back("info: leave getLunNOFromLunGroup successfully!");
    EXPECT_EQ(newLog(), expected);
}

TEST_F(LunGroupHandler, CountsNothingWithoutAGroup)
{
    EXPECT_EQ(thrownBy([&] { handler.getObjNOFromLunGroup(""); }), "Exception:LunGroup id is empty! getObjNOFromLunGroup");
    EXPECT_EQ(newLog(), counting({"error: LunGroup id is empty! getObjNOFromLunGroup"}, 1));
}

TEST_F(LunGroupHandler, FailsToCountWhereOneOfTheCountsFails)
{
    expect(kCount.request, answer(R"({"COUNT":"3"})"));
    expect("GET /snapshot/count?ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=7", sendFailure(1008));
    const std::string line = "url error or internet error getCountByAssociate";
    EXPECT_EQ(thrownBy([&] { handler.getObjNOFromLunGroup("7"); }), "Exception:" + line);
    Lines inner = entered("getCountByAssociate");
    for (const std::string& entry : failed("getCountByAssociate", line, 1008)) {
        inner.push_back(entry);
    }
    EXPECT_EQ(newLog(), counting(inner, 1008));
}

struct CountRow {
    const char* data;
    int count;  ///< -1: the reply is unusable
};

class LunGroupCount : public LunGroupHandler, public testing::WithParamInterface<CountRow> {};

TEST_P(LunGroupCount, IsReadOrRefused)
{
    const auto [data, count] = GetParam();
    expect(kCount.request, answer(data));
    unsigned int counted = 0;
    const std::string thrown = thrownBy([&] { counted = handler.getCountByAssociate("7", "lun"); });
    EXPECT_EQ(thrown, count < 0 ? "Exception:url error or internet error getCountByAssociate" : "nothing");
    EXPECT_EQ(counted, count < 0 ? 0U : static_cast<unsigned int>(count));
}

INSTANTIATE_TEST_SUITE_P(Replies, LunGroupCount,
                         testing::Values(CountRow{R"({"COUNT":"3"})", 3}, CountRow{R"({"COUNT":3})", 3},
                                         CountRow{R"([{"COUNT":"4"},{"COUNT":"5"}])", 4}, CountRow{"", 0},
                                         CountRow{R"({"OTHER":"3"})", 0}, CountRow{R"({"COUNT":null})", 0},
                                         CountRow{R"({"COUNT":"abc"})", 0}, CountRow{R"({"COUNT":"-1"})", 0},
                                         CountRow{R"({"COUNT":[]})", -1}, CountRow{R"({"COUNT":{}})", -1},
                                         CountRow{"[7]", -1}, CountRow{R"(["7"])", -1}),
                         [](const auto& tested) { return "Row" + std::to_string(tested.index); });

}  // namespace
}  // namespace brevan::test
