#ifndef BREVAN_TESTS_SUPPORT_RECORDER_H
#define BREVAN_TESTS_SUPPORT_RECORDER_H

#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace brevan::test {

/// What the array answers to one request, or how the request fails.
struct Answer {
    int sendResult = 0;
    std::string reply;  ///< the whole JSON text
    std::vector<std::string> headerLines;
    std::function<void()> before;  ///< runs while the request is under way; may throw
};

/// An answer of the array: `data` is JSON text, or "" for a reply without data.
Answer answer(const std::string& data);
Answer refusal(int code, const std::string& description);
Answer sendFailure(int sendResult);

/// What a command of the host does.
struct CommandResult {
    int result = 0;
    std::vector<std::string> lines;
    std::string errorText;
    std::function<void()> before;  ///< runs while the command does; may throw
};

/// Stands behind the platform interface: it compares every request and command with a script, answers from it, and keeps everything
/// that is logged. A call that the script does not expect fails the test, and so does a script that was not used up.
///
/// Requests are written as one line: mode, path, and the body as JSON in the order in which its keys were added, where a number added
/// as unsigned long ends in "ul" and one added as unsigned long long in "ull":
///     POST /lun {"TYPE":11,"NAME":"a","CAPACITY":2097152ull}
/// Requests without a session have their server before the path and their headers behind the body: [47: TOKEN] [8: COOKIE].
/// A request under a session whose flag for header lines is not set, or the other way round, ends in " (flag false)" or " (flag true)".
class Recorder {
public:
    static Recorder& instance();

    void reset();

    void expectRequest(const std::string& line, Answer answer);
    void expectCommand(const std::string& line, CommandResult result);

    /// Nothing was expected that did not happen.
    void verify() const;

    /// Run-log lines and interface records in one sequence: "info: TEXT", "record: OPERATION CODE". Everything in a record but
    /// operation and code must be as it should; where it is not, the entry shows all eleven arguments.
    std::vector<std::string> log() const;

    /// All eleven arguments of the records.
    std::vector<std::vector<std::string>> records() const;

    /// Calls of the session store and of the start and stop of logging, in order.
    std::vector<std::string> calls() const;

    /// The session handles of the requests so far.
    std::vector<unsigned int> handles() const;

    int logInitResult = 0;
    int logFiniResult = 0;
    int ipCheckResult = 1;
    bool logCalls = false;  ///< calls() go to log(), too, as "call: ..."

    // For the recorded platform interface.
    Answer request(const std::string& line);
    CommandResult command(const std::string& line);
    void note(const std::string& call);
    void noteHandle(unsigned int handle);
    void logLine(const std::string& line);
    void logRecord(const char* level, std::vector<std::string> arguments);

private:
    Recorder() = default;

    mutable std::mutex m_mutex;
    std::deque<std::pair<std::string, Answer>> m_requests;
    std::deque<std::pair<std::string, CommandResult>> m_commands;
    std::vector<std::string> m_log;
    std::vector<std::vector<std::string>> m_records;
    std::vector<std::string> m_calls;
    std::vector<unsigned int> m_handles;
};

}  // namespace brevan::test

#endif
