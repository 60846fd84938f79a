#ifndef BREVAN_SIMULATOR_FILES_H
#define BREVAN_SIMULATOR_FILES_H

#include <string>

namespace brevan::sim {

/// Writes a whole file so that a reader finds either what was there before or all of the new content. A failure is a
/// std::system_error that names the file.
void writeFileAtomically(const std::string& path, const std::string& content);

/// The whole content; at most `most` bytes, otherwise a std::runtime_error.
std::string readFile(const std::string& path, std::size_t most);

/// A new directory that only this user may enter, under the system's place for temporary files.
std::string makePrivateDirectory();

}  // namespace brevan::sim

#endif
