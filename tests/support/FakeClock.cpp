#include "support/FakeClock.h"

#include <utility>

namespace brevan::test {

FakeClock::FakeClock() : m_real(clockSeam().replace(*this)) {}

FakeClock::~FakeClock()
{
    clockSeam().replace(m_real);
}

timeval FakeClock::now()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_now;
}

void FakeClock::sleepMicroseconds(std::uint64_t microseconds)
{
    std::function<void()> action;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_sleeps.push_back(microseconds);
        const std::uint64_t total = static_cast<std::uint64_t>(m_now.tv_usec) + microseconds;
        m_now.tv_sec += static_cast<time_t>(total / 1000000);
        m_now.tv_usec = static_cast<suseconds_t>(total % 1000000);
        action = m_onSleep;
    }
    if (action) {
        action();
    }
}

std::vector<std::uint64_t> FakeClock::sleeps() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_sleeps;
}

void FakeClock::set(timeval instant)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_now = instant;
}

void FakeClock::onSleep(std::function<void()> action)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_onSleep = std::move(action);
}

}  // namespace brevan::test
