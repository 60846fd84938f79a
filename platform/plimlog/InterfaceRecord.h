#ifndef BREVAN_PLIMLOG_INTERFACERECORD_H
#define BREVAN_PLIMLOG_INTERFACERECORD_H

#include <optional>
#include <string>

#include <sys/types.h>

namespace brevan::plimlog {

/// The arguments of one interface-log call. Any pointer may be null, which reads as an empty text.
struct InterfaceCall {
    const char* tag;
    const char* interfaceType;
    const char* reserved3;
    const char* operation;
    const char* reserved5;
    const char* reserved6;
    const char* reserved7;
    const char* start;
    const char* end;
    const char* code;
    const char* reserved11;
};

/// The record as one line without its end: its fields, separated by tabs, which no field can hold because they are escaped.
std::string interfaceRecord(const InterfaceCall& call, bool succeeded, pid_t process, pid_t thread);

/// Milliseconds from `start` to `end`, both "2021-03-04 05:06:07 089". Nothing where one is no such text or the end is the
/// earlier one. Both are local times, so an operation during which the clock was put forward or back is off by that much.
std::optional<long long> durationMs(const char* start, const char* end);

}  // namespace brevan::plimlog

#endif
