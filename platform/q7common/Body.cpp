#include "Body.h"

#include <algorithm>

namespace brevan {

namespace {

// The forms of a UTF-8 sequence (RFC 3629, section 4): range of the first byte, range of the second, bytes after the first.
struct SequenceForm {
    unsigned char firstLow, firstHigh, secondLow, secondHigh;
    std::size_t following;
};
constexpr SequenceForm kSequenceForms[] = {
    {0x00, 0x7f, 0x00, 0x00, 0}, {0xc2, 0xdf, 0x80, 0xbf, 1}, {0xe0, 0xe0, 0xa0, 0xbf, 2},
    {0xe1, 0xec, 0x80, 0xbf, 2}, {0xed, 0xed, 0x80, 0x9f, 2}, {0xee, 0xef, 0x80, 0xbf, 2},
    {0xf0, 0xf0, 0x90, 0xbf, 3}, {0xf1, 0xf3, 0x80, 0xbf, 3}, {0xf4, 0xf4, 0x80, 0x8f, 3},
};

const SequenceForm* formOf(unsigned char first)
{
    for (const SequenceForm& form : kSequenceForms) {
        if (first >= form.firstLow && first <= form.firstHigh) {
            return &form;
        }
    }
    return nullptr;
}

/// Length of the sequence that `text` begins with, 0 where it is none.
std::size_t sequenceLength(std::string_view text)
{
    const SequenceForm* form = formOf(static_cast<unsigned char>(text.front()));
    if (form == nullptr || text.size() <= form->following) {
        return 0;
    }
    for (std::size_t i = 1; i <= form->following; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const unsigned char low = i == 1 ? form->secondLow : 0x80;
        const unsigned char high = i == 1 ? form->secondHigh : 0xbf;
        if (byte < low || byte > high) {
            return 0;
        }
    }
    return form->following + 1;
}

void appendEscaped(SecretBytes& out, char c)
{
    constexpr char kHexDigits[] = "0123456789abcdef";
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
        out.push_back('\\');
        out.push_back(c);
    } else if (byte < 0x20) {
        const char escape[] = {'\\', 'u', '0', '0', kHexDigits[byte >> 4], kHexDigits[byte & 0x0f]};
        append(out, std::string_view(escape, sizeof escape));
    } else {
        out.push_back(c);
    }
}

void appendQuoted(SecretBytes& out, std::string_view text)
{
    out.push_back('"');
    for (const char c : text) {
        appendEscaped(out, c);
    }
    out.push_back('"');
}

}  // namespace

bool isUtf8(std::string_view text)
{
    while (!text.empty()) {
        const std::size_t length = sequenceLength(text);
        if (length == 0) {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

void Body::addText(const std::string& key, std::string_view value)
{
    m_isValid = m_isValid && isUtf8(value);
    SecretBytes json;
    json.reserve(value.size() + 2);
    appendQuoted(json, value);
    put(key, std::move(json));
}

void Body::addLiteral(const std::string& key, std::string_view json)
{
    put(key, SecretBytes(json.begin(), json.end()));
}

void Body::put(const std::string& key, SecretBytes json)
{
    m_isValid = m_isValid && isUtf8(key);
    const auto sameKey = [&key](const auto& member) { return member.first == key; };
    const auto place = std::find_if(m_members.begin(), m_members.end(), sameKey);
    if (place != m_members.end()) {
        place->second = std::move(json);
    } else {
        m_members.emplace_back(key, std::move(json));
    }
}

SecretBytes Body::json() const
{
    SecretBytes out;
    out.reserve(256);
    out.push_back('{');
    for (const auto& [key, json] : m_members) {
        if (out.size() > 1) {
            out.push_back(',');
        }
        appendQuoted(out, key);
        out.push_back(':');
        append(out, viewOf(json));
    }
    out.push_back('}');
    return out;
}

}  // namespace brevan
