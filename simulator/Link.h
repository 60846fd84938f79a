#ifndef BREVAN_SIMULATOR_LINK_H
#define BREVAN_SIMULATOR_LINK_H

#include "Amounts.h"

#include <mutex>

namespace brevan::sim {

/// The line between the array and its clients, as slow as it is asked to be: a latency that every answer has, and a
/// bandwidth that all answers share. Any thread.
class Link {
public:
    using Clock = std::chrono::steady_clock;
    struct Speed {
        Microseconds latency{0};
        std::uint64_t bytesPerSecond = 0;  ///< 0: unlimited
    };

    void set(const Speed& speed);
    Speed speed() const;

    /// How long an answer of so many bytes that is ready now takes until its last byte has arrived. It keeps the line busy:
    /// what is ready next has to wait for it.
    Microseconds carry(std::size_t bytes, Clock::time_point now);

private:
    mutable std::mutex m_mutex;
    Speed m_speed;
    Clock::time_point m_freeAt;
};

}  // namespace brevan::sim

#endif
