#ifndef BREVAN_SIMULATOR_FILES_H
#define BREVAN_SIMULATOR_FILES_H

#include <string>

namespace brevan::sim {

/// Writes a whole file so that a reader finds either what was there before or all of the new content. A failure is a
/// std::system_error that names the file.
void writeFileAtomically(const std::string& path, const std::string& content);

/// The whole content; at most `most` bytes, otherwise a std::runtime_error.
std::string readFile(const std::string& path, std::size_t most);

/// While it lives, no other process and no other lock in this one has the lock of this path. The file `path`.lock is made and
/// stays. Where the lock is taken, or the file cannot be made, a std::exception says so.
class FileLock {
public:
    explicit FileLock(const std::string& path);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

private:
    int m_descriptor;
};

/// A new directory that only this user may enter, under the system's place for temporary files.
std::string makePrivateDirectory();

}  // namespace brevan::sim

#endif
