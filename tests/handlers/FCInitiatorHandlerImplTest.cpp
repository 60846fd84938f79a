#include "handlers/FCInitiatorHandlerImpl.h"

#include "RecordTests.h"

namespace brevan::test {
namespace {

constexpr const char* kRecord = R"({"ID":"21000024ff","NAME":"n","PARENTID":"3","PARENTNAME":"h","HEALTHSTATUS":"1",
    "RUNNINGSTATUS":"27","ISFREE":"true"})";

template <class Body>
Call with(Body body)
{
    return on<CFCInitiatorHandlerImpl>(body);
}

FCInitiatorMO withId(const std::string& id)
{
    FCInitiatorMO initiator;
    initiator.ID = id;
    return initiator;
}

RequestRow create(const std::string& body, const FCInitiatorMO& initiator)
{
    return {"createFCInitiator", {}, "POST /fc_initiator {" + body + "}", with([initiator](auto& handler) {
                FCInitiatorMO wanted = initiator;
                handler.createFCInitiator(wanted);
            })};
}

const std::vector<RequestRow> kCreates = {
    create(R"("ID":"21")", withId("21")),
    create(R"("ID":"21","NAME":"n")", {"21", "n", "", "", 0, 0, 0}),
    create(R"("ID":"21","PARENTID":"3","PARENTTYPE":21,"NAME":"n")", {"21", "n", "3", "not sent", 1, 2, 1}),
};

const RequestRow kRead = {
    "getFCInitiator", {}, "GET /fc_initiator/21", with([](auto& handler) { handler.getFCInitiator("21"); })};
const std::vector<RequestRow> kSingles = {
    kRead,
    {"deleteFCInitiator", {}, "DELETE /fc_initiator/21", with([](auto& handler) { handler.deleteFCInitiator("21"); })},
    {"addFCInitiatorToHost", {}, R"(PUT /fc_initiator/21 {"PARENTTYPE":21,"PARENTID":"3"})", with([](auto& handler) {
         handler.addFCInitiatorToHost("21", "3");
     })},
    {"removeFCInitiatorFromHost", {}, R"(PUT /fc_initiator/remove_fc_from_host {"ID":"21"})", with([](auto& handler) {
         handler.removeFCInitiatorFromHost("21");
     })},
};

BREVAN_INSTANTIATE(FailingRequest, kSingles);
BREVAN_INSTANTIATE(PlainRequest, kSingles);
BREVAN_INSTANTIATE(CreateRequest, kCreates);
INSTANTIATE_TEST_SUITE_P(Create, FailingRequest, testing::ValuesIn(kCreates));

constexpr const char* kIdMissing = "fcInitiatorID is empty! ";

const std::vector<RefusalRow> kRefusals = {
    {"createFCInitiator", kIdMissing, create("", withId("")).call},
    {"deleteFCInitiator", kIdMissing, with([](auto& handler) { handler.deleteFCInitiator(""); })},
    {"getFCInitiator", kIdMissing, with([](auto& handler) { handler.getFCInitiator(""); })},
    {"addFCInitiatorToHost", kIdMissing, with([](auto& handler) { handler.addFCInitiatorToHost("", ""); })},
    {"addFCInitiatorToHost", "hostID is empty! ", with([](auto& handler) { handler.addFCInitiatorToHost("21", ""); })},
    {"removeFCInitiatorFromHost", kIdMissing, with([](auto& handler) { handler.removeFCInitiatorFromHost(""); })},
};
BREVAN_INSTANTIATE(RefusedArgument, kRefusals);

INSTANTIATE_TEST_SUITE_P(FCInitiator, RecordReply,
                         testing::Values(RecordRow{"getFCInitiator", kRead.request, kRecord, {}, kRead.call}));

class FCInitiatorHandler : public SdkTest {
protected:
    CFCInitiatorHandlerImpl handler{&manager};

    FCInitiatorMO read(const std::string& data)
    {
        expect(kRead.request, answer(data));
        return handler.getFCInitiator("21");
    }
};

TEST_F(FCInitiatorHandler, ReadsEveryFieldOfAnInitiator)
{
    const FCInitiatorMO initiator = read(kRecord);
    EXPECT_EQ(initiator.ID, "21000024ff");
    EXPECT_EQ(initiator.NAME, "n");
    EXPECT_EQ(initiator.PARENTID, "3");
    EXPECT_EQ(initiator.PARENTNAME, "h");
    EXPECT_EQ(initiator.HEALTHSTATUS, 1U);
    EXPECT_EQ(initiator.RUNNINGSTATUS, 27U);
    EXPECT_EQ(initiator.ISFREE, 1);
}

TEST_F(FCInitiatorHandler, TakesOnlyTheExactTextForTrue)
{
    EXPECT_EQ(read(R"({"ID":"21","ISFREE":"TRUE"})").ISFREE, 0);
    EXPECT_EQ(read(R"({"ID":"21","ISFREE":"1"})").ISFREE, 0);
    EXPECT_EQ(read(R"({"ID":"21","ISFREE":1})").ISFREE, 0);
}

TEST_F(FCInitiatorHandler, ReturnsARecordWithoutAnIdWhereTheArrayHasNone)
{
    EXPECT_EQ(read("").ID, "");
    EXPECT_EQ(newLog(), entered("getFCInitiator"));
}

TEST_F(FCInitiatorHandler, ReadsBackWhatItCreatedAtOnceAndOnlyOnce)
{
    FCInitiatorMO wanted = withId("21");
    expect(kCreates[0].request, answer(R"({"ID":"22"})"));
    expect("GET /fc_initiator/22", answer(R"({"ID":"22","NAME":"as the array has it"})"));
    EXPECT_EQ(handler.createFCInitiator(wanted).NAME, "as the array has it");
    EXPECT_EQ(newLog(), entered("createFCInitiator", entered("getFCInitiator")));
    expect(kCreates[0].request, answer(R"({"ID":"22"})"));
    expect("GET /fc_initiator/22", refusal(1077949006, "not yet"));
    const std::string line = "get error response, error code:1077949006, description:not yet getFCInitiator";
    EXPECT_EQ(thrownBy([&] { handler.createFCInitiator(wanted); }), "Exception:" + line + " / 1077949006");
    EXPECT_EQ(newLog(), entered("createFCInitiator", failed("getFCInitiator", line, 1077949006), 1077949006));
    EXPECT_TRUE(fakeClock.sleeps().empty());
}

}  // namespace
}  // namespace brevan::test
