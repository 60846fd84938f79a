#include "handlers/LunHandlerImpl.h"

#include "RecordTests.h"

namespace brevan::test {
namespace {

constexpr const char* kRecord = R"({"ID":"7","NAME":"lun","PARENTID":"0","PARENTNAME":"pool","HEALTHSTATUS":"1",
    "RUNNINGSTATUS":"27","DESCRIPTION":"d","ALLOCTYPE":"1","SECTORSIZE":"512","CAPACITY":"2097152","ALLOCCAPACITY":"4",
    "THINCAPACITYUSAGE":"35","EXPOSEDTOINITIATOR":"true","WWN":"6abc","OWNINGCONTROLLER":"0A","WORKINGCONTROLLER":"0B",
    "ISADD2LUNGROUP":"true"})";

template <class Body>
Call with(Body body)
{
    return on<CLunHandlerImpl>(body);
}

LunMO wanted()
{
    LunMO lun;
    lun.NAME = "a";
    lun.PARENTID = "0";
    lun.CAPACITY = 1073741824;
    return lun;
}

RequestRow create(const std::string& body, void (*set)(LunMO& lun))
{
    return {"createLun", {}, "POST /lun {" + body + "}", with([set](auto& handler) {
                LunMO lun = wanted();
                set(lun);
                handler.createLun(lun);
            })};
}

const std::string kHead = R"("TYPE":11,"NAME":"a","PARENTTYPE":216,"PARENTID":"0","CAPACITY":2097152ull)";
const std::string kThin = kHead + R"(,"ALLOCTYPE":1,"INITIALALLOCCAPACITY":)";
const std::string kPolicies = R"(,"MIRRORPOLICY":1ul,"WRITEPOLICY":1ul,"PREFETCHPOLICY":3ul)";
const std::string kTail = kPolicies + R"(,"DATATRANSFERPOLICY":0ul,"INITIALDISTRIBUTEPOLICY":0ul)";

const std::vector<RequestRow> kCreates = {
    create(kHead + R"(,"ALLOCTYPE":0)" + kTail, [](LunMO&) {}),
    create(kHead + R"(,"ALLOCTYPE":0)" + kTail,
           [](LunMO& lun) {
               lun.ALLOCTYPE = 7;
               lun.ALLOCCAPACITY = 512;
               lun.PARENTTYPE = 5;
           }),
    create(kThin + R"(2ull,"THINCAPACITYUSAGE":100ull)" + kTail,
           [](LunMO& lun) {
               lun.ALLOCTYPE = 1;
               lun.ALLOCCAPACITY = 1535;
               lun.THINCAPACITYUSAGE = 100;
           }),
    create(kThin + "0ull" + kTail,
           [](LunMO& lun) {
               lun.ALLOCTYPE = 1;
               lun.ALLOCCAPACITY = 511;
               lun.THINCAPACITYUSAGE = 101;
           }),
    create(kThin + R"(36028797018963967ull,"THINCAPACITYUSAGE":0ull)" + kTail, [](LunMO& lun) { lun.ALLOCTYPE = 1; }),
    create(R"("ID":"9",)" + kHead + R"(,"DESCRIPTION":"d","ALLOCTYPE":0)" + kPolicies +
               R"(,"OWNINGCONTROLLER":"0A","DATATRANSFERPOLICY":0ul,"INITIALDISTRIBUTEPOLICY":0ul)",
           [](LunMO& lun) {
               lun.ID = "9";
               lun.DESCRIPTION = "d";
               lun.OWNINGCONTROLLER = "0A";
               lun.WORKINGCONTROLLER = lun.WWN = "not sent";
           }),
};

RequestRow batch(const char* operation, const std::string& path, void (*set)(LunQuery& query))
{
    const bool byHost = std::string(operation) == "getLunByHost";
    return {"getLunByCondition", {operation}, "GET /lun/associate?" + path, with([byHost, set](auto& handler) {
                LunQuery query;
                set(query);
                byHost ? handler.getLunByHost("4", query) : handler.getLunByLunGroup("4", query);
            })};
}

const std::vector<RequestRow> kBatches = {
    batch("getLunByLunGroup", "TYPE=11&ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=4", [](LunQuery&) {}),
    batch("getLunByHost", "TYPE=11&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=4&range=[10-15]",
          [](LunQuery& query) {
              query.rangeStart = 10;
              query.rangeCount = 5;
          }),
    batch("getLunByLunGroup", "filter=ISADD2LUNGROUP:0&TYPE=11&ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=4",
          [](LunQuery& query) { query.condition.ISADD2LUNGROUP = 0; }),
    batch("getLunByHost",
          "filter=ID:1 and NAME:n and PARENTID:0 and ALLOCTYPE:0 and RUNNINGSTATUS:27 and HEALTHSTATUS:1 and "
          "ISADD2LUNGROUP:1&TYPE=11&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=4",
          [](LunQuery& query) {
              query.condition.ID = "1";
              query.condition.NAME = "n";
              query.condition.PARENTID = "0";
              query.condition.ALLOCTYPE = 0;
              query.condition.RUNNINGSTATUS = 27;
              query.condition.HEALTHSTATUS = 1;
              query.condition.ISADD2LUNGROUP = 1;
              query.condition.CAPACITY = 512;
              query.condition.WWN = "no condition";
          }),
};

const RequestRow kRead = {"getLun", {}, "GET /lun/7", with([](auto& handler) { handler.getLun("7"); })};

BREVAN_INSTANTIATE(FailingRequest, kBatches);
BREVAN_INSTANTIATE(PlainRequest, kBatches);
BREVAN_INSTANTIATE(ListRequest, kBatches);
BREVAN_INSTANTIATE(CreateRequest, kCreates);
INSTANTIATE_TEST_SUITE_P(Create, FailingRequest, testing::ValuesIn(kCreates));
INSTANTIATE_TEST_SUITE_P(Read, FailingRequest, testing::Values(kRead));
INSTANTIATE_TEST_SUITE_P(Read, PlainRequest, testing::Values(kRead));

RefusalRow refusedCreate(const char* message, void (*set)(LunMO& lun))
{
    return {"createLun", message, create("", set).call};
}

const std::vector<RefusalRow> kRefusals = {
    {"getLun", "lunID is empty! ", with([](auto& handler) { handler.getLun(""); })},
    {"getLunByLunGroup", "LunGroup id is empty! ", with([](auto& handler) {
         LunQuery query;
         handler.getLunByLunGroup("", query);
     })},
    {"getLunByHost", "hostID is empty! ", with([](auto& handler) {
         LunQuery query;
         handler.getLunByHost("", query);
     })},
    refusedCreate("Lun name is empty! ", [](LunMO& lun) { lun = LunMO(); }),
    refusedCreate("ParentID is empty! ",
                  [](LunMO& lun) {
                      lun.PARENTID = "";
                      lun.CAPACITY = UINT64_MAX;
                  }),
    refusedCreate("Capacity value is initial value", [](LunMO& lun) { lun.CAPACITY = UINT64_MAX; }),
};
BREVAN_INSTANTIATE(RefusedArgument, kRefusals);

INSTANTIATE_TEST_SUITE_P(Lun, RecordReply,
                         testing::Values(RecordRow{
                             "getLun", kRead.request, kRecord, {"SECTORSIZE", "CAPACITY", "ALLOCCAPACITY"}, kRead.call}));

class LunHandler : public SdkTest {
protected:
    CLunHandlerImpl handler{&manager};

    LunMO read(const std::string& record)
    {
        expect("GET /lun/7", answer(record));
        return handler.getLun("7");
    }
};

TEST_F(LunHandler, ReadsEveryFieldOfALun)
{
    const LunMO lun = read(kRecord);
    EXPECT_EQ(lun.ID, "7");
    EXPECT_EQ(lun.NAME, "lun");
    EXPECT_EQ(lun.PARENTTYPE, 216U);
    EXPECT_EQ(lun.PARENTID, "0");
    EXPECT_EQ(lun.PARENTNAME, "pool");
    EXPECT_EQ(lun.HEALTHSTATUS, 1U);
    EXPECT_EQ(lun.RUNNINGSTATUS, 27U);
    EXPECT_EQ(lun.DESCRIPTION, "d");
    EXPECT_EQ(lun.ALLOCTYPE, 1);
    EXPECT_EQ(lun.CAPACITY, 1073741824U);
    EXPECT_EQ(lun.ALLOCCAPACITY, 2048U);
    EXPECT_EQ(lun.allocCapacitySectors, 4U);
    EXPECT_EQ(lun.THINCAPACITYUSAGE, 35U);
    EXPECT_EQ(lun.EXPOSEDTOINITIATOR, 1);
    EXPECT_EQ(lun.WWN, "6abc");
    EXPECT_EQ(lun.OWNINGCONTROLLER, "0A");
    EXPECT_EQ(lun.WORKINGCONTROLLER, "0B");
    EXPECT_EQ(lun.ISADD2LUNGROUP, 1);
    EXPECT_EQ(newLog(), entered("getLun"));
}

TEST_F(LunHandler, CountsSectorsOfTheSizeThatTheArrayStates)
{
    const LunMO lun = read(R"({"ID":"7","SECTORSIZE":"4096","CAPACITY":"3","ALLOCCAPACITY":"2"})");
    EXPECT_EQ(lun.CAPACITY, 12288U);
    EXPECT_EQ(lun.ALLOCCAPACITY, 8192U);
    EXPECT_EQ(lun.allocCapacitySectors, 2U);
    EXPECT_EQ(read(R"({"ID":"7","CAPACITY":"3"})").CAPACITY, 0U);
}

TEST_F(LunHandler, HoldsTheLargestCapacityAndNoLargerOne)
{
    EXPECT_EQ(read(R"({"ID":"7","SECTORSIZE":"1","CAPACITY":"18446744073709551615"})").CAPACITY, UINT64_MAX);
    EXPECT_EQ(read(R"({"ID":"7","SECTORSIZE":"512","CAPACITY":"36028797018963967"})").CAPACITY, 18446744073709551104U);
    for (const char* record : {R"({"ID":"7","SECTORSIZE":"512","CAPACITY":"36028797018963968"})",
                               R"({"ID":"7","SECTORSIZE":"2","ALLOCCAPACITY":"18446744073709551615"})",
                               R"({"ID":"7","SECTORSIZE":"18446744073709551615","CAPACITY":"2"})"}) {
        newLog();
        EXPECT_EQ(thrownBy([&] { read(record); }), "Exception:url error or internet error getLun");
        EXPECT_EQ(newLog(), failed("getLun", "url error or internet error getLun", 1009));
    }
}

TEST_F(LunHandler, ReadsTheUsageOfThinLunsOnly)
{
    EXPECT_EQ(read(R"({"ID":"7","ALLOCTYPE":"0","THINCAPACITYUSAGE":"35"})").THINCAPACITYUSAGE, 0U);
    EXPECT_EQ(read(R"({"ID":"7","ALLOCTYPE":"1"})").THINCAPACITYUSAGE, 0U);
    EXPECT_EQ(read(R"({"ID":"7","ALLOCTYPE":"1","THINCAPACITYUSAGE":"35"})").THINCAPACITYUSAGE, 35U);
}

TEST_F(LunHandler, DoesNotLookAtTheTypeOfTheParent)
{
    EXPECT_EQ(read(R"({"ID":"7","PARENTTYPE":"5"})").PARENTTYPE, 216U);
    EXPECT_EQ(read(R"({"ID":"7","PARENTTYPE":[]})").PARENTTYPE, 216U);
}

TEST_F(LunHandler, TakesOnlyTheExactTextForTrue)
{
    const LunMO lun = read(R"({"ID":"7","EXPOSEDTOINITIATOR":"TRUE","ISADD2LUNGROUP":"1"})");
    EXPECT_EQ(lun.EXPOSEDTOINITIATOR, 0);
    EXPECT_EQ(lun.ISADD2LUNGROUP, 0);
}

TEST_F(LunHandler, ReturnsADefaultRecordWhereTheArrayHasNone)
{
    for (const char* data : {"", "[]", R"({"NAME":"lun","CAPACITY":"abc"})"}) {
        const LunMO lun = read(data);
        EXPECT_EQ(lun.ID + lun.NAME, "");
        EXPECT_EQ(lun.CAPACITY, UINT64_MAX);
        EXPECT_EQ(lun.ISADD2LUNGROUP, -1);
    }
}

TEST_F(LunHandler, ReadsEachLunOfAList)
{
    expect("GET /lun/associate?TYPE=11&ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=4", answer(R"([{"ID":"8"},{},{"ID":9}])"));
    expect("GET /lun/8", answer(R"({"ID":"8"})"));
    expect("GET /lun/9", answer(R"({"ID":"9"})"));
    LunQuery query;
    const auto luns = handler.getLunByLunGroup("4", query);
    ASSERT_EQ(luns.size(), 2U);
    EXPECT_EQ(luns[0].ID, "8");
    EXPECT_EQ(luns[1].ID, "9");
}

TEST_F(LunHandler, EndsAListWithTheFirstReadThatFails)
{
    expect("GET /lun/associate?TYPE=11&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=4", answer(R"([{"ID":"8"},{"ID":"9"}])"));
    expect("GET /lun/8", refusal(1077936859, "no"));
    LunQuery query;
    const std::string line = "get error response, error code:1077936859, description:no getLun";
    EXPECT_EQ(thrownBy([&] { handler.getLunByHost("4", query); }), "Exception:" + line + " / 1077936859");
    const Lines inner = entered("getLunByCondition", failed("getLun", line, 1077936859), 1077936859);
    EXPECT_EQ(newLog(), entered("getLunByHost", inner, 1077936859));
}

TEST_F(LunHandler, SaysWhichReadFailedWhereACreateGotNoId)
{
    LunMO lun = wanted();
    expect(kCreates[0].request, answer(""));
    EXPECT_EQ(thrownBy([&] { handler.createLun(lun); }), "Exception:lunID is empty! getLun");
    EXPECT_EQ(newLog(), entered("createLun", failed("getLun", "lunID is empty! getLun", 1), 1));
}

}  // namespace
}  // namespace brevan::test
