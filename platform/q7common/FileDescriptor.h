#ifndef BREVAN_Q7COMMON_FILEDESCRIPTOR_H
#define BREVAN_Q7COMMON_FILEDESCRIPTOR_H

#include <unistd.h>

#include <utility>

namespace brevan {

/// A file descriptor that is closed when it goes.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int number) noexcept : m_number(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        std::swap(m_number, other.m_number);
        return *this;
    }
    ~FileDescriptor() { reset(); }

    int get() const noexcept { return m_number; }
    bool isOpen() const noexcept { return m_number >= 0; }
    void reset() noexcept
    {
        if (m_number >= 0) {
            ::close(std::exchange(m_number, -1));
        }
    }

private:
    int m_number = -1;
};

}  // namespace brevan

#endif
