#include "platform/q7common/Secret.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace brevan {
namespace {

/// Looks at each block as it comes back.
struct InspectingMemory {
    static int blocksGivenBack;
    static long bytesLeftInThem;

    char* allocate(std::size_t count) { return std::allocator<char>().allocate(count); }
    void deallocate(char* block, std::size_t count)
    {
        ++blocksGivenBack;
        bytesLeftInThem += std::count_if(block, block + count, [](char c) { return c != '\0'; });
        std::allocator<char>().deallocate(block, count);
    }
};
int InspectingMemory::blocksGivenBack = 0;
long InspectingMemory::bytesLeftInThem = 0;

TEST(Secret, IsWipedWithoutGivingUpItsRoom)
{
    SecretBytes secret;
    append(secret, "canary");
    const char* place = secret.data();
    const std::size_t room = secret.capacity();
    wipe(secret);
    EXPECT_TRUE(secret.empty());
    EXPECT_EQ(secret.capacity(), room);
    EXPECT_EQ(secret.data(), place);
}

TEST(Secret, IsWipedBeforeItsMemoryGoesBack)
{
    {
        std::vector<char, CleansingAllocator<char, InspectingMemory>> secret{'c', 'a', 'n', 'a', 'r', 'y'};
        secret.reserve(100);  // outgrows its first block
        secret.push_back('!');
    }
    EXPECT_EQ(InspectingMemory::blocksGivenBack, 2);
    EXPECT_EQ(InspectingMemory::bytesLeftInThem, 0);
}

}  // namespace
}  // namespace brevan
