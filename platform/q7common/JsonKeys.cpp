#include "JsonKeys.h"

#include <cstddef>
#include <cstdint>

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
    std::size_t members = value.isObject() ? value.size() : 0;
    for (const Json::Value& inner : value) {
        if (const Json::ValueType type = inner.type(); type == Json::objectValue || type == Json::arrayValue) {
            members += membersOf(inner);
        }
    }
    return members;
}

/// A colon in a string makes this more than there are keys. A block's count fits a byte, so that the compiler counts sixteen
/// characters at a time.
std::size_t keysAtMost(std::string_view text)
{
    constexpr std::size_t kBlock = 255;
    std::size_t keys = 0;
    while (!text.empty()) {
        const std::string_view block = text.substr(0, kBlock);
        std::uint8_t colons = 0;
        for (const char c : block) {
            colons = static_cast<std::uint8_t>(colons + (c == ':' ? 1 : 0));
        }
        keys += colons;
        text.remove_prefix(block.size());
    }
    return keys;
}

}  // namespace

bool hasKeyTwice(std::string_view text, const Json::Value& value)
{
    const std::size_t members = membersOf(value);
    return keysAtMost(text) != members && keysIn(text) != members;
}

}  // namespace brevan
