#ifndef BREVAN_PLIMLOG_LINETEXT_H
#define BREVAN_PLIMLOG_LINETEXT_H

#include <string>
#include <string_view>

namespace brevan::plimlog {

/// Longest text, in bytes before escaping, that one line takes over. What is longer is cut and says so.
constexpr std::size_t kLongestText = 16 * 1024;

/// `text` made fit to stand in one line, such that it can be read back without doubt: a backslash becomes "\\", the usual
/// control characters "\n" and the like, other bytes below 0x20, 0x7f and bytes that are no UTF-8 "\x1b"; characters that
/// end a line or turn its direction elsewhere than in ASCII "\u2028".
class LineText {
public:
    explicit LineText(std::string_view text);
    LineText(const LineText&) = delete;
    LineText& operator=(const LineText&) = delete;

    std::string_view view() const noexcept { return m_view; }

private:
    std::string m_escaped;    // stays empty where the text could be taken as it is
    std::string_view m_view;  // into m_escaped, or into the caller's text, which has to outlive this
};

}  // namespace brevan::plimlog

#endif
