#include "platform/q7common/CommandCatalogue.h"

#include <gtest/gtest.h>

namespace brevan {
namespace {

bool isKnown(const char* line, std::uint64_t code, std::uint64_t type)
{
    return isKnownCommand(RunShellCmdInfo(line, {}, code, type, 0));
}

TEST(CommandCatalogue, KnowsTheCommandsOfTheLibrary)
{
    EXPECT_TRUE(isKnown("sudo /opt/root_tool/common/security_sudo_v3.sh do_uprescan", 100003, 1));
    EXPECT_TRUE(isKnown("sudo /opt/root_tool/common/security_sudo_v3.sh dev_rescan '?'", 100004, 1));
    EXPECT_TRUE(isKnown("lsscsi | grep tmp-block", 100007, 1));
    EXPECT_TRUE(isKnown(" ls -al /dev/disk/by-id | grep ? | grep -v part | grep scsi-", 100008, 0));
    EXPECT_TRUE(isKnown("ls -al /dev/disk/by-id | grep -v part | grep scsi-", 100009, 0));
}

TEST(CommandCatalogue, KnowsNoOther)
{
    EXPECT_FALSE(isKnown("lsscsi | grep tmp-block", 100007, 0));
    EXPECT_FALSE(isKnown("lsscsi | grep tmp-block", 100003, 1));
    EXPECT_FALSE(isKnown("lsscsi | grep tmp-block ", 100007, 1));
    EXPECT_FALSE(isKnown("lsscsi | grep tmp-block; id", 100007, 1));
    EXPECT_FALSE(isKnown("ls -al /dev/disk/by-id | grep ? | grep -v part | grep scsi-", 100008, 0));
    EXPECT_FALSE(isKnown("id", 0, 0));
}

}  // namespace
}  // namespace brevan
