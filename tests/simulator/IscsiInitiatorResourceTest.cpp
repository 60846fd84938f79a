#include "ArrayClient.h"

#include "simulator/ErrorCodes.h"

#include <gtest/gtest.h>

using namespace brevan::sim;
using namespace brevan::sim::test;

namespace {

constexpr const char* kId = "iqn.2020-01.lab:host";

struct ChapArray : ArrayFixture {
    Reply create(const Fields& chap)
    {
        Fields body{{"ID", kId}};
        body.update(chap);
        return client.post("/iscsi_initiator", body);
    }
    Reply modify(const Fields& change)
    {
        Fields body{{"ID", kId}};
        body.update(change);
        return client.put("/iscsi_initiator", body);
    }
    Reply read() { return client.get(std::string("/iscsi_initiator/") + kId); }
};

const Fields kOneWay{{"USECHAP", "true"},
                     {"NORMALVERMODE", "1"},
                     {"DISCOVERYVERMODE", "0"},
                     {"CHAPNAME", "alice"},
                     {"CHAPPASSWORD", "first-secret"}};

}  // namespace

TEST(IscsiInitiatorResource, TakesIscsiNamesOnly)
{
    ArrayFixture array;
    for (const char* bad : {"host", "iqn.a/../../etc", "iqn.a b", "iqn."}) {
        EXPECT_EQ(array.client.post("/iscsi_initiator", {{"ID", bad}}).code, kBadParameter) << bad;
    }
    EXPECT_EQ(array.client.post("/iscsi_initiator", Fields()).code, kMissingParameter);
}

TEST(IscsiInitiatorResource, ReadsBackWithoutChap)
{
    ChapArray array;
    EXPECT_EQ(array.create({{"USECHAP", "false"}}).code, 0);
    const Fields expected{{"ID", kId},        {"NAME", ""},         {"HEALTHSTATUS", "1"},  {"RUNNINGSTATUS", "2"},
                          {"ISFREE", "true"}, {"USECHAP", "false"}, {"NORMALVERMODE", "0"}, {"DISCOVERYVERMODE", "0"}};
    EXPECT_EQ(array.read().data, expected);
}

TEST(IscsiInitiatorResource, CanBeBornBoundToAHost)
{
    ChapArray array;
    const std::string host = array.client.make("/host", {{"NAME", "h"}, {"OPERATIONSYSTEM", 0}});
    EXPECT_EQ(array.create({{"PARENTID", host}, {"PARENTTYPE", 21}, {"USECHAP", "false"}}).code, 0);
    EXPECT_EQ(array.read().text("PARENTID"), host);
}

TEST(IscsiInitiatorResource, NeverGivesASecretBack)
{
    ChapArray array;
    const Reply created = array.create(kOneWay);
    EXPECT_EQ(created.code, 0) << created.description;
    EXPECT_EQ(array.read().text("CHAPNAME"), "alice");
    EXPECT_EQ(array.read().text("USECHAP"), "true");
    EXPECT_EQ(array.read().data.dump().find("secret"), std::string::npos);
    EXPECT_EQ(created.data.dump().find("secret"), std::string::npos);
}

TEST(IscsiInitiatorResource, RefusesChapWithoutNameOrSecret)
{
    ChapArray array;
    for (const char* key : {"CHAPNAME", "CHAPPASSWORD"}) {
        Fields chap = kOneWay;
        chap[key] = "";
        const Reply reply = array.create(chap);
        EXPECT_EQ(reply.code, kBadChap) << key;
        EXPECT_EQ(reply.description, "The CHAP that verifies the initiator needs CHAPNAME and CHAPPASSWORD.");
    }
    Fields mutual = kOneWay;
    mutual["NORMALVERMODE"] = "2";
    EXPECT_EQ(array.create(mutual).code, kBadChap);
    mutual.update({{"CHAPNAMEINITATORVERTARGET", "bob"}, {"CHAPPASSWORDINITATORVERTARGET", "other-secret"}});
    EXPECT_EQ(array.create(mutual).code, 0);
    EXPECT_EQ(array.read().text("CHAPNAMEINITATORVERTARGET"), "bob");
}

TEST(IscsiInitiatorResource, RefusesModesThatItDoesNotKnow)
{
    ChapArray array;
    Fields chap = kOneWay;
    chap["NORMALVERMODE"] = "9";
    EXPECT_EQ(array.create(chap).code, kBadChap);
    chap["NORMALVERMODE"] = "0";
    EXPECT_EQ(array.create(chap).code, kBadChap);
}

TEST(IscsiInitiatorResource, ChangesASecretOnlyForWhoKnowsTheOldOne)
{
    ChapArray array;
    array.create(kOneWay);
    Fields change = kOneWay;
    change["CHAPPASSWORD"] = "second-secret";
    EXPECT_EQ(array.modify(change).code, kWrongOldSecret);
    change["CHAPOLDPASSWORD"] = "wrong-secret";
    EXPECT_EQ(array.modify(change).code, kWrongOldSecret);
    change["CHAPOLDPASSWORD"] = "first-secret";
    EXPECT_EQ(array.modify(change).code, 0);
    change.update({{"CHAPPASSWORD", "third-secret"}, {"CHAPOLDPASSWORD", "second-secret"}});
    EXPECT_EQ(array.modify(change).code, 0);
}

TEST(IscsiInitiatorResource, ChangesNameAndHost)
{
    ChapArray array;
    array.create(kOneWay);
    const std::string host = array.client.make("/host", {{"NAME", "h"}, {"OPERATIONSYSTEM", 0}});
    EXPECT_EQ(array.modify({{"NAME", "n"}, {"PARENTID", host}, {"PARENTTYPE", 21}, {"USECHAP", "false"}}).code, 0);
    EXPECT_EQ(array.read().text("NAME"), "n");
    EXPECT_EQ(array.read().text("PARENTID"), host);
    EXPECT_EQ(array.read().text("USECHAP"), "false");
    EXPECT_FALSE(array.read().data.contains("CHAPNAME"));
    EXPECT_EQ(array.modify({{"NAME", "n2"}, {"PARENTID", host}, {"PARENTTYPE", 21}}).code, 0);
    EXPECT_EQ(array.client.put("/iscsi_initiator", {{"ID", "iqn.none"}}).code, kUnknownIscsiInitiator);
}
