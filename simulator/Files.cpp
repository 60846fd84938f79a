#include "Files.h"

#include "Secrets.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
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
    std::string content;
    std::string piece(std::min<std::size_t>(most + 1, 1024 * 1024), '\0');
    while (file && content.size() <= most) {
        file.read(piece.data(), static_cast<std::streamsize>(piece.size()));
        content.append(piece, 0, static_cast<std::size_t>(file.gcount()));
    }
    if (!file.is_open() || file.bad()) {
        throw std::system_error(errno, std::generic_category(), "cannot read " + path);
    }
    if (content.size() > most) {
        throw std::runtime_error(path + " is larger than " + std::to_string(most) + " bytes");
    }
    return content;
}

FileLock::FileLock(const std::string& path)
    : m_descriptor(open((path + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600))
{
    if (m_descriptor < 0) {
        throw std::system_error(errno, std::generic_category(), "cannot open " + path + ".lock");
    }
    if (flock(m_descriptor, LOCK_EX | LOCK_NB) != 0) {
        close(m_descriptor);
        throw std::runtime_error(path + " is in use: another simulated array runs on it");
    }
}

FileLock::~FileLock()
{
    close(m_descriptor);
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
