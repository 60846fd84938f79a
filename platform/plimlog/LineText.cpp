#include "platform/plimlog/LineText.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace brevan::plimlog {
namespace {

struct Character {
    std::uint32_t code = 0;
    std::size_t length = 0;  // 0: these bytes are no UTF-8
};

struct LeadByte {
    unsigned char mask;
    unsigned char bits;
    std::size_t length;
    std::uint32_t smallest;  // a smaller code in so many bytes is a disguise
};

constexpr std::array<LeadByte, 3> kLeadBytes{{{0xe0, 0xc0, 2, 0x80}, {0xf0, 0xe0, 3, 0x800}, {0xf8, 0xf0, 4, 0x10000}}};

unsigned char byteAt(std::string_view text, std::size_t index)
{
    return static_cast<unsigned char>(text[index]);
}

Character decode(std::string_view text)
{
    const unsigned char first = byteAt(text, 0);
    const auto lead = std::find_if(kLeadBytes.begin(), kLeadBytes.end(),
                                   [first](const LeadByte& row) { return (first & row.mask) == row.bits; });
    if (lead == kLeadBytes.end() || text.size() < lead->length) {
        return {};
    }
    std::uint32_t code = first & static_cast<unsigned char>(~lead->mask);
    for (std::size_t i = 1; i < lead->length; ++i) {
        if ((byteAt(text, i) & 0xc0) != 0x80) {
            return {};
        }
        code = code << 6 | (byteAt(text, i) & 0x3fU);
    }
    const bool surrogate = code >= 0xd800 && code <= 0xdfff;
    if (code < lead->smallest || code > 0x10ffff || surrogate) {
        return {};
    }
    return {code, lead->length};
}

/// C1 controls (the next-line character among them), line and paragraph separator, and the marks that turn the direction
/// of the text, with which a message could look like another one on a screen.
bool disturbsLine(std::uint32_t code)
{
    return (code >= 0x80 && code <= 0x9f) || (code >= 0x2028 && code <= 0x202e) || (code >= 0x2066 && code <= 0x2069);
}

void appendHex(std::string& out, const char* prefix, std::uint32_t value, int digits)
{
    out += prefix;
    for (int shift = (digits - 1) * 4; shift >= 0; shift -= 4) {
        out += "0123456789abcdef"[value >> shift & 0xf];
    }
}

void appendAscii(std::string& out, char character)
{
    static constexpr std::string_view kNamed = "\n\r\t\\";
    static constexpr std::string_view kNames = "nrt\\";
    const std::size_t named = kNamed.find(character);
    if (named != std::string_view::npos) {
        out += '\\';
        out += kNames[named];
    } else if (character < 0x20 || character == 0x7f) {
        appendHex(out, "\\x", static_cast<unsigned char>(character), 2);
    } else {
        out += character;
    }
}

/// Appends the first character of `text`; returns how many bytes it took.
std::size_t appendCharacter(std::string& out, std::string_view text)
{
    if (byteAt(text, 0) < 0x80) {
        appendAscii(out, text[0]);
        return 1;
    }
    const Character character = decode(text);
    if (character.length == 0) {
        appendHex(out, "\\x", byteAt(text, 0), 2);
        return 1;
    }
    if (disturbsLine(character.code)) {
        appendHex(out, "\\u", character.code, 4);
    } else {
        out += text.substr(0, character.length);
    }
    return character.length;
}

bool isPlain(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= 0x20 && c < 0x7f && c != '\\'; });
}

}  // namespace

LineText::LineText(std::string_view text) : m_view(text)
{
    const std::string_view kept = text.substr(0, kLongestText);
    if (kept.size() == text.size() && isPlain(text)) {
        return;
    }
    m_escaped.reserve(kept.size() + kept.size() / 8 + 32);
    for (std::size_t at = 0; at < kept.size();) {
        at += appendCharacter(m_escaped, kept.substr(at));
    }
    if (kept.size() < text.size()) {
        m_escaped += " [" + std::to_string(text.size() - kept.size()) + " more bytes were cut]";
    }
    m_view = m_escaped;
}

}  // namespace brevan::plimlog
