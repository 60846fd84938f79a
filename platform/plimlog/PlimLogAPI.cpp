#include "PlimLogAPI.h"

#include "platform/plimlog/LogRegistry.h"

using brevan::plimlog::LogLevel;
using brevan::plimlog::LogRegistry;

int LogInit(const char* tag, const char* configFile, const unsigned int* /*levels*/, const char* logDirectory)
{
    return LogRegistry::instance().start(tag, configFile, logDirectory);
}

int LogFini(const char* tag)
{
    return LogRegistry::instance().stop(tag);
}

void Log_Run_Debug(const char* tag, const char* message)
{
    LogRegistry::instance().run(tag, LogLevel::Debug, message);
}

void Log_Run_Info(const char* tag, const char* message)
{
    LogRegistry::instance().run(tag, LogLevel::Info, message);
}

void Log_Run_Warn(const char* tag, const char* message)
{
    LogRegistry::instance().run(tag, LogLevel::Warn, message);
}

void Log_Run_Error(const char* tag, const char* message)
{
    LogRegistry::instance().run(tag, LogLevel::Error, message);
}

void Log_Interface_Info(const char* tag, const char* interfaceType, const char* reserved3, const char* operation,
                        const char* reserved5, const char* reserved6, const char* reserved7, const char* start,
                        const char* end, const char* code, const char* reserved11)
{
    LogRegistry::instance().record(
        {tag, interfaceType, reserved3, operation, reserved5, reserved6, reserved7, start, end, code, reserved11}, true);
}

void Log_Interface_Error(const char* tag, const char* interfaceType, const char* reserved3, const char* operation,
                         const char* reserved5, const char* reserved6, const char* reserved7, const char* start,
                         const char* end, const char* code, const char* reserved11)
{
    LogRegistry::instance().record(
        {tag, interfaceType, reserved3, operation, reserved5, reserved6, reserved7, start, end, code, reserved11}, false);
}
