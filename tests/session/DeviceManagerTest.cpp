#include <brevan/DeviceManager.h>

#include "DeviceManagerFixture.h"

namespace brevan::test {
namespace {

class PublicDeviceManager : public DeviceManagerFixture {};

TEST_F(PublicDeviceManager, StartsLoggingAndStopsIt)
{
    CDeviceManager* made = CDeviceManager::getInstance();
    EXPECT_EQ(recorder.calls(), Lines{kLogInit});
    const std::string removal = removalOf(static_cast<CDeviceManagerImpl*>(made));
    CDeviceManager::releaseInstance(made);
    EXPECT_EQ(recorder.calls(), (Lines{kLogInit, removal, kLogFini}));
}

TEST_F(PublicDeviceManager, RetriesOnceAfterHalfASecondUnlessToldOtherwise)
{
    CDeviceManager* made = CDeviceManager::getInstance();
    EXPECT_EQ(retrySettings(), RetryPair(1, 500000));
    CDeviceManager::releaseInstance(made);
    made = CDeviceManager::getInstance(7, 9);
    EXPECT_EQ(retrySettings(), RetryPair(7, 9));
    CDeviceManager::releaseInstance(made);
}

TEST_F(PublicDeviceManager, IsReleasedWithoutALogoutAndSaysNothingOfIt)
{
    CDeviceManager* made = CDeviceManager::getInstance();
    EXPECT_EQ(made->useConnection("10.0.0.1", 0, "dev", "tok", "ck"), 1);
    newLog();
    CDeviceManager::releaseInstance(made);
    EXPECT_EQ(newLog(),
              (Lines{"info: enter CDeviceManagerImpl::uninitial()!", "info: leave CDeviceManagerImpl::uninitial()!"}));
}

TEST_F(PublicDeviceManager, MayBeNullWhenReleased)
{
    CDeviceManager::releaseInstance(nullptr);
    EXPECT_EQ(recorder.calls(), Lines{removalOf(nullptr)});
    EXPECT_EQ(newLog(), Lines{});
}

}  // namespace
}  // namespace brevan::test
