#include "platform/plimlog/LogSettings.h"

#include "platform/plimlog/LogDirectory.h"

#include <ini.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <set>
#include <string_view>

namespace brevan::plimlog {
namespace {

constexpr std::size_t kLargestFile = 64 * 1024;
constexpr std::size_t kLineEnds = 3;  // what inih keeps of its line buffer for the line's end and the terminator
constexpr std::string_view kLevelNames[] = {"debug", "info", "warn", "error", "off"};

/// Each returns an empty text where `value` was taken over, else what would have been accepted.
using Setter = std::string (*)(LogSettings& settings, std::string_view value, const std::filesystem::path& iniFolder);

std::optional<std::uint64_t> numberWithin(std::string_view value, std::uint64_t low, std::uint64_t high)
{
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
    const bool whole = error == std::errc() && end == value.data() + value.size();
    return whole && number >= low && number <= high ? std::optional(number) : std::nullopt;
}

std::string rangeText(std::uint64_t low, std::uint64_t high)
{
    return "a whole number from " + std::to_string(low) + " to " + std::to_string(high);
}

template <ChannelSettings LogSettings::*kChannel>
std::string setLevel(LogSettings& settings, std::string_view value, const std::filesystem::path&)
{
    const auto* name = std::find(std::begin(kLevelNames), std::end(kLevelNames), value);
    if (name == std::end(kLevelNames)) {
        return "debug, info, warn, error or off";
    }
    (settings.*kChannel).level = static_cast<LogLevel>(name - std::begin(kLevelNames));
    return {};
}

template <ChannelSettings LogSettings::*kChannel>
std::string setFileSize(LogSettings& settings, std::string_view value, const std::filesystem::path&)
{
    // The lower end has room for the longest line when all of it is escaped.
    constexpr std::uint64_t kLow = 128;
    constexpr std::uint64_t kHigh = 1024 * 1024;
    const auto number = numberWithin(value, kLow, kHigh);
    if (!number) {
        return rangeText(kLow, kHigh) + " (KiB)";
    }
    (settings.*kChannel).maxFileBytes = *number * 1024;
    return {};
}

template <ChannelSettings LogSettings::*kChannel>
std::string setFileCount(LogSettings& settings, std::string_view value, const std::filesystem::path&)
{
    const auto number = numberWithin(value, 1, 100);
    if (!number) {
        return rangeText(1, 100);
    }
    (settings.*kChannel).maxFiles = static_cast<unsigned>(*number);
    return {};
}

std::string setKeptFiles(LogSettings& settings, std::string_view value, const std::filesystem::path&)
{
    const auto number = numberWithin(value, 0, 10000);
    if (!number) {
        return rangeText(0, 10000);
    }
    settings.keepOldFiles = static_cast<unsigned>(*number);
    return {};
}

std::string setDirectory(LogSettings& settings, std::string_view value, const std::filesystem::path& iniFolder)
{
    if (value.empty()) {
        return "a directory";
    }
    settings.directory = (iniFolder / value).lexically_normal();
    return {};
}

struct SettingRow {
    std::string_view section;
    std::string_view name;
    Setter set;
};

constexpr std::array<SettingRow, 8> kSettings{{
    {"log", "directory", setDirectory},
    {"log", "keep_old_files", setKeptFiles},
    {"run", "level", setLevel<&LogSettings::run>},
    {"run", "max_file_size_kib", setFileSize<&LogSettings::run>},
    {"run", "max_files", setFileCount<&LogSettings::run>},
    {"interface", "level", setLevel<&LogSettings::interface>},
    {"interface", "max_file_size_kib", setFileSize<&LogSettings::interface>},
    {"interface", "max_files", setFileCount<&LogSettings::interface>},
}};

/// Takes over what inih finds, one setting a call.
class SettingsReader {
public:
    SettingsReader(LogSettings& settings, std::string path)
        : m_settings(settings), m_path(std::move(path)), m_iniFolder(std::filesystem::absolute(m_path).parent_path())
    {
    }

    void parse(std::string text);
    void complain(const std::string& what) { m_settings.complaints.push_back(m_path + ": " + what); }

private:
    void blankLongLines(std::string& text);
    void take(const std::string& section, const std::string& name, std::string_view value);
    static int onSetting(void* reader, const char* section, const char* name, const char* value);

    LogSettings& m_settings;
    std::string m_path;
    std::filesystem::path m_iniFolder;
    std::set<std::string> m_seen;
};

/// inih would take the rest of a line that is too long for a line of its own.
void SettingsReader::blankLongLines(std::string& text)
{
    const std::size_t longest = static_cast<std::size_t>(ini_max_line) - kLineEnds;
    std::size_t number = 1;
    for (std::size_t begin = 0; begin < text.size(); ++number) {
        const std::size_t length = std::min(text.find('\n', begin), text.size()) - begin;
        if (length > longest) {
            if (text[begin] != '#' && text[begin] != ';') {
                complain("line " + std::to_string(number) + " is longer than " + std::to_string(longest) +
                         " characters and is ignored.");
            }
            text.replace(begin, length, "#");
        }
        begin = std::min(text.find('\n', begin), text.size()) + 1;
    }
}

void SettingsReader::parse(std::string text)
{
    std::replace(text.begin(), text.end(), '\0', '?');  // inih would end there without a word
    blankLongLines(text);
    const int badLine = ini_parse_string(text.c_str(), &SettingsReader::onSetting, this);
    if (badLine > 0) {
        complain("line " + std::to_string(badLine) +
                 R"( is neither "[section]" nor "name = value" and is ignored; so is any other such line after it.)");
    } else if (badLine < 0) {
        complain("not enough memory to read it; the defaults are used.");
    }
}

int SettingsReader::onSetting(void* reader, const char* section, const char* name, const char* value)
{
    try {
        static_cast<SettingsReader*>(reader)->take(section, name, value);
    } catch (const std::exception&) {
        return 0;  // must not pass through inih, which is C
    }
    return 1;
}

void SettingsReader::take(const std::string& section, const std::string& name, std::string_view value)
{
    const std::string what = "setting \"" + name + "\" in section [" + section + "]";
    const auto row = std::find_if(kSettings.begin(), kSettings.end(), [&](const SettingRow& candidate) {
        return candidate.section == section && candidate.name == name;
    });
    if (row == kSettings.end()) {
        complain(what + " is unknown and is ignored.");
    } else if (!m_seen.insert(section + "." + name).second) {
        complain(what + " is given twice; the first value counts.");
    } else if (const std::string accepted = row->set(m_settings, value, m_iniFolder); !accepted.empty()) {
        complain(what + " cannot be \"" + std::string(value) + "\", only " + accepted + "; the default is used.");
    }
}

}  // namespace

LogSettings readLogSettings(const char* path)
{
    LogSettings settings;
    if (path == nullptr || *path == '\0') {
        return settings;
    }
    SettingsReader reader(settings, path);
    std::string text;
    const int error = readSmallFile(path, kLargestFile, text);
    if (error == 0) {
        reader.parse(std::move(text));
    } else if (error != ENOENT && error != ENOTDIR) {
        reader.complain("cannot be read (" + std::string(std::strerror(error)) + "); the default settings are used.");
    }
    return settings;
}

std::vector<std::string> logSettingNames()
{
    std::vector<std::string> names;
    names.reserve(kSettings.size());
    for (const SettingRow& row : kSettings) {
        names.push_back(std::string(row.section) + "." + std::string(row.name));
    }
    return names;
}

}  // namespace brevan::plimlog
