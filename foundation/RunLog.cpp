#include "foundation/RunLog.h"

#include <PlimLogAPI.h>

#include <array>
#include <cstdarg>
#include <cstddef>
#include <cstdio>

namespace {

constexpr std::size_t kMessageSize = 513;  // 512 characters and the terminator

using WriteLine = void (*)(const char* tag, const char* message);
constexpr std::array<WriteLine, 4> kWriters = {Log_Run_Debug, Log_Run_Info, Log_Run_Warn, Log_Run_Error};

void write(OS_LOGLEVEL level, const char* message)
{
    const auto index = static_cast<std::size_t>(level);
    if (index < kWriters.size()) {
        kWriters[index](kProductTag, message);
    }
}

}  // namespace

void COMMLOG(OS_LOGLEVEL level, const char* format, ...)
{
    // vsnprintf and not the bounds-checked formatter: that one empties the buffer where a message must be cut.
    std::array<char, kMessageSize> message{};
    va_list arguments;
    va_start(arguments, format);
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): va_start() stands above
    const int length = std::vsnprintf(message.data(), message.size(), format, arguments);
    va_end(arguments);
    if (length < 0) {
        Log_Run_Info(kProductTag, message.data());
    }
    write(level, message.data());
}

void brevan::logParts(OS_LOGLEVEL level, std::initializer_list<std::string_view> parts) noexcept
{
    std::array<char, kMessageSize> message;
    std::size_t length = 0;
    for (const std::string_view part : parts) {
        length += part.copy(message.data() + length, kMessageSize - 1 - length);
    }
    message[length] = '\0';
    write(level, message.data());
}
