// guest_command: runs the command by which the library lists devices and prints what it says.
#include <RestToMgr.h>

#include <iostream>

int main()
{
    std::vector<std::string> lines;
    std::string errors;
    RestToMgr::ExceSystemCmd(RunShellCmdInfo("lsscsi | grep tmp-block", {}, 100007, 1, 0), lines, errors);
    for (const std::string& line : lines) {
        std::cout << line << "\n";
    }
    return 0;
}
