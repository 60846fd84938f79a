#include "PlimLogSupport.h"

#include "platform/plimlog/LogFileName.h"
#include "platform/plimlog/ProcessIds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <sys/wait.h>
#include <unistd.h>

namespace brevan::plimlog {

TestFolder::TestFolder() : m_path(std::filesystem::temp_directory_path() / "plimlog-XXXXXX")
{
    if (mkdtemp(m_path.data()) == nullptr) {
        throw std::runtime_error("no folder for the test: " + m_path);
    }
}

TestFolder::~TestFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::string TestFolder::write(const std::string& name, const std::string& text) const
{
    std::ofstream(*this / name, std::ios::binary) << text;
    return *this / name;
}

std::string readFile(const std::string& path)
{
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

std::vector<std::string> linesOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::vector<std::string> namesIn(const std::string& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string logPath(const std::string& folder, pid_t process, const std::string& end)
{
    return folder + "/Test." + namePart(programName()) + "." + std::to_string(process) + "." + end;
}

pid_t startChild(const std::function<void()>& body)
{
    const pid_t child = fork();
    if (child == 0) {
        alarm(30);
        body();
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    return child;
}

int waitForChild(pid_t child)
{
    int status = 0;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : 99;
}

int inChild(const std::function<void()>& body)
{
    return waitForChild(startChild(body));
}

pid_t endedProcess()
{
    const pid_t child = startChild([] {});
    waitForChild(child);
    return child;
}

}  // namespace brevan::plimlog
