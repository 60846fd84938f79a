#ifndef BREVAN_Q7COMMON_TRANSPORTLOG_H
#define BREVAN_Q7COMMON_TRANSPORTLOG_H

#include <string>

namespace brevan {

/// One line of the run log, under the SDK's tag. Callers hold no lock of this library: the log library has locks of its
/// own, and a fork takes both. Texts carry no password, token, cookie or body.
void logError(const std::string& line) noexcept;
void logWarning(const std::string& line) noexcept;

}  // namespace brevan

#endif
