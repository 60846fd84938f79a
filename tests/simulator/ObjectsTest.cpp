#include "ArrayClient.h"

#include "simulator/ErrorCodes.h"

#include <gtest/gtest.h>

using namespace brevan::sim;
using namespace brevan::sim::test;

namespace {

struct Creation {
    const char* path;
    const char* readPath;
    Fields body;
    int type;
    bool settles;
};

/// A create request for each kind that has a name.
std::vector<Creation> creations()
{
    return {{"/lun", "/lun/", {{"PARENTID", "0"}, {"CAPACITY", 8}}, 11, true},
            {"/lungroup/", "/lungroup/", {{"APPTYPE", 0}}, 256, true},
            {"/host", "/host/", {{"OPERATIONSYSTEM", 0}}, 21, true},
            {"/hostgroup", "/hostgroup/", Fields(), 14, true},
            {"/mappingview", "/mappingview/", {{"ENABLEINBANDCOMMAND", false}}, 245, true}};
}

Fields named(const Creation& creation, const std::string& name)
{
    Fields body = creation.body;
    body["TYPE"] = creation.type;
    body["NAME"] = name;
    return body;
}

}  // namespace

TEST(Objects, RefuseANameThatIsTakenAmongTheirKind)
{
    ArrayFixture array;
    for (const Creation& creation : creations()) {
        // The same name for another kind is no conflict, so all of these use one.
        EXPECT_EQ(array.client.post(creation.path, named(creation, "same")).code, 0) << creation.path;
        const Reply again = array.client.post(creation.path, named(creation, "same"));
        EXPECT_EQ(again.code, kNameTaken) << creation.path;
        EXPECT_NE(again.description.find("'same' exists already"), std::string::npos) << again.description;
    }
}

TEST(Objects, RefuseNamesThatBreakTheRules)
{
    ArrayFixture array;
    const std::string longest(31, 'x');
    EXPECT_EQ(array.client.post("/hostgroup", {{"NAME", longest}}).code, 0);
    for (const std::string& name :
         {longest + "x", std::string("a b"), std::string("a/b"), std::string("\xc3\xa4"), std::string("a:b")}) {
        EXPECT_EQ(array.client.post("/hostgroup", {{"NAME", name}}).code, kBadName) << name;
    }
    EXPECT_EQ(array.client.post("/hostgroup", {{"NAME", ""}}).code, kMissingParameter);
    EXPECT_EQ(array.client.post("/hostgroup", Fields()).code, kMissingParameter);
    EXPECT_EQ(array.client.post("/hostgroup", {{"NAME", 7}}).code, kBadParameter);
}

TEST(Objects, RefuseATypeThatIsNotTheirOwn)
{
    ArrayFixture array;
    for (const Creation& creation : creations()) {
        Fields body = named(creation, "x");
        body["TYPE"] = 12;
        EXPECT_EQ(array.client.post(creation.path, body).code, kBadParameter) << creation.path;
    }
}

TEST(Objects, AreUnreadableForAsManyReadsAsAskedFor)
{
    ServerOptions options = testOptions();
    options.settleReads = 2;
    ArrayFixture array(options);
    for (const Creation& creation : creations()) {
        const std::string id = array.client.make(creation.path, named(creation, "new"));
        EXPECT_EQ(array.client.get(creation.readPath + id).code, kNotReadableYet) << creation.path;
        EXPECT_EQ(array.client.get(creation.readPath + id).code, kNotReadableYet) << creation.path;
        EXPECT_EQ(array.client.get(creation.readPath + id).text("ID"), id) << creation.path;
    }
}

TEST(Objects, CanBeAssociatedBeforeTheyCanBeRead)
{
    ServerOptions options = testOptions();
    options.settleReads = 1;
    ArrayFixture array(options);
    const std::string lun = array.client.makeLun("l");
    const std::string group = array.client.make("/lungroup/", {{"NAME", "g"}});
    EXPECT_EQ(array.client.associate("/lungroup/associate", group, 11, lun).code, 0);
}

TEST(Objects, NeverGetAnIdThatWasTaken)
{
    ArrayFixture array;
    const std::string first = array.client.make("/hostgroup", {{"NAME", "a"}});
    EXPECT_EQ(array.client.remove("/hostgroup/" + first).code, 0);
    EXPECT_EQ(array.client.get("/hostgroup/" + first).code, kUnknownHostGroup);
    EXPECT_EQ(array.client.post("/hostgroup", {{"NAME", "b"}, {"ID", first}}).code, kIdTaken);
    EXPECT_GT(std::stoul(array.client.make("/hostgroup", {{"NAME", "c"}})), std::stoul(first));
}

TEST(Objects, TakeAFreeIdThatTheClientChooses)
{
    ArrayFixture array;
    EXPECT_EQ(array.client.make("/hostgroup", {{"NAME", "a"}, {"ID", "5000"}}), "5000");
    EXPECT_EQ(array.client.make("/lungroup/", {{"NAME", "b"}}), "5001");
    for (const char* bad : {"abc", "-1", "007", "1000000000"}) {
        EXPECT_EQ(array.client.post("/hostgroup", {{"NAME", "x"}, {"ID", bad}}).code, kBadParameter) << bad;
    }
}

TEST(Objects, HaveIdsThatNoOtherKindHas)
{
    ArrayFixture array;
    std::set<std::string> ids;
    for (const Creation& creation : creations()) {
        EXPECT_TRUE(ids.insert(array.client.make(creation.path, named(creation, "x"))).second) << creation.path;
    }
}

TEST(Objects, SaySoWhereAnAssociationIsIncomplete)
{
    ArrayFixture array;
    const std::string group = array.client.make("/lungroup/", {{"NAME", "g"}});
    EXPECT_EQ(array.client.post("/lungroup/associate", {{"ASSOCIATEOBJTYPE", 11}, {"ASSOCIATEOBJID", "1"}}).code,
              kMissingParameter);
    EXPECT_EQ(array.client.post("/lungroup/associate", {{"ID", group}, {"ASSOCIATEOBJID", "1"}}).code, kMissingParameter);
    EXPECT_EQ(array.client.post("/lungroup/associate", {{"ID", group}, {"ASSOCIATEOBJTYPE", 11}}).code, kMissingParameter);
    EXPECT_EQ(array.client.associate("/lungroup/associate", group, 21, "1").code, kBadParameter);
    EXPECT_EQ(array.client.associate("/lungroup/associate", group, 11, "999").code, kUnknownLun);
    EXPECT_EQ(array.client.associate("/lungroup/associate", "999", 11, "999").code, kUnknownLunGroup);
    EXPECT_EQ(array.client.remove("/lungroup/associate?ID=" + group + "&ASSOCIATEOBJTYPE=11").code, kMissingParameter);
}
