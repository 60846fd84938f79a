#ifndef BREVAN_SIMULATOR_SESSIONSTORE_H
#define BREVAN_SIMULATOR_SESSIONSTORE_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <unordered_map>

namespace brevan::sim {

/// Who is logged in. Token and cookie are 256 random bits each; the store keeps only their hashes.
class SessionStore {
public:
    using Clock = std::chrono::steady_clock;

    struct Session {
        std::string user;
        std::uint64_t scope = 0;
        std::string tokenHash;
        Clock::time_point lastUse;
        std::uint64_t number = 0;  ///< tells sessions apart where no secret may stand; from 1, in the order of the logins
    };
    struct Credentials {
        std::string token;
        std::string cookie;  ///< "session=..." without attributes
        std::uint64_t number = 0;
    };

    SessionStore(std::size_t most, Clock::duration idle, std::function<Clock::time_point()> now);

    /// An ApiError (kTooManySessions) where so many are open that no further one is allowed.
    Credentials open(const std::string& user, std::uint64_t scope);
    /// The session of this token and this Cookie header, its idle time begun anew; null where there is none.
    Session* find(const std::string& token, const std::string& cookieHeader);
    bool close(const std::string& token, const std::string& cookieHeader);
    void closeAll();
    std::size_t size() const;

private:
    void closeIdle();
    std::size_t m_most;
    Clock::duration m_idle;
    std::function<Clock::time_point()> m_now;
    std::uint64_t m_opened = 0;
    std::unordered_map<std::string, Session> m_sessions;  ///< by the hash of the cookie's value
};

}  // namespace brevan::sim

#endif
