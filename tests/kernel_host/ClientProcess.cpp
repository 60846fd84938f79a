#include "ClientProcess.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <sstream>
#include <stdexcept>

namespace brevan::test {
namespace {

constexpr const char* kScript = "/opt/root_tool/common/security_sudo_v3.sh";
constexpr const char* kRealScript = "/opt/root_tool/common/real.sh";
constexpr const char* kNotes = "/run/rescans/calls";
constexpr const char* kSaid = "/run/rescans/said";

std::string holdFile(const std::string& command)
{
    return "/run/rescans/hold-" + command;
}

std::vector<std::string> linesOf(const std::string& path)
{
    std::ifstream file(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}

}  // namespace

ClientProcess::ClientProcess(const sim::ArrayServer& array, const std::vector<std::string>& arguments)
{
    static int number = 0;
    m_output = "/tmp/client-" + std::to_string(++number);
    std::vector<std::string> line = {std::filesystem::read_symlink("/proc/self/exe").parent_path() / "kernel_host_client",
                                     std::to_string(array.port())};
    line.insert(line.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    std::transform(line.begin(), line.end(), std::back_inserter(argv), [](std::string& word) { return word.data(); });
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, m_output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    const int fault = posix_spawn(&m_pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (fault != 0) {
        throw std::runtime_error("cannot start " + line[0]);
    }
    m_id = m_pid;
}

ClientProcess::~ClientProcess()
{
    kill();
}

std::map<std::string, std::string> ClientProcess::said()
{
    if (!eventually([this] { return !isRunning(); })) {
        throw std::runtime_error("a client does not end");
    }
    std::map<std::string, std::string> answers;
    for (const std::string& line : linesOf(m_output)) {
        const auto colon = line.find(": ");
        answers[line.substr(0, colon)] = line.substr(colon + 2);
    }
    return answers;
}

std::vector<std::string> ClientProcess::errorLines() const
{
    const auto build = std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path();
    const std::string name = "Plim-Brevan-API-linux-Cpp.kernel_host_client." + std::to_string(m_id) + ".run.log";
    std::vector<std::string> errors;
    for (const std::string& line : linesOf(build / "lib/logs" / name)) {
        std::istringstream words(line);
        std::string date, time, level, process, thread, message;
        words >> date >> time >> level >> process >> thread >> std::ws;
        if (level == "ERROR" && std::getline(words, message)) {
            errors.push_back(message);
        }
    }
    return errors;
}

bool ClientProcess::isRunning()
{
    if (m_pid > 0 && waitpid(m_pid, nullptr, WNOHANG) == m_pid) {
        m_pid = -1;
    }
    return m_pid > 0;
}

void ClientProcess::kill()
{
    if (isRunning()) {
        ::kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
        m_pid = -1;
    }
}

RescanRecorder::RescanRecorder()
{
    std::filesystem::create_directory("/run/rescans");
    std::filesystem::copy_file(kScript, kRealScript, std::filesystem::copy_options::overwrite_existing);
    const std::string source = BREVAN_KERNEL_HOST_TESTS "/rescan-recorder.sh";
    std::filesystem::copy_file(source, kScript, std::filesystem::copy_options::overwrite_existing);
}

RescanRecorder::~RescanRecorder()
{
    std::filesystem::rename(kRealScript, kScript);
    std::filesystem::remove_all("/run/rescans");
}

std::vector<std::string> RescanRecorder::calls()
{
    return linesOf(kNotes);
}

int RescanRecorder::callsOf(const std::string& line)
{
    const auto all = calls();
    return static_cast<int>(std::count(all.begin(), all.end(), line));
}

void RescanRecorder::forget()
{
    std::filesystem::remove(kNotes);
}

void RescanRecorder::hold(const std::string& command)
{
    writeFile(holdFile(command), "");
}

void RescanRecorder::letGo(const std::string& command)
{
    std::filesystem::remove(holdFile(command));
}

void RescanRecorder::say(const std::string& text)
{
    writeFile(kSaid, text);
}

}  // namespace brevan::test
