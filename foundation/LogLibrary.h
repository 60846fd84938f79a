#ifndef BREVAN_FOUNDATION_LOGLIBRARY_H
#define BREVAN_FOUNDATION_LOGLIBRARY_H

#include "foundation/Seam.h"

#include <cstdio>
#include <memory>

/// Starts the log library with the settings file "Brevan_API.ini" and the directory "logs/" beside it. 0: started, -1: not.
/// Call it and LOG_EXIT under one lock.
int LOG_INIT();

/// Stops the log library and returns what that returns.
int LOG_EXIT();

/// Writes into `outDir` (of `outSize` bytes) the directory, without its final "/", of the first executable mapping of this
/// process whose line mentions `moduleName`. 0: found, -1: not found or it does not fit.
int GetModuleFilePath(const char* moduleName, char* outDir, unsigned int outSize);

/// Writes into `outDir` the directory of the log library; leaves it untouched where that is not mapped.
void GetCurrentPath(char* outDir, unsigned int outSize);

namespace brevan {

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

/// What is mapped into this process, in the format of proc(5), "/proc/pid/maps".
class ProcessMap {
public:
    virtual ~ProcessMap() = default;
    virtual File open() = 0;  ///< null where it cannot be read
};

Seam<ProcessMap>& processMapSeam();

}  // namespace brevan

#endif
