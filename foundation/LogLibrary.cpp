#include "foundation/LogLibrary.h"

#include "foundation/RunLog.h"

#include <PlimLogAPI.h>
#include <safe_str_lib.h>

#include <array>
#include <cstring>
#include <string>

namespace brevan {
namespace {

class OwnProcessMap final : public ProcessMap {
public:
    File open() override { return File(std::fopen("/proc/self/maps", "r")); }
};

OwnProcessMap g_ownProcessMap;

/// The path in the line of a mapping; null where it is no executable mapping of that module.
char* pathOfModule(char* line, const char* moduleName)
{
    char* path = std::strchr(line, '/');
    const bool wanted = path != nullptr && std::strstr(line, "r-xp") != nullptr && std::strstr(line, moduleName) != nullptr;
    return wanted ? path : nullptr;
}

}  // namespace

Seam<ProcessMap>& processMapSeam()
{
    static Seam<ProcessMap> seam(g_ownProcessMap);
    return seam;
}

}  // namespace brevan

int GetModuleFilePath(const char* moduleName, char* outDir, unsigned int outSize)
{
    const brevan::File map = brevan::processMapSeam().get().open();
    if (!map) {
        return -1;
    }
    int result = -1;
    std::array<char, 1024> line{};
    while (std::fgets(line.data(), static_cast<int>(line.size()), map.get()) != nullptr) {
        char* path = brevan::pathOfModule(line.data(), moduleName);
        if (path == nullptr) {
            continue;
        }
        char* lastSlash = std::strrchr(path, '/');
        if (lastSlash == path) {
            break;  // a file in the root directory has no directory to give
        }
        *lastSlash = '\0';
        if (std::strlen(path) >= outSize) {
            break;
        }
        // Found, even if the copy fails: then the next mapping is tried, and the last one that could be copied counts.
        result = 0;
        if (strcpy_s(outDir, outSize, path) == EOK) {
            break;
        }
    }
    return result;
}

void GetCurrentPath(char* outDir, unsigned int outSize)
{
    std::array<char, 1024> buffer{};
    if (GetModuleFilePath("libPlimLogAPI.so", buffer.data(), static_cast<unsigned int>(buffer.size())) != 0) {
        return;
    }
    // Appending "/" and cutting at the last one cancel each other; what stays is the directory.
    strcat_s(buffer.data(), buffer.size(), "/");
    char* lastSlash = std::strrchr(buffer.data(), '/');
    if (lastSlash != nullptr && lastSlash != buffer.data()) {
        *lastSlash = '\0';
    }
    strcpy_s(outDir, outSize, buffer.data());
}

int LOG_INIT()
{
    const std::array<unsigned int, 3> levels = {0xFFFFFFFFU, 0xFFFFFFFFU, 0xFFFFFFFFU};
    std::array<char, 513> directory{};
    GetCurrentPath(directory.data(), static_cast<unsigned int>(directory.size()));
    const std::string base = directory.data();
    const std::string configFile = base + "/" + "Brevan_API.ini";
    const std::string logDirectory = base + "/logs/";
    return LogInit(kProductTag, configFile.c_str(), levels.data(), logDirectory.c_str()) == 0 ? 0 : -1;
}

int LOG_EXIT()
{
    return LogFini(kProductTag);
}
