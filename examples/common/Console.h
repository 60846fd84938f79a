#ifndef BREVAN_EXAMPLES_CONSOLE_H
#define BREVAN_EXAMPLES_CONSOLE_H

// What the example programs share on the side of the terminal: options, the password, aligned lines. Copy it together with them.

#include <getopt.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <string>
#include <vector>

namespace example {

/// How a program ends: each trouble has its own exit status. Numbers from 6 on belong to the program.
enum Status {
    kDone = 0,
    kOtherFailure = 1,
    kUsage = 2,
    kLoginRefused = 3,
    kArrayNotThere = 4,
    kNotTrusted = 5,
    kFirstOwnStatus = 6
};

/// Ends the program with a status and one line that says what is wrong and what to do.
struct Trouble {
    int status;
    std::string text;
};

/// A decimal number, for the option that is named where it is none.
inline unsigned int number(const std::string& option, const std::string& text, unsigned long highest)
{
    char* end = nullptr;
    const unsigned long value = std::strtoul(text.c_str(), &end, 10);
    if (text.empty() || text[0] < '0' || text[0] > '9' || *end != '\0' || value > highest) {
        throw Trouble{kUsage, option + " takes a number from 0 to " + std::to_string(highest)};
    }
    return static_cast<unsigned int>(value);
}

/// An option of the command line, "--name VALUE" or, as a flag, "--name", and what it does.
struct Option {
    const char* name;
    bool isFlag;
    std::function<void(const std::string& value)> take;
};

inline Option textOption(const char* name, std::string& target)
{
    return Option{name, false, [&target](const std::string& value) { target = value; }};
}

inline Option flagOption(const char* name, bool& target)
{
    return Option{name, true, [&target](const std::string&) { target = true; }};
}

/// Takes the options; --help prints `help` and ends the program. What is neither is a Trouble.
inline void parseOptions(int argc, char** argv, const char* help, const std::vector<Option>& options)
{
    std::vector<::option> known;
    known.reserve(options.size() + 2);
    for (const Option& one : options) {
        known.push_back({one.name, one.isFlag ? no_argument : required_argument, nullptr, 0});
    }
    known.push_back({"help", no_argument, nullptr, 0});
    known.push_back({nullptr, 0, nullptr, 0});
    opterr = 0;  // one line of our own is enough
    for (int index = 0, found = 0; (found = getopt_long(argc, argv, "", known.data(), &index)) != -1;) {
        if (found != 0) {
            throw Trouble{kUsage, std::string(argv[optind - 1]) + " is no option, or lacks its value; try --help"};
        }
        const auto place = static_cast<std::size_t>(index);
        if (place == options.size()) {
            std::cout << help;
            std::exit(kDone);
        }
        options[place].take(optarg != nullptr ? optarg : "");
    }
    if (optind != argc) {
        throw Trouble{kUsage, std::string(argv[optind]) + " is no option; try --help"};
    }
}

/// Asks on the terminal, without echo.
inline std::string promptForPassword(const std::string& user)
{
    termios before;
    if (tcgetattr(STDIN_FILENO, &before) != 0) {
        throw Trouble{kUsage, "there is no terminal to ask for the password; set BREVAN_PASSWORD"};
    }
    termios silent = before;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    std::cerr << "Password of " << user << ": " << std::flush;
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
    std::string password;
    std::getline(std::cin, password);
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &before);
    std::cerr << "\n";
    return password;
}

/// The password from BREVAN_PASSWORD, else from a prompt: never from the command line, which everybody can read.
inline std::string password(const std::string& user)
{
    const char* given = std::getenv("BREVAN_PASSWORD");
    return given != nullptr ? given : promptForPassword(user);
}

/// Prints one aligned line a step, with the time that it took.
class Steps {
public:
    void done(const char* step, const std::string& what)
    {
        const auto now = std::chrono::steady_clock::now();
        const std::chrono::duration<double, std::milli> took = now - m_last;
        std::printf("%-10s%-78s %8.1f ms\n", step, what.c_str(), took.count());
        std::fflush(stdout);
        m_last = now;
    }

private:
    std::chrono::steady_clock::time_point m_last = std::chrono::steady_clock::now();
};

/// A line of the result, below the steps.
inline void printResult(const char* name, const std::string& value)
{
    std::printf("%-10s%s\n", name, value.c_str());
}

}  // namespace example

#endif
