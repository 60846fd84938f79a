#include "handlers/MappingViewHandlerImpl.h"

#include "RecordTests.h"

namespace brevan::test {
namespace {

constexpr const char* kRecord = R"({"ID":"7","NAME":"v","DESCRIPTION":"d","ENABLEINBANDCOMMAND":"true"})";

template <class Body>
Call with(Body body)
{
    return on<CMappingViewHandlerImpl>(body);
}

RequestRow create(const std::string& body, void (*set)(MappingViewMO& view))
{
    return {"createMappingView", {}, "POST /mappingview {" + body + "}", with([set](auto& handler) {
                MappingViewMO view;
                view.NAME = "v";
                set(view);
                handler.createMappingView(view);
            })};
}

const std::vector<RequestRow> kCreates = {
    create(R"("TYPE":245,"NAME":"v","ENABLEINBANDCOMMAND":false)", [](MappingViewMO&) {}),
    create(R"("ID":"9","TYPE":245,"NAME":"v","ENABLEINBANDCOMMAND":true,"DESCRIPTION":"d")",
           [](MappingViewMO& view) {
               view.ID = "9";
               view.DESCRIPTION = "d";
               view.ENABLEINBANDCOMMAND = 1;
           }),
};

RequestRow batch(const char* operation, const std::string& path, void (*set)(MappingViewQuery& query))
{
    const bool byHosts = std::string(operation) == "getMappingViewByHostGroup";
    return {
        "getMappingViewByCondition", {operation}, "GET /mappingview/associate?" + path, with([byHosts, set](auto& handler) {
            MappingViewQuery query;
            set(query);
            byHosts ? handler.getMappingViewByHostGroup("4", query) : handler.getMappingViewByLunGroup("4", query);
        })};
}

const std::vector<RequestRow> kLists = {
    batch("getMappingViewByLunGroup", "TYPE=245&ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=4", [](MappingViewQuery&) {}),
    batch("getMappingViewByHostGroup", "filter=NAME:n&TYPE=245&ASSOCIATEOBJTYPE=14&ASSOCIATEOBJID=4",
          [](MappingViewQuery& query) { query.condition.NAME = "n"; }),
    batch("getMappingViewByHostGroup", "filter=ID:1 and NAME:n&TYPE=245&ASSOCIATEOBJTYPE=14&ASSOCIATEOBJID=4&range=[10-15]",
          [](MappingViewQuery& query) {
              query.condition.ID = "1";
              query.condition.NAME = "n";
              query.condition.DESCRIPTION = "no condition";
              query.condition.ENABLEINBANDCOMMAND = 1;
              query.rangeStart = 10;
              query.rangeCount = 5;
          }),
};

const std::string kCreateAssociate = R"(PUT /mappingview/create_associate {"TYPE":245,"ID":"7","ASSOCIATEOBJTYPE":)";
const std::string kRemoveAssociate = R"(PUT /mappingview/remove_associate {"ID":"7","TYPE":245,"ASSOCIATEOBJTYPE":)";
const std::string kOfLunGroup = R"(256ul,"ASSOCIATEOBJID":"3"})";
const std::string kOfHostGroup = R"(14ul,"ASSOCIATEOBJID":"3"})";
constexpr const char* kRemoveWorker = "removeAssociateFromMappingView";
constexpr const char* kRemoveLogName = "removeAssociateFromMaskingView";

const RequestRow kRead = {
    "getMappingView", {}, "GET /mappingview/7", with([](auto& handler) { handler.getMappingView("7"); })};
const std::vector<RequestRow> kSingles = {
    kRead,
    {"deleteMappingView", {}, "DELETE /mappingview/7", with([](auto& handler) { handler.deleteMappingView("7"); })},
    {"associateWithMaskingView", {"addLunGroupToMappingView"}, kCreateAssociate + kOfLunGroup, with([](auto& handler) {
         handler.addLunGroupToMappingView("3", "7");
     })},
    {"associateWithMaskingView", {"addHostGroupToMappingView"}, kCreateAssociate + kOfHostGroup, with([](auto& handler) {
         handler.addHostGroupToMappingView("3", "7");
     })},
    {kRemoveWorker,
     {"removeLunGroupFromMappingView"},
     kRemoveAssociate + kOfLunGroup,
     with([](auto& handler) { handler.removeLunGroupFromMappingView("3", "7"); }),
     kRemoveLogName},
    {kRemoveWorker,
     {"removeHostGroupFromMappingView"},
     kRemoveAssociate + kOfHostGroup,
     with([](auto& handler) { handler.removeHostGroupFromMappingView("3", "7"); }),
     kRemoveLogName},
};

BREVAN_INSTANTIATE(FailingRequest, kSingles);
BREVAN_INSTANTIATE(PlainRequest, kSingles);
BREVAN_INSTANTIATE(ListRequest, kLists);
BREVAN_INSTANTIATE(CreateRequest, kCreates);
INSTANTIATE_TEST_SUITE_P(Create, FailingRequest, testing::ValuesIn(kCreates));
INSTANTIATE_TEST_SUITE_P(List, FailingRequest, testing::ValuesIn(kLists));
INSTANTIATE_TEST_SUITE_P(List, PlainRequest, testing::ValuesIn(kLists));

constexpr const char* kViewMissing = "mappingViewID is empty! ";
constexpr const char* kLunGroupMissing = "LunGroup id is empty! ";
constexpr const char* kHostGroupMissing = "HostGroupID is empty";

const std::vector<RefusalRow> kRefusals = {
    {"createMappingView", "MappingView name is empty! ", create("", [](MappingViewMO& view) { view.NAME = ""; }).call},
    {"deleteMappingView", kViewMissing, with([](auto& handler) { handler.deleteMappingView(""); })},
    {"getMappingView", kViewMissing, with([](auto& handler) { handler.getMappingView(""); })},
    {"addLunGroupToMappingView", kLunGroupMissing, with([](auto& handler) { handler.addLunGroupToMappingView("", ""); })},
    {"addLunGroupToMappingView", kViewMissing, with([](auto& handler) { handler.addLunGroupToMappingView("3", ""); })},
    {"addHostGroupToMappingView", kHostGroupMissing, with([](auto& handler) { handler.addHostGroupToMappingView("", ""); })},
    {"addHostGroupToMappingView", kViewMissing, with([](auto& handler) { handler.addHostGroupToMappingView("3", ""); })},
    {"removeLunGroupFromMappingView", kLunGroupMissing,
     with([](auto& handler) { handler.removeLunGroupFromMappingView("", ""); })},
    {"removeLunGroupFromMappingView", kViewMissing,
     with([](auto& handler) { handler.removeLunGroupFromMappingView("3", ""); })},
    {"removeHostGroupFromMappingView", kHostGroupMissing,
     with([](auto& handler) { handler.removeHostGroupFromMappingView("", ""); })},
    {"removeHostGroupFromMappingView", kViewMissing,
     with([](auto& handler) { handler.removeHostGroupFromMappingView("3", ""); })},
    {"getMappingViewByLunGroup", kLunGroupMissing, with([](auto& handler) {
         MappingViewQuery query;
         handler.getMappingViewByLunGroup("", query);
     })},
    {"getMappingViewByHostGroup", kHostGroupMissing, with([](auto& handler) {
         MappingViewQuery query;
         handler.getMappingViewByHostGroup("", query);
     })},
};
BREVAN_INSTANTIATE(RefusedArgument, kRefusals);

INSTANTIATE_TEST_SUITE_P(MappingView, RecordReply,
                         testing::Values(RecordRow{"getMappingView", kRead.request, kRecord, {}, kRead.call}));

class MappingViewHandler : public SdkTest {
protected:
    CMappingViewHandlerImpl handler{&manager};
};

TEST_F(MappingViewHandler, ReadsEveryFieldOfAView)
{
    expect("GET /mappingview/7", answer(kRecord));
    const MappingViewMO view = handler.getMappingView("7");
    EXPECT_EQ(view.ID, "7");
    EXPECT_EQ(view.NAME, "v");
    EXPECT_EQ(view.DESCRIPTION, "d");
    EXPECT_EQ(view.ENABLEINBANDCOMMAND, 1);
}

TEST_F(MappingViewHandler, ReadsEachViewOfAGroup)
{
    expect(kLists[0].request, answer(R"([{"ID":"7"},{},{"ID":"8"}])"));
    expect("GET /mappingview/7", answer(kRecord));
    expect("GET /mappingview/8", answer(""));
    MappingViewQuery query;
    const auto views = handler.getMappingViewByLunGroup("4", query);
    ASSERT_EQ(views.size(), 2U);
    EXPECT_EQ(views[0].NAME, "v");
    EXPECT_EQ(views[1].ID, "");
}

}  // namespace
}  // namespace brevan::test
