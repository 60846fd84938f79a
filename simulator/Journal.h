#ifndef BREVAN_SIMULATOR_JOURNAL_H
#define BREVAN_SIMULATOR_JOURNAL_H

#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

namespace brevan::sim {

/// A request that has been answered.
struct JournalEntry {
    std::uint64_t number = 0;  ///< in the order in which they were answered, from 1
    std::string method;
    std::string path;       ///< relative to the device, with its query, escapes resolved: "/lun/7"
    std::string operation;  ///< "GET /lun/{id}"; empty where the array has no such operation
    int code = 0;           ///< what was answered; 0: done
};

/// The latest requests, a bounded number of them. Any thread.
class Journal {
public:
    void add(JournalEntry entry);
    std::vector<JournalEntry> entries() const;
    std::uint64_t count() const;
    void clear();

private:
    mutable std::mutex m_mutex;
    std::deque<JournalEntry> m_entries;
    std::uint64_t m_count = 0;
};

}  // namespace brevan::sim

#endif
