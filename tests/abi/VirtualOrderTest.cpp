#include <brevan/brevan.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <ostream>
#include <vector>

// The order of virtual functions is part of the binary interface: an application that was built with other headers would call
// another operation without a word. New operations go behind the last one, and get a row here.

namespace brevan::test {
namespace {

/// The two destructors of a class take the first two slots (Itanium C++ ABI, clause 2.5.2).
constexpr std::intptr_t kFirstSlot = 2;

struct Slot {
    const char* operation;
    std::intptr_t number;
};

/// The place in the table of virtual functions, read from a pointer to the member: 1 plus the place in bytes where the function
/// is virtual (Itanium C++ ABI, clause 2.3).
template <class Member>
Slot slot(const char* operation, Member member)
{
    std::intptr_t words[2] = {};
    static_assert(sizeof member == sizeof words, "a pointer to a member function has two words");
    std::memcpy(words, &member, sizeof words);
    return {operation, (words[0] - 1) / static_cast<std::intptr_t>(sizeof(void*))};
}

struct Interface {
    const char* name;
    std::vector<Slot> operations;
};

void PrintTo(const Interface& interface, std::ostream* out)
{
    *out << interface.name;
}

#define SLOT(Class, operation) slot(#operation, &Class::operation)

const std::vector<Interface> kInterfaces = {
    {"CDeviceManager",
     {SLOT(CDeviceManager, loginDevice), SLOT(CDeviceManager, logoutDevice), SLOT(CDeviceManager, keepAlive),
      SLOT(CDeviceManager, getHandler), SLOT(CDeviceManager, useConnection)}},
    {"CLunHandler",
     {SLOT(CLunHandler, createLun), SLOT(CLunHandler, getLun), SLOT(CLunHandler, getLunByLunGroup),
      SLOT(CLunHandler, getLunByHost)}},
    {"CLunGroupHandler",
     {SLOT(CLunGroupHandler, createLunGroup), SLOT(CLunGroupHandler, deleteLunGroup), SLOT(CLunGroupHandler, getLunGroup),
      SLOT(CLunGroupHandler, addLunToLunGroup), SLOT(CLunGroupHandler, removeLunFromLunGroup),
      SLOT(CLunGroupHandler, getLunGroupByLun), SLOT(CLunGroupHandler, getLunGroupByMappingView),
      SLOT(CLunGroupHandler, addSnapshotToLunGroup), SLOT(CLunGroupHandler, removeSnapshotFromLunGroup),
      SLOT(CLunGroupHandler, getLunGroupBySnapshot), SLOT(CLunGroupHandler, getObjNOFromLunGroup)}},
    {"CHostHandler", {SLOT(CHostHandler, createHost), SLOT(CHostHandler, getHost)}},
    {"CHostGroupHandler",
     {SLOT(CHostGroupHandler, createHostGroup), SLOT(CHostGroupHandler, deleteHostGroup),
      SLOT(CHostGroupHandler, getHostGroup), SLOT(CHostGroupHandler, addHostToHostGroup),
      SLOT(CHostGroupHandler, getHostGroupByHost), SLOT(CHostGroupHandler, getHostGroupByMappingView),
      SLOT(CHostGroupHandler, removeHostFromHostGroup)}},
    {"CMappingViewHandler",
     {SLOT(CMappingViewHandler, createMappingView), SLOT(CMappingViewHandler, deleteMappingView),
      SLOT(CMappingViewHandler, getMappingView), SLOT(CMappingViewHandler, addLunGroupToMappingView),
      SLOT(CMappingViewHandler, removeLunGroupFromMappingView), SLOT(CMappingViewHandler, addHostGroupToMappingView),
      SLOT(CMappingViewHandler, removeHostGroupFromMappingView), SLOT(CMappingViewHandler, getMappingViewByLunGroup),
      SLOT(CMappingViewHandler, getMappingViewByHostGroup)}},
    {"CIscsiInitiatorHandler",
     {SLOT(CIscsiInitiatorHandler, createIscsiInitiator), SLOT(CIscsiInitiatorHandler, deleteIscsiInitiator),
      SLOT(CIscsiInitiatorHandler, modifyIscsiInitiator), SLOT(CIscsiInitiatorHandler, getIscsiInitiator),
      SLOT(CIscsiInitiatorHandler, addIscsiInitiatorToHost), SLOT(CIscsiInitiatorHandler, removeIscsiInitiatorFromHost)}},
    {"CSnapshotHandler",
     {SLOT(CSnapshotHandler, getSnapshot), SLOT(CSnapshotHandler, getSnapshotByLunGroup),
      SLOT(CSnapshotHandler, getSnapshotByHost)}},
    {"CDiskAttachHandler",
     {SLOT(CDiskAttachHandler, attachLunToHost), SLOT(CDiskAttachHandler, detachLunFromHost),
      SLOT(CDiskAttachHandler, attachSnapshotToHost), SLOT(CDiskAttachHandler, detachSnapshotFromHost)}},
    {"CDiskScannerHandler",
     {SLOT(CDiskScannerHandler, scanLunAfterAttach), SLOT(CDiskScannerHandler, scanSnapshotAfterAttach),
      SLOT(CDiskScannerHandler, scanLunBeforeDetach), SLOT(CDiskScannerHandler, scanSnapshotBeforeDetach),
      SLOT(CDiskScannerHandler, GetDiskPath)}},
    {"CFCInitiatorHandler",
     {SLOT(CFCInitiatorHandler, createFCInitiator), SLOT(CFCInitiatorHandler, deleteFCInitiator),
      SLOT(CFCInitiatorHandler, getFCInitiator), SLOT(CFCInitiatorHandler, addFCInitiatorToHost),
      SLOT(CFCInitiatorHandler, removeFCInitiatorFromHost)}},
    {"CETHPortHandler", {SLOT(CETHPortHandler, getETHPort), SLOT(CETHPortHandler, getETHPortBatch)}},
    {"CFCPortHandler", {SLOT(CFCPortHandler, getFCPort), SLOT(CFCPortHandler, getFCPortBatch)}},
    {"CFCoEPortHandler", {SLOT(CFCoEPortHandler, getFCoEPort), SLOT(CFCoEPortHandler, getFCoEPortBatch)}},
};

class VirtualFunctions : public testing::TestWithParam<Interface> {};

TEST_P(VirtualFunctions, KeepTheirOrder)
{
    std::intptr_t expected = kFirstSlot;
    for (const Slot& slot : GetParam().operations) {
        EXPECT_EQ(slot.number, expected++) << GetParam().name << "::" << slot.operation;
    }
}

INSTANTIATE_TEST_SUITE_P(Classes, VirtualFunctions, testing::ValuesIn(kInterfaces),
                         [](const auto& tested) { return tested.param.name; });

}  // namespace
}  // namespace brevan::test
