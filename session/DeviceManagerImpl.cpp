#include "session/DeviceManagerImpl.h"

#include "foundation/LogLibrary.h"
#include "foundation/RunLog.h"

std::mutex CDeviceManagerImpl::m_mutex;
const brevan::HeldOverForks<CDeviceManagerImpl::m_mutex> CDeviceManagerImpl::kForks;
std::int32_t CDeviceManagerImpl::iniCnt = 0;
std::atomic<std::uint32_t> CDeviceManagerImpl::m_retryTimes{1};
std::atomic<std::uint32_t> CDeviceManagerImpl::m_trySleepTimeMs{500000};

CDeviceManagerImpl::CDeviceManagerImpl() = default;

CDeviceManagerImpl::~CDeviceManagerImpl()
{
    for (auto& handler : m_handlers) {
        const std::unique_ptr<CHandler> owned(handler.exchange(nullptr));
    }
}

CDeviceManagerImpl* CDeviceManagerImpl::createInstance(unsigned int retryTimes, unsigned int trySleepTimeMs)
{
    auto manager = std::make_unique<CDeviceManagerImpl>();
    initial(retryTimes, trySleepTimeMs);
    return manager.release();
}

void CDeviceManagerImpl::destroyInstance(CDeviceManagerImpl* manager)
{
    if (manager == nullptr) {
        return;
    }
    uninitial();
    const std::unique_ptr<CDeviceManagerImpl> owned(manager);
}

void CDeviceManagerImpl::initial(unsigned int retryTimes, unsigned int trySleepTimeMs)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    COMMLOG(OS_LOG_INFO, "enter CDeviceManagerImpl::initial()!");
    if (iniCnt == 0) {
        LOG_INIT();  // without logs the library works all the same
        m_retryTimes.store(retryTimes, std::memory_order_relaxed);
        m_trySleepTimeMs.store(trySleepTimeMs, std::memory_order_relaxed);
    }
    ++iniCnt;
    COMMLOG(OS_LOG_INFO, "leave CDeviceManagerImpl::initial()!");
}

void CDeviceManagerImpl::uninitial()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    COMMLOG(OS_LOG_INFO, "enter CDeviceManagerImpl::uninitial()!");
    --iniCnt;
    if (iniCnt == 0) {
        LOG_EXIT();
    }
    COMMLOG(OS_LOG_INFO, "leave CDeviceManagerImpl::uninitial()!");
}

void CDeviceManagerImpl::GetReTryInfo(unsigned int& retryTimes, unsigned int& trySleepTimeMs)
{
    retryTimes = m_retryTimes.load(std::memory_order_relaxed);
    trySleepTimeMs = m_trySleepTimeMs.load(std::memory_order_relaxed);
}
