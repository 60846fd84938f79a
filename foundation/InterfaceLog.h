#ifndef BREVAN_FOUNDATION_INTERFACELOG_H
#define BREVAN_FOUNDATION_INTERFACELOG_H

#include <sys/time.h>

#include <array>

namespace brevan {

using TimeText = std::array<char, 256>;

/// Local time with milliseconds: "2021-03-04 05:06:07 089".
TimeText timeText(const timeval& instant);

/// One record of the interface log: an operation, when it began and when it ended (now), and how: 0 went well.
void writeInterfaceRecord(const char* operation, const timeval& start, int code);

}  // namespace brevan

#endif
