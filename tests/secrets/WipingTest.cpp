// That no password and no body of a request stays behind in memory that the library has given back.
#include "Failures.h"

#include "simulator/ArrayServer.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <new>

namespace {

constexpr const char* kCanary = "Canary7Q";

thread_local bool t_isWatching = false;
thread_local int t_blocksWithSecrets = 0;

void giveBack(void* memory) noexcept
{
    if (t_isWatching && memory != nullptr &&
        memmem(memory, malloc_usable_size(memory), kCanary, std::strlen(kCanary)) != nullptr) {
        ++t_blocksWithSecrets;
    }
    std::free(memory);
}

}  // namespace

void* operator new(std::size_t bytes)
{
    if (void* memory = std::calloc(bytes > 0 ? bytes : 1, 1)) {  // what was there before must not be found again
        return memory;
    }
    throw std::bad_alloc();
}

void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept
{
    return std::calloc(bytes > 0 ? bytes : 1, 1);
}

void operator delete(void* memory) noexcept
{
    giveBack(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    giveBack(memory);
}

namespace brevan::test {
namespace {

/// How many blocks came back with a secret in them while this thread did that.
template <class Work>
int blocksWithSecrets(Work work)
{
    t_blocksWithSecrets = 0;
    t_isWatching = true;
    work();
    t_isWatching = false;
    return t_blocksWithSecrets;
}

class Wiping : public testing::Test {
protected:
    Wiping()
    {
        std::filesystem::create_directories(m_folder);
        sim::ServerOptions options;
        options.password = kPassword;
        options.caFile = m_folder + "/array-ca.pem";
        array = std::make_unique<sim::ArrayServer>(options);
        array->start();
        useSettings(m_folder, array->caFile());
    }
    ~Wiping() override { std::filesystem::remove_all(m_folder); }

    int login(const std::string& word)
    {
        return manager->loginDevice(array->address(), array->port(), user, word, USERTYPE_LOCAL);
    }

    std::string m_folder = testing::TempDir() + "brevan-wiping-" + std::to_string(getpid());
    const std::string password = kPassword;
    const std::string user = "admin";
    std::unique_ptr<sim::ArrayServer> array;
    Manager manager{CDeviceManager::getInstance(0, 1)};
};

TEST_F(Wiping, IsSeenWhereItIsLeftOut)
{
    EXPECT_EQ(blocksWithSecrets([&] { const std::string copy = password; }), 1);
}

TEST_F(Wiping, IsDoneWithThePasswordOfALogin)
{
    int result = 0;
    EXPECT_EQ(blocksWithSecrets([&] { result = login(password); }), 0);
    EXPECT_EQ(result, 1);
}

TEST_F(Wiping, IsDoneWithThePasswordThatIsRefused)
{
    const std::string wrong = password + "-wrong";
    int result = 1;
    EXPECT_EQ(blocksWithSecrets([&] { result = login(wrong); }), 0);
    EXPECT_EQ(result, 0);
}

TEST_F(Wiping, IsDoneWithTheSecretsOfABody)
{
    ASSERT_EQ(login(password), 1);
    IscsiInitiatorMO initiator = initiatorWithSecrets("iqn.2020-01.lab:wiped");
    CIscsiInitiatorHandler& handler = initiators(*manager);
    std::string id;
    EXPECT_EQ(blocksWithSecrets([&] { id = handler.createIscsiInitiator(initiator).ID; }), 0);
    EXPECT_EQ(id, "iqn.2020-01.lab:wiped");
    initiator.CHAPOLDPASSWORD = initiator.CHAPPASSWORD;
    initiator.CHAPOLDPASSWORDINITATORVERTARGET = initiator.CHAPPASSWORDINITATORVERTARGET;
    EXPECT_EQ(blocksWithSecrets([&] { handler.modifyIscsiInitiator(initiator); }), 0);
}

}  // namespace
}  // namespace brevan::test
