#include "TransportLog.h"

#include "PlimLogAPI.h"

namespace brevan {

namespace {

constexpr const char* kLogTag = "Plim-Brevan-API-linux-Cpp";

}  // namespace

void logError(const std::string& line) noexcept
{
    Log_Run_Error(kLogTag, line.c_str());
}

void logWarning(const std::string& line) noexcept
{
    Log_Run_Warn(kLogTag, line.c_str());
}

}  // namespace brevan
