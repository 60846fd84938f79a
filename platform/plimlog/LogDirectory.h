#ifndef BREVAN_PLIMLOG_LOGDIRECTORY_H
#define BREVAN_PLIMLOG_LOGDIRECTORY_H

#include <string>

namespace brevan::plimlog {

/// Makes `path` and whatever is missing above it, mode 0750. 0, or an errno value.
int makeDirectory(const std::string& path) noexcept;

/// Removes the oldest log files of `tag` (as namePart() made it) in `directory` until at most `keep` are left of those
/// whose processes have ended. Files of live processes and files that are not ours stay. What cannot be removed stays, too.
void pruneOldFiles(const std::string& directory, const std::string& tag, unsigned keep);

/// Reads a regular file of at most `limit` bytes into `text`. 0, or an errno value. Never waits for a pipe's other end.
int readSmallFile(const std::string& path, std::size_t limit, std::string& text);

/// Opens `path` for appending, made with mode 0640 if need be: a regular file only, no link, and never as descriptor 0 to 2,
/// where an application whose own are closed would write into it. The descriptor, or -1 with errno set.
int openLogFile(const std::string& path) noexcept;

}  // namespace brevan::plimlog

#endif
