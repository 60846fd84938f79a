#include "Link.h"

#include <algorithm>

namespace brevan::sim {

void Link::set(const Speed& speed)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_speed = speed;
    m_freeAt = {};
}

Link::Speed Link::speed() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_speed;
}

Microseconds Link::carry(std::size_t bytes, Clock::time_point now)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_speed.bytesPerSecond == 0) {
        return m_speed.latency;
    }
    constexpr std::uint64_t kMicrosPerSecond = 1000000;
    const Microseconds transfer(static_cast<std::int64_t>(bytes * kMicrosPerSecond / m_speed.bytesPerSecond));
    m_freeAt = std::max(m_freeAt, now) + transfer;
    return m_speed.latency + std::chrono::duration_cast<Microseconds>(m_freeAt - now);
}

}  // namespace brevan::sim
