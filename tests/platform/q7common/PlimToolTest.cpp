#include "PlimTool.h"

#include <gtest/gtest.h>

namespace {

TEST(AddressCheck, AcceptsIpLiterals)
{
    for (const char* ip : {"192.0.2.1", "0.0.0.0", "255.255.255.255", "::1", "2001:db8::1", "::ffff:192.0.2.1"}) {
        EXPECT_EQ(PlimTool::CheckIPValid(ip), 1) << ip;
    }
}

TEST(AddressCheck, RefusesEverythingElse)
{
    for (const char* ip :
         {"", "array-1", "192.0.2", "192.0.2.256", "192.0.2.1 ", "192.0.2.1:80", "[::1]", "1:2", "::g", "010.1.1.1.1"}) {
        EXPECT_EQ(PlimTool::CheckIPValid(ip), 0) << ip;
    }
    EXPECT_EQ(PlimTool::CheckIPValid(std::string("192.0.2.1\0", 10)), 0);
}

}  // namespace
