#include "session/DeviceManagerImpl.h"

#include "DeviceManagerFixture.h"

#include <thread>

namespace {

using Handlers = std::array<std::atomic<CHandler*>, CDeviceManagerImpl::kHandlerCount>;

Handlers& handlersOf(CDeviceManagerImpl& manager);

// An explicit instantiation may name what is private: the order of deletion is seen with handlers of the test's own.
template <Handlers CDeviceManagerImpl::*Member>
struct Access {
    friend Handlers& handlersOf(CDeviceManagerImpl& manager) { return manager.*Member; }
};
template struct Access<&CDeviceManagerImpl::m_handlers>;

}  // namespace

namespace brevan::test {
namespace {

class DeviceManager : public DeviceManagerFixture {};

/// Notes its number when it is deleted.
class Probe final : public CHandler {
public:
    Probe(int number, std::vector<int>& deleted) : m_number(number), m_deleted(deleted) {}
    ~Probe() override { m_deleted.push_back(m_number); }

private:
    int m_number;
    std::vector<int>& m_deleted;
};

const Lines kInitialLines = {"info: enter CDeviceManagerImpl::initial()!", "info: leave CDeviceManagerImpl::initial()!"};
const Lines kUninitialLines = {"info: enter CDeviceManagerImpl::uninitial()!",
                               "info: leave CDeviceManagerImpl::uninitial()!"};

TEST_F(DeviceManager, SaysWhenItStartsAndStops)
{
    CDeviceManagerImpl* made = CDeviceManagerImpl::createInstance(1, 2);
    EXPECT_EQ(newLog(), kInitialLines);
    CDeviceManagerImpl::destroyInstance(made);
    EXPECT_EQ(newLog(), kUninitialLines);
    EXPECT_EQ(recorder.calls(), (Lines{kLogInit, kLogFini}));
}

TEST_F(DeviceManager, WorksWithoutALogLibrary)
{
    recorder.logInitResult = -1;
    CDeviceManagerImpl* made = CDeviceManagerImpl::createInstance(3, 4);
    EXPECT_NE(made, nullptr);
    EXPECT_EQ(retrySettings(), RetryPair(3, 4));
    CDeviceManagerImpl::destroyInstance(made);
    EXPECT_EQ(recorder.calls(), (Lines{kLogInit, kLogFini}));
}

TEST_F(DeviceManager, TakesTheRetrySettingsOfTheFirstUntilTheLastIsGone)
{
    CDeviceManagerImpl* first = CDeviceManagerImpl::createInstance(3, 700);
    CDeviceManagerImpl* second = CDeviceManagerImpl::createInstance(9, 900);
    EXPECT_EQ(retrySettings(), RetryPair(3, 700));
    CDeviceManagerImpl::destroyInstance(first);
    CDeviceManagerImpl* third = CDeviceManagerImpl::createInstance(8, 800);
    EXPECT_EQ(retrySettings(), RetryPair(3, 700));
    CDeviceManagerImpl::destroyInstance(third);
    EXPECT_EQ(recorder.calls(), Lines{kLogInit});
    CDeviceManagerImpl::destroyInstance(second);
    EXPECT_EQ(recorder.calls(), (Lines{kLogInit, kLogFini}));
    CDeviceManagerImpl* fresh = CDeviceManagerImpl::createInstance(5, 500);
    EXPECT_EQ(retrySettings(), RetryPair(5, 500));
    CDeviceManagerImpl::destroyInstance(fresh);
}

TEST_F(DeviceManager, DoesNotCountTheDestructionOfNull)
{
    CDeviceManagerImpl* made = CDeviceManagerImpl::createInstance(1, 2);
    newLog();
    CDeviceManagerImpl::destroyInstance(nullptr);
    EXPECT_EQ(newLog(), Lines{});
    EXPECT_EQ(recorder.calls(), Lines{kLogInit});
    CDeviceManagerImpl::destroyInstance(made);
    EXPECT_EQ(recorder.calls(), (Lines{kLogInit, kLogFini}));
}

TEST_F(DeviceManager, CountsManagersOfSeveralThreads)
{
    const auto makeAndDestroy = [] {
        for (int i = 0; i < 50; ++i) {
            CDeviceManagerImpl::destroyInstance(CDeviceManagerImpl::createInstance(1, 2));
        }
    };
    CDeviceManagerImpl* keepsLogging = CDeviceManagerImpl::createInstance(1, 2);
    std::thread other(makeAndDestroy);
    makeAndDestroy();
    other.join();
    CDeviceManagerImpl::destroyInstance(keepsLogging);
    EXPECT_EQ(recorder.calls(), (Lines{kLogInit, kLogFini}));
}

TEST_F(DeviceManager, DeletesItsHandlersInTheirOrder)
{
    std::vector<int> deleted;
    auto made = std::make_unique<CDeviceManagerImpl>();
    for (int index = 12; index >= 0; --index) {
        handlersOf(*made).at(static_cast<std::size_t>(index)) = std::make_unique<Probe>(index, deleted).release();
    }
    made.reset();
    EXPECT_EQ(deleted, (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
}

TEST_F(DeviceManager, DeletesOnlyTheHandlersThatThereAre)
{
    std::vector<int> deleted;
    auto made = std::make_unique<CDeviceManagerImpl>();
    handlersOf(*made)[11] = std::make_unique<Probe>(11, deleted).release();
    handlersOf(*made)[2] = std::make_unique<Probe>(2, deleted).release();
    made.reset();
    EXPECT_EQ(deleted, (std::vector<int>{2, 11}));
}

TEST_F(DeviceManager, KeepsItsHandlersInTheOrderOfDeletion)
{
    const int order[] = {2, 3, 7, 4, 5, 6, 9, 8, 11, 12, 13, 14, 10};
    std::vector<CHandler*> handedOut;
    for (const int type : order) {
        handedOut.push_back(manager.getHandler(static_cast<HANDLERTYPE>(type)));
    }
    std::vector<CHandler*> kept;
    for (const auto& handler : handlersOf(manager)) {
        kept.push_back(handler.load());
    }
    EXPECT_EQ(kept, handedOut);
}

TEST_F(DeviceManager, MakesNoHandlerForATypeThatThereIsNot)
{
    for (const int type : {0, 1, 15, -1}) {
        EXPECT_EQ(manager.getHandler(static_cast<HANDLERTYPE>(type)), nullptr) << type;
    }
    for (const auto& handler : handlersOf(manager)) {
        EXPECT_EQ(handler.load(), nullptr);
    }
}

}  // namespace
}  // namespace brevan::test
