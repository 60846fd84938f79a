#include "RecordText.h"

#include <algorithm>
#include <string_view>

namespace brevan::sim {

namespace {

bool needsEscape(char character)
{
    return character == '"' || character == '\\' || static_cast<unsigned char>(character) < 0x20;
}

void appendEscaped(std::string& json, char character)
{
    constexpr const char* kDigits = "0123456789abcdef";
    json += '\\';
    if (character == '"' || character == '\\') {
        json += character;
    } else {
        json += "u00";
        json += kDigits[character >> 4];
        json += kDigits[character & 15];
    }
}

void appendText(std::string& json, std::string_view text)
{
    json += '"';
    while (!text.empty()) {
        const auto* const special = std::find_if(text.begin(), text.end(), needsEscape);
        const auto plain = static_cast<std::size_t>(special - text.begin());
        json.append(text.data(), plain);
        text.remove_prefix(plain);
        if (!text.empty()) {
            appendEscaped(json, text.front());
            text.remove_prefix(1);
        }
    }
    json += '"';
}

/// One member, without the comma before it. Records are written without building a JSON library's objects first: that took
/// most of the time of a long list. All texts in the database came through a JSON parser and so are UTF-8.
void appendField(std::string& json, const Field& field, std::string_view value)
{
    if (field.form == Form::kMembers) {
        json += value.substr(1, value.size() - 2);
        return;
    }
    json += '"';
    json += field.key;
    json += "\":";
    if (field.form == Form::kNumber) {
        json += value;
    } else {
        appendText(json, value);
    }
}

}  // namespace

void appendRecord(std::string& json, const Statement& row, const ResourceKind& kind)
{
    json += '{';
    int column = 0;
    for (const Field& field : kind.fields) {
        if (!row.isNull(column) && !(field.form == Form::kMembers && row.view(column) == "{}")) {
            json += json.back() == '{' ? "" : ",";
            appendField(json, field, row.view(column));
        }
        ++column;
    }
    json += '}';
}

}  // namespace brevan::sim
