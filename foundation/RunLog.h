#ifndef BREVAN_FOUNDATION_RUNLOG_H
#define BREVAN_FOUNDATION_RUNLOG_H

#include <initializer_list>
#include <string_view>

enum OS_LOGLEVEL : int { OS_LOG_DEBUG = 0, OS_LOG_INFO = 1, OS_LOG_WARN = 2, OS_LOG_ERROR = 3 };

/// First argument of every call into the log library.
constexpr const char* kProductTag = "Plim-Brevan-API-linux-Cpp";

/// One line of the run log, cut after 512 bytes. A level other than the four writes nothing. Text that comes from outside
/// goes through "%s", never into the format. Any thread; never fails towards its caller.
void COMMLOG(OS_LOGLEVEL level, const char* format, ...) __attribute__((format(printf, 2, 3)));

namespace brevan {

/// The same for a line of parts that need no format: every operation writes two of them.
void logParts(OS_LOGLEVEL level, std::initializer_list<std::string_view> parts) noexcept;

}  // namespace brevan

#endif
