#include "SessionStore.h"

#include "ApiError.h"
#include "Secrets.h"
#include "Text.h"

namespace brevan::sim {

namespace {

constexpr const char* kCookieName = "session=";

/// The value of our cookie in a Cookie header, which may hold others, too.
std::string cookieValue(const std::string& header)
{
    for (const std::string& piece : split(header, ";")) {
        const std::size_t begin = piece.find_first_not_of(' ');
        if (begin != std::string::npos && piece.compare(begin, std::string(kCookieName).size(), kCookieName) == 0) {
            const std::size_t end = piece.find_last_not_of(' ');
            const std::size_t value = begin + std::string(kCookieName).size();
            return end < value ? std::string() : piece.substr(value, end + 1 - value);
        }
    }
    return {};
}

}  // namespace

SessionStore::SessionStore(std::size_t most, Clock::duration idle, std::function<Clock::time_point()> now)
    : m_most(most), m_idle(idle), m_now(std::move(now))
{
}

SessionStore::Credentials SessionStore::open(const std::string& user, std::uint64_t scope)
{
    closeIdle();
    if (m_sessions.size() >= m_most) {
        throw ApiError(kTooManySessions, std::to_string(m_most) + " sessions are open, and no more are allowed.");
    }
    const std::string token = randomHex(32);
    const std::string value = randomHex(32);
    m_sessions[sha256(value)] = Session{user, scope, sha256(token), m_now(), ++m_opened};
    return {token, kCookieName + value, m_opened};
}

SessionStore::Session* SessionStore::find(const std::string& token, const std::string& cookieHeader)
{
    // The look-up is by a hash, so how long it takes tells nothing about the cookie; the token is compared in constant time.
    const auto found = m_sessions.find(sha256(cookieValue(cookieHeader)));
    if (found == m_sessions.end() || !equalInConstantTime(found->second.tokenHash, sha256(token))) {
        return nullptr;
    }
    if (m_now() - found->second.lastUse > m_idle) {
        m_sessions.erase(found);
        return nullptr;
    }
    found->second.lastUse = m_now();
    return &found->second;
}

bool SessionStore::close(const std::string& token, const std::string& cookieHeader)
{
    return find(token, cookieHeader) != nullptr && m_sessions.erase(sha256(cookieValue(cookieHeader))) == 1;
}

void SessionStore::closeAll()
{
    m_sessions.clear();
}

std::size_t SessionStore::size() const
{
    return m_sessions.size();
}

void SessionStore::closeIdle()
{
    for (auto entry = m_sessions.begin(); entry != m_sessions.end();) {
        entry = m_now() - entry->second.lastUse > m_idle ? m_sessions.erase(entry) : std::next(entry);
    }
}

}  // namespace brevan::sim
