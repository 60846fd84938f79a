#include "handlers/IscsiInitiatorHandlerImpl.h"

#include "RecordTests.h"

namespace brevan::test {
namespace {

constexpr const char* kRecord = R"({"ID":"iqn.a","NAME":"n","PARENTID":"3","PARENTNAME":"h","HEALTHSTATUS":"1",
    "RUNNINGSTATUS":"27","ISFREE":"true","USECHAP":"true","CHAPNAME":"c","CHAPNAMEINITATORVERTARGET":"m","NORMALVERMODE":"1",
    "DISCOVERYVERMODE":"2"})";

template <class Body>
Call with(Body body)
{
    return on<CIscsiInitiatorHandlerImpl>(body);
}

// What settings of CHAP send is compared in ChapSettingsTest; here those without.
RequestRow create(const std::string& body, void (*set)(IscsiInitiatorMO& initiator))
{
    RequestRow row = {"createIscsiInitiator", {}, "POST /iscsi_initiator {" + body + "}", with([set](auto& handler) {
                          IscsiInitiatorMO wanted;
                          wanted.ID = "iqn.a";
                          set(wanted);
                          handler.createIscsiInitiator(wanted);
                      })};
    return row;
}

const std::vector<RequestRow> kCreates = {
    create(R"("ID":"iqn.a","USECHAP":"false")", [](IscsiInitiatorMO&) {}),
    create(R"("ID":"iqn.a","PARENTID":"3","USECHAP":"false")", [](IscsiInitiatorMO& wanted) { wanted.PARENTID = "3"; }),
    create(R"("ID":"iqn.a","PARENTTYPE":21,"USECHAP":"false")", [](IscsiInitiatorMO& wanted) { wanted.PARENTTYPE = 21; }),
    create(R"("ID":"iqn.a","PARENTID":"3","PARENTTYPE":5,"USECHAP":"false","NAME":"n")",
           [](IscsiInitiatorMO& wanted) {
               wanted.PARENTID = "3";
               wanted.PARENTTYPE = 5;
               wanted.NAME = "n";
               wanted.PARENTNAME = "not sent";
           }),
};

const RequestRow kRead = {
    "getIscsiInitiator", {}, "GET /iscsi_initiator/iqn.a", with([](auto& handler) { handler.getIscsiInitiator("iqn.a"); })};
const std::vector<RequestRow> kSingles = {
    kRead,
    {"deleteIscsiInitiator", {}, "DELETE /iscsi_initiator/iqn.a", with([](auto& handler) {
         handler.deleteIscsiInitiator("iqn.a");
     })},
    {"addIscsiInitiatorToHost",
     {},
     R"(PUT /iscsi_initiator/iqn.a {"PARENTTYPE":21,"PARENTID":"3"})",
     with([](auto& handler) { handler.addIscsiInitiatorToHost("iqn.a", "3"); })},
    {"removeIscsiInitiatorFromHost",
     {},
     R"(PUT /iscsi_initiator/remove_iscsi_from_host {"ID":"iqn.a"})",
     with([](auto& handler) { handler.removeIscsiInitiatorFromHost("iqn.a"); })},
};

/// A change reads the initiator first.
const RequestRow kReadOfModify = {"getIscsiInitiator", {"modifyIscsiInitiator"}, kRead.request, with([](auto& handler) {
                                      IscsiInitiatorMO wanted;
                                      wanted.ID = "iqn.a";
                                      handler.modifyIscsiInitiator(wanted);
                                  })};

BREVAN_INSTANTIATE(FailingRequest, kSingles);
BREVAN_INSTANTIATE(PlainRequest, kSingles);
BREVAN_INSTANTIATE(CreateRequest, kCreates);
INSTANTIATE_TEST_SUITE_P(Create, FailingRequest, testing::ValuesIn(kCreates));
INSTANTIATE_TEST_SUITE_P(Modify, FailingRequest, testing::Values(kReadOfModify));

constexpr const char* kIdMissing = "iscsiInitiatorID is empty! ";

const std::vector<RefusalRow> kRefusals = {
    {"createIscsiInitiator", kIdMissing, create("", [](IscsiInitiatorMO& wanted) { wanted.ID = ""; }).call},
    {"deleteIscsiInitiator", kIdMissing, with([](auto& handler) { handler.deleteIscsiInitiator(""); })},
    {"getIscsiInitiator", kIdMissing, with([](auto& handler) { handler.getIscsiInitiator(""); })},
    {"addIscsiInitiatorToHost", kIdMissing, with([](auto& handler) { handler.addIscsiInitiatorToHost("", ""); })},
    {"addIscsiInitiatorToHost", "hostID is empty! ",
     with([](auto& handler) { handler.addIscsiInitiatorToHost("iqn.a", ""); })},
    {"removeIscsiInitiatorFromHost", kIdMissing, with([](auto& handler) { handler.removeIscsiInitiatorFromHost(""); })},
};
BREVAN_INSTANTIATE(RefusedArgument, kRefusals);

INSTANTIATE_TEST_SUITE_P(IscsiInitiator, RecordReply,
                         testing::Values(RecordRow{"getIscsiInitiator", kRead.request, kRecord, {}, kRead.call}));

/// The lines of the two operations that close with their "enter" line.
Lines enteredTwice(const std::string& operation, const Lines& inner)
{
    Lines lines = entered(operation, inner);
    lines.back() = lines.front();
    return lines;
}

class IscsiInitiatorHandler : public SdkTest {
protected:
    CIscsiInitiatorHandlerImpl handler{&manager};
    IscsiInitiatorMO wanted = withId();

    IscsiInitiatorMO read(const std::string& data)
    {
        expect(kRead.request, answer(data));
        return handler.getIscsiInitiator("iqn.a");
    }

private:
    static IscsiInitiatorMO withId()
    {
        IscsiInitiatorMO initiator;
        initiator.ID = "iqn.a";
        return initiator;
    }
};

TEST_F(IscsiInitiatorHandler, ReadsEveryFieldOfAnInitiatorButNoSecret)
{
    const IscsiInitiatorMO initiator = read(kRecord);
    EXPECT_EQ(initiator.ID, "iqn.a");
    EXPECT_EQ(initiator.NAME, "n");
    EXPECT_EQ(initiator.PARENTID, "3");
    EXPECT_EQ(initiator.PARENTNAME, "h");
    EXPECT_EQ(initiator.HEALTHSTATUS, 1U);
    EXPECT_EQ(initiator.RUNNINGSTATUS, 27U);
    EXPECT_EQ(initiator.ISFREE, 1);
    EXPECT_EQ(initiator.USECHAP, 1);
    EXPECT_EQ(initiator.CHAPNAME, "c");
    EXPECT_EQ(initiator.CHAPNAMEINITATORVERTARGET, "m");
    EXPECT_EQ(initiator.NORMALVERMODE, "1");
    EXPECT_EQ(initiator.DISCOVERYVERMODE, "2");
}

TEST_F(IscsiInitiatorHandler, ReadsNoSecretBack)
{
    const IscsiInitiatorMO initiator = read(R"({"ID":"iqn.a","CHAPPASSWORD":"s","CHAPOLDPASSWORD":"s","PARENTTYPE":"21",
        "CHAPPASSWORDINITATORVERTARGET":"s","CHAPOLDPASSWORDINITATORVERTARGET":"s"})");
    EXPECT_EQ(initiator.CHAPPASSWORD + initiator.CHAPOLDPASSWORD, "");
    EXPECT_EQ(initiator.CHAPPASSWORDINITATORVERTARGET + initiator.CHAPOLDPASSWORDINITATORVERTARGET, "");
    EXPECT_EQ(initiator.PARENTTYPE, 0);
}

TEST_F(IscsiInitiatorHandler, KeepsTheDefaultsOfTextsThatAreAbsent)
{
    const IscsiInitiatorMO initiator = read(R"({"ID":"iqn.a"})");
    EXPECT_EQ(initiator.NORMALVERMODE, "0");
    EXPECT_EQ(initiator.DISCOVERYVERMODE, "0");
    EXPECT_EQ(read("").ID, "");
}

TEST_F(IscsiInitiatorHandler, TakesOnlyTheExactTextForTrue)
{
    const IscsiInitiatorMO initiator = read(R"({"ID":"iqn.a","ISFREE":"TRUE","USECHAP":"1"})");
    EXPECT_EQ(initiator.ISFREE, 0);
    EXPECT_EQ(initiator.USECHAP, 0);
}

TEST_F(IscsiInitiatorHandler, ReadsBackWhatItCreatedAtOnceAndRepeatsItsEnterLine)
{
    expect(kCreates[0].request, answer(R"({"ID":"iqn.b"})"));
    expect("GET /iscsi_initiator/iqn.b", answer(kRecord));
    EXPECT_EQ(handler.createIscsiInitiator(wanted).PARENTNAME, "h");
    EXPECT_EQ(newLog(), enteredTwice("createIscsiInitiator", entered("getIscsiInitiator")));
    EXPECT_TRUE(fakeClock.sleeps().empty());
}

TEST_F(IscsiInitiatorHandler, DoesNotReadAgainWhatIsNotThereYet)
{
    useRetries(5, 300);
    expect(kCreates[0].request, answer(R"({"ID":"iqn.b"})"));
    expect("GET /iscsi_initiator/iqn.b", refusal(1077949006, "not yet"));
    const std::string line = "get error response, error code:1077949006, description:not yet getIscsiInitiator";
    EXPECT_EQ(thrownBy([&] { handler.createIscsiInitiator(wanted); }), "Exception:" + line + " / 1077949006");
    EXPECT_EQ(newLog(), entered("createIscsiInitiator", failed("getIscsiInitiator", line, 1077949006), 1077949006));
    EXPECT_TRUE(fakeClock.sleeps().empty());
}

TEST_F(IscsiInitiatorHandler, ReportsMissingChapNamesAndGoesOn)
{
    wanted.USECHAP = 1;
    wanted.NORMALVERMODE = "2";
    expect(
        R"(POST /iscsi_initiator {"ID":"iqn.a","USECHAP":"true","NORMALVERMODE":"2","DISCOVERYVERMODE":"0","CHAPNAME":"",)"
        R"("CHAPPASSWORD":"","CHAPNAMEINITATORVERTARGET":"","CHAPPASSWORDINITATORVERTARGET":""})",
        answer(R"({"ID":"iqn.a"})"));
    expect(kRead.request, answer(kRecord));
    EXPECT_EQ(handler.createIscsiInitiator(wanted).ID, "iqn.a");
    Lines inner;
    for (const char* missing : {"ChapName", "ChapPassword", "ChapNameTarget", "ChapPasswordTarget"}) {
        inner.push_back(std::string("error: ") + missing + " is empty! createIscsiInitiator");
        inner.emplace_back("record: createIscsiInitiator 1");
    }
    for (const std::string& line : entered("getIscsiInitiator")) {
        inner.push_back(line);
    }
    EXPECT_EQ(newLog(), enteredTwice("createIscsiInitiator", inner));
}

TEST_F(IscsiInitiatorHandler, ReadsBeforeItChangesAndRepeatsItsEnterLine)
{
    wanted.NAME = "n";
    wanted.PARENTID = "3";
    wanted.PARENTTYPE = 5;
    expect(kRead.request, answer(kRecord));
    expect(R"(PUT /iscsi_initiator {"ID":"iqn.a","USECHAP":"false","NAME":"n","PARENTID":"3","PARENTTYPE":21})", answer(""));
    handler.modifyIscsiInitiator(wanted);
    EXPECT_EQ(newLog(), enteredTwice("modifyIscsiInitiator", entered("getIscsiInitiator")));
}

TEST_F(IscsiInitiatorHandler, SendsTheOldSecretWhereTheArrayHoldsOne)
{
    wanted.USECHAP = 1;
    wanted.NORMALVERMODE = "1";
    wanted.CHAPNAME = "c";
    wanted.CHAPPASSWORD = "new";
    wanted.CHAPOLDPASSWORD = "old";
    const std::string body = R"("ID":"iqn.a","USECHAP":"true","NORMALVERMODE":"1","DISCOVERYVERMODE":"0",)"
                             R"("CHAPNAME":"c","CHAPPASSWORD":"new")";
    expect(kRead.request, answer(R"({"ID":"iqn.a","USECHAP":"true"})"));
    expect("PUT /iscsi_initiator {" + body + R"(,"CHAPOLDPASSWORD":"old"})", answer(""));
    handler.modifyIscsiInitiator(wanted);
    expect(kRead.request, answer(R"({"ID":"iqn.a","USECHAP":"false"})"));
    expect("PUT /iscsi_initiator {" + body + "}", answer(""));
    handler.modifyIscsiInitiator(wanted);
}

TEST_F(IscsiInitiatorHandler, FailsToChangeUnderItsOwnName)
{
    const std::string request = R"(PUT /iscsi_initiator {"ID":"iqn.a","USECHAP":"false"})";
    Lines inner = entered("getIscsiInitiator");
    inner.emplace_back("error: url error or internet error modifyIscsiInitiator");
    expect(kRead.request, answer(""));
    expect(request, sendFailure(1008));
    EXPECT_EQ(thrownBy([&] { handler.modifyIscsiInitiator(wanted); }),
              "Exception:url error or internet error modifyIscsiInitiator");
    EXPECT_EQ(newLog(), entered("modifyIscsiInitiator", inner, 1008));
    inner.back() = "error: get error response, error code:-401, description:gone modifyIscsiInitiator";
    expect(kRead.request, answer(""));
    expect(request, refusal(-401, "gone"));
    thrownBy([&] { handler.modifyIscsiInitiator(wanted); });
    EXPECT_EQ(newLog(), entered("modifyIscsiInitiator", inner, -401));
}

TEST_F(IscsiInitiatorHandler, RefusesToChangeWithoutAnIdUnderTheNameOfTheRead)
{
    const std::string line = "iscsiInitiatorID is empty! getIscsiInitiator";
    wanted.ID = "";
    EXPECT_EQ(thrownBy([&] { handler.modifyIscsiInitiator(wanted); }), "Exception:" + line);
    EXPECT_EQ(newLog(), entered("modifyIscsiInitiator", failed("getIscsiInitiator", line, 1), 1));
}

}  // namespace
}  // namespace brevan::test
