#ifndef BREVAN_SIMULATOR_SERVEROPTIONS_H
#define BREVAN_SIMULATOR_SERVEROPTIONS_H

#include "HttpLimits.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace brevan::sim {

struct PoolOption {
    std::string id;
    std::string name;
    std::uint64_t gib = 0;
};

/// By what means mapped volumes leave the array.
enum class Exposure { kNone, kLio, kTree };

struct ServerOptions {
    std::string address = "127.0.0.1";  ///< an IPv4 or IPv6 literal
    std::uint16_t port = 0;             ///< 0: one that the system chooses
    std::string serverName;             ///< a further name in the certificate
    std::string caFile;  ///< where the certificate authority is written; empty: a file of our own until stop()
    unsigned threads = 2;

    std::string user = "admin";
    std::string password;
    std::size_t maxSessions = 1024;
    std::chrono::microseconds sessionIdle{std::chrono::minutes(20)};
    unsigned lockoutAfter = 5;  ///< so many wrong passwords in a row lock a user name out; 0: never
    std::chrono::microseconds lockoutTime{std::chrono::minutes(1)};
    /// Sessions age by this clock; tests set it.
    std::function<std::chrono::steady_clock::time_point()> now = std::chrono::steady_clock::now;

    /// Letters, digits, "-" and "_"; WWNs derive from it. Empty: as the database or the seed says, else "210000000001".
    std::string deviceId;
    std::vector<PoolOption> pools{{"0", "pool0", 1024}};
    std::vector<std::string> iscsiInitiators;  ///< free ones that exist from the start
    unsigned settleReads = 0;                  ///< how many reads of a new object answer "not readable yet"
    std::string database = ":memory:";         ///< or a file, which keeps the state
    std::string seed;                          ///< an inventory file with which a new array begins, instead of `pools`

    Exposure exposure = Exposure::kNone;
    std::string lioPortal = "127.0.0.1:3260";
    std::string lioTarget;  ///< empty: made from the device ID
    std::string lioRoot = "/sys/kernel/config/target";
    std::string volumeDirectory;  ///< of `lio`: one sparse file a volume
    std::string treeDirectory;    ///< of `tree`: one file an initiator

    HttpLimits limits;
    std::chrono::microseconds latency{0};      ///< added to every answer
    std::uint64_t bandwidth = 0;               ///< bytes a second that all answers share; 0: unlimited
    std::optional<std::uint16_t> controlPort;  ///< on 127.0.0.1, plain HTTP; 0: one that the system chooses; none: off
    std::size_t journalEntries = 20000;        ///< so many requests are remembered
    std::string journalFile;                   ///< empty: none

    /// Gets one line a request, without secrets. May be called by several threads at once.
    std::function<void(const std::string&)> requestLog;
};

}  // namespace brevan::sim

#endif
