#include "foundation/InterfaceLog.h"

#include "foundation/Clock.h"
#include "foundation/RunLog.h"

#include <PlimLogAPI.h>

#include <charconv>
#include <cstring>
#include <ctime>

namespace brevan {

namespace {

/// The second as text. The C library has one lock for all its threads' local times, so each thread asks once a second.
const TimeText& secondText(time_t second)
{
    thread_local time_t known = -1;
    thread_local TimeText text{};
    if (second != known) {
        std::tm local{};
        localtime_r(&second, &local);
        std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &local);
        known = second;
    }
    return text;
}

constexpr char digit(long number)
{
    return static_cast<char>('0' + number % 10);
}

}  // namespace

TimeText timeText(const timeval& instant)
{
    TimeText text = secondText(instant.tv_sec);
    const long milliseconds = instant.tv_usec / 1000;
    char* end = text.data() + std::strlen(text.data());
    for (const char c : {' ', digit(milliseconds / 100), digit(milliseconds / 10), digit(milliseconds)}) {
        *end++ = c;
    }
    return text;
}

void writeInterfaceRecord(const char* operation, const timeval& start, int code)
{
    const TimeText begun = timeText(start);
    const TimeText ended = timeText(theClock().now());
    std::array<char, 16> result{};
    std::to_chars(result.data(), result.data() + result.size(), code);
    const auto write = code == 0 ? Log_Interface_Info : Log_Interface_Error;
    write(kProductTag, "1", "", operation, "", "", "", begun.data(), ended.data(), result.data(), "");
}

}  // namespace brevan
