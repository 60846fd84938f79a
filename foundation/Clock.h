#ifndef BREVAN_FOUNDATION_CLOCK_H
#define BREVAN_FOUNDATION_CLOCK_H

#include "foundation/Seam.h"

#include <sys/time.h>

#include <cstdint>

namespace brevan {

/// Time of day and pauses.
class Clock {
public:
    virtual ~Clock() = default;
    virtual timeval now() = 0;
    virtual void sleepMicroseconds(std::uint64_t microseconds) = 0;
};

Seam<Clock>& clockSeam();

inline Clock& theClock()
{
    return clockSeam().get();
}

}  // namespace brevan

#endif
