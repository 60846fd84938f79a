#ifndef BREVAN_PLIMLOG_LOGREGISTRY_H
#define BREVAN_PLIMLOG_LOGREGISTRY_H

#include "platform/plimlog/Complaints.h"
#include "platform/plimlog/TagLog.h"

#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <string>

namespace brevan::plimlog {

/// All logs of the process by their tags. Any thread, any time, in a child of fork as well. Never destroyed, because
/// destructors of the application may log to the very end. Nothing here throws.
class LogRegistry {
public:
    LogRegistry() = default;
    LogRegistry(const LogRegistry&) = delete;
    LogRegistry& operator=(const LogRegistry&) = delete;

    /// The one of this process.
    static LogRegistry& instance();

    /// Around fork: a child must not find the lock held by a thread that it does not have.
    void lock() { m_mutex.lock(); }
    void unlock() { m_mutex.unlock(); }

    /// 0: the log of `tag` runs; -1: it does not, and standard error was told why.
    int start(const char* tag, const char* configFile, const char* logDirectory) noexcept;

    /// 0: stopped, -1: there was none.
    int stop(const char* tag) noexcept;

    void run(const char* tag, LogLevel level, const char* message) noexcept;
    void record(const InterfaceCall& call, bool succeeded) noexcept;

private:
    void startLog(const std::string& tag, const char* configFile, const char* logDirectory);
    TagLog* find(const char* tag);
    void noteLevels();

    std::mutex m_mutex;
    std::atomic<LogLevel> m_leastRun{LogLevel::Off};  // of all logs: what is below needs no lock
    std::atomic<LogLevel> m_leastRecord{LogLevel::Off};
    Complaints m_complaints;
    std::map<std::string, TagLog, std::less<>> m_logs;
};

}  // namespace brevan::plimlog

#endif
