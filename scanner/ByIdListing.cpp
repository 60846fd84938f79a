#include "scanner/ByIdListing.h"

#include "foundation/RunLog.h"

namespace brevan {
namespace {

constexpr const char* kByIdFolder = "/dev/disk/by-id/";
constexpr const char* kParentFolder = "../";
constexpr std::size_t kKindLength = 6;

std::string withoutLineEnd(const std::string& text)
{
    const std::size_t last = text.find_last_not_of('\n');
    return last == std::string::npos ? std::string() : text.substr(0, last + 1);
}

}  // namespace

std::string candidatePath(const std::string& line)
{
    const std::size_t target = line.find(kParentFolder);
    const std::string rest = target == std::string::npos ? std::string() : line.substr(target);
    return kByIdFolder + withoutLineEnd(rest);
}

std::optional<std::string> lineIdentifier(const std::string& line)
{
    std::size_t name = line.find("scsi-");
    if (name == std::string::npos) {
        name = line.find("wwn-");
    }
    if (name == std::string::npos) {
        return std::nullopt;
    }
    const std::string word = line.substr(name, line.find(' ', name) - name);
    if (word.size() < kKindLength) {
        return std::nullopt;
    }
    return word.substr(kKindLength);
}

std::map<std::string, std::vector<std::string>> groupByPath(const std::vector<std::string>& lines)
{
    std::map<std::string, std::vector<std::string>> disks;
    for (const std::string& untrimmed : lines) {
        if (untrimmed.find(kParentFolder) == std::string::npos) {
            continue;
        }
        const std::string line = withoutLineEnd(untrimmed);
        COMMLOG(OS_LOG_INFO, "strLine [%s]", line.c_str());
        if (const auto identifier = lineIdentifier(line)) {
            disks[candidatePath(line)].push_back(*identifier);
        }
    }
    return disks;
}

std::string deviceName(const std::string& path)
{
    return path.substr(path.rfind('/') + 1);
}

}  // namespace brevan
