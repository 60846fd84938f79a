#include "VolumeFiles.h"

#include "Text.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <vector>

namespace brevan::sim {

namespace {

namespace fs = std::filesystem;

constexpr const char* kUnfinished = ".part";

/// An open file that closes itself.
class File {
public:
    File(const std::string& path, int flags) : m_descriptor(open(path.c_str(), flags | O_CLOEXEC, 0600))
    {
        if (m_descriptor < 0) {
            throw std::system_error(errno, std::generic_category(), "cannot open " + path);
        }
    }
    ~File() { close(m_descriptor); }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    int descriptor() const { return m_descriptor; }
    void resize(std::uint64_t bytes) const
    {
        if (ftruncate(m_descriptor, static_cast<off_t>(bytes)) != 0) {
            throw std::system_error(errno, std::generic_category(), "cannot set the size of a volume's file");
        }
    }

private:
    int m_descriptor;
};

void copyBytes(const File& from, const File& to, off_t begin, off_t end)
{
    std::vector<char> buffer(1024 * 1024);
    while (begin < end) {
        const auto wanted = std::min<std::size_t>(buffer.size(), static_cast<std::size_t>(end - begin));
        const ssize_t got = pread(from.descriptor(), buffer.data(), wanted, begin);
        if (got <= 0 || pwrite(to.descriptor(), buffer.data(), static_cast<std::size_t>(got), begin) != got) {
            throw std::system_error(errno, std::generic_category(), "cannot copy a volume's file");
        }
        begin += got;
    }
}

}  // namespace

VolumeFiles::VolumeFiles(std::string directory, std::string prefix)
    : m_directory(std::move(directory)), m_prefix(std::move(prefix))
{
}

std::string VolumeFiles::path(const std::string& wwn) const
{
    return (fs::path(m_directory) / (wwn + ".img")).string();
}

void VolumeFiles::makeDirectory()
{
    fs::create_directories(m_directory);
    for (const fs::directory_entry& entry : fs::directory_iterator(m_directory)) {
        if (startsWith(entry.path().filename().string(), m_prefix) && entry.path().extension() == kUnfinished) {
            fs::remove(entry.path());
        }
    }
}

std::string VolumeFiles::prepare(const ExposedVolume& volume)
{
    const File file(path(volume.wwn), O_RDWR | O_CREAT);
    file.resize(volume.bytes);
    return fs::absolute(path(volume.wwn)).string();
}

void VolumeFiles::copy(const std::string& sourceWwn, const ExposedVolume& copy)
{
    remove(copy.wwn);
    if (!fs::exists(path(sourceWwn))) {
        return;
    }
    const File from(path(sourceWwn), O_RDONLY);
    const std::string unfinished = path(copy.wwn) + kUnfinished;
    const File to(unfinished, O_WRONLY | O_CREAT | O_TRUNC);
    to.resize(copy.bytes);
    const auto size = static_cast<off_t>(copy.bytes);
    // Only what holds data is copied, so that the copy is as sparse as its source.
    for (off_t begin = lseek(from.descriptor(), 0, SEEK_DATA); begin >= 0 && begin < size;) {
        const off_t hole = lseek(from.descriptor(), begin, SEEK_HOLE);
        const off_t end = hole < 0 || hole > size ? size : hole;
        copyBytes(from, to, begin, end);
        begin = lseek(from.descriptor(), end, SEEK_DATA);
    }
    fs::rename(unfinished, path(copy.wwn));
}

void VolumeFiles::remove(const std::string& wwn)
{
    fs::remove(path(wwn));
    fs::remove(path(wwn) + kUnfinished);
}

void VolumeFiles::removeAll()
{
    std::error_code ignored;
    for (const fs::directory_entry& entry : fs::directory_iterator(m_directory, ignored)) {
        if (startsWith(entry.path().filename().string(), m_prefix) && entry.path().extension() == ".img") {
            fs::remove(entry.path());
        }
    }
}

}  // namespace brevan::sim
