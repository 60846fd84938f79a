#ifndef BREVAN_PLIMLOG_LOGCHANNEL_H
#define BREVAN_PLIMLOG_LOGCHANNEL_H

#include "platform/plimlog/LogFileName.h"
#include "platform/plimlog/LogSettings.h"

#include <memory>
#include <string>
#include <string_view>

namespace brevan::plimlog {

/// One log of one process: a level below which nothing is written, the layout of a line, and the file. The kind in `name`
/// chooses the layout: lines of the run log get time, level, process and thread in front, records stand alone. Every line
/// is in the file when write() returns. One thread at a time.
class LogChannel {
public:
    LogChannel(const std::string& directory, const LogFileName& name, const ChannelSettings& settings);
    ~LogChannel();

    /// Opens the file. 0, or an errno value. Not needed before write(), but tells early what is wrong.
    int open() noexcept;

    /// Appends one line with `text`, which holds no line end (see LineText). 0 where it was written or is below the level,
    /// else an errno value.
    int write(LogLevel level, std::string_view text) noexcept;

    std::string path() const;

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace brevan::plimlog

#endif
