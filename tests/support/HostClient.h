#ifndef BREVAN_TESTS_SUPPORT_HOSTCLIENT_H
#define BREVAN_TESTS_SUPPORT_HOSTCLIENT_H

#include "simulator/ArrayServer.h"

#include <brevan/brevan.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>

// What the tests share that run on a host with disks, kernel or simulated, against an array in their own process.

namespace brevan::test {

constexpr const char* kHostPassword = "Host-test-password";

/// Objects are named after the current second: attaches begin in a new one.
inline void waitForNewSecond()
{
    using namespace std::chrono;
    std::this_thread::sleep_until(time_point_cast<seconds>(system_clock::now()) + seconds(1) + milliseconds(5));
}

/// An array that keeps its files in `folder`, which is made.
inline sim::ServerOptions arrayOptions(const std::string& folder)
{
    std::filesystem::create_directories(folder);
    sim::ServerOptions options;
    options.password = kHostPassword;
    options.caFile = folder + "/ca.pem";
    return options;
}

/// From now on the transport trusts that array.
inline void trust(const sim::ArrayServer& array)
{
    const std::string file = "/tmp/transport.ini";
    std::ofstream(file) << "[tls]\nca_file = " << array.caFile() << "\n";
    setenv("BREVAN_TRANSPORT_CONFIG", file.c_str(), 1);
}

struct Release {
    void operator()(CDeviceManager* manager) const { CDeviceManager::releaseInstance(manager); }
};

/// A device manager, and short ways to what a test calls.
class HostClient {
public:
    explicit HostClient(std::string initiator) : m_initiator(std::move(initiator)) {}

    std::unique_ptr<CDeviceManager, Release> manager{CDeviceManager::getInstance()};

    int login(const sim::ArrayServer& array, const std::string& password = kHostPassword)
    {
        return manager->loginDevice(array.address(), array.port(), "admin", password, USERTYPE_LOCAL);
    }

    template <class Handler>
    Handler& get(HANDLERTYPE type)
    {
        return *static_cast<Handler*>(manager->getHandler(type));
    }

    LunMO createLun()
    {
        static int number = 0;
        LunMO wanted;
        wanted.NAME = "lun_" + std::to_string(++number);
        wanted.PARENTID = "0";
        wanted.CAPACITY = 64ULL << 20;
        wanted.ALLOCTYPE = 1;
        wanted.ALLOCCAPACITY = 1ULL << 20;
        return get<CLunHandler>(HANDLER_LUN).createLun(wanted);
    }

    int attach(const std::string& lunId) { return attach(lunId, m_initiator); }
    int attach(const std::string& lunId, const std::string& initiator)
    {
        return get<CDiskAttachHandler>(HANDLER_DISK_ATTACH).attachLunToHost(lunId, initiator, "127.0.0.1");
    }
    int attachSnapshot(const std::string& id)
    {
        return get<CDiskAttachHandler>(HANDLER_DISK_ATTACH).attachSnapshotToHost(id, m_initiator, "127.0.0.1");
    }

    std::string scan(std::string lunId) { return scanner().scanLunAfterAttach(lunId); }
    std::string scanSnapshot(std::string id) { return scanner().scanSnapshotAfterAttach(id); }

    void beforeDetach(std::string lunId) { scanner().scanLunBeforeDetach(lunId); }
    void detachLun(const std::string& lunId)
    {
        get<CDiskAttachHandler>(HANDLER_DISK_ATTACH).detachLunFromHost(lunId, m_initiator);
    }
    /// Both, where the disk does not matter.
    void detach(const std::string& lunId)
    {
        beforeDetach(lunId);
        detachLun(lunId);
    }
    void beforeSnapshotDetach(std::string id) { scanner().scanSnapshotBeforeDetach(id); }
    void detachSnapshot(const std::string& id)
    {
        get<CDiskAttachHandler>(HANDLER_DISK_ATTACH).detachSnapshotFromHost(id, m_initiator);
    }

    std::string hostOfInitiator()
    {
        return get<CIscsiInitiatorHandler>(HANDLER_ISCSI_INITIATOR).getIscsiInitiator(m_initiator).PARENTID;
    }

private:
    CDiskScannerHandler& scanner() { return get<CDiskScannerHandler>(HANDLER_DISK_SCANNER); }

    std::string m_initiator;
};

}  // namespace brevan::test

#endif
