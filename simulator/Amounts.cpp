#include "Amounts.h"

#include "Text.h"

#include <algorithm>
#include <iterator>

namespace brevan::sim {

namespace {

struct Unit {
    const char* name;
    std::uint64_t size;
};

// The largest first, as they are tried when an amount is written.
constexpr Unit kTimes[] = {{"min", 60000000}, {"s", 1000000}, {"ms", 1000}, {"us", 1}};
constexpr Unit kRates[] = {{"GB/s", 1000000000}, {"MB/s", 1000000}, {"kB/s", 1000}, {"B/s", 1}};
constexpr const char* kUnlimited = "unlimited";
constexpr std::uint64_t kFastest = std::uint64_t{1000} * 1000000000;

template <std::size_t Count>
std::optional<std::uint64_t> read(std::string_view text, const Unit (&units)[Count], std::uint64_t largest)
{
    const std::size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    const std::optional<std::uint64_t> number = decimal(text.substr(0, digits));
    const Unit* unit = std::find_if(std::begin(units), std::end(units),
                                    [&](const Unit& candidate) { return text.substr(digits) == candidate.name; });
    if (!number || unit == std::end(units) || *number > largest / unit->size) {
        return std::nullopt;
    }
    return *number * unit->size;
}

template <std::size_t Count>
std::string written(std::uint64_t amount, const Unit (&units)[Count])
{
    const Unit* unit = std::find_if(std::begin(units), std::end(units),
                                    [amount](const Unit& candidate) { return amount % candidate.size == 0; });
    return std::to_string(amount / unit->size) + unit->name;
}

}  // namespace

std::optional<Microseconds> readDuration(std::string_view text)
{
    const auto micros = read(text, kTimes, static_cast<std::uint64_t>(Microseconds(kLongestWait).count()));
    return micros ? std::optional<Microseconds>(static_cast<std::int64_t>(*micros)) : std::nullopt;
}

std::string durationText(Microseconds duration)
{
    return duration.count() == 0 ? "0s" : written(static_cast<std::uint64_t>(duration.count()), kTimes);
}

std::optional<std::uint64_t> readRate(std::string_view text)
{
    if (text == kUnlimited) {
        return 0;
    }
    const std::optional<std::uint64_t> rate = read(text, kRates, kFastest);
    return rate && *rate > 0 ? rate : std::nullopt;
}

std::string rateText(std::uint64_t bytesPerSecond)
{
    return bytesPerSecond == 0 ? kUnlimited : written(bytesPerSecond, kRates);
}

}  // namespace brevan::sim
