#ifndef BREVAN_SCANNER_NULLARGUMENT_H
#define BREVAN_SCANNER_NULLARGUMENT_H

#include "foundation/RunLog.h"

namespace brevan {

/// Says in the run log, at info level, that an argument of `operation` is null.
inline bool isNull(const void* argument, const char* name, const char* operation)
{
    if (argument == nullptr) {
        COMMLOG(OS_LOG_INFO, "%s is NULL! %s", name, operation);
        return true;
    }
    return false;
}

}  // namespace brevan

#endif
