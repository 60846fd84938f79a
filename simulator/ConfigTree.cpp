#include "ConfigTree.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

namespace brevan::sim {

namespace {

namespace fs = std::filesystem;

void require(bool done, const char* what, const std::string& path)
{
    if (!done) {
        throw std::system_error(errno, std::generic_category(), std::string("cannot ") + what + " " + path);
    }
}

template <typename Predicate>
std::vector<std::string> namesIn(const std::string& path, Predicate wanted)
{
    std::vector<std::string> names;
    std::error_code ignored;
    for (const fs::directory_entry& entry : fs::directory_iterator(path, ignored)) {
        if (wanted(entry.symlink_status())) {
            names.push_back(entry.path().filename().string());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace

void ConfigTree::makeDirectory(const std::string& path)
{
    require(mkdir(path.c_str(), 0755) == 0, "make", path);
}

void ConfigTree::removeDirectory(const std::string& path)
{
    require(rmdir(path.c_str()) == 0, "remove", path);
}

void ConfigTree::write(const std::string& path, const std::string& value)
{
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    require(file >= 0, "open", path);
    // The kernel takes a value in one write; a shorter one would be another value.
    const ssize_t written = ::write(file, value.data(), value.size());
    const int reason = written == static_cast<ssize_t>(value.size()) ? 0 : (written < 0 ? errno : EIO);
    close(file);
    errno = reason;
    require(reason == 0, "write", path);
}

void ConfigTree::link(const std::string& target, const std::string& path)
{
    require(symlink(target.c_str(), path.c_str()) == 0, "link", path);
}

void ConfigTree::unlink(const std::string& path)
{
    require(::unlink(path.c_str()) == 0, "unlink", path);
}

bool ConfigTree::exists(const std::string& path) const
{
    std::error_code ignored;
    return fs::exists(fs::symlink_status(path, ignored));
}

std::vector<std::string> ConfigTree::directories(const std::string& path) const
{
    return namesIn(path, [](const fs::file_status& status) { return fs::is_directory(status); });
}

std::vector<std::string> ConfigTree::links(const std::string& path) const
{
    return namesIn(path, [](const fs::file_status& status) { return fs::is_symlink(status); });
}

std::string ConfigTree::linkedName(const std::string& path) const
{
    std::error_code error;
    const fs::path target = fs::read_symlink(path, error);
    return error ? std::string() : target.filename().string();
}

}  // namespace brevan::sim
