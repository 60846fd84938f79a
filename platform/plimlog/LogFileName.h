#ifndef BREVAN_PLIMLOG_LOGFILENAME_H
#define BREVAN_PLIMLOG_LOGFILENAME_H

#include <optional>
#include <string>
#include <string_view>

#include <sys/types.h>

namespace brevan::plimlog {

enum class LogKind { Run, Interface };

/// What a log file's name says: "<tag>.<program>.<pid>.run.log", the older ones "….run.1.log", "….run.2.log".
struct LogFileName {
    std::string tag;      // as namePart() made it
    std::string program;  // as namePart() made it
    pid_t pid = 0;
    unsigned instance = 1;  // 2 and up where the same id is in use twice ("<pid>-2"), as happens with containers
    LogKind kind = LogKind::Run;
    unsigned generation = 0;  // 0: the one being written; the larger, the older

    std::string text() const;
};

/// Reads a name of that form back. Nothing for a file that is none of ours.
std::optional<LogFileName> parseLogFileName(std::string_view name);

/// `text` fit to be one part of a file name: letters, digits, '-' and '_' stay, every other byte becomes "%2e".
std::string namePart(std::string_view text);

/// Longest tag, in bytes, of which a file name can be made whatever it holds.
constexpr std::size_t kLongestTag = 40;

}  // namespace brevan::plimlog

#endif
