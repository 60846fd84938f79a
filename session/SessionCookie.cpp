#include "session/SessionCookie.h"

#include <string_view>

namespace brevan {

std::optional<std::string> sessionCookie(const std::vector<std::string>& headerLines)
{
    constexpr std::string_view kHeader = "Set-Cookie:";
    for (const std::string& line : headerLines) {
        const std::size_t header = line.find(kHeader);
        if (header == std::string::npos) {
            continue;
        }
        const std::size_t begin = header + kHeader.size();
        const std::size_t end = line.find(';', begin);
        if (end == std::string::npos) {
            return std::nullopt;
        }
        return line.substr(begin, end - begin);
    }
    return std::nullopt;
}

}  // namespace brevan
