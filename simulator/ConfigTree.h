#ifndef BREVAN_SIMULATOR_CONFIGTREE_H
#define BREVAN_SIMULATOR_CONFIGTREE_H

#include <string>
#include <vector>

namespace brevan::sim {

/// The few things that one does in the kernel's configfs. Every failure is a std::system_error that names the path. Tests
/// override what only a kernel does: the entries that appear with a new directory and vanish with it.
class ConfigTree {
public:
    virtual ~ConfigTree() = default;
    virtual void makeDirectory(const std::string& path);
    virtual void removeDirectory(const std::string& path);
    void write(const std::string& path, const std::string& value);
    void link(const std::string& target, const std::string& path);
    void unlink(const std::string& path);
    bool exists(const std::string& path) const;
    /// Names of the directories in a directory, sorted; none where it is not there.
    std::vector<std::string> directories(const std::string& path) const;
    /// Names of the symbolic links in a directory, sorted.
    std::vector<std::string> links(const std::string& path) const;
    /// Where a symbolic link leads, as its last part; empty where it is none.
    std::string linkedName(const std::string& path) const;
};

}  // namespace brevan::sim

#endif
