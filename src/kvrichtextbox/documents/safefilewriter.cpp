#include "documents/safefilewriter.h"

#include "documents/filedescriptor.h"
#include "documents/fileerror.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
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

/// True when the file carries extended attributes (an access control list is one): a new file
/// put in its place would not have them.
bool hasExtendedAttributes(const QByteArray &nativePath)
{
    const ssize_t size = ::listxattr(nativePath.constData(), nullptr, 0);
    return size > 0;
}

/// The temporary file's name pattern for \a target in \a folder: the target's name, shortened
/// so that the dot and the suffix still fit in the system's limit on a name (255 bytes) for a
/// target name at that limit.
QByteArray siblingPattern(const QString &folder, const QString &fileName, const QByteArray &suffix)
{
    QByteArray stem = QFile::encodeName(fileName);
    const int room = 255 - 1 - int(suffix.size());
    if (stem.size() > room) {
        stem.truncate(room);
        // Do not cut a UTF-8 sequence in two.
        while (!stem.isEmpty() && (uchar(stem.back()) & 0xC0) == 0x80)
            stem.chop(1);
        if (!stem.isEmpty() && (uchar(stem.back()) & 0x80))
            stem.chop(1);
    }
    return QFile::encodeName(folder) + "/." + stem + suffix;
}

/// Reads the whole file open on \a fd from its start; 0 or the error.
int readAll(int fd, QByteArray *bytes)
{
    bytes->clear();
    if (::lseek(fd, 0, SEEK_SET) < 0)
        return errno;
    char buffer[kChunk];
    for (;;) {
        const ssize_t n = ::read(fd, buffer, sizeof buffer);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return errno;
        }
        if (n == 0)
            return 0;
        bytes->append(buffer, n);
    }
}

/// Writes \a bytes as the whole content of the file open on \a fd, and flushes it; 0 or the
/// error.
int overwrite(int fd, const QByteArray &bytes)
{
    if (::lseek(fd, 0, SEEK_SET) < 0)
        return errno;
    if (const int error = writeAll(fd, bytes))
        return error;
    if (::ftruncate(fd, bytes.size()) != 0 || ::fsync(fd) != 0)
        return errno;
    return 0;
}

/// A copy of a file's previous content, kept until the file holds its new content: beside the
/// file when its folder can take it, else in the temporary folder. Removed when destroyed
/// unless `keep` was called.
class Backup {
public:
    Backup(const QString &folder, const QString &fileName, const QByteArray &content)
    {
        const QByteArray suffix = ".kvrtb-backup-XXXXXX";
        for (const QString &place : {folder, QDir::tempPath()}) {
            TemporaryFile file(siblingPattern(place, fileName, suffix));
            if (file.fd() < 0) {
                m_error = errno;
                continue;
            }
            m_error = writeAll(file.fd(), content);
            if (!m_error && ::fsync(file.fd()) != 0)
                m_error = errno;
            if (!m_error && !file.close())
                m_error = errno;
            if (!m_error) {
                file.markRenamed(); // kept: this object removes it
                m_path = file.path();
                return;
            }
        }
    }
    ~Backup()
    {
        if (!m_path.isEmpty() && !m_kept)
            ::unlink(m_path.constData());
    }
    Backup(const Backup &) = delete;
    Backup &operator=(const Backup &) = delete;

    /// 0 when the copy is on disk, else the error that kept it from being written.
    int error() const { return m_path.isEmpty() ? m_error : 0; }
    QString path() const { return QFile::decodeName(m_path); }
    void keep() { m_kept = true; }

private:
    QByteArray m_path;
    int m_error = 0;
    bool m_kept = false;
};

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
    // The effective user's rights decide, as they do for the write itself.
    if (::faccessat(AT_FDCWD, native.constData(), W_OK, AT_EACCESS) != 0)
        return errno == EACCES || errno == EROFS || errno == EPERM;
    return false;
}

namespace {

/// What an attempt at the atomic replace came to.
enum class Replace { Done, Failed, NotHere };

/// Writes a new file beside the target and renames it over the target. Gives `NotHere` when
/// the replace cannot keep what the file is (the new file cannot be made in the folder, cannot
/// take the target's owner and group, or may not be renamed over the target, as in a sticky
/// folder); nothing has changed then.
Replace replaceAtomically(const QByteArray &nativeTarget, const QString &folder, const QString &fileName,
                          const QByteArray &bytes, const struct stat *existing, mode_t mode,
                          SafeFileWriter::Result *result)
{
    TemporaryFile temp(siblingPattern(folder, fileName, ".kvrtb-XXXXXX"));
    if (temp.fd() < 0) {
        if (existing)
            return Replace::NotHere;
        *result = failure(errno);
        return Replace::Failed;
    }
    if (const int error = writeAll(temp.fd(), bytes)) {
        *result = failure(error);
        return Replace::Failed;
    }
    if (::fchmod(temp.fd(), mode) != 0) {
        *result = failure(errno);
        return Replace::Failed;
    }
    if (existing) {
        struct stat made {};
        if (::fstat(temp.fd(), &made) != 0) {
            *result = failure(errno);
            return Replace::Failed;
        }
        if ((made.st_uid != existing->st_uid || made.st_gid != existing->st_gid)
            && ::fchown(temp.fd(), existing->st_uid, existing->st_gid) != 0)
            return Replace::NotHere;
    }
    if (::fsync(temp.fd()) != 0 || !temp.close()) {
        *result = failure(errno);
        return Replace::Failed;
    }
    if (::rename(temp.path(), nativeTarget.constData()) != 0) {
        if (existing && (errno == EPERM || errno == EACCES))
            return Replace::NotHere;
        *result = failure(errno);
        return Replace::Failed;
    }
    temp.markRenamed();

    // Make the rename itself durable.
    const QByteArray nativeFolder = QFile::encodeName(folder);
    const int dirFd = ::open(nativeFolder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (dirFd >= 0) {
        ::fsync(dirFd);
        ::close(dirFd);
    }
    result->ok = true;
    return Replace::Done;
}

/// Writes the new content into the target itself, so that its links, owner, permissions and
/// attributes stay. The previous content goes to a backup first; should the write fail, it is
/// put back and the backup removed, or, when even that fails, the backup is kept and named in
/// the reason.
SafeFileWriter::Result writeInPlace(const QByteArray &nativeTarget, const QString &folder, const QString &fileName,
                                    const QByteArray &bytes)
{
    FileDescriptor fd(::open(nativeTarget.constData(), O_RDWR | O_CLOEXEC));
    if (fd.get() < 0)
        return failure(errno, errno == EACCES || errno == EROFS);
    QByteArray previous;
    if (const int error = readAll(fd.get(), &previous))
        return failure(error);
    Backup backup(folder, fileName, previous);
    if (const int error = backup.error())
        return failure(error);
    const int error = overwrite(fd.get(), bytes);
    if (!error) {
        SafeFileWriter::Result result;
        result.ok = true;
        return result;
    }
    SafeFileWriter::Result result = failure(error);
    // Give back the space the new content took before putting the old one back.
    const bool restored = ::ftruncate(fd.get(), 0) == 0 && overwrite(fd.get(), previous) == 0;
    if (restored) {
        result.reason += QStringLiteral("; the file keeps its previous content");
    } else {
        backup.keep();
        result.reason += QStringLiteral("; the previous content is kept in \"%1\"").arg(backup.path());
    }
    return result;
}

} // namespace

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
    const QString fileName = targetInfo.fileName();
    // A file with other names (hard links) or with extended attributes is written in place:
    // a new file renamed over it would leave the other names with the old content and lose
    // the attributes.
    const bool replaceable = !exists || (existing.st_nlink == 1 && !hasExtendedAttributes(nativeTarget));
    if (replaceable) {
        Result result;
        switch (replaceAtomically(nativeTarget, folder, fileName, bytes, exists ? &existing : nullptr, mode, &result)) {
        case Replace::Done:
        case Replace::Failed: return result;
        case Replace::NotHere: break;
        }
    }
    return writeInPlace(nativeTarget, folder, fileName, bytes);
}

} // namespace kvrtb
