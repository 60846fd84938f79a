#ifndef BREVAN_PLIMLOG_LOGSETTINGS_H
#define BREVAN_PLIMLOG_LOGSETTINGS_H

#include <cstdint>
#include <string>
#include <vector>

namespace brevan::plimlog {

enum class LogLevel { Debug, Info, Warn, Error, Off };

/// What holds for one kind of file.
struct ChannelSettings {
    LogLevel level = LogLevel::Info;
    std::uint64_t maxFileBytes = 10 * 1024 * 1024;
    unsigned maxFiles = 5;  // the one being written among them
};

struct LogSettings {
    std::string directory;       // absolute; empty: the directory given to LogInit
    unsigned keepOldFiles = 40;  // files of processes that have ended
    ChannelSettings run;
    ChannelSettings interface;
    std::vector<std::string> complaints;  // one text for each thing in the file that could not be used
};

/// Reads the settings from an ini file. A file that is missing, or a null `path`, gives the defaults. So does each single
/// setting that is unknown, out of range or given twice; then `complaints` says which one, why, and what is used instead.
LogSettings readLogSettings(const char* path);

/// "section.name" of every setting, for the test that each is documented.
std::vector<std::string> logSettingNames();

}  // namespace brevan::plimlog

#endif
