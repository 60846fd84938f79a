#ifndef BREVAN_SIMULATOR_HTTPLIMITS_H
#define BREVAN_SIMULATOR_HTTPLIMITS_H

#include <chrono>
#include <cstdint>

namespace brevan::sim {

/// How much of everything clients may use up, so that no number of them takes the server's memory.
struct HttpLimits {
    std::uint32_t headerBytes = 16 * 1024;
    std::uint64_t bodyBytes = 1024 * 1024;
    unsigned connections = 2048;             ///< further ones are answered 503
    std::chrono::milliseconds idle{120000};  ///< a whole request, or the pause before it
    std::chrono::milliseconds write{60000};  ///< a client that takes its answer more slowly is cut off
    /// Answers that clients have not taken yet. As long as they are more than this, requests are answered 503.
    std::size_t waitingBytes = 256 * 1024 * 1024;
};

}  // namespace brevan::sim

#endif
