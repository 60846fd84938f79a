#include "Journal.h"

namespace brevan::sim {

namespace {

constexpr std::size_t kMostEntries = 20000;

}  // namespace

void Journal::add(JournalEntry entry)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    entry.number = ++m_count;
    m_entries.push_back(std::move(entry));
    if (m_entries.size() > kMostEntries) {
        m_entries.pop_front();
    }
}

std::vector<JournalEntry> Journal::entries() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return {m_entries.begin(), m_entries.end()};
}

std::uint64_t Journal::count() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_count;
}

void Journal::clear()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_entries.clear();
    m_count = 0;
}

}  // namespace brevan::sim
