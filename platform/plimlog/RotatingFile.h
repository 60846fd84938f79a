#ifndef BREVAN_PLIMLOG_ROTATINGFILE_H
#define BREVAN_PLIMLOG_ROTATINGFILE_H

#include "platform/plimlog/LogFileName.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

namespace brevan::plimlog {

/// One log file of this process with its older generations. The file is opened by the first line, again when it or its
/// directory was removed (looked for every kLookInterval), and moved aside when it is full. Whole lines only: a line that
/// does not fit on the disk leaves nothing behind. One thread at a time.
class RotatingFile {
public:
    /// A look costs a system call, too much for every line. What is written in between goes with the removed file.
    static constexpr std::chrono::milliseconds kLookInterval{100};

    RotatingFile(std::string directory, LogFileName name, std::uint64_t maxBytes, unsigned maxFiles);
    RotatingFile(const RotatingFile&) = delete;
    RotatingFile& operator=(const RotatingFile&) = delete;
    ~RotatingFile();

    /// Opens the file where it is not open, and makes its directory. 0, or an errno value.
    int open() noexcept;

    /// Appends `line`, line end included. 0 when all of it is in the file, else an errno value and nothing is.
    int write(std::string_view line) noexcept;

    /// Where the file is, for messages.
    std::string path() const { return pathOf(0); }

private:
    using Clock = std::chrono::steady_clock;

    std::string pathOf(unsigned generation) const;
    int openOnce();
    void lookForFile() noexcept;
    int makeRoom(std::size_t bytes) noexcept;
    int rotate() noexcept;
    int append(std::string_view line) noexcept;
    void takeBack(std::size_t bytes) noexcept;
    void close() noexcept;

    std::string m_directory;
    LogFileName m_name;
    std::uint64_t m_maxBytes;
    unsigned m_maxFiles;
    pid_t m_owner;
    int m_fd = -1;
    std::uint64_t m_size = 0;
    Clock::time_point m_nextLook{};
};

}  // namespace brevan::plimlog

#endif
