#include "HeaderLines.h"

namespace brevan {

namespace {

char toLower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

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
    bool beginsWord = true;
    char* const name = canonical.data();
    for (std::size_t i = 0; i < colon; ++i) {
        const char c = name[i];
        name[i] = beginsWord ? toUpper(c) : toLower(c);
        beginsWord = c == '-';
    }
    lines.push_back(std::move(canonical));
}

}  // namespace brevan
