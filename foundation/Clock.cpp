#include "foundation/Clock.h"

#include <cerrno>
#include <ctime>

namespace brevan {
namespace {

constexpr std::uint64_t kMicrosecondsPerSecond = 1000000;

class SystemClock final : public Clock {
public:
    timeval now() override
    {
        timeval instant{};
        gettimeofday(&instant, nullptr);
        return instant;
    }

    /// A signal of the application must not shorten a pause.
    void sleepMicroseconds(std::uint64_t microseconds) override
    {
        timespec left{};
        left.tv_sec = static_cast<time_t>(microseconds / kMicrosecondsPerSecond);
        left.tv_nsec = static_cast<long>(microseconds % kMicrosecondsPerSecond) * 1000;
        while (nanosleep(&left, &left) != 0 && errno == EINTR) {
        }
    }
};

SystemClock g_systemClock;

}  // namespace

Seam<Clock>& clockSeam()
{
    static Seam<Clock> seam(g_systemClock);
    return seam;
}

}  // namespace brevan
