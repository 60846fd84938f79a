#ifndef BREVAN_SIMULATOR_AMOUNTS_H
#define BREVAN_SIMULATOR_AMOUNTS_H

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace brevan::sim {

using Microseconds = std::chrono::microseconds;

/// No wait is longer: it is for a client to give up, not for the array.
constexpr std::chrono::hours kLongestWait{1};

/// A time as people write it: a whole number and "us", "ms", "s" or "min", such as "5ms". Nothing where it is anything else
/// or longer than kLongestWait.
std::optional<Microseconds> readDuration(std::string_view text);
/// In the largest unit that has no remainder.
std::string durationText(Microseconds duration);

/// Bytes a second: a whole number and "B/s", "kB/s", "MB/s" or "GB/s" (powers of 1000), such as "1MB/s"; 0 for "unlimited".
/// Nothing where it is anything else, or no byte a second at all.
std::optional<std::uint64_t> readRate(std::string_view text);
std::string rateText(std::uint64_t bytesPerSecond);

}  // namespace brevan::sim

#endif
