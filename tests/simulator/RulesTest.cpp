// The table of rules in docs/simulator.md: each of its rows is made to happen, and the array has no code beyond them.
#include "ArrayClient.h"
#include "HttpsClient.h"

#include "simulator/Database.h"
#include "simulator/ErrorCodes.h"
#include "simulator/Files.h"
#include "simulator/Text.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <regex>
#include <set>
#include <sstream>

using namespace brevan::sim;
using namespace brevan::sim::test;

namespace {

constexpr const char* kInitiator = "iqn.2020-01.lab:a";

ServerOptions ruleOptions()
{
    ServerOptions options = testOptions();
    options.iscsiInitiators = {kInitiator};
    return options;
}

/// An array with everything that an attach makes, for one rule.
struct World {
    explicit World(const ServerOptions& options = ruleOptions())
        : array(options), client(array.client), chain(client, kInitiator, "1")
    {
    }
    ArrayFixture array;
    ArrayClient& client;
    Chain chain;
};

Reply logIn(ArrayFixture& array, const std::string& password)
{
    return array.client.send({"POST", "/deviceManager/rest/xxxx/sessions", "", "",
                              R"({"username":"admin","password":")" + password + R"(","scope":0})"});
}

Reply toReply(const HttpsReply& reply)
{
    const Data error = Data::parse(reply.body).at("error");
    return {static_cast<unsigned>(reply.status), error.at("code").number(), error.at("description").text(), Data()};
}

/// What a client gets over a real connection, to an array that takes one connection at a time.
Reply overHttps(bool second)
{
    ServerOptions options = testOptions();
    options.limits.connections = 1;
    ArrayServer server(options);
    server.start();
    const std::string url = "https://127.0.0.1:" + std::to_string(server.port());
    HttpsClient first(url, server.caFile());
    const HttpsReply reply = first.send("POST", "/deviceManager/rest/x/lun", std::string(second ? 1 : 1048577, 'x'));
    return toReply(second ? HttpsClient(url, server.caFile()).send("GET", "/") : reply);
}

/// An array with files of its own.
class Directory {
public:
    Directory() = default;
    ~Directory() { std::filesystem::remove_all(m_path); }
    Directory(const Directory&) = delete;
    Directory& operator=(const Directory&) = delete;
    std::string file(const std::string& name) const { return m_path + "/" + name; }

private:
    std::string m_path = makePrivateDirectory();
};

Reply whileTheDatabaseIsLocked()
{
    const Directory directory;
    ServerOptions options = testOptions();
    options.database = directory.file("array.db");
    ArrayFixture array(options);
    Database other(options.database);
    other.execute("BEGIN IMMEDIATE");
    return array.client.post("/host", {{"NAME", "h"}, {"OPERATIONSYSTEM", 0}});
}

Reply withoutTheTree()
{
    const Directory directory;
    ServerOptions options = ruleOptions();
    options.exposure = Exposure::kTree;
    options.treeDirectory = directory.file("tree");
    World world(options);
    std::filesystem::remove_all(options.treeDirectory);
    return world.client.associate("/lungroup/associate", world.chain.lunGroup, 11, world.client.makeLun("more"));
}

/// The array that a seed describes: `count` host groups, or LUNs of a group beside a view that a host is in.
struct SeededArray {
    explicit SeededArray(const std::string& members)
    {
        ServerOptions options = testOptions();
        options.seed = directory.file("seed.json");
        writeFileAtomically(options.seed, "{\"version\": 1, " + members + "}");
        array.emplace(options);
    }
    Directory directory;
    std::optional<ArrayFixture> array;
};

std::string manyObjects(int count, const std::string& more)
{
    std::string list;
    for (int index = 1; index <= count; ++index) {
        const std::string id = std::to_string(index);
        list += (index == 1 ? "{\"ID\":" : ",{\"ID\":") + id + ",\"NAME\":\"o" + id + "\"" + more + "}";
    }
    return list;
}

Reply listOfTooMany()
{
    return SeededArray("\"host_groups\": [" + manyObjects(65537, "") + "]").array->client.get("/hostgroup");
}

Reply tooManyForAHost()
{
    std::string ids;
    for (int index = 1; index <= 16384; ++index) {
        ids += (index == 1 ? "" : ",") + std::to_string(index);
    }
    SeededArray seeded(
        R"("pools": [{"ID": 0, "NAME": "p", "CAPACITY": 9}], "luns": [)" +
        manyObjects(16384, R"(,"PARENTID":0,"CAPACITY":1,"ALLOCTYPE":1)") +
        R"(], "lun_groups": [{"ID": 20000, "NAME": "g", "LUNS": [)" + ids +
        R"(]}], "hosts": [{"ID": 20001, "NAME": "h"}],)" +
        R"("host_groups": [{"ID": 20002, "NAME": "g", "HOSTS": [20001]}], "mapping_views": [{"ID": 20003, "NAME": "v", "HOSTGROUP": 20002}])");
    return seeded.array->client.putAssociation("/mappingview/create_associate", "20003", 256, "20000");
}

Reply lun(const Fields& more)
{
    Fields body{{"NAME", "lun"}, {"PARENTID", "0"}, {"CAPACITY", 1000}};
    body.update(more);
    return World().client.post("/lun", body);
}

Reply chap(ArrayClient& client, const std::string& secret, const std::string& oldSecret)
{
    return client.put("/iscsi_initiator", {{"ID", kInitiator},
                                           {"USECHAP", "true"},
                                           {"NORMALVERMODE", "1"},
                                           {"DISCOVERYVERMODE", "0"},
                                           {"CHAPNAME", "user"},
                                           {"CHAPPASSWORD", secret},
                                           {"CHAPOLDPASSWORD", oldSecret}});
}

using Happening = std::function<Reply()>;

template <typename Body>
Happening in(Body body)
{
    return [body] {
        World world;
        return body(world, world.client, world.chain);
    };
}

/// How each row of the table is made to happen.
std::map<int, Happening> happenings()
{
    using W = World&;
    using C = ArrayClient&;
    using Ch = const Chain&;
    std::map<int, Happening> all{
        {kNoSession, in([](W, C client, Ch) { return client.m_token = "x", client.get("/lun"); })},
        {kNotReadableYet,
         [] {
             ServerOptions options = testOptions();
             options.settleReads = 1;
             ArrayFixture array(options);
             return array.client.get("/lun/" + array.client.makeLun("a"));
         }},
        {kLunAlreadyInLunGroup,
         in([](W, C client, Ch chain) { return client.associate("/lungroup/associate", chain.lunGroup, 11, chain.lun); })},
        {kSnapshotAlreadyInLunGroup, in([](W, C client, Ch chain) {
             const std::string snapshot = client.make("/snapshot", {{"NAME", "s"}, {"PARENTID", chain.lun}});
             client.associate("/lungroup/associate", chain.lunGroup, 27, snapshot);
             return client.associate("/lungroup/associate", chain.lunGroup, 27, snapshot);
         })},
        {kNotInLunGroup, in([](W, C client, Ch chain) {
             return client.remove("/lungroup/associate?ID=" + chain.lunGroup +
                                  "&ASSOCIATEOBJTYPE=11&ASSOCIATEOBJID=" + client.makeLun("other"));
         })},
        {kHostAlreadyInHostGroup, in([](W, C client, Ch chain) {
             return client.associate("/hostgroup/associate", chain.hostGroup, 21, chain.host);
         })},
        {kInternal, whileTheDatabaseIsLocked},
        {kUnknownOperation, in([](W, C client, Ch) { return client.get("/LUN/7"); })},
        {kBadHttp, [] { return overHttps(false); }},
        {kBadBody, in([](W, C client, Ch) { return client.send("POST", "/lun", "{x"); })},
        {kBadQuery, in([](W, C client, Ch) { return client.get("/lun?range=[5-3]"); })},
        {kBadParameter, in([](W, C client, Ch) {
             return client.post("/lun", {{"TYPE", "x"}, {"NAME", "a"}});
         })},
        {kMissingParameter, in([](W, C client, Ch) {
             return client.post("/lun", {{"TYPE", 11}});
         })},
        {kUnknownDevice, in([](W, C client, Ch) {
             return client.send({"GET", "/deviceManager/rest/x/lun", client.m_token, client.m_cookie, ""});
         })},
        {kTooManyRecords, listOfTooMany},
        {kOverloaded, [] { return overHttps(true); }},
        {kLoginRefused, in([](W world, C, Ch) { return logIn(world.array, "wrong"); })},
        {kTooManySessions,
         [] {
             ServerOptions options = testOptions();
             options.maxSessions = 1;
             ArrayFixture array(options);
             return logIn(array, "secret");
         }},
        {kLoginLocked, in([](W world, C, Ch) {
             for (int time = 0; time < 5; ++time) {
                 logIn(world.array, "wrong");
             }
             return logIn(world.array, "secret");
         })},
        {kNameTaken,
         [] {
             return lun({{"NAME", "lun1"}});
         }},
        {kIdTaken, in([](W, C client, Ch chain) {
             return client.post("/host", {{"ID", chain.lun}, {"NAME", "x"}, {"OPERATIONSYSTEM", 0}});
         })},
        {kBadName,
         [] {
             return lun({{"NAME", "a b"}});
         }},
        {kBadCapacity,
         [] {
             return lun({{"CAPACITY", 0}});
         }},
        {kPoolFull, in([](W, C client, Ch) {
             client.make("/lun", {{"NAME", "x"}, {"PARENTID", "0"}, {"CAPACITY", 2147483647ul}});
             return client.post("/lun", {{"NAME", "y"}, {"PARENTID", "0"}, {"CAPACITY", 2}});
         })},
        {kBadAllocation,
         [] {
             return lun({{"ALLOCTYPE", 1}, {"INITIALALLOCCAPACITY", 1001}});
         }},
        {kVolumeInLunGroup, in([](W, C client, Ch chain) { return client.remove("/lun/" + chain.lun); })},
        {kLunHasSnapshots, in([](W, C client, Ch) {
             const std::string lun = client.makeLun("x");
             client.make("/snapshot", {{"NAME", "s"}, {"PARENTID", lun}});
             return client.remove("/lun/" + lun);
         })},
        {kTooManyVolumesForHost, tooManyForAHost},
        {kLunGroupInView, in([](W, C client, Ch chain) { return client.remove("/lungroup/" + chain.lunGroup); })},
        {kHostGroupInView, in([](W, C client, Ch chain) { return client.remove("/hostgroup/" + chain.hostGroup); })},
        {kNotInHostGroup, in([](W, C client, Ch chain) {
             const std::string host = client.make("/host", {{"NAME", "x"}, {"OPERATIONSYSTEM", 0}});
             return client.remove("/host/associate?ID=" + chain.hostGroup + "&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=" + host);
         })},
        {kHostInUse, in([](W, C client, Ch chain) { return client.remove("/host/" + chain.host); })},
        {kAlreadyInView, in([](W, C client, Ch chain) {
             return client.putAssociation("/mappingview/create_associate", chain.view, 256, chain.lunGroup);
         })},
        {kViewHasAnother, in([](W, C client, Ch chain) {
             return client.putAssociation("/mappingview/create_associate", chain.view, 256,
                                          client.make("/lungroup/", {{"NAME", "x"}}));
         })},
        {kNotInView, in([](W, C client, Ch chain) {
             return client.putAssociation("/mappingview/remove_associate", chain.view, 256,
                                          client.make("/lungroup/", {{"NAME", "x"}}));
         })},
        {kInitiatorBound, in([](W, C client, Ch chain) {
             return client.put(std::string("/iscsi_initiator/") + kInitiator,
                               {{"PARENTTYPE", 21}, {"PARENTID", chain.host}});
         })},
        {kInitiatorNotBound, in([](W, C client, Ch) {
             client.make("/iscsi_initiator", {{"ID", "iqn.2020-01.lab:b"}});
             return client.put("/iscsi_initiator/remove_iscsi_from_host", {{"ID", "iqn.2020-01.lab:b"}});
         })},
        {kBadChap, in([](W, C client, Ch) { return chap(client, "", ""); })},
        {kWrongOldSecret, in([](W, C client, Ch) { return chap(client, "one", ""), chap(client, "two", "none"); })},
        {kExposureFailed, withoutTheTree},
    };
    const std::map<int, std::string> reads{{kUnknownPool, "/storagepool/77"},
                                           {kUnknownLun, "/lun/77"},
                                           {kUnknownSnapshot, "/SNAPSHOT/77"},
                                           {kUnknownLunGroup, "/lungroup/77"},
                                           {kUnknownHost, "/host/77"},
                                           {kUnknownHostGroup, "/hostgroup/77"},
                                           {kUnknownMappingView, "/mappingview/77"},
                                           {kUnknownIscsiInitiator, "/iscsi_initiator/iqn.x"},
                                           {kUnknownFcInitiator, "/fc_initiator/77"},
                                           {kUnknownFcPort, "/FC_PORT/77"},
                                           {kUnknownFcoePort, "/FCoE_PORT/77"},
                                           {kUnknownEthPort, "/ETH_PORT/77"}};
    for (const auto& [code, path] : reads) {
        all[code] = in([path = path](W, C client, Ch) { return client.get(path); });
    }
    return all;
}

/// What may differ between the table's example and what happens: numbers, quoted texts, and the reason of a failure.
std::string withoutParticulars(std::string text)
{
    text = std::regex_replace(text, std::regex("'[^']*'"), "'_'");
    text = std::regex_replace(text, std::regex("[0-9]+"), "N");
    return text;
}

struct Row {
    int code;
    std::string text;
};

/// The rows of the table whose first column is a code.
std::vector<Row> documentedRules()
{
    std::vector<Row> rows;
    std::ifstream file(BREVAN_SIMULATOR_DOCUMENT);
    const std::regex form(R"(\| (-?[0-9]+) \| .* \| (.*) \|)");
    for (std::string line; std::getline(file, line);) {
        std::smatch match;
        if (std::regex_match(line, match, form)) {
            rows.push_back({std::stoi(match[1]), match[2]});
        }
    }
    return rows;
}

void PrintTo(const Row& row, std::ostream* stream)
{
    *stream << row.code << " " << row.text;
}

class DocumentedRule : public ::testing::TestWithParam<Row> {};

}  // namespace

TEST_P(DocumentedRule, Happens)
{
    static const std::map<int, Happening> kHappenings = happenings();
    ASSERT_EQ(kHappenings.count(GetParam().code), 1u) << "no test makes this happen";
    const Reply reply = kHappenings.at(GetParam().code)();
    EXPECT_EQ(reply.code, GetParam().code) << reply.description;
    const std::string wanted = withoutParticulars(GetParam().text);
    const std::size_t reason = wanted.find("REASON");
    EXPECT_EQ(withoutParticulars(reply.description).substr(0, reason), wanted.substr(0, reason));
}

INSTANTIATE_TEST_SUITE_P(Table, DocumentedRule, ::testing::ValuesIn(documentedRules()));

TEST(DocumentedRules, AreAllThatTheArrayHas)
{
    std::ifstream header(BREVAN_ERROR_CODES);
    std::set<int> codes;
    for (std::string line; std::getline(header, line);) {
        std::smatch match;
        if (std::regex_match(line, match, std::regex(R"( +k[A-Za-z]+ = (-?[0-9]+),)")) && match[1] != "0") {
            codes.insert(std::stoi(match[1]));
        }
    }
    std::set<int> documented;
    for (const Row& row : documentedRules()) {
        EXPECT_TRUE(documented.insert(row.code).second) << row.code << " stands twice";
    }
    EXPECT_GT(codes.size(), 40u);
    EXPECT_EQ(documented, codes);
}
