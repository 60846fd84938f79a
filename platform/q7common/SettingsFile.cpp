#include "SettingsFile.h"

#include "FileDescriptor.h"
#include "SettingTable.h"
#include "Url.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <ini.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <set>
#include <sstream>

namespace brevan {

namespace {

constexpr const char* kFileVariable = "BREVAN_TRANSPORT_CONFIG";
constexpr const char* kFileName = "/transport.ini";
constexpr const char* kSystemFile = "/etc/brevan/transport.ini";
constexpr std::size_t kLargestFile = 64 * 1024;
constexpr std::string_view kTlsOfHost = "tls ";

struct Assignment {
    std::size_t line;
    std::string section;
    std::string key;
    std::string value;
};

/// Hands the text to inih line by line and remembers where it is: inih does not tell its handler the line.
struct Reading {
    std::string_view rest;
    std::size_t line = 0;
    std::size_t tooLongLine = 0;
    std::vector<Assignment> assignments;
};

char* nextLine(char* buffer, int size, void* reading)
{
    auto& self = *static_cast<Reading*>(reading);
    if (self.rest.empty() || self.tooLongLine != 0) {
        return nullptr;
    }
    ++self.line;
    const std::size_t length = std::min(self.rest.find('\n'), self.rest.size());
    if (length + 2 > static_cast<std::size_t>(size)) {
        self.tooLongLine = self.line;
        return nullptr;
    }
    self.rest.copy(buffer, length);
    buffer[length] = '\0';
    self.rest.remove_prefix(std::min(length + 1, self.rest.size()));
    return buffer;
}

int keepAssignment(void* reading, const char* section, const char* key, const char* value)
{
    auto& self = *static_cast<Reading*>(reading);
    try {
        self.assignments.push_back({self.line, section, key, value == nullptr ? "" : value});
        return 1;
    } catch (const std::exception&) {
        return 0;  // no memory: inih reports the line as faulty, and the settings are not used
    }
}

std::string problemAt(const std::string& file, std::size_t line, const std::string& what)
{
    return "Transport settings " + file + ":" + std::to_string(line) + ": " + what;
}

std::string nameOf(const Assignment& assignment)
{
    return "[" + assignment.section + "] " + assignment.key;
}

bool isOfHost(const Assignment& assignment)
{
    return assignment.section.compare(0, kTlsOfHost.size(), kTlsOfHost) == 0;
}

const SettingRow* rowOf(const Assignment& assignment)
{
    if (!isOfHost(assignment)) {
        return findSetting(assignment.section, assignment.key);
    }
    const std::string host = assignment.section.substr(kTlsOfHost.size());
    return makeServer(host, "1").has_value() ? findSetting("tls", assignment.key) : nullptr;
}

TlsSettings& tlsOf(const Assignment& assignment, Settings& settings)
{
    if (!isOfHost(assignment)) {
        return settings.tls;
    }
    return settings.tlsOfHost.emplace(assignment.section.substr(kTlsOfHost.size()), settings.tls).first->second;
}

void apply(const Assignment& assignment, Settings& settings)
{
    const SettingRow* row = rowOf(assignment);
    std::string problem;
    if (row == nullptr) {
        problem = nameOf(assignment) + " is not a setting; see docs/settings.md for those that are";
    } else if (!applySetting(*row, assignment.value, settings, tlsOf(assignment, settings))) {
        problem = nameOf(assignment) + " is out of range; allowed: " + allowedValues(*row);
    } else if (row->key == "ca_file" && !assignment.value.empty() && access(assignment.value.c_str(), R_OK) != 0) {
        problem = nameOf(assignment) + " cannot be read (" + std::strerror(errno) + "); allowed: " + allowedValues(*row);
    }
    if (!problem.empty()) {
        settings.problems.push_back(problemAt(settings.file, assignment.line, problem));
    }
}

/// General settings first: a section of one array begins with what is set for all.
void applyAll(const std::vector<Assignment>& assignments, Settings& settings)
{
    std::set<std::string> seen;
    for (const bool ofHost : {false, true}) {
        for (const Assignment& assignment : assignments) {
            if (isOfHost(assignment) != ofHost) {
                continue;
            }
            if (seen.insert(nameOf(assignment)).second) {
                apply(assignment, settings);
            } else {
                settings.problems.push_back(
                    problemAt(settings.file, assignment.line,
                              nameOf(assignment) +
                                  " is set twice (a line that begins with a blank goes on with the setting before it)"));
            }
        }
    }
}

/// Files that a setting names are part of the source: a CA file that was replaced must be noticed at the next login.
std::string stampOf(const std::string& file)
{
    struct stat status {};
    if (file.empty() || stat(file.c_str(), &status) != 0) {
        return {};
    }
    std::ostringstream stamp;
    stamp << '\n'
          << file << ' ' << status.st_ino << ' ' << status.st_size << ' ' << status.st_mtim.tv_sec << ' '
          << status.st_mtim.tv_nsec;
    return stamp.str();
}

/// Reads at most one byte more than the largest file has; 0, or an errno value.
int readFile(const std::string& file, std::string& text)
{
    const FileDescriptor descriptor(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!descriptor.isOpen()) {
        return errno;
    }
    std::array<char, 4096> part;
    ssize_t count = 0;
    while (text.size() <= kLargestFile && (count = read(descriptor.get(), part.data(), part.size())) > 0) {
        text.append(part.data(), static_cast<std::size_t>(count));
    }
    return count < 0 ? errno : 0;
}

std::string fileBesideThisLibrary()
{
    Dl_info info{};
    char path[PATH_MAX];
    if (dladdr(reinterpret_cast<const void*>(&findSettingsFile), &info) == 0 || info.dli_fname == nullptr ||
        realpath(info.dli_fname, path) == nullptr) {
        return {};
    }
    const std::string library = path;
    return library.substr(0, library.rfind('/')) + kFileName;
}

}  // namespace

std::string findSettingsFile()
{
    const char* named = secure_getenv(kFileVariable);
    if (named != nullptr && *named != '\0') {
        return named;
    }
    for (const std::string& file : {fileBesideThisLibrary(), std::string(kSystemFile)}) {
        if (!file.empty() && access(file.c_str(), F_OK) == 0) {
            return file;
        }
    }
    return {};
}

Settings readSettingsText(std::string_view text, const std::string& file)
{
    Settings settings = defaultSettings();
    settings.file = file;
    settings.source = file + "\n" + std::string(text);
    Reading reading;
    reading.rest = text;
    const int faultyLine = ini_parse_stream(nextLine, &reading, keepAssignment, &reading);
    if (text.find('\0') != std::string_view::npos) {
        settings.problems.push_back("Transport settings " + file + ": this is not a text file");
    } else if (reading.tooLongLine != 0) {
        settings.problems.push_back(problemAt(file, reading.tooLongLine, "the line is too long"));
    } else if (faultyLine != 0) {
        const auto line = static_cast<std::size_t>(std::max(faultyLine, 0));
        settings.problems.push_back(problemAt(file, line, "expected [section] or key = value"));
    }
    applyAll(reading.assignments, settings);
    for (const auto& [host, tls] : settings.tlsOfHost) {
        settings.source += stampOf(tls.caFile);
    }
    settings.source += stampOf(settings.tls.caFile);
    return settings;
}

Settings readSettingsFile(const std::string& file)
{
    if (file.empty()) {
        return readSettingsText({}, {});
    }
    std::string text;
    const int fault = readFile(file, text);
    if (fault == 0 && text.size() <= kLargestFile) {
        return readSettingsText(text, file);
    }
    Settings settings = defaultSettings();
    settings.file = file;
    settings.problems.push_back("Transport settings " + file +
                                " cannot be used: " + (fault == 0 ? "it is larger than 64 KiB" : std::strerror(fault)));
    return settings;
}

}  // namespace brevan
