#ifndef BREVAN_TESTS_SIMULATOR_PROGRAMFIXTURE_H
#define BREVAN_TESTS_SIMULATOR_PROGRAMFIXTURE_H

#include "HttpsClient.h"

#include "simulator/Files.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

extern char** environ;

namespace brevan::sim::test {

/// The program itself, as a child that ends with the test whatever happens.
class Program : public ::testing::Test {
protected:
    Program() { setenv("BREVAN_SIM_PASSWORD", "secret", 1); }
    ~Program() override
    {
        if (m_pid > 0) {
            kill(m_pid, SIGKILL);
            waitpid(m_pid, nullptr, 0);
        }
        unsetenv("BREVAN_SIM_PASSWORD");
        std::filesystem::remove_all(m_directory);
    }
    void start(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), BREVAN_ARRAY_SIM);
        std::vector<char*> raw;
        for (std::string& argument : arguments) {
            raw.push_back(argument.data());
        }
        raw.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, 1, file("output").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        posix_spawn_file_actions_addopen(&actions, 2, file("errors").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        ASSERT_EQ(posix_spawn(&m_pid, raw[0], &actions, nullptr, raw.data(), environ), 0);
        posix_spawn_file_actions_destroy(&actions);
    }
    /// The port, once the program listens; empty where it does not.
    std::string port()
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!std::filesystem::exists(file("port")) && std::chrono::steady_clock::now() < end) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        const std::string text = std::filesystem::exists(file("port")) ? content("port") : std::string();
        return text.substr(0, text.find('\n'));
    }
    int exitStatus()
    {
        int status = 0;
        waitpid(m_pid, &status, 0);
        m_pid = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    std::string file(const std::string& name) const { return m_directory + "/" + name; }
    std::string content(const std::string& name) const { return readFile(file(name), 100000); }

    std::string m_directory = makePrivateDirectory();
    pid_t m_pid = -1;
};

}  // namespace brevan::sim::test

#endif
