#ifndef BREVAN_SESSION_DEVICEMANAGERIMPL_H
#define BREVAN_SESSION_DEVICEMANAGERIMPL_H

#include "foundation/HeldOverForks.h"

#include <brevan/DeviceManager.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

class RestRequest;

/// The device manager: one session, thirteen handlers, and the process-wide start and stop of logging.
class CDeviceManagerImpl : public CDeviceManager {
public:
    CDeviceManagerImpl();
    ~CDeviceManagerImpl() override;
    CDeviceManagerImpl(const CDeviceManagerImpl&) = delete;
    CDeviceManagerImpl& operator=(const CDeviceManagerImpl&) = delete;

    int loginDevice(const std::string& ip, const unsigned int& port, const std::string& userName,
                    const std::string& password, const USERTYPE& scope) override;
    int logoutDevice() override;
    int keepAlive() override;
    CHandler* getHandler(HANDLERTYPE type) override;
    int useConnection(const std::string& ip, const unsigned int& port, const std::string& deviceId, const std::string& token,
                      const std::string& cookie) override;

    static CDeviceManagerImpl* createInstance(unsigned int retryTimes, unsigned int trySleepTimeMs);
    static void destroyInstance(CDeviceManagerImpl* manager);

    /// Counts the device managers: the first starts logging and fixes the retry settings, the last stops logging.
    static void initial(unsigned int retryTimes, unsigned int trySleepTimeMs);
    static void uninitial();

    /// The retry settings: a count, and a pause in microseconds.
    static void GetReTryInfo(unsigned int& retryTimes, unsigned int& trySleepTimeMs);

    static constexpr std::size_t kHandlerCount = 13;

private:
    std::string serverUrl() const;
    std::string devicePath(const char* resource) const;
    void addSessionHeaders(RestRequest& request) const;
    void openSession(const std::string& ip, unsigned int port, const std::string& deviceId, const std::string& token,
                     const std::string& cookie, bool openedHere);

    static std::mutex m_mutex;  // guards the start and stop of logging and what follows
    static const brevan::HeldOverForks<m_mutex> kForks;
    static std::int32_t iniCnt;
    static std::atomic<std::uint32_t> m_retryTimes;
    static std::atomic<std::uint32_t> m_trySleepTimeMs;

    std::string m_ip;
    std::uint32_t m_port = 0;
    std::uint32_t m_reserved = 0;
    std::string m_token;
    std::string m_cookie;
    std::string m_deviceId;
    // Owned, in the order in which they are deleted. Null until somebody asks: the application, or in any of its threads an
    // attach or a scan.
    std::array<std::atomic<CHandler*>, kHandlerCount> m_handlers{};
};

#endif
