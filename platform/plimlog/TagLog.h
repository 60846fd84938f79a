#ifndef BREVAN_PLIMLOG_TAGLOG_H
#define BREVAN_PLIMLOG_TAGLOG_H

#include "platform/plimlog/Complaints.h"
#include "platform/plimlog/InterfaceRecord.h"
#include "platform/plimlog/LogChannel.h"

#include <memory>
#include <string>

#include <sys/types.h>

namespace brevan::plimlog {

/// The run log and the interface log of one tag in this process. A child of fork goes on in files of its own, opened by its
/// first line. Lines that cannot be written are counted, and the count goes into the run log as soon as that works again.
/// One thread at a time.
class TagLog {
public:
    /// Throws std::runtime_error with a text for the user where `directory` cannot be written.
    TagLog(const std::string& tag, std::string directory, LogSettings settings, Complaints& complaints);

    const LogSettings& settings() const { return m_settings; }

    /// Neither throws: a line for which there is no memory is counted like one for which there is no room.
    void run(LogLevel level, std::string_view text) noexcept;
    void record(const InterfaceCall& call, bool succeeded) noexcept;

private:
    void openOwnFiles();
    void enterProcess();
    void deliver(LogChannel& channel, LogLevel level, std::string_view text);
    void reportLost();
    void countLost(int error) noexcept;

    std::string m_tagPart;
    std::string m_directory;
    LogSettings m_settings;
    Complaints& m_complaints;
    pid_t m_process = 0;
    std::unique_ptr<LogChannel> m_run;
    std::unique_ptr<LogChannel> m_interface;
    unsigned long long m_lost = 0;
    int m_lostError = 0;
};

}  // namespace brevan::plimlog

#endif
