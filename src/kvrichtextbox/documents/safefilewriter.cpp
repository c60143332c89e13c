#include "documents/safefilewriter.h"

#include "documents/fileerror.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kvrtb {

namespace {

constexpr qint64 kChunk = 64 * 1024;

SafeFileWriter::WriteFault &writeFault()
{
    thread_local SafeFileWriter::WriteFault fault;
    return fault;
}

SafeFileWriter::Result failure(int osError, bool readOnly = false)
{
    SafeFileWriter::Result result;
    result.error = readOnly ? FileError::PathFileAccess : FileError::fromErrno(osError, false);
    result.readOnly = readOnly;
    result.reason = QString::fromLocal8Bit(std::strerror(osError));
    return result;
}

/// The process's file-creation mask, read without changing it (changing it is not safe while
/// other threads create files).
mode_t currentUmask()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (status.open(QIODevice::ReadOnly)) {
        for (const QByteArray &line : status.readAll().split('\n')) {
            if (line.startsWith("Umask:")) {
                bool ok = false;
                const uint mask = line.mid(6).trimmed().toUInt(&ok, 8);
                if (ok)
                    return mode_t(mask);
            }
        }
    }
    return 022;
}

/// Follows \a path through symbolic links, each read relative to its own folder, to the file
/// they end at, which need not exist (a dangling link names the file to create). Gives 0, or
/// ELOOP for a cycle or a chain too long to follow.
int resolveLinks(const QString &path, QString *resolved)
{
    QString current = path;
    for (int hops = 0; hops < 40; ++hops) {
        const QFileInfo info(current);
        if (!info.isSymLink()) {
            *resolved = current;
            return 0;
        }
        const QByteArray native = QFile::encodeName(current);
        QByteArray link(4096, '\0');
        const ssize_t n = ::readlink(native.constData(), link.data(), size_t(link.size()));
        if (n < 0)
            return errno;
        link.truncate(n);
        const QString next = QFile::decodeName(link);
        // Not tidied up: ".." after a linked folder means that folder's parent to the system.
        current = QDir::isAbsolutePath(next) ? next : info.absolutePath() + QLatin1Char('/') + next;
    }
    return ELOOP;
}

/// The temporary file beside the target: closed and removed on every path unless it was
/// renamed over the target.
class TemporaryFile {
public:
    explicit TemporaryFile(QByteArray pattern) : m_path(std::move(pattern))
    {
        m_fd = ::mkstemp(m_path.data());
        m_created = m_fd >= 0;
    }
    ~TemporaryFile()
    {
        if (m_fd >= 0)
            ::close(m_fd);
        if (m_created && !m_renamed)
            ::unlink(m_path.constData());
    }
    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;

    int fd() const { return m_fd; }
    const char *path() const { return m_path.constData(); }
    /// Closes the descriptor; false with `errno` set when the close reports an error.
    bool close()
    {
        const int fd = m_fd;
        m_fd = -1;
        return ::close(fd) == 0;
    }
    void markRenamed() { m_renamed = true; }

private:
    QByteArray m_path;
    int m_fd = -1;
    bool m_created = false;
    bool m_renamed = false;
};

/// Writes all of \a bytes, in chunks, asking the injected fault before each.
int writeAll(int fd, const QByteArray &bytes)
{
    qint64 written = 0;
    const qint64 total = bytes.size();
    while (written < total) {
        if (const auto &fault = writeFault()) {
            if (const int injected = fault(written))
                return injected;
        }
        const qint64 chunk = std::min(kChunk, total - written);
        const ssize_t n = ::write(fd, bytes.constData() + written, size_t(chunk));
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return errno;
        }
        if (n == 0)
            return ENOSPC;
        written += n;
    }
    return 0;
}

} // namespace

void SafeFileWriter::setWriteFault(WriteFault fault)
{
    writeFault() = std::move(fault);
}

bool SafeFileWriter::isReadOnlyFile(const QString &path)
{
    const QByteArray native = QFile::encodeName(path);
    struct stat st {};
    if (::stat(native.constData(), &st) != 0 || S_ISDIR(st.st_mode))
        return false;
    // The permissions themselves first: the superuser may write anything, yet a file that
    // nobody may write is still a read-only file to the user.
    if ((st.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0)
        return true;
    if (::access(native.constData(), W_OK) != 0)
        return errno == EACCES || errno == EROFS || errno == EPERM;
    return false;
}

SafeFileWriter::Result SafeFileWriter::write(const QString &path, const QByteArray &bytes)
{
    if (path.isEmpty())
        return failure(ENOENT);
    // Replace the file a link names (through any chain of links), not the link.
    QString target;
    if (const int error = resolveLinks(QFileInfo(path).absoluteFilePath(), &target))
        return failure(error);
    const QByteArray nativeTarget = QFile::encodeName(target);

    struct stat existing {};
    const bool exists = ::stat(nativeTarget.constData(), &existing) == 0;
    mode_t mode = 0666 & ~currentUmask();
    if (exists) {
        if (S_ISDIR(existing.st_mode))
            return failure(EISDIR);
        // A pipe, socket or device in the file's place is not replaced by a file.
        if (!S_ISREG(existing.st_mode)) {
            Result result = failure(EISDIR);
            result.reason = QStringLiteral("\"%1\" is not a regular file.").arg(target);
            return result;
        }
        if (isReadOnlyFile(target))
            return failure(EACCES, true);
        mode = existing.st_mode & 07777;
    }

    const QFileInfo targetInfo(target);
    const QString folder = targetInfo.absolutePath();
    // The temporary file's name is the target's, shortened so that the dot and the suffix
    // still fit in the system's limit on a name (255 bytes) for a target name at that limit.
    QByteArray stem = QFile::encodeName(targetInfo.fileName());
    const QByteArray suffix = ".kvrtb-XXXXXX";
    const int room = 255 - 1 - int(suffix.size());
    if (stem.size() > room) {
        stem.truncate(room);
        // Do not cut a UTF-8 sequence in two.
        while (!stem.isEmpty() && (uchar(stem.back()) & 0xC0) == 0x80)
            stem.chop(1);
        if (!stem.isEmpty() && (uchar(stem.back()) & 0x80))
            stem.chop(1);
    }
    TemporaryFile temp(QFile::encodeName(folder) + "/." + stem + suffix);
    if (temp.fd() < 0)
        return failure(errno);
    if (const int error = writeAll(temp.fd(), bytes))
        return failure(error);
    if (::fchmod(temp.fd(), mode) != 0)
        return failure(errno);
    if (exists && (existing.st_uid != ::geteuid() || existing.st_gid != ::getegid())) {
        // Keep the owner when allowed to; an ordinary user cannot, and that is no failure.
        [[maybe_unused]] const int ignored = ::fchown(temp.fd(), existing.st_uid, existing.st_gid);
    }
    if (::fsync(temp.fd()) != 0)
        return failure(errno);
    if (!temp.close())
        return failure(errno);
    if (::rename(temp.path(), nativeTarget.constData()) != 0)
        return failure(errno);
    temp.markRenamed();

    // Make the rename itself durable.
    const QByteArray nativeFolder = QFile::encodeName(folder);
    const int dirFd = ::open(nativeFolder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (dirFd >= 0) {
        ::fsync(dirFd);
        ::close(dirFd);
    }
    Result result;
    result.ok = true;
    return result;
}

} // namespace kvrtb
