#ifndef BREVAN_SIMULATOR_JOURNAL_H
#define BREVAN_SIMULATOR_JOURNAL_H

#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace brevan::sim {

/// A request that has been answered.
struct JournalEntry {
    std::uint64_t number = 0;  ///< in the order in which they arrived, from 1
    std::string method;
    std::string path;              ///< relative to the device, with its query, escapes resolved: "/lun/7"
    std::string operation;         ///< "GET /lun/{id}"; empty where the array has no such operation
    int code = 0;                  ///< what was answered; 0: done
    unsigned status = 0;           ///< HTTP status of the answer; 0: none was sent
    std::string body;              ///< as it arrived; where it holds secrets, written anew with these masked
    std::string fault;             ///< "stall 2s": what the fault script made of it; empty: nothing
    std::uint64_t session = 0;     ///< a number for each login, from 1; 0: none that the array knows
    std::uint64_t connection = 0;  ///< a number for each connection, from 1; 0: no network
    std::chrono::system_clock::time_point time;
    std::chrono::microseconds duration{0};  ///< until the answer was ready; what a slow line adds is not in it
};

class JournalFile;

/// The latest requests, a bounded number of them and of bytes. Any thread.
class Journal {
public:
    explicit Journal(std::size_t mostEntries);
    ~Journal();
    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;

    /// From now on every entry is added to this file, too, a line of JSON each. A file that cannot be opened is a
    /// std::system_error; one that cannot be written later is given up, and standard error says so.
    void writeTo(const std::string& path);

    /// The number of a request that has just arrived.
    std::uint64_t arrive();
    void add(JournalEntry entry);
    /// Those whose number is higher than `after`.
    std::vector<JournalEntry> entries(std::uint64_t after = 0) const;
    /// How many have arrived.
    std::uint64_t count() const;
    /// Forgets all; numbers begin at 1 again.
    void clear();

private:
    mutable std::mutex m_mutex;
    std::size_t m_mostEntries;
    std::deque<JournalEntry> m_entries;
    std::size_t m_bytes = 0;
    std::uint64_t m_count = 0;
    std::unique_ptr<JournalFile> m_file;
};

}  // namespace brevan::sim

#endif
