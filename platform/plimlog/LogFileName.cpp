#include "platform/plimlog/LogFileName.h"

#include <algorithm>
#include <charconv>
#include <vector>

namespace brevan::plimlog {
namespace {

constexpr std::string_view kEnd = "log";
constexpr std::string_view kKinds[] = {"run", "interface"};
constexpr std::size_t kFewestParts = 5;  // tag, program, pid, kind, "log"

std::vector<std::string_view> split(std::string_view text, char separator)
{
    std::vector<std::string_view> parts;
    for (std::size_t end = text.find(separator); end != std::string_view::npos; end = text.find(separator)) {
        parts.push_back(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
    parts.push_back(text);
    return parts;
}

/// A number as text() writes it: no sign, no leading zero, not 0.
template <typename Number>
std::optional<Number> readNumber(std::string_view text)
{
    Number number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool usable = error == std::errc() && end == text.data() + text.size() && text[0] != '0' && text[0] != '-';
    return usable ? std::optional(number) : std::nullopt;
}

bool readProcess(std::string_view text, LogFileName& name)
{
    const std::vector<std::string_view> parts = split(text, '-');
    const auto pid = readNumber<pid_t>(parts[0]);
    const auto instance = parts.size() == 1 ? std::optional(1U) : readNumber<unsigned>(parts[1]);
    if (!pid || !instance || parts.size() > 2 || (parts.size() == 2 && *instance < 2)) {
        return false;
    }
    name.pid = *pid;
    name.instance = *instance;
    return true;
}

bool readKind(std::string_view text, LogFileName& name)
{
    const auto* kind = std::find(std::begin(kKinds), std::end(kKinds), text);
    name.kind = static_cast<LogKind>(kind - std::begin(kKinds));
    return kind != std::end(kKinds);
}

}  // namespace

std::string LogFileName::text() const
{
    std::string out = tag + "." + program + "." + std::to_string(pid);
    if (instance > 1) {
        out += "-" + std::to_string(instance);
    }
    out += ".";
    out += kKinds[static_cast<int>(kind)];
    if (generation > 0) {
        out += "." + std::to_string(generation);
    }
    return out + "." + std::string(kEnd);
}

std::optional<LogFileName> parseLogFileName(std::string_view name)
{
    const std::vector<std::string_view> parts = split(name, '.');
    if (parts.size() < kFewestParts || parts.size() > kFewestParts + 1 || parts.back() != kEnd) {
        return std::nullopt;
    }
    LogFileName result;
    result.tag = parts[0];
    result.program = parts[1];
    if (parts.size() > kFewestParts) {
        const auto generation = readNumber<unsigned>(parts[4]);
        if (!generation) {
            return std::nullopt;
        }
        result.generation = *generation;
    }
    const bool ours = !parts[0].empty() && !parts[1].empty() && readProcess(parts[2], result) && readKind(parts[3], result);
    return ours ? std::optional(result) : std::nullopt;
}

std::string namePart(std::string_view text)
{
    static constexpr std::string_view kKept = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_";
    std::string out;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (kKept.find(c) != std::string_view::npos) {
            out += c;
        } else {
            out += '%';
            out += "0123456789abcdef"[byte >> 4];
            out += "0123456789abcdef"[byte & 0xf];
        }
    }
    return out;
}

}  // namespace brevan::plimlog
