#ifndef BREVAN_Q7COMMON_TESTS_RUNLOGRECORDER_H
#define BREVAN_Q7COMMON_TESTS_RUNLOGRECORDER_H

#include <string>
#include <vector>

namespace brevan::test {

/// The run log of this process: a line is its level ("E", "W") and text. The log library's functions are replaced.
class RunLogRecorder {
public:
    static void clear();
    static std::vector<std::string> lines();
    /// All lines as one text.
    static std::string text();
};

}  // namespace brevan::test

#endif
