// The log library's interface, recorded.
#include "support/Recorder.h"

#include <PlimLogAPI.h>

using brevan::test::Recorder;

namespace {

void line(const char* level, const char* message)
{
    Recorder::instance().logLine(std::string(level) + ": " + message);
}

}  // namespace

extern "C" {

int LogInit(const char* tag, const char* configFile, const unsigned int* levels, const char* logDirectory)
{
    const bool allOnes = levels[0] == 0xFFFFFFFFU && levels[1] == 0xFFFFFFFFU && levels[2] == 0xFFFFFFFFU;
    Recorder::instance().note(std::string("LogInit ") + tag + " " + configFile + " " + logDirectory +
                              (allOnes ? "" : " (levels are not all ones)"));
    return Recorder::instance().logInitResult;
}

int LogFini(const char* tag)
{
    Recorder::instance().note(std::string("LogFini ") + tag);
    return Recorder::instance().logFiniResult;
}

void Log_Run_Debug(const char*, const char* message)
{
    line("debug", message);
}

void Log_Run_Info(const char*, const char* message)
{
    line("info", message);
}

void Log_Run_Warn(const char*, const char* message)
{
    line("warn", message);
}

void Log_Run_Error(const char*, const char* message)
{
    line("error", message);
}

void Log_Interface_Info(const char* a, const char* b, const char* c, const char* d, const char* e, const char* f,
                        const char* g, const char* h, const char* i, const char* j, const char* k)
{
    Recorder::instance().logRecord("Info", {a, b, c, d, e, f, g, h, i, j, k});
}

void Log_Interface_Error(const char* a, const char* b, const char* c, const char* d, const char* e, const char* f,
                         const char* g, const char* h, const char* i, const char* j, const char* k)
{
    Recorder::instance().logRecord("Error", {a, b, c, d, e, f, g, h, i, j, k});
}
}
