#include "Text.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <charconv>

namespace brevan::sim {

namespace {

int hexDigit(char character)
{
    if (character >= '0' && character <= '9') {
        return character - '0';
    }
    const int letter = character | 0x20;
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

bool isLetterOrDigit(char character)
{
    const int letter = character | 0x20;
    return (character >= '0' && character <= '9') || (letter >= 'a' && letter <= 'z');
}

}  // namespace

std::optional<std::uint64_t> decimal(std::string_view text)
{
    std::uint64_t number = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    if (text.empty() || result.ec != std::errc() || result.ptr != end) {
        return std::nullopt;
    }
    return number;
}

std::vector<std::string> split(std::string_view text, std::string_view separator)
{
    std::vector<std::string> pieces;
    std::size_t begin = 0;
    for (std::size_t end = text.find(separator); end != std::string_view::npos; end = text.find(separator, begin)) {
        pieces.emplace_back(text.substr(begin, end - begin));
        begin = end + separator.size();
    }
    pieces.emplace_back(text.substr(begin));
    return pieces;
}

std::optional<std::string> percentDecoded(std::string_view text)
{
    std::string plain;
    plain.reserve(text.size());
    for (std::size_t index = 0; index < text.size(); ++index) {
        if (text[index] != '%') {
            plain += text[index];
            continue;
        }
        const int high = index + 2 < text.size() ? hexDigit(text[index + 1]) : -1;
        const int low = index + 2 < text.size() ? hexDigit(text[index + 2]) : -1;
        if (high < 0 || low < 0 || high + low == 0) {
            return std::nullopt;
        }
        plain += static_cast<char>(high * 16 + low);
        index += 2;
    }
    return plain;
}

std::string inQuotes(std::string_view text)
{
    constexpr std::size_t kLongest = 64;
    return "'" + std::string(text.substr(0, kLongest)) + (text.size() > kLongest ? "...'" : "'");
}

bool hasControlCharacter(std::string_view text)
{
    return std::any_of(text.begin(), text.end(),
                       [](char character) { return static_cast<unsigned char>(character) < 0x20 || character == 0x7f; });
}

bool startsWith(std::string_view text, std::string_view prefix)
{
    return text.substr(0, prefix.size()) == prefix;
}

bool consistsOf(std::string_view text, std::string_view others)
{
    return std::all_of(text.begin(), text.end(), [others](char character) {
        return isLetterOrDigit(character) || others.find(character) != std::string_view::npos;
    });
}

bool isIscsiName(std::string_view text)
{
    const bool known = startsWith(text, "iqn.") || startsWith(text, "eui.") || startsWith(text, "naa.");
    // The name becomes the name of a file or folder in the exposure drivers, so nothing but these characters may pass.
    return known && text.size() > 4 && text.size() <= 223 && consistsOf(text, ".:-_");
}

bool isObjectName(std::string_view text)
{
    return !text.empty() && text.size() <= 31 && consistsOf(text, "_-.");
}

bool isPortName(std::string_view text)
{
    return text.size() == 16 && text.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
}

bool isAddress(const std::string& text)
{
    std::array<unsigned char, 16> bytes{};
    return inet_pton(AF_INET, text.c_str(), bytes.data()) == 1 || inet_pton(AF_INET6, text.c_str(), bytes.data()) == 1;
}

}  // namespace brevan::sim
