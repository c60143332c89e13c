#pragma once

#include <unistd.h>

namespace kvrtb {

/// \brief Owns a file descriptor and closes it on every path out of a scope.
///
/// A negative descriptor (a failed `open`) is held as it is and closed never.
class FileDescriptor {
public:
    explicit FileDescriptor(int fd) : m_fd(fd) {}
    ~FileDescriptor()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    FileDescriptor(const FileDescriptor &) = delete;
    FileDescriptor &operator=(const FileDescriptor &) = delete;
    int get() const { return m_fd; }

private:
    int m_fd;
};

} // namespace kvrtb
