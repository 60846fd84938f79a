#include "support/Recorder.h"

#include <brevan/brevan.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

TEST_F(DeviceManager, HandsOutOneHandlerOfEachTypeAndNoneOfOthers)
{
    CDeviceManager* const manager = CDeviceManager::getInstance();
    for (int type = HANDLER_LUN; type <= HANDLER_FCOE_PORT; ++type) {
        CHandler* const handler = manager->getHandler(static_cast<HANDLERTYPE>(type));
        EXPECT_NE(handler, nullptr) << type;
        EXPECT_EQ(manager->getHandler(static_cast<HANDLERTYPE>(type)), handler) << type;
    }
    for (const int none : {-1, 0, 1, 15}) {
        EXPECT_EQ(manager->getHandler(static_cast<HANDLERTYPE>(none)), nullptr) << none;
    }
    CDeviceManager::releaseInstance(manager);
}

TEST_F(DeviceManager, HandsOutWhatTheTypeIsCalledAfter)
{
    CDeviceManager* const manager = CDeviceManager::getInstance();
    EXPECT_NE(dynamic_cast<CLunHandler*>(manager->getHandler(HANDLER_LUN)), nullptr);
    EXPECT_NE(dynamic_cast<CLunGroupHandler*>(manager->getHandler(HANDLER_LUNGROUP)), nullptr);
    EXPECT_NE(dynamic_cast<CHostHandler*>(manager->getHandler(HANDLER_HOST)), nullptr);
    EXPECT_NE(dynamic_cast<CHostGroupHandler*>(manager->getHandler(HANDLER_HOSTGROUP)), nullptr);
    EXPECT_NE(dynamic_cast<CMappingViewHandler*>(manager->getHandler(HANDLER_MAPPINGVIEW)), nullptr);
    EXPECT_NE(dynamic_cast<CIscsiInitiatorHandler*>(manager->getHandler(HANDLER_ISCSI_INITIATOR)), nullptr);
    EXPECT_NE(dynamic_cast<CSnapshotHandler*>(manager->getHandler(HANDLER_SNAPSHOT)), nullptr);
    EXPECT_NE(dynamic_cast<CDiskAttachHandler*>(manager->getHandler(HANDLER_DISK_ATTACH)), nullptr);
    EXPECT_NE(dynamic_cast<CDiskScannerHandler*>(manager->getHandler(HANDLER_DISK_SCANNER)), nullptr);
    EXPECT_NE(dynamic_cast<CFCInitiatorHandler*>(manager->getHandler(HANDLER_FC_INITIATOR)), nullptr);
    EXPECT_NE(dynamic_cast<CETHPortHandler*>(manager->getHandler(HANDLER_ETH_PORT)), nullptr);
    EXPECT_NE(dynamic_cast<CFCPortHandler*>(manager->getHandler(HANDLER_FC_PORT)), nullptr);
    EXPECT_NE(dynamic_cast<CFCoEPortHandler*>(manager->getHandler(HANDLER_FCOE_PORT)), nullptr);
    CDeviceManager::releaseInstance(manager);
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

}  // namespace brevan::contract
