#include "simulator/Chain.h"

#include "ArrayClient.h"

#include "simulator/Array.h"
#include "simulator/Mapping.h"

#include <gtest/gtest.h>

using namespace brevan::sim;
using brevan::sim::test::Data;

namespace {

constexpr const char* kInitiator = "iqn.1993-08.org.debian:01:c0ffee";

/// A host that sees a LUN and a snapshot, and one of each kind that belongs to no host.
class MappedArray : public ::testing::Test {
protected:
    MappedArray()
    {
        for (
            const char* sql :
            {"INSERT INTO pool (id, name, capacity) VALUES (0, 'pool', 1000)",
             "INSERT INTO lun (id, name, pool_id, description, alloc_type, capacity, allocated, thin_usage, wwn, controller,"
             " settings) VALUES (8, 'data', 0, '', 1, 4, 0, 0, '6aa', 'A', '{}'), (9, 'spare', 0, '', 1, 4, 0, 0, '6bb', "
             "'A',"
             " '{}')",
             "INSERT INTO snapshot (id, name, lun_id, description, capacity, wwn) VALUES (10, 'before', 8, '', 4, '6cc')",
             "INSERT INTO lun_group VALUES (11, 'volumes', '', 0, 0, 0), (12, 'nothing', '', 0, 0, 0)",
             "INSERT INTO lun_group_member VALUES (11, 11, 8), (11, 27, 10)",
             "INSERT INTO host (id, name, location, description, operating_system, ip) VALUES (13, 'backup', '', '', 0, '')",
             "INSERT INTO host_group VALUES (14, 'hosts', '', 0)", "INSERT INTO host_group_member VALUES (14, 13)",
             "INSERT INTO mapping_view VALUES (15, 'view', '', 0, 11, 14, 0), (16, 'half', '', 0, 12, NULL, 0)",
             "INSERT INTO fc_initiator (id, name, host_id) VALUES ('2100000000000001', '', 13)",
             "INSERT INTO iscsi_initiator (id, name, host_id) VALUES ('iqn.2020-01.lab:free', '', NULL)"}) {
            m_database.execute(sql);
        }
        m_database.execute("INSERT INTO iscsi_initiator (id, name, host_id) VALUES (?, '', 13)", {std::string(kInitiator)});
        updateLunNumbers(m_database);
    }
    std::string text(ChainFormat format) { return written(readChain(m_database), format); }

    Database m_database{":memory:"};
};

}  // namespace

TEST_F(MappedArray, IsATreeForPeople)
{
    EXPECT_EQ(text(ChainFormat::kText),
              "host 13 backup\n"
              "  iSCSI initiator iqn.1993-08.org.debian:01:c0ffee\n"
              "  FC initiator 2100000000000001\n"
              "  host group 14 hosts\n"
              "    mapping view 15 view\n"
              "      LUN group 11 volumes\n"
              "        LUN 8 data\n"
              "        snapshot 10 before\n"
              "  sees\n"
              "    LUN number 1: LUN 8 data, 2048 bytes, WWN 6aa\n"
              "    LUN number 2: snapshot 10 before, 2048 bytes, WWN 6cc\n"
              "belongs to no host\n"
              "  iSCSI initiator iqn.2020-01.lab:free\n"
              "  mapping view 16\n"
              "  LUN group 12\n"
              "  LUN 9\n");
}

TEST_F(MappedArray, IsDataForPrograms)
{
    const Data chain = Data::parse(text(ChainFormat::kJson));
    EXPECT_EQ(chain.at("initiators").dump(), R"([{"host":"13","kind":"iSCSI","name":"iqn.1993-08.org.debian:01:c0ffee"},)"
                                             R"({"host":null,"kind":"iSCSI","name":"iqn.2020-01.lab:free"},)"
                                             R"({"host":"13","kind":"FC","name":"2100000000000001"}])");
    EXPECT_EQ(chain.at("hosts").dump(), R"([{"id":"13","name":"backup","sees":[{"lunNumber":1,"volume":"8"},)"
                                        R"({"lunNumber":2,"volume":"10"}]}])");
    EXPECT_EQ(chain.at("hostGroups").dump(), R"([{"hosts":["13"],"id":"14","name":"hosts"}])");
    EXPECT_EQ(chain.at("mappingViews").dump(), R"([{"hostGroup":"14","id":"15","lunGroup":"11","name":"view"},)"
                                               R"({"hostGroup":null,"id":"16","lunGroup":"12","name":"half"}])");
    EXPECT_EQ(chain.at("lunGroups").at(0).dump(), R"({"id":"11","name":"volumes","volumes":["8","10"]})");
    EXPECT_EQ(chain.at("volumes").at(2).dump(), R"({"bytes":2048,"id":"10","kind":"snapshot","name":"before","wwn":"6cc"})");
}

TEST_F(MappedArray, IsAPictureWithoutVolumesThatAreInNoGroup)
{
    const std::string picture = text(ChainFormat::kDot);
    for (const char* line : {"digraph chain {\n", "  \"initiator iqn.1993-08.org.debian:01:c0ffee\" -> \"host 13\";\n",
                             "  \"host 13\" -> \"hostgroup 14\";\n", "  \"hostgroup 14\" -> \"view 15\";\n",
                             "  \"view 15\" -> \"lungroup 11\";\n", "  \"lungroup 11\" -> \"volume 10\";\n",
                             "  \"host 13\" -> \"volume 8\" [style=dashed, label=\"sees as LUN 1\"];\n",
                             "  \"volume 8\" [label=\"LUN 8\\ndata\\n6aa\", style=bold];\n"}) {
        EXPECT_NE(picture.find(line), std::string::npos) << line << picture;
    }
    EXPECT_EQ(picture.find("volume 9"), std::string::npos);
    EXPECT_EQ(picture.substr(picture.size() - 2), "}\n");
}

TEST(EmptyArray, HasAChainThatSaysSo)
{
    Database database(":memory:");
    const MappingChain chain = readChain(database);
    EXPECT_EQ(written(chain, ChainFormat::kText), "no hosts, no initiators, no volumes\n");
    EXPECT_EQ(Data::parse(written(chain, ChainFormat::kJson)).at("hosts").dump(), "[]");
}

TEST(LongChain, NamesTenOfAKindThatNobodyUses)
{
    Database database(":memory:");
    for (std::int64_t id = 1; id <= 12; ++id) {
        database.insert("host_group", {{"id", id}, {"name", "g" + std::to_string(id)}, {"description", std::string()}});
    }
    EXPECT_EQ(written(readChain(database), ChainFormat::kText),
              "belongs to no host\n  host group 1, 2, 3, 4, 5, 6, 7, 8, 9, 10 and 2 more\n");
}
