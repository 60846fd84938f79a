#ifndef BREVAN_TESTS_CONTRACT_STEPS_H
#define BREVAN_TESTS_CONTRACT_STEPS_H

#include "support/Recorder.h"

#include <initializer_list>
#include <string>
#include <vector>

namespace brevan::contract {

using test::Answer;
using test::CommandResult;

/// One thing that the library does, as a line, and what it gets for it.
///
///     info|warn|error: TEXT          a line of the run log
///     record: OPERATION CODE         a record of the interface log; all its other arguments are checked by the recorder
///     GET|POST|PUT|DELETE PATH BODY  a request, in the notation of Recorder.h
///     call: NAME ARGUMENTS           the session store, the address check, start and stop of the log library
///     CODE/TYPE/0 [COMMAND LINE] (PARAMETER)   a command for the runner
///     shell: COMMAND LINE            system()
///     sleep: MICROSECONDS
///     open: PATH                     a disk is opened for reading and writing; "open read-only:" otherwise
///     inquiry: COMMAND ...           SG_IO on it
struct Step {
    enum class Kind { Line, Request, Command, Shell, Disk };

    Kind kind = Kind::Line;
    std::string line;
    Answer answer{};          ///< of a request
    CommandResult command{};  ///< of a command
    int shellResult = 0;
    std::string designator{};  ///< of a disk, hexadecimal; empty: it cannot be opened
};

class Steps {
public:
    Steps() = default;
    Steps(const char* line) : Steps(std::string(line)) {}
    Steps(const std::string& line) : m_steps{Step{Step::Kind::Line, line}} {}
    Steps(Step step) : m_steps{std::move(step)} {}
    Steps(std::initializer_list<Steps> parts);

    std::vector<Step>::const_iterator begin() const { return m_steps.begin(); }
    std::vector<Step>::const_iterator end() const { return m_steps.end(); }

    Steps& operator+=(const Steps& more);

private:
    std::vector<Step> m_steps;
};

/// What an operation writes at its begin and end when it goes well, and what happens between.
Steps done(const std::string& operation, const Steps& between);

/// The same for an operation that fails: no leave line, and a code in its record.
Steps failed(const std::string& operation, const Steps& between, int code);

Steps enter(const std::string& operation);
Steps leave(const std::string& operation);
Steps record(const std::string& operation, int code);

/// A request and its answer: JSON of "data", or "" for a reply without data.
Steps send(const std::string& request, const std::string& data = "");

/// A request that gets no usable reply (1005), one that the array answers with an error (50331651, "no such object" unless
/// given), and what the operation that sent it writes for it.
Steps sendUnreachable(const std::string& request, const std::string& operation);
Steps sendRefused(const std::string& request, const std::string& operation, int code = 50331651);

Steps answered(const std::string& request, const Answer& answer);
Steps command(const std::string& line, const CommandResult& result);
Steps shell(const std::string& line, int result);
/// A disk is opened and its page 0x83 read, which holds this designator (hexadecimal); or it opens neither way.
Steps disk(const std::string& path, const std::string& designator);
Steps unopenable(const std::string& path);

Steps repeated(unsigned int times, const Steps& steps);

constexpr int kUnreachable = 1005;
constexpr int kUnusable = 1009;
constexpr int kRefused = 50331651;
constexpr int kNotYetReadable = 1077949006;

std::string unreachableText(const std::string& operation);
std::string refusedText(const std::string& operation, int code = kRefused);

}  // namespace brevan::contract

#endif
