#ifndef BREVAN_TESTS_PLIMLOGSUPPORT_H
#define BREVAN_TESTS_PLIMLOGSUPPORT_H

#include <functional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace brevan::plimlog {

/// A folder of one test, removed with all that is in it.
class TestFolder {
public:
    TestFolder();
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;
    ~TestFolder();

    std::string operator/(const std::string& name) const { return m_path + "/" + name; }
    const std::string& path() const { return m_path; }
    /// Writes a file and returns its path.
    std::string write(const std::string& name, const std::string& text) const;

private:
    std::string m_path;
};

std::string readFile(const std::string& path);
std::vector<std::string> linesOf(const std::string& path);

/// Names of the files in `folder`, sorted.
std::vector<std::string> namesIn(const std::string& folder);

/// Path of the file that process `process` writes for tag "Test" in `folder`; `end` is such as "run.log".
std::string logPath(const std::string& folder, pid_t process, const std::string& end);

/// Runs `body` in a child of fork. Its exit status: 0, 1 where an expectation failed in it, 99 where it was still running
/// after half a minute or died of a signal.
int inChild(const std::function<void()>& body);

/// Starts such a child, and waits for it.
pid_t startChild(const std::function<void()>& body);
int waitForChild(pid_t child);

/// The id of a process that has just ended.
pid_t endedProcess();

}  // namespace brevan::plimlog

#endif
