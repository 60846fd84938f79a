#include "foundation/InterfaceLog.h"

#include "foundation/Clock.h"
#include "foundation/RunLog.h"

#include <PlimLogAPI.h>
#include <safe_str_lib.h>

#include <cstdio>
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

}  // namespace

TimeText timeText(const timeval& instant)
{
    TimeText text = secondText(instant.tv_sec);
    std::array<char, 32> milliseconds{};
    std::snprintf(milliseconds.data(), milliseconds.size(), " %03ld", static_cast<long>(instant.tv_usec / 1000));
    strcat_s(text.data(), text.size(), milliseconds.data());
    return text;
}

void writeInterfaceRecord(const char* operation, const timeval& start, int code)
{
    const TimeText begun = timeText(start);
    const TimeText ended = timeText(theClock().now());
    std::array<char, 256> result{};
    std::snprintf(result.data(), result.size(), "%d", code);
    const auto write = code == 0 ? Log_Interface_Info : Log_Interface_Error;
    write(kProductTag, "1", "", operation, "", "", "", begun.data(), ended.data(), result.data(), "");
}

}  // namespace brevan
