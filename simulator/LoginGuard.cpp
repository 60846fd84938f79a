#include "LoginGuard.h"

#include "ApiError.h"
#include "Text.h"

#include <algorithm>

namespace brevan::sim {

namespace {

// Whoever tries more names than this at once makes the guard forget the oldest of them.
constexpr std::size_t kMostNames = 1000;

}  // namespace

LoginGuard::LoginGuard(unsigned most, Clock::duration time, std::function<Clock::time_point()> now)
    : m_most(most), m_time(time), m_now(std::move(now))
{
}

void LoginGuard::check(const std::string& user)
{
    const auto found = m_records.find(user);
    if (m_most == 0 || found == m_records.end() || found->second.failures < m_most) {
        return;
    }
    const auto left = found->second.last + m_time - m_now();
    if (left <= Clock::duration::zero()) {
        m_records.erase(found);
        return;
    }
    const auto seconds = std::chrono::ceil<std::chrono::seconds>(left).count();
    throw ApiError(kLoginLocked, std::to_string(m_most) + " wrong passwords in a row: log-ins of " + inQuotes(user) +
                                     " are refused for " + std::to_string(seconds) + " s.");
}

void LoginGuard::failed(const std::string& user)
{
    if (m_records.size() >= kMostNames && m_records.count(user) == 0) {
        forgetOld();
    }
    Record& record = m_records[user];
    ++record.failures;
    record.last = m_now();
}

void LoginGuard::succeeded(const std::string& user)
{
    m_records.erase(user);
}

void LoginGuard::forgetOld()
{
    const auto oldest = std::min_element(m_records.begin(), m_records.end(), [](const auto& left, const auto& right) {
        return left.second.last < right.second.last;
    });
    m_records.erase(oldest);
}

}  // namespace brevan::sim
