// The tests' own main(): besides GoogleTest's arguments, a program takes numbers (--rounds=50).
#include "KernelHost.h"

#include <cstdio>
#include <map>

namespace {

std::map<std::string, int>& amounts()
{
    static std::map<std::string, int> given;
    return given;
}

}  // namespace

int brevan::test::amount(const std::string& name, int usual)
{
    const auto given = amounts().find(name);
    return given == amounts().end() ? usual : given->second;
}

int main(int argc, char** argv)
{
    std::setvbuf(stdout, nullptr, _IOLBF, 0);  // what was measured leaves a guest that is ended, too
    testing::InitGoogleTest(&argc, argv);
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        const auto equals = argument.find('=');
        if (argument.rfind("--", 0) != 0 || equals == std::string::npos) {
            std::fprintf(stderr, "%s is no --NAME=NUMBER\n", argv[i]);
            return 2;
        }
        amounts()[argument.substr(2, equals - 2)] = std::stoi(argument.substr(equals + 1));
    }
    return RUN_ALL_TESTS();
}
