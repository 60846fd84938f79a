#include "handlers/SnapshotHandlerImpl.h"

#include "support/SdkTest.h"

namespace brevan::test {
namespace {

class SnapshotHandler : public SdkTest {
protected:
    CSnapshotHandlerImpl handler{&manager};
};

constexpr const char* kReply = R"({"ID":"7","NAME":"snap","PARENTTYPE":11,"PARENTID":"3","PARENTNAME":"lun","HEALTHSTATUS":"1",
    "RUNNINGSTATUS":"43","DESCRIPTION":"d","USERCAPACITY":"2097152","CONSUMEDCAPACITY":"12","WWN":"6abc"})";

TEST_F(SnapshotHandler, ReadsEveryFieldOfASnapshot)
{
    expect("GET /SNAPSHOT/7", answer(kReply));
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

TEST_F(SnapshotHandler, PassesTheCodeOfANestedReadThroughAllRecords)
{
    expect("GET /snapshot/associate?TYPE=27&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=4", answer(R"([{"ID":"7"}])"));
    expect("GET /SNAPSHOT/7", sendFailure(1007));
    SnapshotQuery query;
    EXPECT_EQ(thrownBy([&] { handler.getSnapshotByHost("4", query); }),
              "Exception:url error or internet error getSnapshot");
    const Lines inner = failed("getSnapshot", "url error or internet error getSnapshot", 1007);
    EXPECT_EQ(newLog(), entered("getSnapshotByHost", entered("getSnapshotByCondition", inner, 1007), 1007));
    EXPECT_EQ(lastFailure().code, FAILURE_TIMED_OUT);
    EXPECT_EQ(lastFailure().operation, "getSnapshot");
}

}  // namespace
}  // namespace brevan::test
