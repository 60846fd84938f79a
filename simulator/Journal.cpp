#include "Journal.h"

#include "JournalFile.h"

#include <algorithm>

namespace brevan::sim {

namespace {

// Bodies and paths are as long as clients like; a number of entries alone would bound nothing.
constexpr std::size_t kMostBytes = 64 * 1024 * 1024;

std::size_t bytesOf(const JournalEntry& entry)
{
    return sizeof(entry) + entry.path.size() + entry.body.size();
}

bool isEarlier(const JournalEntry& left, const JournalEntry& right)
{
    return left.number < right.number;
}

}  // namespace

Journal::Journal(std::size_t mostEntries) : m_mostEntries(mostEntries) {}

Journal::~Journal() = default;

void Journal::writeTo(const std::string& path)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_file = std::make_unique<JournalFile>(path);
}

std::uint64_t Journal::arrive()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return ++m_count;
}

void Journal::add(JournalEntry entry)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_file) {
        m_file->write(entry);
    }
    m_bytes += bytesOf(entry);
    // Requests of several connections may be answered in another order than they arrived, by a few places.
    const auto place = std::upper_bound(m_entries.begin(), m_entries.end(), entry, isEarlier);
    m_entries.insert(place, std::move(entry));
    while (m_entries.size() > m_mostEntries || (m_bytes > kMostBytes && !m_entries.empty())) {
        m_bytes -= bytesOf(m_entries.front());
        m_entries.pop_front();
    }
}

std::vector<JournalEntry> Journal::entries(std::uint64_t after) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    JournalEntry last;
    last.number = after;
    return {std::upper_bound(m_entries.begin(), m_entries.end(), last, isEarlier), m_entries.end()};
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
    m_bytes = 0;
    m_count = 0;
}

}  // namespace brevan::sim
