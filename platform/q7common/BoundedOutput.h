#ifndef BREVAN_Q7COMMON_BOUNDEDOUTPUT_H
#define BREVAN_Q7COMMON_BOUNDEDOUTPUT_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace brevan {

/// The beginning of what a command wrote; what goes beyond the limit is only counted.
class BoundedOutput {
public:
    explicit BoundedOutput(std::size_t limit) : m_limit(limit) {}

    void add(std::string_view part);
    const std::string& text() const { return m_text; }
    std::size_t dropped() const { return m_dropped; }

    /// Appends the lines, without line ends. Where something was dropped, a last line that is not whole is left out: half a
    /// disk name is another disk's name.
    void appendLines(std::vector<std::string>& lines) const;

private:
    std::size_t m_limit;
    std::size_t m_dropped = 0;
    std::string m_text;
};

}  // namespace brevan

#endif
