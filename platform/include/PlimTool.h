#ifndef BREVAN_PLATFORM_PLIMTOOL_H
#define BREVAN_PLATFORM_PLIMTOOL_H

#include <string>

class __attribute__((visibility("default"))) PlimTool {
public:
    /// 1 where `ip` is an IPv4 or IPv6 literal, 0 where it is not. Names are not looked up.
    static int CheckIPValid(const std::string& ip);
};

#endif
