#include <brevan/StorageRecords.h>

#include <gtest/gtest.h>

#include <type_traits>

namespace brevan::test {
namespace {

constexpr std::uint64_t kAllBits = 18446744073709551615U;

// Callers derive from and delete through some of the records; the others stay plain.
template <class... Record>
constexpr bool allVirtual = (std::has_virtual_destructor_v<Record> && ...);
template <class... Record>
constexpr bool nonePolymorphic = (!std::is_polymorphic_v<Record> && ...);
static_assert(allVirtual<LunMO, SnapshotMO, MappingViewMO, LunQuery, SnapshotQuery, MappingViewQuery>);
static_assert(nonePolymorphic<LunGroupMO, HostMO, HostGroupMO, LunGroupQuery, HostGroupQuery, CLunUserSettableFeature>);

void expectFresh(const LunMO& lun)
{
    EXPECT_EQ(lun.ID + lun.NAME + lun.PARENTID + lun.PARENTNAME + lun.DESCRIPTION + lun.WWN, "");
    EXPECT_EQ(lun.OWNINGCONTROLLER + lun.WORKINGCONTROLLER, "");
    EXPECT_EQ(lun.PARENTTYPE + lun.HEALTHSTATUS + lun.RUNNINGSTATUS, 0U);
    EXPECT_EQ(lun.ALLOCTYPE, 100);
    EXPECT_EQ(lun.CAPACITY, kAllBits);
    EXPECT_EQ(lun.ALLOCCAPACITY, kAllBits);
    EXPECT_EQ(lun.allocCapacitySectors, 0U);
    EXPECT_EQ(lun.THINCAPACITYUSAGE, 0U);
    EXPECT_EQ(lun.EXPOSEDTOINITIATOR, 0);
    EXPECT_EQ(lun.ISADD2LUNGROUP, -1);
}

TEST(LunRecord, IsNotSetWhenFreshAndInItsCopies)
{
    const LunMO fresh;
    expectFresh(fresh);
    expectFresh(LunMO(fresh));
    LunMO assigned;
    assigned.ALLOCTYPE = 1;
    assigned.CAPACITY = 0;
    assigned.ISADD2LUNGROUP = 1;
    assigned = fresh;
    expectFresh(assigned);
}

TEST(SnapshotRecord, IsNotSetWhenFresh)
{
    const SnapshotMO snapshot;
    EXPECT_EQ(snapshot.ID + snapshot.NAME + snapshot.PARENTID + snapshot.PARENTNAME + snapshot.DESCRIPTION + snapshot.WWN,
              "");
    EXPECT_EQ(snapshot.PARENTTYPE + snapshot.HEALTHSTATUS + snapshot.RUNNINGSTATUS, 0U);
    EXPECT_EQ(snapshot.USERCAPACITY, kAllBits);
    EXPECT_EQ(snapshot.CONSUMEDCAPACITY, kAllBits);
}

TEST(LunGroupRecord, IsNotSetWhenFresh)
{
    const LunGroupMO group;
    EXPECT_EQ(group.ID + group.NAME + group.DESCRIPTION, "");
    EXPECT_EQ(group.ISADD2MAPPINGVIEW, -1);
    EXPECT_EQ(group.APPTYPE, 100U);
    EXPECT_EQ(group.GROUPTYPE, 0U);
}

TEST(MappingViewRecord, IsNotSetWhenFresh)
{
    const MappingViewMO view;
    EXPECT_EQ(view.ID + view.NAME + view.DESCRIPTION, "");
    EXPECT_EQ(view.ENABLEINBANDCOMMAND, 0);
}

TEST(HostRecord, IsNotSetWhenFresh)
{
    const HostMO host;
    EXPECT_EQ(host.ID + host.NAME + host.PARENTID + host.LOCATION + host.DESCRIPTION + host.IP, "");
    EXPECT_EQ(host.PARENTTYPE + host.HEALTHSTATUS + host.RUNNINGSTATUS, 0U);
    EXPECT_EQ(host.OPERATIONSYSTEM, 100U);
    EXPECT_EQ(host.ISADD2HOSTGROUP, -1);
}

TEST(HostGroupRecord, IsNotSetWhenFresh)
{
    const HostGroupMO group;
    EXPECT_EQ(group.ID + group.NAME + group.DESCRIPTION, "");
    EXPECT_EQ(group.ISADD2MAPPINGVIEW, -1);
}

TEST(LunPolicies, AreFixed)
{
    const CLunUserSettableFeature policies;
    EXPECT_EQ(policies.WRITEPOLICY, 1U);
    EXPECT_EQ(policies.MIRRORPOLICY, 1U);
    EXPECT_EQ(policies.PREFETCHPOLICY, 3U);
    EXPECT_EQ(policies.PREFETCHVALUE, 0U);
    EXPECT_EQ(policies.DATATRANSFERPOLICY, 0U);
    EXPECT_EQ(policies.INITIALDISTRIBUTEPOLICY, 0U);
    EXPECT_EQ(policies.spareCount, 10U);
    EXPECT_EQ(policies.spareText, "");
    EXPECT_EQ(policies.spareFlag, 0U);
}

TEST(ObjectType, HasTheArraysNumber)
{
    EXPECT_EQ(MOTYPE_LUN, 11);
    EXPECT_EQ(MOTYPE_HOSTGROUP, 14);
    EXPECT_EQ(MOTYPE_HOST, 21);
    EXPECT_EQ(MOTYPE_SNAPSHOT, 27);
    EXPECT_EQ(MOTYPE_MAPPINGVIEW, 245);
    EXPECT_EQ(MOTYPE_LUNGROUP, 256);
}

template <class Query>
class StorageQuery : public testing::Test {
};

using Queries = testing::Types<LunQuery, SnapshotQuery, LunGroupQuery, MappingViewQuery, HostGroupQuery>;
TYPED_TEST_SUITE(StorageQuery, Queries);

TYPED_TEST(StorageQuery, AsksForEverythingWhenFresh)
{
    const TypeParam query;
    EXPECT_EQ(query.condition.ID, "");
    EXPECT_EQ(query.rangeStart, 0U);
    EXPECT_EQ(query.rangeCount, 0U);
}

TYPED_TEST(StorageQuery, CopiesItsCondition)
{
    auto condition = TypeParam().condition;
    condition.NAME = "before";
    const TypeParam query(condition, 10, 5);
    condition.NAME = "after";
    TypeParam assigned;
    assigned = TypeParam(query);
    EXPECT_EQ(assigned.condition.NAME, "before");
    EXPECT_EQ(assigned.rangeStart, 10U);
    EXPECT_EQ(assigned.rangeCount, 5U);
}

}  // namespace
}  // namespace brevan::test
