#include "Identity.h"

#include "Secrets.h"
#include "Text.h"

#include <cstdio>
#include <stdexcept>

namespace brevan::sim {

namespace {

// Digits 2 to 7 of every WWN. The second bit of the first byte says "locally administered": it is no company's.
constexpr const char* kCompanyId = "02b7e4";
constexpr std::size_t kArrayDigits = 9;

}  // namespace

std::string identityOf(Database& database)
{
    return database.text("SELECT device_id FROM identity");
}

void setIdentity(Database& database, const std::string& deviceId)
{
    if (deviceId.empty() || deviceId.size() > 64 || !consistsOf(deviceId, "-_")) {
        throw std::invalid_argument("the device ID must be 1 to 64 letters, digits, \"-\" and \"_\"");
    }
    database.insert("identity", {{"device_id", deviceId}});
}

std::string wwnPrefix(const std::string& deviceId)
{
    return std::string("6") + kCompanyId + sha256(deviceId).substr(0, kArrayDigits);
}

std::string wwnOf(const std::string& prefix, std::int64_t serial)
{
    char digits[17];
    std::snprintf(digits, sizeof(digits), "%016llx", static_cast<unsigned long long>(serial));
    return prefix + digits;
}

}  // namespace brevan::sim
