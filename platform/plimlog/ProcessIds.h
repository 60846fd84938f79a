#ifndef BREVAN_PLIMLOG_PROCESSIDS_H
#define BREVAN_PLIMLOG_PROCESSIDS_H

#include <string>

#include <sys/types.h>

namespace brevan::plimlog {

/// This process's id, right in a child of fork as well, without a system call a line.
pid_t currentProcessId() noexcept;

/// The kernel's id of the calling thread. Kept per thread, and asked for again in a child of fork.
pid_t currentThreadId() noexcept;

/// The name under which this program was started, without its folder.
std::string programName();

}  // namespace brevan::plimlog

#endif
