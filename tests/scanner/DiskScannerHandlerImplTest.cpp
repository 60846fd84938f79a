#include "scanner/DiskScannerHandlerImpl.h"

#include "scanner/ScanFixture.h"

namespace brevan::test {
namespace {

class DiskScannerHandler : public SdkTest {
protected:
    DiskScannerHandler() { removeSemaphore(); }
};

TEST_F(DiskScannerHandler, InitialisesTheLockOncePerProcess)
{
    const CDiskScannerHandlerImpl first(&manager);
    EXPECT_THAT(newLog(), testing::ElementsAre("info: InitLock Succeed.New semId:[" + std::to_string(semaphoreId()) + "]"));
    makeSemaphore(0);
    const CDiskScannerHandlerImpl second(&manager);
    EXPECT_THAT(newLog(), testing::IsEmpty());
    EXPECT_EQ(semaphoreValue(), 0) << "a lock that is held was given free";
}

TEST_F(DiskScannerHandler, LeavesTheLockAloneWithoutADeviceManager)
{
    const CDiskScannerHandlerImpl handler;
    EXPECT_THAT(newLog(), testing::IsEmpty());
    EXPECT_EQ(semaphoreId(), -1);
}

TEST_F(DiskScannerHandler, IsWhatTheDeviceManagerHandsOut)
{
    auto* handler = static_cast<CDiskScannerHandler*>(manager.getHandler(HANDLER_DISK_SCANNER));
    EXPECT_NE(dynamic_cast<CDiskScannerHandlerImpl*>(handler), nullptr);
    EXPECT_EQ(semaphoreValue(), 1);
    std::string empty;
    EXPECT_EQ(handler->scanLunAfterAttach(empty), "");
    EXPECT_EQ(lastFailure().text, "lunID is empty! scanLunAfterAttach");
}

TEST_F(DiskScannerHandler, TriesAgainWithTheNextOneWhereTheLockCouldNotBeMade)
{
    EXPECT_TRUE(passesInAnotherNamespace([this] {
        const int taken = exhaustSemaphores();
        for (int i = 0; i < 2; ++i) {
            const CDiskScannerHandlerImpl failing(&manager);
            EXPECT_THAT(newLog(), testing::ElementsAre("error: Create sem failed.", "error: Init Lock failed."));
        }
        removeSemaphore(taken);
        const CDiskScannerHandlerImpl working(&manager);
        EXPECT_EQ(semaphoreValue(), 1);
    }));
}

}  // namespace
}  // namespace brevan::test
