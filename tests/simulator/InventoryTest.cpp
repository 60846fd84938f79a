#include "simulator/Inventory.h"

#include "ArrayClient.h"

#include "simulator/Array.h"
#include "simulator/Chain.h"
#include "simulator/Secrets.h"

#include <gtest/gtest.h>

#include <filesystem>

using namespace brevan::sim;
using namespace brevan::sim::test;

namespace {

/// A database that was filled from this text; the whole of it, or an exception.
std::unique_ptr<Database> loaded(const std::string& text, const std::string& deviceId = "")
{
    auto database = std::make_unique<Database>(":memory:");
    Transaction transaction(*database);
    loadInventory(*database, text, deviceId);
    transaction.commit();
    return database;
}

std::string mistakeIn(const std::string& text, const std::string& deviceId = "")
{
    try {
        loaded(text, deviceId);
    } catch (const std::exception& mistake) {
        return mistake.what();
    }
    return "no mistake";
}

/// A small inventory with `member` beside a pool.
std::string with(const std::string& member)
{
    return R"({"version": 1, "pools": [{"ID": "0", "NAME": "p", "CAPACITY": 10000}])" +
           (member.empty() ? "" : ", " + member) + "}";
}

class ArrayOnDisk : public ::testing::Test {
protected:
    ~ArrayOnDisk() override { std::filesystem::remove_all(m_directory); }
    ServerOptions options() const
    {
        ServerOptions options = testOptions();
        options.database = m_directory + "/array.db";
        return options;
    }
    std::string dump() const { return writeInventory(*Database::existing(m_directory + "/array.db")); }
    std::string m_directory = makePrivateDirectory();
};

/// Something of everything that requests can make.
void fill(ArrayFixture& array)
{
    array.client.make("/iscsi_initiator", {{"ID", "iqn.2020-01.lab:a"},
                                           {"USECHAP", "true"},
                                           {"NORMALVERMODE", "2"},
                                           {"DISCOVERYVERMODE", "0"},
                                           {"CHAPNAME", "user"},
                                           {"CHAPPASSWORD", "topsecret1"},
                                           {"CHAPNAMEINITATORVERTARGET", "target"},
                                           {"CHAPPASSWORDINITATORVERTARGET", "topsecret2"}});
    const Chain chain(array.client, "iqn.2020-01.lab:a", "1");
    const std::string snapshot = array.client.make("/snapshot", {{"NAME", "s"}, {"PARENTID", chain.lun}});
    array.client.associate("/lungroup/associate", chain.lunGroup, 27, snapshot);
    array.client.make("/fc_initiator", {{"ID", "21000000000000aa"}, {"NAME", "any name"}});
    array.client.make(
        "/lun",
        {{"NAME", "thick"}, {"PARENTID", "0"}, {"CAPACITY", 7}, {"WRITEPOLICY", 1ul}, {"DESCRIPTION", "\"quoted\" \\ ü"}});
    array.client.remove("/lun/" + array.client.makeLun("gone"));
}

}  // namespace

TEST_F(ArrayOnDisk, ComesBackExactlyFromItsInventory)
{
    ArrayFixture array(options());
    fill(array);
    const std::string inventory = dump();
    const auto again = loaded(inventory);
    EXPECT_EQ(writeInventory(*again), inventory);
    EXPECT_EQ(again->number("SELECT allocated FROM pool"), 7);
    EXPECT_EQ(written(readChain(*again), ChainFormat::kJson),
              written(readChain(*Database::existing(m_directory + "/array.db")), ChainFormat::kJson));
}

TEST_F(ArrayOnDisk, GivesNoChapSecretAway)
{
    ArrayFixture array(options());
    fill(array);
    const std::string inventory = dump();
    const auto database = Database::existing(m_directory + "/array.db");
    EXPECT_EQ(inventory.find("topsecret"), std::string::npos);
    EXPECT_EQ(inventory.find("PASSWORD"), std::string::npos);
    for (const char* column : {"chap_secret", "target_chap_secret"}) {
        const std::string seal = database->text(std::string("SELECT ") + column + " FROM iscsi_initiator");
        EXPECT_EQ(seal.size(), 96u);
        EXPECT_EQ(inventory.find(seal), std::string::npos);
    }
}

TEST_F(ArrayOnDisk, BeginsWithItsSeedAndGoesOnFromThere)
{
    writeFileAtomically(m_directory + "/seed.json", with(R"("device_id": "a1", "next_id": 40, "next_volume": 9, "luns":
        [{"ID": "7", "NAME": "seven", "PARENTID": "0", "CAPACITY": 8}])"));
    ServerOptions seeded = options();
    seeded.seed = m_directory + "/seed.json";
    {
        ArrayFixture array(seeded);
        EXPECT_EQ(array.server.deviceId(), "a1");
        EXPECT_EQ(array.client.get("/lun/7").text("WWN"), wwnPrefix("a1") + "0000000000000009");
        EXPECT_EQ(array.client.makeLun("next"), "40");
    }
    EXPECT_THROW(ArrayServer{seeded}, std::invalid_argument);
    ArrayFixture array(options());
    EXPECT_EQ(array.server.deviceId(), "a1");
    EXPECT_EQ(array.server.volumeWwn("40"), wwnPrefix("a1") + "000000000000000a");
}

TEST_F(ArrayOnDisk, IsNotHalfLoadedFromABadSeed)
{
    ServerOptions seeded = options();
    seeded.seed = m_directory + "/seed.json";
    writeFileAtomically(seeded.seed, with(R"("luns": [{"NAME": "good", "PARENTID": "0", "CAPACITY": 8},
                                                      {"NAME": "bad name", "PARENTID": "0", "CAPACITY": 8}])"));
    EXPECT_THROW(ArrayServer{seeded}, std::runtime_error);
    writeFileAtomically(seeded.seed, with(""));
    ArrayFixture array(seeded);
    EXPECT_TRUE(array.client.get("/lun").data.isAbsent());
    EXPECT_EQ(array.client.get("/storagepool").data.size(), 1u);
}

TEST_F(ArrayOnDisk, IsNotTakenForAnother)
{
    {
        const ArrayServer array(options());
    }
    ServerOptions other = options();
    other.deviceId = "other";
    EXPECT_THROW(ArrayServer{other}, std::invalid_argument);
    const ArrayServer running(options());
    EXPECT_THROW(ArrayServer{options()}, std::runtime_error);
}

TEST(Inventory, FillsInWhatIsLeftOut)
{
    const auto database = loaded(with(R"("luns": [{"NAME": "thin", "PARENTID": 0, "CAPACITY": "8", "ALLOCTYPE": 1},
        {"ID": 20, "NAME": "thick", "PARENTID": "0", "CAPACITY": 5, "WWN": "602b7e4492986b910000000000000005"}],
        "snapshots": [{"NAME": "s", "PARENTID": 20}], "hosts": [{"ID": 30, "NAME": "h"}],
        "host_groups": [{"ID": 31, "NAME": "g", "HOSTS": [30]}], "lun_groups": [{"ID": 32, "NAME": "g", "LUNS": ["20"]}],
        "mapping_views": [{"NAME": "v", "HOSTGROUP": 31, "LUNGROUP": 32}])"));
    EXPECT_EQ(database->text("SELECT id || wwn || allocated FROM lun WHERE name = 'thin'"),
              "33602b7e4492986b9100000000000000060");
    EXPECT_EQ(database->number("SELECT allocated FROM lun WHERE id = 20"), 5);
    EXPECT_EQ(database->text("SELECT id || wwn || capacity FROM snapshot"), "34602b7e4492986b9100000000000000075");
    EXPECT_EQ(database->text("SELECT host_id || number || volume_id FROM lun_number"), "30120");
    EXPECT_EQ(database->number("SELECT next FROM counter WHERE name = 'object'"), 36);
    EXPECT_EQ(identityOf(*database), "210000000001");
}

TEST(Inventory, TakesSecretsThatItNeverWrites)
{
    const auto database = loaded(with(R"("iscsi_initiators": [{"ID": "iqn.a:b", "USECHAP": true, "NORMALVERMODE": "1",
        "CHAPNAME": "u", "CHAPPASSWORD": "topsecret"}])"));
    EXPECT_TRUE(opens(database->text("SELECT chap_secret FROM iscsi_initiator"), "topsecret"));
    EXPECT_EQ(writeInventory(*database).find("topsecret"), std::string::npos);
}

TEST(Inventory, LoadsManyLunsAndIsExactThen)
{
    std::string luns;
    for (int index = 0; index < 5000; ++index) {
        luns += std::string(index == 0 ? "" : ",") + R"({"NAME": "lun_)" + std::to_string(index) + R"(", "PARENTID": 0,)" +
                R"("CAPACITY": 1000, "ALLOCTYPE": 1})";
    }
    const auto database = loaded(with("\"luns\": [" + luns + "]"));
    EXPECT_EQ(database->number("SELECT count(DISTINCT wwn) FROM lun"), 5000);
    const std::string inventory = writeInventory(*database);
    EXPECT_EQ(writeInventory(*loaded(inventory)), inventory);
}

struct BadInventory {
    const char* member;
    const char* mistake;
};

void PrintTo(const BadInventory& bad, std::ostream* stream)
{
    *stream << bad.member;
}

class BadInventories : public ::testing::TestWithParam<BadInventory> {};

TEST_P(BadInventories, AreRefusedWithThePlaceAndTheMistake)
{
    EXPECT_EQ(mistakeIn(with(GetParam().member)), GetParam().mistake);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, BadInventories,
    ::testing::Values(
        BadInventory{"\"lunns\": []", "lunns: there is no such key"},
        BadInventory{"\"pools\": []", "pools: the key stands twice"},
        BadInventory{"\"version\": 1", "version: the key stands twice"},
        BadInventory{"\"luns\": 5", "luns: a list is wanted here"},
        BadInventory{"\"luns\": [5]", "luns[0]: an object is wanted here"},
        BadInventory{"\"device_id\": []", "device_id: a list has no place here"},
        BadInventory{"\"hosts\": [{\"NAME\": \"h\"},\n{\"NAME\": \"h\"}]",
                     "hosts[1].NAME: another object of the kind has the name 'h', too"},
        BadInventory{"\"hosts\": [{\"NAME\": \"h\"},\n\n{\"NAME\": x}]", "line 3: this is not JSON"},
        BadInventory{R"("hosts": [{}])", "hosts[0].NAME: the value is missing"},
        BadInventory{R"("hosts": [{"NAME": null}])", "hosts[0].NAME: null is no value; leave the key out"},
        BadInventory{R"("hosts": [{"NAME": "h", "NAME": "h"}])", "hosts[0].NAME: the key stands twice"},
        BadInventory{R"("hosts": [{"NAME": "h", "OS": 1}])", "hosts[0].OS: there is no such key"},
        BadInventory{R"("hosts": [{"NAME": {}}])", "hosts[0].NAME: an object has no place here"},
        BadInventory{R"("hosts": [{"NAME": "h", "IP": 5}])", "hosts[0].IP: a text is wanted"},
        BadInventory{R"("hosts": [{"NAME": "h", "OPERATIONSYSTEM": 65536}])",
                     "hosts[0].OPERATIONSYSTEM: a whole number from 0 to 65535 is wanted"},
        BadInventory{R"("hosts": [{"NAME": "h", "ID": -1}])",
                     "hosts[0].ID: a whole number from 0 to 999999999999999 is wanted"},
        BadInventory{R"("hosts": [{"NAME": "h", "ID": 9}], "host_groups": [{"NAME": "h", "ID": 9}])",
                     "host_groups[0].ID: another object has the ID 9, too"},
        BadInventory{R"("next_id": 3, "hosts": [{"NAME": "h", "ID": 9}])",
                     "next_id: it must be higher than all that are taken: at least 10"},
        BadInventory{R"("host_groups": [{"NAME": "g", "HOSTS": [4]}])",
                     "host_groups[0].HOSTS: there is no host with the ID 4"},
        BadInventory{R"("hosts": [{"NAME": "h", "ID": 4}], "host_groups": [{"NAME": "g", "HOSTS": [4, "4"]}])",
                     "host_groups[0].HOSTS: \"4\" stands twice"},
        BadInventory{R"("mapping_views": [{"NAME": "v", "LUNGROUP": 4}])",
                     "mapping_views[0].LUNGROUP: there is no LUN group with the ID 4"},
        BadInventory{R"("luns": [{"NAME": "a", "PARENTID": 0, "CAPACITY": 10001}])",
                     "luns[0]: the CAPACITY of 10001 sectors is not between 1 and the pool's 10000"},
        BadInventory{R"("luns": [{"NAME": "a", "PARENTID": 0, "CAPACITY": 9, "ALLOCTYPE": 1, "ALLOCCAPACITY": 10}])",
                     "luns[0]: the ALLOCCAPACITY of 10 sectors is larger than the CAPACITY"},
        BadInventory{
            R"("luns": [{"NAME": "a", "PARENTID": 0, "CAPACITY": 9900}, {"NAME": "b", "PARENTID": 0, "CAPACITY": 101}])",
            "luns[1]: the storage pool has no room for 101 sectors more"},
        BadInventory{
            R"("luns": [{"NAME": "a", "PARENTID": 0, "CAPACITY": 9, "WWN": "602b7e4492986b91000000000000000A"}])",
            "luns[0].WWN: '602b7e4492986b91000000000000000A' is not a WWN of this array: 32 digits, 602b7e4492986b91 and a "
            "serial number of 16 lower-case hexadecimal digits"},
        BadInventory{
            R"("fc_initiators": [{"ID": "2100000000000001", "NAME": "0123456789012345678901234567890123456789012345678901)"
            R"(2345678901234567890123456789012345678901234567890123456789012345678901234567"}])",
            "fc_initiators[0].NAME: a text of at most 127 bytes without control characters is wanted"},
        BadInventory{R"("iscsi_initiators": [{"ID": "host"}])", "iscsi_initiators[0].ID: 'host' is not an iSCSI name"},
        BadInventory{R"("iscsi_initiators": [{"ID": "iqn.a"}, {"ID": "iqn.a"}])",
                     "iscsi_initiators[1].ID: another object has the same ID"},
        BadInventory{R"("iscsi_initiators": [{"ID": "iqn.a", "USECHAP": true}])",
                     "iscsi_initiators[0]: USECHAP is true where NORMALVERMODE or DISCOVERYVERMODE is \"1\" or \"2\", and "
                     "only there"},
        BadInventory{R"("fc_initiators": [{"ID": "123"}])",
                     "fc_initiators[0].ID: '123' is not a port name of 16 hexadecimal digits"},
        BadInventory{R"("ports": [{"KIND": "IB", "NAME": "x"}])",
                     "ports[0].KIND: 'IB' is not FC_PORT, FCoE_PORT or ETH_PORT"},
        BadInventory{R"("hosts": [{"NAME": "h", "ID": 4}], "luns": [{"ID": 5, "NAME": "a", "PARENTID": 0, "CAPACITY": 9}],
                        "lun_numbers": [{"HOST": 4, "VOLUME": 5, "NUMBER": 1}])",
                     "lun_numbers[0]: no mapping view maps the volume to the host"}));

TEST(Inventory, NamesWhatIsWrongWithTheWhole)
{
    EXPECT_EQ(mistakeIn("[]"), "the document: a list has no place here");
    EXPECT_EQ(mistakeIn("5"), "the document: an object is wanted here");
    EXPECT_EQ(mistakeIn("{}"), "version: this program reads version 1, and the document must say so");
    EXPECT_EQ(mistakeIn("{\"version\": 2}"), "version: this program reads version 1, and the document must say so");
    EXPECT_EQ(mistakeIn(with("") + "x"), "line 1: this is not JSON");
    EXPECT_EQ(mistakeIn(with("\"device_id\": \"a\""), "b"), "device_id: the inventory is that of the array 'a', not of 'b'");
    EXPECT_EQ(mistakeIn(with("\"device_id\": \"a/b\"")),
              "device_id: the device ID must be 1 to 64 letters, digits, \"-\" and \"_\"");
}
