#include "SessionStore.h"

#include <algorithm>
#include <utility>

namespace brevan {

namespace {

std::uint32_t handleOf(const void* key)
{
    return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(key));
}

}  // namespace

SessionStore& SessionStore::instance()
{
    static SessionStore* const kStore = std::make_unique<SessionStore>().release();
    return *kStore;
}

void SessionStore::put(const void* key, SessionPointer session)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<Entry>& entries = m_entries[handleOf(key)];
    const auto place = std::find_if(entries.begin(), entries.end(), [key](const Entry& entry) { return entry.key == key; });
    if (place != entries.end()) {
        place->session.swap(session);
    } else {
        entries.push_back({key, std::move(session)});
    }
}

void SessionStore::remove(const void* key) noexcept
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto bucket = m_entries.find(handleOf(key));
    if (bucket == m_entries.end()) {
        return;
    }
    std::vector<Entry>& entries = bucket->second;
    const auto isOther = [key](const Entry& entry) { return entry.key != key; };
    entries.erase(std::partition(entries.begin(), entries.end(), isOther), entries.end());
    if (entries.empty()) {
        m_entries.erase(bucket);
    }
}

SessionStore::Found SessionStore::find(std::uint32_t handle) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto bucket = m_entries.find(handle);
    if (bucket == m_entries.end() || bucket->second.empty()) {
        return {Finding::Unknown, nullptr};
    }
    if (bucket->second.size() > 1) {
        return {Finding::Ambiguous, nullptr};
    }
    return {Finding::Found, bucket->second.front().session};
}

}  // namespace brevan
