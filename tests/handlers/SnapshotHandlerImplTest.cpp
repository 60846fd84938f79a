#include "handlers/SnapshotHandlerImpl.h"

#include "RecordTests.h"

namespace brevan::test {
namespace {

constexpr const char* kRecord = R"({"ID":"7","NAME":"snap","PARENTTYPE":11,"PARENTID":"3","PARENTNAME":"lun",
    "HEALTHSTATUS":"1","RUNNINGSTATUS":"43","DESCRIPTION":"d","USERCAPACITY":"2097152","CONSUMEDCAPACITY":"12",
    "WWN":"6abc"})";

template <class Body>
Call with(Body body)
{
    return on<CSnapshotHandlerImpl>(body);
}

RequestRow batch(const char* operation, const std::string& path, void (*set)(SnapshotQuery& query))
{
    const bool byHost = std::string(operation) == "getSnapshotByHost";
    return {"getSnapshotByCondition", {operation}, "GET /snapshot/associate?" + path, with([byHost, set](auto& handler) {
                SnapshotQuery query;
                set(query);
                byHost ? handler.getSnapshotByHost("4", query) : handler.getSnapshotByLunGroup("4", query);
            })};
}

const RequestRow kRead = {"getSnapshot", {}, "GET /SNAPSHOT/7", with([](auto& handler) { handler.getSnapshot("7"); })};

const std::vector<RequestRow> kBatches = {
    batch("getSnapshotByLunGroup", "TYPE=27&ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=4", [](SnapshotQuery&) {}),
    batch("getSnapshotByHost", "TYPE=27&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=4",
          [](SnapshotQuery& query) { query.rangeStart = 10; }),
    batch("getSnapshotByHost", "filter=NAME:n&TYPE=27&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=4&range=[10-15]",
          [](SnapshotQuery& query) {
              query.condition.NAME = "n";
              query.rangeStart = 10;
              query.rangeCount = 5;
          }),
    batch("getSnapshotByLunGroup",
          "filter=ID:1 and NAME:n and PARENTID:3 and RUNNINGSTATUS:43 and HEALTHSTATUS:2"
          "&TYPE=27&ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=4",
          [](SnapshotQuery& query) {
              query.condition.ID = "1";
              query.condition.NAME = "n";
              query.condition.PARENTID = "3";
              query.condition.RUNNINGSTATUS = 43;
              query.condition.HEALTHSTATUS = 2;
              query.condition.WWN = query.condition.DESCRIPTION = query.condition.PARENTNAME = "no condition";
          }),
};

BREVAN_INSTANTIATE(FailingRequest, kBatches);
BREVAN_INSTANTIATE(PlainRequest, kBatches);
BREVAN_INSTANTIATE(ListRequest, kBatches);
INSTANTIATE_TEST_SUITE_P(Read, FailingRequest, testing::Values(kRead));
INSTANTIATE_TEST_SUITE_P(Read, PlainRequest, testing::Values(kRead));

const std::vector<RefusalRow> kRefusals = {
    {"getSnapshot", "snapshotID is empty! ", with([](auto& handler) { handler.getSnapshot(""); })},
    {"getSnapshotByLunGroup", "LunGroup id is empty! ", with([](auto& handler) {
         SnapshotQuery query;
         handler.getSnapshotByLunGroup("", query);
     })},
    {"getSnapshotByHost", "hostID is empty! ", with([](auto& handler) {
         SnapshotQuery query;
         handler.getSnapshotByHost("", query);
     })},
};
BREVAN_INSTANTIATE(RefusedArgument, kRefusals);

INSTANTIATE_TEST_SUITE_P(Snapshot, RecordReply,
                         testing::Values(RecordRow{
                             "getSnapshot", kRead.request, kRecord, {"USERCAPACITY", "CONSUMEDCAPACITY"}, kRead.call}));

class SnapshotHandler : public SdkTest {
protected:
    CSnapshotHandlerImpl handler{&manager};
};

TEST_F(SnapshotHandler, ReadsEveryFieldOfASnapshot)
{
    expect("GET /SNAPSHOT/7", answer(kRecord));
    const SnapshotMO snapshot = handler.getSnapshot("7");
    EXPECT_EQ(snapshot.ID, "7");
    EXPECT_EQ(snapshot.NAME, "snap");
    EXPECT_EQ(snapshot.PARENTTYPE, 11U);
    EXPECT_EQ(snapshot.PARENTID, "3");
    EXPECT_EQ(snapshot.PARENTNAME, "lun");
    EXPECT_EQ(snapshot.HEALTHSTATUS, 1U);
    EXPECT_EQ(snapshot.RUNNINGSTATUS, 43U);
    EXPECT_EQ(snapshot.DESCRIPTION, "d");
    EXPECT_EQ(snapshot.USERCAPACITY, 2097152U);
    EXPECT_EQ(snapshot.CONSUMEDCAPACITY, 12U);
    EXPECT_EQ(snapshot.WWN, "6abc");
    EXPECT_EQ(newLog(), entered("getSnapshot"));
    EXPECT_TRUE(lastFailure().empty());
}

TEST_F(SnapshotHandler, TakesTheParentsTypeAlsoAsText)
{
    expect("GET /SNAPSHOT/7", answer(R"({"ID":"7","PARENTTYPE":"11"})"));
    EXPECT_EQ(handler.getSnapshot("7").PARENTTYPE, 11U);
}

TEST_F(SnapshotHandler, ReturnsADefaultRecordWhereTheArrayHasNone)
{
    for (const char* data : {"", "[]", R"({"NAME":"snap"})"}) {
        expect("GET /SNAPSHOT/7", answer(data));
        const SnapshotMO snapshot = handler.getSnapshot("7");
        EXPECT_EQ(snapshot.ID + snapshot.NAME, "");
        EXPECT_EQ(snapshot.USERCAPACITY, UINT64_MAX);
    }
}

TEST_F(SnapshotHandler, ReadsEachSnapshotOfAListInItsOrder)
{
    expect("GET /snapshot/associate?TYPE=27&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=4",
           answer(R"([{"ID":"9","NAME":"of the list"},{"NAME":"without ID"},{"ID":"7"}])"));
    expect("GET /SNAPSHOT/9", answer(R"({"ID":"9","NAME":"own"})"));
    expect("GET /SNAPSHOT/7", answer(""));
    SnapshotQuery query;
    const auto snapshots = handler.getSnapshotByHost("4", query);
    ASSERT_EQ(snapshots.size(), 2U);
    EXPECT_EQ(snapshots[0].NAME, "own");
    EXPECT_EQ(snapshots[1].ID, "");
    Lines reads;
    for (int read = 0; read < 2; ++read) {
        const Lines once = entered("getSnapshot");
        reads.insert(reads.end(), once.begin(), once.end());
    }
    EXPECT_EQ(newLog(), entered("getSnapshotByHost", entered("getSnapshotByCondition", reads)));
}

TEST_F(SnapshotHandler, PassesTheCodeOfANestedReadThroughAllRecords)
{
    expect("GET /snapshot/associate?TYPE=27&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=4", answer(R"([{"ID":"7"}])"));
    expect("GET /SNAPSHOT/7", sendFailure(1007));
    SnapshotQuery query;
    EXPECT_EQ(thrownBy([&] { handler.getSnapshotByHost("4", query); }), "Exception:url error or internet error getSnapshot");
    const Lines inner = failed("getSnapshot", "url error or internet error getSnapshot", 1007);
    EXPECT_EQ(newLog(), entered("getSnapshotByHost", entered("getSnapshotByCondition", inner, 1007), 1007));
    EXPECT_EQ(lastFailure().code, FAILURE_TIMED_OUT);
    EXPECT_EQ(lastFailure().operation, "getSnapshot");
}

}  // namespace
}  // namespace brevan::test
