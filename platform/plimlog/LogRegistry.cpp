#include "platform/plimlog/LogRegistry.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <stdexcept>
#include <string_view>

#include <pthread.h>

namespace brevan::plimlog {
namespace {

std::string textOf(const char* text)
{
    return text != nullptr ? text : "";
}

/// Where the files go: the settings' directory before the caller's; absolute, because the application may change its own.
std::string chooseDirectory(const LogSettings& settings, const char* logDirectory)
{
    const std::string chosen = settings.directory.empty() ? textOf(logDirectory) : settings.directory;
    if (chosen.empty()) {
        throw std::runtime_error("no log directory was given");
    }
    std::string path = std::filesystem::absolute(chosen).lexically_normal();
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    return path;
}

std::string advice(const char* configFile)
{
    return textOf(configFile).empty()
               ? ""
               : " Name a directory that this user can write under [log] in " + textOf(configFile) + ".";
}

/// Room for the registry outside the heap, so that making it cannot fail.
union Undestroyed {
    Undestroyed() : registry() {}
    ~Undestroyed() {}  // NOLINT(modernize-use-equals-default): would be deleted
    LogRegistry registry;
};

void lockAll()
{
    LogRegistry::instance().lock();
}

void unlockAll()
{
    LogRegistry::instance().unlock();
}

/// Done when the library is loaded, so that no fork can come between.
[[maybe_unused]] const int kForkHandlers = pthread_atfork(lockAll, unlockAll, unlockAll);

}  // namespace

LogRegistry& LogRegistry::instance()
{
    static Undestroyed place;
    return place.registry;
}

int LogRegistry::start(const char* tag, const char* configFile, const char* logDirectory) noexcept
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    try {
        if (TagLog* running = find(tag)) {
            running->run(LogLevel::Info, "LogInit was called again; the log goes on as it is.");
            return 0;
        }
        try {
            startLog(textOf(tag), configFile, logDirectory);
            noteLevels();
            return 0;
        } catch (const std::exception& failure) {
            m_complaints.say("the log of \"" + textOf(tag) + "\" is off: " + failure.what() + "." + advice(configFile));
        }
    } catch (const std::exception&) {
        m_complaints.say("out of memory, the log is off.");
    }
    return -1;
}

void LogRegistry::startLog(const std::string& tag, const char* configFile, const char* logDirectory)
{
    if (tag.empty() || tag.size() > kLongestTag) {
        throw std::runtime_error("a tag has 1 to " + std::to_string(kLongestTag) + " bytes");
    }
    const LogSettings settings = readLogSettings(configFile);
    for (const std::string& complaint : settings.complaints) {
        m_complaints.say(complaint);
    }
    const std::string directory = chooseDirectory(settings, logDirectory);
    const auto added = m_logs.try_emplace(tag, tag, directory, settings, m_complaints);
    for (const std::string& complaint : settings.complaints) {
        added.first->second.run(LogLevel::Warn, complaint);
    }
}

int LogRegistry::stop(const char* tag) noexcept
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_logs.find(std::string_view(tag != nullptr ? tag : ""));
    if (found == m_logs.end()) {
        return -1;
    }
    m_logs.erase(found);
    noteLevels();
    return 0;
}

void LogRegistry::noteLevels()
{
    LogLevel run = LogLevel::Off;
    LogLevel record = LogLevel::Off;
    for (const auto& [tag, log] : m_logs) {
        run = std::min(run, log.settings().run.level);
        record = std::min(record, log.settings().interface.level);
    }
    m_leastRun = run;
    m_leastRecord = record;
}

void LogRegistry::run(const char* tag, LogLevel level, const char* message) noexcept
{
    if (level < m_leastRun.load(std::memory_order_relaxed)) {
        return;
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (TagLog* log = find(tag)) {
        log->run(level, message != nullptr ? message : "(null)");
    }
}

void LogRegistry::record(const InterfaceCall& call, bool succeeded) noexcept
{
    if ((succeeded ? LogLevel::Info : LogLevel::Error) < m_leastRecord.load(std::memory_order_relaxed)) {
        return;
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (TagLog* log = find(call.tag)) {
        log->record(call, succeeded);
    }
}

TagLog* LogRegistry::find(const char* tag)
{
    const auto found = m_logs.find(std::string_view(tag != nullptr ? tag : ""));
    return found != m_logs.end() ? &found->second : nullptr;
}

}  // namespace brevan::plimlog
