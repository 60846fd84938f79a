#include "BoundedOutput.h"

#include <algorithm>

namespace brevan {

void BoundedOutput::add(std::string_view part)
{
    const std::size_t kept = std::min(part.size(), m_limit - m_text.size());
    m_text.append(part.substr(0, kept));
    m_dropped += part.size() - kept;
}

void BoundedOutput::appendLines(std::vector<std::string>& lines) const
{
    std::string_view rest = m_text;
    while (!rest.empty()) {
        const std::size_t end = rest.find('\n');
        if (end == std::string_view::npos && m_dropped > 0) {
            return;
        }
        lines.emplace_back(rest.substr(0, end));
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
}

}  // namespace brevan
