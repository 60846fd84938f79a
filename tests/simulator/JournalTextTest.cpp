#include "simulator/JournalText.h"

#include "Fields.h"

#include <gtest/gtest.h>

using namespace brevan::sim;
using namespace brevan::sim::test;

TEST(JournalText, KeepsABodyWithoutSecretsAsItArrived)
{
    for (const char* body : {"", "{}", R"({"NAME" : "a",  "ID":"7", "NAME":"twice"})", R"({"N":1.50,"F":true})"}) {
        EXPECT_EQ(maskedBody(body), body);
    }
}

TEST(JournalText, MasksSecretsAndKeepsTheOrder)
{
    EXPECT_EQ(maskedBody(R"({"username":"admin","password":"secret","scope":0})"),
              R"({"username":"admin","password":"***","scope":0})");
    EXPECT_EQ(maskedBody(R"({"Z":"a\"b","CHAPPASSWORD":"x","A":-1,"N":1.50,"B":true,"C":null,"CHAPOLDPASSWORD":7})"),
              R"({"Z":"a\"b","CHAPPASSWORD":"***","A":-1,"N":1.50,"B":true,"C":null,"CHAPOLDPASSWORD":"***"})");
}

TEST(JournalText, KnowsSecretsByAllTheirNames)
{
    for (const char* key : {"PASSWORD", "CHAPPASSWORDINITATORVERTARGET", "iBaseToken", "Cookie", "mySecret", "pwd",
                            "passw\\u006frd", "passwd"}) {
        EXPECT_EQ(maskedBody("{\"" + std::string(key) + "\":\"hidden\"}").find("hidden"), std::string::npos) << key;
    }
}

TEST(JournalText, TellsOnlyTheSizeOfWhatIsNoFlatObject)
{
    for (const char* body : {R"({"password":"hidden")", R"({"a":{"password":"hidden"}})", R"(["hidden"])", R"("hidden")",
                             R"(username=admin&password=hidden)", R"({"a":["hidden"]})", R"({} hidden)"}) {
        const std::string expected = "(" + std::to_string(std::string(body).size()) + " bytes that are no flat JSON object)";
        EXPECT_EQ(maskedBody(body), expected);
    }
}

TEST(JournalText, WritesAnEntryAsOneLineOfJson)
{
    JournalEntry entry;
    entry.number = 3;
    entry.method = "POST";
    entry.path = "/lun\n\xff";
    entry.operation = "POST /lun";
    entry.body = R"({"NAME":"a"})";
    entry.code = -401;
    entry.status = 200;
    entry.fault = "session gone";
    entry.session = 4;
    entry.connection = 5;
    entry.duration = std::chrono::microseconds(67);
    const std::string line = journalLine(entry);
    EXPECT_EQ(line.find('\n'), std::string::npos);
    EXPECT_EQ(line.find("{\"number\":3,\"time\":\"1970-01-01T00:00:00.000000Z\",\"session\":4,\"connection\":5,"), 0u)
        << line;
    const Data data = Data::parse(line);
    EXPECT_EQ(data.at("path").text(), "/lun\n\xef\xbf\xbd");
    EXPECT_EQ(data.at("body").text(), R"({"NAME":"a"})");
    EXPECT_EQ(data.at("code").number(), -401);
    EXPECT_EQ(data.at("status").number(), 200);
    EXPECT_EQ(data.at("fault").text(), "session gone");
    EXPECT_EQ(data.at("duration_us").number(), 67);
}

TEST(JournalText, WritesTimesToTheMicrosecond)
{
    EXPECT_EQ(timeText(std::chrono::system_clock::time_point(std::chrono::microseconds(1795252557000042))),
              "2026-11-21T09:15:57.000042Z");
}
