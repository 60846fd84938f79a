#ifndef BREVAN_SIMULATOR_JOURNALFILE_H
#define BREVAN_SIMULATOR_JOURNALFILE_H

#include <string>

namespace brevan::sim {

struct JournalEntry;

/// Adds entries to a file, a line of JSON each, whole lines only. For one thread at a time.
class JournalFile {
public:
    /// Made for this user alone if it is not there. A failure is a std::system_error that names the file.
    explicit JournalFile(std::string path);
    ~JournalFile();
    JournalFile(const JournalFile&) = delete;
    JournalFile& operator=(const JournalFile&) = delete;

    /// A failure is told on standard error, once, and ends the writing: the array goes on without this file.
    void write(const JournalEntry& entry);

private:
    void giveUp();
    std::string m_path;
    int m_descriptor;
};

}  // namespace brevan::sim

#endif
