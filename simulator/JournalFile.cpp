#include "JournalFile.h"

#include "JournalText.h"

#include <cerrno>
#include <cstring>
#include <iostream>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace brevan::sim {

JournalFile::JournalFile(std::string path)
    : m_path(std::move(path)), m_descriptor(open(m_path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600))
{
    if (m_descriptor < 0) {
        throw std::system_error(errno, std::generic_category(), "cannot write the journal " + m_path);
    }
}

JournalFile::~JournalFile()
{
    giveUp();
}

void JournalFile::giveUp()
{
    if (m_descriptor >= 0) {
        close(m_descriptor);
        m_descriptor = -1;
    }
}

void JournalFile::write(const JournalEntry& entry)
{
    const std::string line = m_descriptor < 0 ? std::string() : journalLine(entry) + "\n";
    for (std::size_t done = 0; done < line.size();) {
        const ssize_t count = ::write(m_descriptor, line.data() + done, line.size() - done);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            std::cerr << "the journal " << m_path << " ends here: " << std::strerror(errno) << std::endl;
            giveUp();
            return;
        }
        done += static_cast<std::size_t>(count);
    }
}

}  // namespace brevan::sim
