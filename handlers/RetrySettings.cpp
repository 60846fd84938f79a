#include "handlers/RetrySettings.h"

#include "session/DeviceManagerImpl.h"

namespace brevan {

void RetrySettings::refresh(const CDeviceManagerImpl* manager)
{
    if (manager == nullptr) {
        return;
    }
    unsigned int times = 0;
    unsigned int pause = 0;
    CDeviceManagerImpl::GetReTryInfo(times, pause);
    m_retryTimes.store(times, std::memory_order_relaxed);
    m_trySleepTimeMs.store(pause, std::memory_order_relaxed);
}

}  // namespace brevan
