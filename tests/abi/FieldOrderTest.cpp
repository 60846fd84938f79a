#include <brevan/brevan.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <memory>
#include <ostream>
#include <type_traits>
#include <vector>

// The order of fields is part of the binary interface: an application that was built with other headers would read another field.
// A new field goes behind the last one, changes the size of its record, and with it the library's major version.

namespace brevan::test {
namespace {

struct Field {
    const char* name;
    std::size_t offset;
    std::size_t size;
    std::size_t alignment;
};

struct Record {
    const char* name;
    std::size_t size;
    std::size_t alignment;
    std::size_t begin;  ///< of the first field: behind the pointer to the virtual functions, where there is one
    std::vector<Field> fields;
};

void PrintTo(const Record& record, std::ostream* out)
{
    *out << record.name;
}

template <class Class, class Type>
Field field(const char* name, Type Class::*member)
{
    const Class object;
    const auto* base = reinterpret_cast<const char*>(std::addressof(object));
    const auto* place = reinterpret_cast<const char*>(std::addressof(object.*member));
    return {name, static_cast<std::size_t>(place - base), sizeof(Type), alignof(Type)};
}

/// The next place that is a multiple of the alignment.
std::size_t aligned(std::size_t offset, std::size_t alignment)
{
    return (offset + alignment - 1) / alignment * alignment;
}

#define FIELD(Class, name) field(#name, &Class::name)
#define RECORD(Class) #Class, sizeof(Class), alignof(Class), std::is_polymorphic < Class> ::value ? sizeof(void*) : 0

const std::vector<Record> kRecords = {
    {RECORD(LunMO),
     {FIELD(LunMO, ID), FIELD(LunMO, NAME), FIELD(LunMO, PARENTTYPE), FIELD(LunMO, PARENTID), FIELD(LunMO, PARENTNAME),
      FIELD(LunMO, HEALTHSTATUS), FIELD(LunMO, RUNNINGSTATUS), FIELD(LunMO, DESCRIPTION), FIELD(LunMO, ALLOCTYPE),
      FIELD(LunMO, CAPACITY), FIELD(LunMO, ALLOCCAPACITY), FIELD(LunMO, allocCapacitySectors),
      FIELD(LunMO, THINCAPACITYUSAGE), FIELD(LunMO, EXPOSEDTOINITIATOR), FIELD(LunMO, WWN), FIELD(LunMO, OWNINGCONTROLLER),
      FIELD(LunMO, WORKINGCONTROLLER), FIELD(LunMO, ISADD2LUNGROUP)}},
    {RECORD(SnapshotMO),
     {FIELD(SnapshotMO, ID), FIELD(SnapshotMO, NAME), FIELD(SnapshotMO, PARENTTYPE), FIELD(SnapshotMO, PARENTID),
      FIELD(SnapshotMO, PARENTNAME), FIELD(SnapshotMO, HEALTHSTATUS), FIELD(SnapshotMO, RUNNINGSTATUS),
      FIELD(SnapshotMO, DESCRIPTION), FIELD(SnapshotMO, USERCAPACITY), FIELD(SnapshotMO, CONSUMEDCAPACITY),
      FIELD(SnapshotMO, WWN)}},
    {RECORD(LunGroupMO),
     {FIELD(LunGroupMO, ID), FIELD(LunGroupMO, NAME), FIELD(LunGroupMO, DESCRIPTION), FIELD(LunGroupMO, ISADD2MAPPINGVIEW),
      FIELD(LunGroupMO, APPTYPE), FIELD(LunGroupMO, GROUPTYPE)}},
    {RECORD(MappingViewMO),
     {FIELD(MappingViewMO, ID), FIELD(MappingViewMO, NAME), FIELD(MappingViewMO, DESCRIPTION),
      FIELD(MappingViewMO, ENABLEINBANDCOMMAND)}},
    {RECORD(HostMO),
     {FIELD(HostMO, ID), FIELD(HostMO, NAME), FIELD(HostMO, PARENTTYPE), FIELD(HostMO, PARENTID), FIELD(HostMO, LOCATION),
      FIELD(HostMO, HEALTHSTATUS), FIELD(HostMO, RUNNINGSTATUS), FIELD(HostMO, DESCRIPTION), FIELD(HostMO, OPERATIONSYSTEM),
      FIELD(HostMO, IP), FIELD(HostMO, ISADD2HOSTGROUP)}},
    {RECORD(HostGroupMO),
     {FIELD(HostGroupMO, ID), FIELD(HostGroupMO, NAME), FIELD(HostGroupMO, DESCRIPTION),
      FIELD(HostGroupMO, ISADD2MAPPINGVIEW)}},
    {RECORD(LunQuery), {FIELD(LunQuery, condition), FIELD(LunQuery, rangeStart), FIELD(LunQuery, rangeCount)}},
    {RECORD(SnapshotQuery),
     {FIELD(SnapshotQuery, condition), FIELD(SnapshotQuery, rangeStart), FIELD(SnapshotQuery, rangeCount)}},
    {RECORD(MappingViewQuery),
     {FIELD(MappingViewQuery, condition), FIELD(MappingViewQuery, rangeStart), FIELD(MappingViewQuery, rangeCount)}},
    {RECORD(LunGroupQuery),
     {FIELD(LunGroupQuery, condition), FIELD(LunGroupQuery, rangeStart), FIELD(LunGroupQuery, rangeCount)}},
    {RECORD(HostGroupQuery),
     {FIELD(HostGroupQuery, condition), FIELD(HostGroupQuery, rangeStart), FIELD(HostGroupQuery, rangeCount)}},
    {RECORD(CLunUserSettableFeature),
     {FIELD(CLunUserSettableFeature, WRITEPOLICY), FIELD(CLunUserSettableFeature, MIRRORPOLICY),
      FIELD(CLunUserSettableFeature, PREFETCHPOLICY), FIELD(CLunUserSettableFeature, PREFETCHVALUE),
      FIELD(CLunUserSettableFeature, DATATRANSFERPOLICY), FIELD(CLunUserSettableFeature, INITIALDISTRIBUTEPOLICY),
      FIELD(CLunUserSettableFeature, spareCount), FIELD(CLunUserSettableFeature, spareText),
      FIELD(CLunUserSettableFeature, spareFlag)}},
    {RECORD(IscsiInitiatorMO),
     {FIELD(IscsiInitiatorMO, ID), FIELD(IscsiInitiatorMO, NAME), FIELD(IscsiInitiatorMO, PARENTID),
      FIELD(IscsiInitiatorMO, PARENTNAME), FIELD(IscsiInitiatorMO, PARENTTYPE), FIELD(IscsiInitiatorMO, HEALTHSTATUS),
      FIELD(IscsiInitiatorMO, RUNNINGSTATUS), FIELD(IscsiInitiatorMO, ISFREE), FIELD(IscsiInitiatorMO, USECHAP),
      FIELD(IscsiInitiatorMO, NORMALVERMODE), FIELD(IscsiInitiatorMO, DISCOVERYVERMODE), FIELD(IscsiInitiatorMO, CHAPNAME),
      FIELD(IscsiInitiatorMO, CHAPPASSWORD), FIELD(IscsiInitiatorMO, CHAPOLDPASSWORD),
      FIELD(IscsiInitiatorMO, CHAPNAMEINITATORVERTARGET), FIELD(IscsiInitiatorMO, CHAPPASSWORDINITATORVERTARGET),
      FIELD(IscsiInitiatorMO, CHAPOLDPASSWORDINITATORVERTARGET)}},
    {RECORD(FCInitiatorMO),
     {FIELD(FCInitiatorMO, ID), FIELD(FCInitiatorMO, NAME), FIELD(FCInitiatorMO, PARENTID), FIELD(FCInitiatorMO, PARENTNAME),
      FIELD(FCInitiatorMO, HEALTHSTATUS), FIELD(FCInitiatorMO, RUNNINGSTATUS), FIELD(FCInitiatorMO, ISFREE)}},
    {RECORD(FCPortMO),
     {FIELD(FCPortMO, ID), FIELD(FCPortMO, NAME), FIELD(FCPortMO, LOCATION), FIELD(FCPortMO, HEALTHSTATUS),
      FIELD(FCPortMO, RUNNINGSTATUS), FIELD(FCPortMO, LOGICTYPE), FIELD(FCPortMO, RUNSPEED), FIELD(FCPortMO, CONFSPEED),
      FIELD(FCPortMO, WWN), FIELD(FCPortMO, INIORTGT), FIELD(FCPortMO, FCRUNMODE), FIELD(FCPortMO, LOSTSIGNALS),
      FIELD(FCPortMO, BADCHARNUMBER), FIELD(FCPortMO, LOSTSYNC), FIELD(FCPortMO, LINKFAIL), FIELD(FCPortMO, STARTTIME),
      FIELD(FCPortMO, FLOGINDELAYTIMES), FIELD(FCPortMO, MAXSUPPORTSPEED)}},
    {RECORD(FCoEPortMO),
     {FIELD(FCoEPortMO, ID), FIELD(FCoEPortMO, NAME), FIELD(FCoEPortMO, LOCATION), FIELD(FCoEPortMO, HEALTHSTATUS),
      FIELD(FCoEPortMO, RUNNINGSTATUS), FIELD(FCoEPortMO, LOGICTYPE), FIELD(FCoEPortMO, RUNSPEED), FIELD(FCoEPortMO, WWN),
      FIELD(FCoEPortMO, INIORTGT), FIELD(FCoEPortMO, ERRORPACKETS), FIELD(FCoEPortMO, LOSTPACKETS),
      FIELD(FCoEPortMO, OVERFLOWEDPACKETS), FIELD(FCoEPortMO, STARTTIME), FIELD(FCoEPortMO, VLANID)}},
    {RECORD(ETHPortMO),
     {FIELD(ETHPortMO, ID),
      FIELD(ETHPortMO, NAME),
      FIELD(ETHPortMO, LOCATION),
      FIELD(ETHPortMO, HEALTHSTATUS),
      FIELD(ETHPortMO, RUNNINGSTATUS),
      FIELD(ETHPortMO, LOGICTYPE),
      FIELD(ETHPortMO, MACADDRESS),
      FIELD(ETHPortMO, INIORTGT),
      FIELD(ETHPortMO, MTU),
      FIELD(ETHPortMO, ISCSITCPPORT),
      FIELD(ETHPortMO, ISCSINAME),
      FIELD(ETHPortMO, ERRORPACKETS),
      FIELD(ETHPortMO, LOSTPACKETS),
      FIELD(ETHPortMO, OVERFLOWEDPACKETS),
      FIELD(ETHPortMO, STARTTIME),
      FIELD(ETHPortMO, SPEED),
      FIELD(ETHPortMO, IPV4MASK),
      FIELD(ETHPortMO, IPV4ADDRESS),
      FIELD(ETHPortMO, IPV6MASK),
      FIELD(ETHPortMO, IPV6ADDRESS)}},
    {RECORD(FCPortQuery), {FIELD(FCPortQuery, condition), FIELD(FCPortQuery, rangeStart), FIELD(FCPortQuery, rangeCount)}},
    {RECORD(FCoEPortQuery),
     {FIELD(FCoEPortQuery, condition), FIELD(FCoEPortQuery, rangeStart), FIELD(FCoEPortQuery, rangeCount)}},
    {RECORD(ETHPortQuery),
     {FIELD(ETHPortQuery, condition), FIELD(ETHPortQuery, rangeStart), FIELD(ETHPortQuery, rangeCount)}},
};

class Fields : public testing::TestWithParam<Record> {};

TEST_P(Fields, FollowEachOtherInTheirOrderAndFillTheRecord)
{
    std::size_t end = GetParam().begin;
    for (const Field& field : GetParam().fields) {
        EXPECT_EQ(field.offset, aligned(end, field.alignment)) << GetParam().name << "::" << field.name;
        end = field.offset + field.size;
    }
    EXPECT_EQ(GetParam().size, aligned(end, GetParam().alignment)) << "a field has no row here";
}

INSTANTIATE_TEST_SUITE_P(Records, Fields, testing::ValuesIn(kRecords), [](const auto& tested) { return tested.param.name; });

/// Applications tell records apart that can be deleted through a base: only these have a table of virtual functions.
TEST(Records, HaveVirtualDestructorsWhereTheyHadThem)
{
    EXPECT_TRUE(std::has_virtual_destructor<LunMO>::value);
    EXPECT_TRUE(std::has_virtual_destructor<SnapshotMO>::value);
    EXPECT_FALSE(std::has_virtual_destructor<LunGroupMO>::value);
    EXPECT_TRUE(std::has_virtual_destructor<MappingViewMO>::value);
    EXPECT_FALSE(std::has_virtual_destructor<HostMO>::value);
    EXPECT_FALSE(std::has_virtual_destructor<HostGroupMO>::value);
    EXPECT_TRUE(std::has_virtual_destructor<LunQuery>::value);
    EXPECT_TRUE(std::has_virtual_destructor<SnapshotQuery>::value);
    EXPECT_TRUE(std::has_virtual_destructor<MappingViewQuery>::value);
    EXPECT_FALSE(std::has_virtual_destructor<LunGroupQuery>::value);
    EXPECT_FALSE(std::has_virtual_destructor<HostGroupQuery>::value);
    EXPECT_FALSE(std::has_virtual_destructor<CLunUserSettableFeature>::value);
    EXPECT_FALSE(std::has_virtual_destructor<IscsiInitiatorMO>::value);
    EXPECT_FALSE(std::has_virtual_destructor<FCInitiatorMO>::value);
    EXPECT_FALSE(std::has_virtual_destructor<FCPortMO>::value);
    EXPECT_FALSE(std::has_virtual_destructor<FCoEPortMO>::value);
    EXPECT_FALSE(std::has_virtual_destructor<ETHPortMO>::value);
    EXPECT_FALSE(std::has_virtual_destructor<FCPortQuery>::value);
    EXPECT_FALSE(std::has_virtual_destructor<FCoEPortQuery>::value);
    EXPECT_FALSE(std::has_virtual_destructor<ETHPortQuery>::value);
}

}  // namespace
}  // namespace brevan::test
