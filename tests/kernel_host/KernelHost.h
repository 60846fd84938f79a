#ifndef BREVAN_TESTS_KERNEL_HOST_KERNELHOST_H
#define BREVAN_TESTS_KERNEL_HOST_KERNELHOST_H

#include "support/HostClient.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

// What the tests share that run as root inside the kernel host's guest.

namespace brevan::test {

/// The standard output of a command that has to succeed; else a std::runtime_error with all that it said.
std::string run(const std::string& command);

std::string readFile(const std::string& path);
void writeFile(const std::string& path, const std::string& text);

/// A number that the program was started with (--rounds=50), or the usual one.
int amount(const std::string& name, int usual);

/// Whether the condition came true within a minute. Limits are generous, since a busy machine makes everything slow.
bool eventually(const std::function<bool()>& condition);

/// What another application may do at any time.
constexpr const char* kRescanHost = "sudo /opt/root_tool/common/security_sudo_v3.sh do_uprescan";

std::string ownInitiator();
constexpr const char* kOtherInitiator = "iqn.2020-01.lab:somebody-else";

/// An array with the kernel's iSCSI target behind it, which both initiators may use.
sim::ServerOptions lioOptions(const std::string& folder);

void loginInitiator();
void logoutInitiator();

/// The objects of an array, behind the clients' backs.
class ArrayConsole {
public:
    explicit ArrayConsole(sim::ArrayServer& array);
    int count(const std::string& kind);    ///< "/lungroup"
    void remove(const std::string& path);  ///< "/lun/8"

private:
    std::string send(const std::string& method, const std::string& path, const std::string& body = "");

    sim::ArrayServer& m_array;
    std::string m_token;
    std::string m_cookie;
};

/// One such array, to which this host is logged in, for all tests of a suite; a session of the library for each test.
class KernelHost : public testing::Test {
protected:
    static void SetUpTestSuite();
    static void TearDownTestSuite();
    void SetUp() override;

    /// Whether the array shows the volume to this host, and under which LUN number; 0: it does not.
    static unsigned lunNumber(const std::string& wwn);
    static bool isExposed(const std::string& wwn) { return lunNumber(wwn) != 0; }

    /// A new LUN, attached in a new second.
    LunMO attachedLun();
    /// The same with its disk, which leaves "" in `path` when it was not found.
    LunMO attachedDisk(std::string& path);

    static std::unique_ptr<sim::ArrayServer> array;
    HostClient client{ownInitiator()};
};

}  // namespace brevan::test

#endif
