#include "ScanSteps.h"
#include "support/Recorder.h"

#include <brevan/brevan.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/ipc.h>
#include <sys/sem.h>

#include <sstream>

// Start and stop of the process's services, and the handlers that a device manager hands out.

namespace brevan::contract {
namespace {

using test::Recorder;
using testing::ElementsAre;

/// Each test begins with no device manager in the process.
class DeviceManager : public testing::Test {
protected:
    DeviceManager()
    {
        recorder.reset();
        recorder.logCalls = true;
    }

    static std::string removed(const CDeviceManager* manager)
    {
        std::ostringstream call;
        call << "call: remove " << static_cast<const void*>(manager);
        return call.str();
    }

    Recorder& recorder = Recorder::instance();
};

const char* const kEnterInitial = "info: enter CDeviceManagerImpl::initial()!";
const char* const kLeaveInitial = "info: leave CDeviceManagerImpl::initial()!";
const char* const kEnterUninitial = "info: enter CDeviceManagerImpl::uninitial()!";
const char* const kLeaveUninitial = "info: leave CDeviceManagerImpl::uninitial()!";
const char* const kLogInit =
    "call: LogInit Plim-Brevan-API-linux-Cpp " BREVAN_LOG_LIBRARY_DIR "/Brevan_API.ini " BREVAN_LOG_LIBRARY_DIR "/logs/";
const char* const kLogFini = "call: LogFini Plim-Brevan-API-linux-Cpp";

}  // namespace

TEST_F(DeviceManager, StartsTheLogsWithTheFirstAndStopsThemWithTheLast)
{
    CDeviceManager* const first = CDeviceManager::getInstance();
    CDeviceManager* const second = CDeviceManager::getInstance();
    CDeviceManager::releaseInstance(first);
    CDeviceManager::releaseInstance(second);
    EXPECT_THAT(recorder.log(),
                ElementsAre(kEnterInitial, kLogInit, kLeaveInitial, kEnterInitial, kLeaveInitial, removed(first),
                            kEnterUninitial, kLeaveUninitial, removed(second), kEnterUninitial, kLogFini, kLeaveUninitial));
}

TEST_F(DeviceManager, WorksWhereTheLogsCannotBeStarted)
{
    recorder.logInitResult = -1;
    CDeviceManager* const manager = CDeviceManager::getInstance();
    ASSERT_NE(manager, nullptr);
    CDeviceManager::releaseInstance(manager);
    EXPECT_THAT(recorder.log(), ElementsAre(kEnterInitial, kLogInit, kLeaveInitial, removed(manager), kEnterUninitial,
                                            kLogFini, kLeaveUninitial));
}

TEST_F(DeviceManager, MayBeNullWhenItIsReleased)
{
    CDeviceManager::releaseInstance(nullptr);
    EXPECT_THAT(recorder.log(), testing::Each(removed(nullptr)));
}

TEST_F(DeviceManager, KeepsTheRetrySettingsOfTheFirst)
{
    CDeviceManager* const first = CDeviceManager::getInstance(0, 70000);
    CDeviceManager* const second = CDeviceManager::getInstance(5, 80000);
    const char* const kRequest = "DELETE /lungroup/associate?ID=3&ASSOCIATEOBJTYPE=27&ASSOCIATEOBJID=7";
    recorder.expectRequest(kRequest, test::refusal(50331651, "busy"));
    auto* const groups = static_cast<CLunGroupHandler*>(second->getHandler(HANDLER_LUNGROUP));
    EXPECT_EQ(groups->removeSnapshotFromLunGroup("7", "3"), 50331651);
    recorder.verify();
    CDeviceManager::releaseInstance(second);
    CDeviceManager::releaseInstance(first);
}

TEST_F(DeviceManager, WritesAllElevenArgumentsOfARecord)
{
    CDeviceManager* const manager = CDeviceManager::getInstance();
    manager->useConnection("10.0.0.1", 0, "2102", "TOKEN", "COOKIE");
    manager->useConnection("", 0, "2102", "TOKEN", "COOKIE");
    const char* const kTag = "Plim-Brevan-API-linux-Cpp";
    const char* const kNow = "2021-03-04 05:06:07 089";
    EXPECT_THAT(recorder.records(),
                ElementsAre(ElementsAre(kTag, "1", "", "useConnection", "", "", "", kNow, kNow, "0", ""),
                            ElementsAre(kTag, "1", "", "useConnection", "", "", "", kNow, kNow, "1", "")));
    CDeviceManager::releaseInstance(manager);
}

namespace {

/// 1: of that class, and the same object a second time.
template <class Handler>
int isOf(CDeviceManager& manager, HANDLERTYPE type)
{
    CHandler* const handler = manager.getHandler(type);
    return dynamic_cast<Handler*>(handler) != nullptr && manager.getHandler(type) == handler ? 1 : 0;
}

int rightHandlers(CDeviceManager& manager)
{
    return isOf<CLunHandler>(manager, HANDLER_LUN) + isOf<CLunGroupHandler>(manager, HANDLER_LUNGROUP) +
           isOf<CHostHandler>(manager, HANDLER_HOST) + isOf<CHostGroupHandler>(manager, HANDLER_HOSTGROUP) +
           isOf<CMappingViewHandler>(manager, HANDLER_MAPPINGVIEW) +
           isOf<CIscsiInitiatorHandler>(manager, HANDLER_ISCSI_INITIATOR) +
           isOf<CSnapshotHandler>(manager, HANDLER_SNAPSHOT) + isOf<CDiskAttachHandler>(manager, HANDLER_DISK_ATTACH) +
           isOf<CDiskScannerHandler>(manager, HANDLER_DISK_SCANNER) +
           isOf<CFCInitiatorHandler>(manager, HANDLER_FC_INITIATOR) + isOf<CETHPortHandler>(manager, HANDLER_ETH_PORT) +
           isOf<CFCPortHandler>(manager, HANDLER_FC_PORT) + isOf<CFCoEPortHandler>(manager, HANDLER_FCOE_PORT);
}

int handlersOfOtherNumbers(CDeviceManager& manager)
{
    int found = 0;
    for (const int number : {-1, 0, 1, 15}) {
        found += manager.getHandler(static_cast<HANDLERTYPE>(number)) == nullptr ? 0 : 1;
    }
    return found;
}

int lockOf(int flags)
{
    return semget(1235, 1, flags);
}

}  // namespace

/// In a process of its own: the scanner's making is remembered.
Table handlerContract()
{
    const Call free = [](Sdk& sdk) {
        sdk.scanner();
        semid_ds status{};
        semctl(lockOf(0), 0, IPC_STAT, &status);
        return std::to_string(semctl(lockOf(0), 0, GETVAL)) + (status.sem_perm.mode == 0600 ? ", the owner's alone" : "");
    };
    const Call held = [](Sdk& sdk) {
        lockOf(IPC_CREAT | 0600);  // its value is 0
        sdk.scanner();
        return semctl(lockOf(0), 0, GETVAL);
    };
    return {Operation("getHandler")
                .succeeds(
                    "thirteen types, the same object every time", [](Sdk& sdk) { return rightHandlers(sdk.manager); },
                    kLockMade, "13")
                .succeeds(
                    "no other number", [](Sdk& sdk) { return handlersOfOtherNumbers(sdk.manager); }, {}, "0")
                .succeeds("the scanner's lock is free", free, kLockMade, "1, the owner's alone")
                .succeeds("a lock of another process is left as it is", held, "info: Sem exists.SemId:[1]", "0")};
}

BREVAN_CONTRACT(Handlers, rowsAlone(handlerContract()));

}  // namespace brevan::contract
