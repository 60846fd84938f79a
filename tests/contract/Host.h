#ifndef BREVAN_TESTS_CONTRACT_HOST_H
#define BREVAN_TESTS_CONTRACT_HOST_H

#include <deque>
#include <map>
#include <mutex>
#include <set>
#include <string>

namespace brevan::contract {

/// Stands behind the C library's functions that the library calls (Host.cpp defines them in the test program): no pause takes time, the
/// clock stands at 2021-03-04 05:06:07 089 UTC, no shell runs and no real disk is opened. What is called goes to the recorder's log.
class Host {
public:
    static Host& instance();

    void reset();

    void expectShell(const std::string& line, int result);
    void addDisk(const std::string& path, const std::string& designator);
    void useRescanSettingFile() { m_settingFile = true; }
    void failLock() { m_lockFails = true; }

    /// No shell command was expected that did not come.
    void verify() const;

    // For the C library's functions.
    int shell(const char* line);
    int openDisk(const std::string& path, bool forWriting);
    int inquire(int fd, void* request);
    bool isDisk(int fd) const;
    bool hasSettingFile() const { return m_settingFile; }
    bool lockFails() const { return m_lockFails; }

private:
    Host() = default;

    mutable std::mutex m_mutex;
    std::deque<std::pair<std::string, int>> m_shell;
    std::map<std::string, std::string> m_disks;
    std::map<int, std::string> m_open;
    bool m_settingFile = false;
    bool m_lockFails = false;
};

}  // namespace brevan::contract

#endif
