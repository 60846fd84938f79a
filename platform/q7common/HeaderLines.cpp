#include "HeaderLines.h"

#include <array>

namespace brevan {

namespace {

using Letters = std::array<char, 256>;

/// Every character as it is, but the letters from `first` to `last` moved to those from `target` on.
constexpr Letters letters(char first, char last, char target)
{
    Letters table{};
    for (std::size_t c = 0; c < table.size(); ++c) {
        const char letter = static_cast<char>(c);
        table[c] = letter >= first && letter <= last ? static_cast<char>(letter - first + target) : letter;
    }
    return table;
}

constexpr Letters kLowerCase = letters('A', 'Z', 'a');
constexpr Letters kUpperCase = letters('a', 'z', 'A');

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
    char* const name = lines.emplace_back(line).data();
    const Letters* next = &kUpperCase;
    for (std::size_t i = 0; i < colon; ++i) {
        name[i] = (*next)[static_cast<unsigned char>(name[i])];
        next = name[i] == '-' ? &kUpperCase : &kLowerCase;
    }
}

}  // namespace brevan
