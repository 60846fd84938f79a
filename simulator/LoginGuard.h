#ifndef BREVAN_SIMULATOR_LOGINGUARD_H
#define BREVAN_SIMULATOR_LOGINGUARD_H

#include <chrono>
#include <functional>
#include <string>
#include <unordered_map>

namespace brevan::sim {

/// Counts wrong passwords for each user name, also for names that no user has, so that nobody learns which ones exist. After
/// so many in a row, log-ins under this name are refused for a while, also with the right password.
class LoginGuard {
public:
    using Clock = std::chrono::steady_clock;

    /// `most`: 0: never.
    LoginGuard(unsigned most, Clock::duration time, std::function<Clock::time_point()> now);

    /// An ApiError (kLoginLocked) while the name is locked out.
    void check(const std::string& user);
    void failed(const std::string& user);
    void succeeded(const std::string& user);

private:
    struct Record {
        unsigned failures = 0;
        Clock::time_point last;
    };
    void forgetOld();

    unsigned m_most;
    Clock::duration m_time;
    std::function<Clock::time_point()> m_now;
    std::unordered_map<std::string, Record> m_records;
};

}  // namespace brevan::sim

#endif
