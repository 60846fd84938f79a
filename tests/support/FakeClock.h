#ifndef BREVAN_TESTS_SUPPORT_FAKECLOCK_H
#define BREVAN_TESTS_SUPPORT_FAKECLOCK_H

#include "foundation/Clock.h"

#include <cstdint>
#include <functional>
#include <mutex>
#include <vector>

namespace brevan::test {

/// Stands still at 2021-03-04 05:06:07.089 UTC, save for the pauses, which it notes instead of waiting. From construction to
/// destruction it is the SDK's clock.
class FakeClock final : public Clock {
public:
    FakeClock();
    ~FakeClock() override;

    timeval now() override;
    void sleepMicroseconds(std::uint64_t microseconds) override;

    /// The pauses so far, in microseconds.
    std::vector<std::uint64_t> sleeps() const;

    void set(timeval instant);
    void onSleep(std::function<void()> action);

private:
    mutable std::mutex m_mutex;
    timeval m_now{1614834367, 89000};
    std::vector<std::uint64_t> m_sleeps;
    std::function<void()> m_onSleep;
    Clock& m_real;
};

}  // namespace brevan::test

#endif
