#include "documents/fileinuse.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kvrtb {

namespace {

/// Closes a descriptor on every path.
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

bool hasConflictingRecordLock(int fd)
{
    // An open-file-description query sees the record locks of every other open file, this
    // process's traditional locks included (those always conflict with OFD locks).
    struct flock query {};
    query.l_type = F_WRLCK;
    query.l_whence = SEEK_SET;
    query.l_start = 0;
    query.l_len = 0;
#ifdef F_OFD_GETLK
    if (::fcntl(fd, F_OFD_GETLK, &query) == 0)
        return query.l_type != F_UNLCK;
    query.l_type = F_WRLCK;
#endif
    if (::fcntl(fd, F_GETLK, &query) == 0)
        return query.l_type != F_UNLCK;
    return false;
}

bool hasConflictingFlock(int fd)
{
    if (::flock(fd, LOCK_EX | LOCK_NB) == 0) {
        ::flock(fd, LOCK_UN);
        return false;
    }
    return errno == EWOULDBLOCK;
}

} // namespace

QString officeLockFilePath(const QString &path)
{
    const QFileInfo info(path);
    return info.dir().filePath(QStringLiteral(".~lock.") + info.fileName() + QLatin1Char('#'));
}

bool isFileInUse(const QString &path)
{
    if (path.isEmpty())
        return false;
    if (QFileInfo::exists(officeLockFilePath(path)))
        return true;
    const QByteArray native = QFile::encodeName(path);
    FileDescriptor fd(::open(native.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (fd.get() < 0)
        return false;
    struct stat st {};
    if (::fstat(fd.get(), &st) != 0 || !S_ISREG(st.st_mode))
        return false;
    return hasConflictingRecordLock(fd.get()) || hasConflictingFlock(fd.get());
}

} // namespace kvrtb
