#ifndef BREVAN_PLATFORM_PLIMLOGAPI_H
#define BREVAN_PLATFORM_PLIMLOGAPI_H

#define PLIM_LOG_API __attribute__((visibility("default")))

extern "C" {

/// Starts the log of `tag`. `configFile`: settings, may be missing. `levels`: three values, reserved. `logDirectory`: where
/// the files go unless the settings say otherwise. 0: started, -1: not. May be called again after LogFini.
PLIM_LOG_API int LogInit(const char* tag, const char* configFile, const unsigned int* levels, const char* logDirectory);

/// Writes out and stops the log of `tag`. 0: stopped, -1: it was not started.
PLIM_LOG_API int LogFini(const char* tag);

/// One line of the run log. Before LogInit and after LogFini nothing is written. Any thread.
PLIM_LOG_API void Log_Run_Debug(const char* tag, const char* message);
PLIM_LOG_API void Log_Run_Info(const char* tag, const char* message);
PLIM_LOG_API void Log_Run_Warn(const char* tag, const char* message);
PLIM_LOG_API void Log_Run_Error(const char* tag, const char* message);

/// One record of the interface log: an operation that went well (Info) or failed (Error). The arguments 3, 5, 6, 7 and 11
/// are reserved and empty. `start` and `end` are local times with milliseconds, `code` is decimal text.
PLIM_LOG_API void Log_Interface_Info(const char* tag, const char* interfaceType, const char* reserved3,
                                     const char* operation, const char* reserved5, const char* reserved6,
                                     const char* reserved7, const char* start, const char* end, const char* code,
                                     const char* reserved11);
PLIM_LOG_API void Log_Interface_Error(const char* tag, const char* interfaceType, const char* reserved3,
                                      const char* operation, const char* reserved5, const char* reserved6,
                                      const char* reserved7, const char* start, const char* end, const char* code,
                                      const char* reserved11);
}

#endif
