#ifndef BREVAN_TESTS_GUEST_JOB_H
#define BREVAN_TESTS_GUEST_JOB_H

#include <brevan/brevan.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>

// What a backup application does with the library, for programs that are odd hosts of it. The array is at 127.0.0.1, port $GUEST_PORT.

namespace brevan::test {

inline std::string variable(const char* name)
{
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

inline unsigned int arrayPort()
{
    return static_cast<unsigned int>(std::stoul(variable("GUEST_PORT")));
}

inline int login(CDeviceManager& manager, unsigned int port = arrayPort())
{
    return manager.loginDevice("127.0.0.1", port, "admin", variable("BREVAN_PASSWORD"), USERTYPE_LOCAL);
}

template <class Handler>
Handler& handler(CDeviceManager& manager, HANDLERTYPE type)
{
    return *static_cast<Handler*>(manager.getHandler(type));
}

/// Attaches are named after the second.
inline void waitForNewSecond()
{
    using namespace std::chrono;
    std::this_thread::sleep_until(time_point_cast<seconds>(system_clock::now()) + seconds(1) + milliseconds(5));
}

/// Reads, attaches, finds and detaches the LUN $GUEST_LUN of 64 MiB. What went wrong first, or "".
inline std::string attachAndFind(CDeviceManager& manager)
{
    std::string id = variable("GUEST_LUN");
    const std::string initiator = variable("GUEST_INITIATOR");
    auto& attach = handler<CDiskAttachHandler>(manager, HANDLER_DISK_ATTACH);
    if (handler<CLunHandler>(manager, HANDLER_LUN).getLun(id).CAPACITY != 64ULL << 20) {
        return "the LUN has another capacity";
    }
    waitForNewSecond();
    if (attach.attachLunToHost(id, initiator, "127.0.0.1") != 0) {
        return "the LUN is attached already";
    }
    const bool isFound = !handler<CDiskScannerHandler>(manager, HANDLER_DISK_SCANNER).scanLunAfterAttach(id).empty();
    attach.detachLunFromHost(id, initiator);
    return isFound ? "" : "the disk was not found";
}

}  // namespace brevan::test

#endif
