#include "Files.h"

#include "Secrets.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace brevan::sim {

void writeFileAtomically(const std::string& path, const std::string& content)
{
    const std::string scratch = path + ".new." + randomHex(4);
    errno = 0;
    std::ofstream file(scratch, std::ios::binary);
    file << content;
    file.close();
    if (!file) {
        const int reason = errno;
        std::error_code ignored;
        std::filesystem::remove(scratch, ignored);
        throw std::system_error(reason, std::generic_category(), "cannot write " + path);
    }
    std::filesystem::rename(scratch, path);
}

std::string readFile(const std::string& path, std::size_t most)
{
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    std::string content(most + 1, '\0');
    file.read(content.data(), static_cast<std::streamsize>(content.size()));
    if (!file.is_open() || file.bad()) {
        throw std::system_error(errno, std::generic_category(), "cannot read " + path);
    }
    content.resize(static_cast<std::size_t>(file.gcount()));
    if (content.size() > most) {
        throw std::runtime_error(path + " is larger than " + std::to_string(most) + " bytes");
    }
    return content;
}

std::string makePrivateDirectory()
{
    std::string path = (std::filesystem::temp_directory_path() / "brevan-array-sim-XXXXXX").string();
    if (mkdtemp(path.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), "cannot make " + path);
    }
    return path;
}

}  // namespace brevan::sim
