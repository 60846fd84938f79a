#include "HeaderLines.h"

#include <array>

namespace brevan {

namespace {

constexpr std::array<char, 256> tableOfLowerCase()
{
    std::array<char, 256> table{};
    for (std::size_t c = 0; c < table.size(); ++c) {
        table[c] = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    }
    return table;
}

constexpr std::array<char, 256> kLowerCase = tableOfLowerCase();

char toUpper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

std::string_view withoutLineEnd(std::string_view line)
{
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) {
        line.remove_suffix(1);
    }
    return line;
}

}  // namespace

bool isStatusLine(std::string_view line)
{
    return line.substr(0, 5) == "HTTP/";
}

bool isEndOfHead(std::string_view line)
{
    return withoutLineEnd(line).empty();
}

void addHeaderLine(std::string_view line, std::vector<std::string>& lines)
{
    line = withoutLineEnd(line);
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos || colon == 0) {
        return;
    }
    std::string canonical(line);
    char* const name = canonical.data();
    for (std::size_t i = 0; i < colon; ++i) {
        name[i] = kLowerCase[static_cast<unsigned char>(name[i])];
    }
    name[0] = toUpper(name[0]);
    for (std::size_t dash = line.find('-'); dash < colon; dash = line.find('-', dash + 1)) {
        name[dash + 1] = toUpper(name[dash + 1]);
    }
    lines.push_back(std::move(canonical));
}

}  // namespace brevan
