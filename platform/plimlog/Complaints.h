#ifndef BREVAN_PLIMLOG_COMPLAINTS_H
#define BREVAN_PLIMLOG_COMPLAINTS_H

#include <set>
#include <string>
#include <string_view>

namespace brevan::plimlog {

/// What the log library has to say about itself, on standard error. Each text comes once in a process's life.
class Complaints {
public:
    /// Does not fail, and does not end the process where standard error is a pipe that nobody reads.
    void say(std::string_view text) noexcept;

private:
    std::set<std::string> m_said;
};

}  // namespace brevan::plimlog

#endif
