#include "platform/plimlog/TagLog.h"

#include "platform/plimlog/LineText.h"
#include "platform/plimlog/LogDirectory.h"
#include "platform/plimlog/ProcessIds.h"

#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace brevan::plimlog {
namespace {

std::string errorText(int error)
{
    return std::generic_category().message(error);
}

}  // namespace

TagLog::TagLog(const std::string& tag, std::string directory, LogSettings settings, Complaints& complaints)
    : m_tagPart(namePart(tag)), m_directory(std::move(directory)), m_settings(std::move(settings)), m_complaints(complaints)
{
    openOwnFiles();
    for (LogChannel* channel : {m_run.get(), m_interface.get()}) {
        if (const int error = channel->open(); error != 0) {
            throw std::runtime_error("cannot write " + channel->path() + ": " + errorText(error));
        }
    }
}

void TagLog::openOwnFiles()
{
    LogFileName name;
    name.tag = m_tagPart;
    name.program = namePart(programName()).substr(0, kLongestTag);
    name.pid = currentProcessId();
    auto run = std::make_unique<LogChannel>(m_directory, name, m_settings.run);
    name.kind = LogKind::Interface;
    auto interface = std::make_unique<LogChannel>(m_directory, name, m_settings.interface);
    pruneOldFiles(m_directory, m_tagPart, m_settings.keepOldFiles);
    m_run = std::move(run);
    m_interface = std::move(interface);
    m_process = name.pid;
}

/// After fork the open files are the parent's: only it may rotate them.
void TagLog::enterProcess()
{
    if (m_process != currentProcessId()) {
        openOwnFiles();
        m_lost = 0;
    }
}

void TagLog::run(LogLevel level, std::string_view text) noexcept
{
    try {
        enterProcess();
        deliver(*m_run, level, LineText(text).view());
    } catch (const std::exception&) {
        countLost(ENOMEM);
    }
}

void TagLog::record(const InterfaceCall& call, bool succeeded) noexcept
{
    try {
        enterProcess();
        const std::string line = interfaceRecord(call, succeeded, m_process, currentThreadId());
        deliver(*m_interface, succeeded ? LogLevel::Info : LogLevel::Error, line);
    } catch (const std::exception&) {
        countLost(ENOMEM);
    }
}

void TagLog::deliver(LogChannel& channel, LogLevel level, std::string_view text)
{
    if (m_lost > 0) {
        reportLost();
    }
    if (const int error = channel.write(level, text); error != 0) {
        countLost(error);
        m_complaints.say("cannot write " + channel.path() + ": " + errorText(error) +
                         ". Lines are lost until this is mended; the run log will say how many.");
    }
}

void TagLog::countLost(int error) noexcept
{
    ++m_lost;
    m_lostError = error;
}

void TagLog::reportLost()
{
    const std::string text = std::to_string(m_lost) + " log lines were lost here: " + errorText(m_lostError);
    if (m_run->write(LogLevel::Warn, text) == 0) {
        m_lost = 0;
    }
}

}  // namespace brevan::plimlog
