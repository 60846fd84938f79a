#ifndef BREVAN_Q7COMMON_LASTWORDS_H
#define BREVAN_Q7COMMON_LASTWORDS_H

#include "TransportLog.h"

#include <exception>

namespace brevan {

/// One error line of the run log from where memory may be exhausted; where there is none for the line either, it is left out.
inline void logLastWords(const char* line) noexcept
{
    try {
        logError(line);
    } catch (const std::exception&) {
        // The result alone must do.
    }
}

}  // namespace brevan

#endif
