#include "CommandTemplate.h"

#include <algorithm>

namespace brevan {

namespace {

constexpr std::size_t kLongestParameter = 4096;

const char* faultOf(const std::string& parameter)
{
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; };
    if (parameter.empty()) {
        return "a parameter is empty";
    }
    if (parameter.front() == '-') {
        return "a parameter begins with \"-\"";
    }
    if (parameter.size() > kLongestParameter) {
        return "a parameter is longer than 4096 bytes";
    }
    return std::any_of(parameter.begin(), parameter.end(), isControl) ? "a parameter holds a control character" : nullptr;
}

/// Text for inside single quotes, where only the quote itself means anything to the shell.
std::string insideSingleQuotes(const std::string& text)
{
    std::string quoted;
    for (const char c : text) {
        if (c == '\'') {
            quoted += "'\\''";
        } else {
            quoted += c;
        }
    }
    return quoted;
}

enum class Place { Bare, SingleQuoted, DoubleQuoted };

/// Where the shell stands after `c`.
Place placeAfter(Place place, char c)
{
    if (c == '\'' && place != Place::DoubleQuoted) {
        return place == Place::Bare ? Place::SingleQuoted : Place::Bare;
    }
    if (c == '"' && place != Place::SingleQuoted) {
        return place == Place::Bare ? Place::DoubleQuoted : Place::Bare;
    }
    return place;
}

}  // namespace

const char* fillTemplate(const std::string& commandLine, const std::vector<std::string>& parameters, std::string& line)
{
    line.clear();
    auto next = parameters.begin();
    Place place = Place::Bare;
    bool isEscaped = false;
    for (const char c : commandLine) {
        if (c == '?' && !isEscaped && place != Place::DoubleQuoted) {
            if (next == parameters.end()) {
                return "there are fewer parameters than places for them";
            }
            if (const char* fault = faultOf(*next); fault != nullptr) {
                return fault;
            }
            const std::string text = insideSingleQuotes(*next++);
            line += place == Place::SingleQuoted ? text : "'" + text + "'";
            continue;
        }
        place = isEscaped ? place : placeAfter(place, c);
        isEscaped = !isEscaped && c == '\\' && place != Place::SingleQuoted;
        line += c;
    }
    return next == parameters.end() ? nullptr : "there are more parameters than places for them";
}

}  // namespace brevan
