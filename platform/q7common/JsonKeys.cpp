#include "JsonKeys.h"

#include <cstddef>

namespace brevan {

namespace {

bool isEscaped(std::string_view text, std::size_t at)
{
    const std::size_t before = text.find_last_not_of('\\', at - 1);
    return (at - 1 - before) % 2 != 0;
}

/// Where the string that begins at `at` ends.
std::size_t endOfString(std::string_view text, std::size_t at)
{
    do {
        at = text.find('"', at + 1);
    } while (at != std::string_view::npos && isEscaped(text, at));
    return at;
}

/// Outside of strings, a colon follows each key and stands nowhere else.
std::size_t keysIn(std::string_view text)
{
    std::size_t keys = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '"') {
            at = endOfString(text, at);
        } else if (text[at] == ':') {
            ++keys;
        }
    }
    return keys;
}

std::size_t membersOf(const Json::Value& value)  // NOLINT(misc-no-recursion): the reader bounds the depth
{
    if (!value.isObject() && !value.isArray()) {
        return 0;
    }
    std::size_t members = value.isObject() ? value.size() : 0;
    for (const Json::Value& inner : value) {
        members += membersOf(inner);
    }
    return members;
}

}  // namespace

bool hasKeyTwice(std::string_view text, const Json::Value& value)
{
    return keysIn(text) != membersOf(value);
}

}  // namespace brevan
