#include "handlers/HostHandlerImpl.h"

#include "RecordTests.h"

namespace brevan::test {
namespace {

constexpr const char* kRecord = R"({"ID":"7","NAME":"h","PARENTTYPE":14,"PARENTID":"2","LOCATION":"rack","HEALTHSTATUS":"1",
    "RUNNINGSTATUS":"27","DESCRIPTION":"d","OPERATIONSYSTEM":"4","IP":"10.0.0.9","ISADD2HOSTGROUP":"true"})";

template <class Body>
Call with(Body body)
{
    return on<CHostHandlerImpl>(body);
}

RequestRow create(const std::string& body, void (*set)(HostMO& host))
{
    return {"createHost", {}, "POST /host {" + body + "}", with([set](auto& handler) {
                HostMO host;
                host.NAME = "h";
                host.OPERATIONSYSTEM = 0;
                set(host);
                handler.createHost(host);
            })};
}

const std::vector<RequestRow> kCreates = {
    create(R"("TYPE":21,"NAME":"h","OPERATIONSYSTEM":0)", [](HostMO&) {}),
    create(R"("ID":"9","TYPE":21,"NAME":"h","OPERATIONSYSTEM":4,"PARENTTYPE":14,"PARENTID":"2","LOCATION":"rack",)"
           R"("DESCRIPTION":"d","IP":"10.0.0.9")",
           [](HostMO& host) {
               host.ID = "9";
               host.OPERATIONSYSTEM = 4;
               host.PARENTTYPE = 14;
               host.PARENTID = "2";
               host.LOCATION = "rack";
               host.DESCRIPTION = "d";
               host.IP = "10.0.0.9";
               host.HEALTHSTATUS = host.RUNNINGSTATUS = 5;
               host.ISADD2HOSTGROUP = 1;
           }),
    create(R"("TYPE":21,"NAME":"h","OPERATIONSYSTEM":0,"IP":"10.0.0.9")", [](HostMO& host) { host.IP = "10.0.0.9"; }),
};

const RequestRow kRead = {"getHost", {}, "GET /host/7", with([](auto& handler) { handler.getHost("7"); })};

BREVAN_INSTANTIATE(FailingRequest, kCreates);
BREVAN_INSTANTIATE(CreateRequest, kCreates);
INSTANTIATE_TEST_SUITE_P(Read, FailingRequest, testing::Values(kRead));
INSTANTIATE_TEST_SUITE_P(Read, PlainRequest, testing::Values(kRead));

const std::vector<RefusalRow> kRefusals = {
    {"getHost", "hostID is empty! ", with([](auto& handler) { handler.getHost(""); })},
    {"createHost", "Host name is empty! ", create("", [](HostMO& host) { host = HostMO(); }).call},
    {"createHost", "OperationSystem value is initial value! ",
     create("", [](HostMO& host) { host.OPERATIONSYSTEM = 100; }).call},
};
BREVAN_INSTANTIATE(RefusedArgument, kRefusals);

INSTANTIATE_TEST_SUITE_P(Host, RecordReply, testing::Values(RecordRow{"getHost", kRead.request, kRecord, {}, kRead.call}));

class HostHandler : public SdkTest {
protected:
    CHostHandlerImpl handler{&manager};
};

TEST_F(HostHandler, ReadsEveryFieldOfAHost)
{
    expect("GET /host/7", answer(kRecord));
    const HostMO host = handler.getHost("7");
    EXPECT_EQ(host.ID, "7");
    EXPECT_EQ(host.NAME, "h");
    EXPECT_EQ(host.PARENTTYPE, 14U);
    EXPECT_EQ(host.PARENTID, "2");
    EXPECT_EQ(host.LOCATION, "rack");
    EXPECT_EQ(host.HEALTHSTATUS, 1U);
    EXPECT_EQ(host.RUNNINGSTATUS, 27U);
    EXPECT_EQ(host.DESCRIPTION, "d");
    EXPECT_EQ(host.OPERATIONSYSTEM, 4U);
    EXPECT_EQ(host.IP, "10.0.0.9");
    EXPECT_EQ(host.ISADD2HOSTGROUP, 1);
    EXPECT_EQ(newLog(), entered("getHost"));
}

TEST_F(HostHandler, TakesTheParentsTypeAlsoAsText)
{
    expect("GET /host/7", answer(R"({"ID":"7","PARENTTYPE":"14"})"));
    EXPECT_EQ(handler.getHost("7").PARENTTYPE, 14U);
}

TEST_F(HostHandler, ReturnsADefaultRecordWhereTheArrayHasNone)
{
    for (const char* data : {"", R"({"NAME":"h"})"}) {
        expect("GET /host/7", answer(data));
        const HostMO host = handler.getHost("7");
        EXPECT_EQ(host.ID + host.NAME, "");
        EXPECT_EQ(host.OPERATIONSYSTEM, 100U);
        EXPECT_EQ(host.ISADD2HOSTGROUP, -1);
    }
}

}  // namespace
}  // namespace brevan::test
