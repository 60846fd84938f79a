#ifndef BREVAN_TESTS_SESSION_DEVICEMANAGERFIXTURE_H
#define BREVAN_TESTS_SESSION_DEVICEMANAGERFIXTURE_H

#include "support/SdkTest.h"

#include <sstream>

namespace brevan::test {

constexpr const char* kLogInit = "LogInit Plim-Brevan-API-linux-Cpp /Brevan_API.ini /logs/";
constexpr const char* kLogFini = "LogFini Plim-Brevan-API-linux-Cpp";

/// A test that makes device managers and releases them all; the retry settings, which outlive them, are put back.
class DeviceManagerFixture : public SdkTest {
protected:
    ~DeviceManagerFixture() override
    {
        CDeviceManagerImpl::initial(1, 500000);
        CDeviceManagerImpl::uninitial();
    }

    static std::pair<unsigned int, unsigned int> retrySettings()
    {
        std::pair<unsigned int, unsigned int> settings;
        CDeviceManagerImpl::GetReTryInfo(settings.first, settings.second);
        return settings;
    }

    static std::string removalOf(const CDeviceManagerImpl* manager)
    {
        std::ostringstream call;
        call << "remove " << static_cast<const void*>(manager);
        return call.str();
    }
};

using RetryPair = std::pair<unsigned int, unsigned int>;

}  // namespace brevan::test

#endif
