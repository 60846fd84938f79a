#include "RunLogRecorder.h"

#include "PlimLogAPI.h"

#include <gtest/gtest.h>

#include <mutex>

namespace {

std::mutex logMutex;
std::vector<std::string> logLines;

void keep(const char* level, const char* tag, const char* message)
{
    EXPECT_STREQ(tag, "Plim-Brevan-API-linux-Cpp");
    const std::lock_guard<std::mutex> lock(logMutex);
    logLines.push_back(std::string(level) + " " + message);
}

}  // namespace

void Log_Run_Warn(const char* tag, const char* message)
{
    keep("W", tag, message);
}

void Log_Run_Error(const char* tag, const char* message)
{
    keep("E", tag, message);
}

namespace brevan::test {

void RunLogRecorder::clear()
{
    const std::lock_guard<std::mutex> lock(logMutex);
    logLines.clear();
}

std::vector<std::string> RunLogRecorder::lines()
{
    const std::lock_guard<std::mutex> lock(logMutex);
    return logLines;
}

std::string RunLogRecorder::text()
{
    std::string all;
    for (const std::string& line : lines()) {
        all += line + "\n";
    }
    return all;
}

}  // namespace brevan::test
