#include "support/Recorder.h"

#include <gtest/gtest.h>

#include <json/value.h>
#include <json/writer.h>

#include <algorithm>
#include <stdexcept>

namespace brevan::test {
namespace {

constexpr int kNoConnection = 1005;

std::string quoted(const std::string& text)
{
    return Json::valueToQuotedString(text.c_str());
}

/// Digits where the form has 0, everything else as it stands. (std::regex does not compile under the sanitizers.)
bool isTime(const std::string& text)
{
    const std::string form = "0000-00-00 00:00:00 000";
    return text.size() == form.size() && std::equal(text.begin(), text.end(), form.begin(), [](char c, char wanted) {
               return wanted == '0' ? c >= '0' && c <= '9' : c == wanted;
           });
}

/// The fixed part of a record, and the form of its times.
bool isWellFormed(const std::string& level, const std::vector<std::string>& a)
{
    return a.size() == 11 && a[0] == "Plim-Brevan-API-linux-Cpp" && a[1] == "1" && a[2].empty() && a[4].empty() &&
           a[5].empty() && a[6].empty() && a[10].empty() && isTime(a[7]) && isTime(a[8]) &&
           (level == "Info") == (a[9] == "0");
}

template <class Script>
auto takeNext(Script& script, const std::string& line, const char* what, decltype(script.front().second) otherwise)
{
    if (script.empty()) {
        ADD_FAILURE() << "unexpected " << what << ": " << line;
        return otherwise;
    }
    auto next = std::move(script.front());
    script.pop_front();
    EXPECT_EQ(next.first, line);
    return next.first == line ? std::move(next.second) : otherwise;
}

}  // namespace

Answer answer(const std::string& data)
{
    Answer result;
    result.reply = data.empty() ? "{\"error\":{\"code\":0,\"description\":\"0\"}}"
                                : "{\"data\":" + data + ",\"error\":{\"code\":0,\"description\":\"0\"}}";
    return result;
}

Answer refusal(int code, const std::string& description)
{
    Answer result;
    result.reply =
        "{\"data\":{},\"error\":{\"code\":" + std::to_string(code) + ",\"description\":" + quoted(description) + "}}";
    return result;
}

Answer sendFailure(int sendResult)
{
    Answer result;
    result.sendResult = sendResult;
    return result;
}

Recorder& Recorder::instance()
{
    static Recorder recorder;
    return recorder;
}

void Recorder::reset()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_requests.clear();
    m_commands.clear();
    m_log.clear();
    m_records.clear();
    m_calls.clear();
    m_handles.clear();
    logInitResult = 0;
    logFiniResult = 0;
    ipCheckResult = 1;
    logCalls = false;
}

void Recorder::expectRequest(const std::string& line, Answer answer)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_requests.emplace_back(line, std::move(answer));
}

void Recorder::expectCommand(const std::string& line, CommandResult result)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_commands.emplace_back(line, std::move(result));
}

void Recorder::verify() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    for (const auto& [line, unused] : m_requests) {
        ADD_FAILURE() << "this request was expected and did not come: " << line;
    }
    for (const auto& [line, unused] : m_commands) {
        ADD_FAILURE() << "this command was expected and did not come: " << line;
    }
}

std::vector<std::string> Recorder::log() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_log;
}

std::vector<std::vector<std::string>> Recorder::records() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_records;
}

std::vector<std::string> Recorder::calls() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_calls;
}

std::vector<unsigned int> Recorder::handles() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_handles;
}

Answer Recorder::request(const std::string& line)
{
    Answer next;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        next = takeNext(m_requests, line, "request", sendFailure(kNoConnection));
    }
    if (next.before) {
        next.before();
    }
    return next;
}

CommandResult Recorder::command(const std::string& line)
{
    CommandResult next;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        next = takeNext(m_commands, line, "command", CommandResult{-1, {}, "unexpected command", {}});
    }
    if (next.before) {
        next.before();
    }
    return next;
}

void Recorder::note(const std::string& call)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_calls.push_back(call);
    if (logCalls) {
        m_log.push_back("call: " + call);
    }
}

void Recorder::noteHandle(unsigned int handle)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_handles.push_back(handle);
}

void Recorder::logLine(const std::string& line)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_log.push_back(line);
}

void Recorder::logRecord(const char* level, std::vector<std::string> arguments)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::string entry = "record: ";
    if (isWellFormed(level, arguments)) {
        entry += arguments[3] + " " + arguments[9];
    } else {
        entry += std::string("malformed ") + level;
        for (const std::string& argument : arguments) {
            entry += "|" + argument;
        }
    }
    m_log.push_back(entry);
    m_records.push_back(std::move(arguments));
}

}  // namespace brevan::test
