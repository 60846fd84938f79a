#include "ArrayClient.h"

#include <gtest/gtest.h>

using namespace brevan::sim;
using namespace brevan::sim::test;

namespace {

constexpr const char* kFirst = "iqn.2020-01.lab:first";
constexpr const char* kSecond = "iqn.2020-01.lab:second";

struct TwoInitiators : ArrayFixture {
    TwoInitiators()
    {
        server.addIscsiInitiator(kFirst);
        server.addIscsiInitiator(kSecond);
    }
    /// LUN numbers and volume IDs that an initiator sees.
    std::map<unsigned, std::string> seenBy(const std::string& initiator, const std::vector<std::string>& volumes)
    {
        std::map<unsigned, std::string> seen;
        const ExposurePlan plan = server.exposed();
        for (const auto& [number, volume] : plan.at(initiator)) {
            for (const std::string& id : volumes) {
                if (server.volumeWwn(id) == volume.wwn) {
                    seen[number] = id;
                }
            }
        }
        return seen;
    }
    void removeLun(const std::string& group, const std::string& lun)
    {
        client.remove("/lungroup/associate?ID=" + group + "&ASSOCIATEOBJTYPE=11&ASSOCIATEOBJID=" + lun);
    }
};

using Seen = std::map<unsigned, std::string>;

}  // namespace

TEST(Mapping, ShowsAVolumeOnlyToTheInitiatorsOfItsHosts)
{
    TwoInitiators array;
    const Chain chain(array.client, kFirst, "1");
    EXPECT_EQ(array.seenBy(kFirst, {chain.lun}), (Seen{{1, chain.lun}}));
    EXPECT_TRUE(array.server.exposed().at(kSecond).empty());
    EXPECT_EQ(array.server.exposed().at(kFirst).at(1).bytes, 2048u * 512);
}

TEST(Mapping, NumbersVolumesForEachHostOnItsOwn)
{
    TwoInitiators array;
    const Chain first(array.client, kFirst, "1");
    const Chain second(array.client, kSecond, "2");
    const std::string shared = array.client.makeLun("shared");
    array.client.associate("/lungroup/associate", second.lunGroup, 11, shared);
    array.client.associate("/lungroup/associate", first.lunGroup, 11, shared);
    EXPECT_EQ(array.seenBy(kFirst, {first.lun, shared}), (Seen{{1, first.lun}, {2, shared}}));
    EXPECT_EQ(array.seenBy(kSecond, {second.lun, shared}), (Seen{{1, second.lun}, {2, shared}}));
}

TEST(Mapping, KeepsNumbersThatStayAndGivesFreedOnesAgain)
{
    TwoInitiators array;
    const Chain chain(array.client, kFirst, "1");
    const std::string second = array.client.makeLun("second");
    const std::string third = array.client.makeLun("third");
    array.client.associate("/lungroup/associate", chain.lunGroup, 11, second);
    array.removeLun(chain.lunGroup, chain.lun);
    EXPECT_EQ(array.seenBy(kFirst, {second}), (Seen{{2, second}}));
    array.client.associate("/lungroup/associate", chain.lunGroup, 11, third);
    EXPECT_EQ(array.seenBy(kFirst, {second, third}), (Seen{{1, third}, {2, second}}));
}

TEST(Mapping, ShowsAVolumeOnceHoweverManyWaysLeadToIt)
{
    TwoInitiators array;
    const Chain chain(array.client, kFirst, "1");
    const std::string view = array.client.make("/mappingview", {{"NAME", "again"}});
    array.client.putAssociation("/mappingview/create_associate", view, 14, chain.hostGroup);
    array.client.putAssociation("/mappingview/create_associate", view, 256, chain.lunGroup);
    EXPECT_EQ(array.server.exposed().at(kFirst).size(), 1u);
    array.client.remove("/mappingview/" + chain.view);
    EXPECT_EQ(array.seenBy(kFirst, {chain.lun}), (Seen{{1, chain.lun}}));
}

TEST(Mapping, EndsWhereAnyLinkOfTheChainIsCut)
{
    const std::vector<std::function<void(TwoInitiators&, const Chain&)>> cuts{
        [](TwoInitiators& array, const Chain& chain) { array.removeLun(chain.lunGroup, chain.lun); },
        [](TwoInitiators& array, const Chain& chain) {
            array.client.putAssociation("/mappingview/remove_associate", chain.view, 256, chain.lunGroup);
        },
        [](TwoInitiators& array, const Chain& chain) {
            array.client.putAssociation("/mappingview/remove_associate", chain.view, 14, chain.hostGroup);
        },
        [](TwoInitiators& array, const Chain& chain) { array.client.remove("/mappingview/" + chain.view); },
        [](TwoInitiators& array, const Chain& chain) {
            array.client.remove("/host/associate?ID=" + chain.hostGroup +
                                "&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=" + chain.host);
        },
        [](TwoInitiators& array, const Chain&) {
            array.client.put("/iscsi_initiator/remove_iscsi_from_host", {{"ID", kFirst}});
        }};
    for (const auto& cut : cuts) {
        TwoInitiators array;
        const Chain chain(array.client, kFirst, "1");
        ASSERT_EQ(array.server.exposed().at(kFirst).size(), 1u);
        cut(array, chain);
        EXPECT_TRUE(array.server.exposed().at(kFirst).empty());
    }
}

TEST(Mapping, TellsLunsAndSnapshotsApart)
{
    TwoInitiators array;
    const Chain chain(array.client, kFirst, "1");
    const std::string snapshot = array.server.addSnapshot("s", chain.lun);
    array.client.associate("/lungroup/associate", chain.lunGroup, 27, snapshot);
    EXPECT_EQ(array.seenBy(kFirst, {chain.lun, snapshot}), (Seen{{1, chain.lun}, {2, snapshot}}));
}
