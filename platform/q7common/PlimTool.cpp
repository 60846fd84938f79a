#include "PlimTool.h"

#include <arpa/inet.h>

int PlimTool::CheckIPValid(const std::string& ip)
{
    if (ip.find('\0') != std::string::npos) {
        return 0;
    }
    in6_addr address{};
    return inet_pton(AF_INET, ip.c_str(), &address) == 1 || inet_pton(AF_INET6, ip.c_str(), &address) == 1 ? 1 : 0;
}
