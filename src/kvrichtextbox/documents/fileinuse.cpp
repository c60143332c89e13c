#include "documents/fileinuse.h"

#include "documents/filedescriptor.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QSysInfo>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kvrtb {

namespace {

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

/// The real path of \a path (links resolved), empty when it does not exist.
QByteArray realPath(const QString &path)
{
    char resolved[PATH_MAX];
    if (!::realpath(QFile::encodeName(path).constData(), resolved))
        return QByteArray();
    return QByteArray(resolved);
}

/// True when a process on this machine has one of \a paths open (the descriptors listed under
/// /proc; without the rights to see another user's, those are not seen).
bool isOpenByAnyProcess(const QSet<QByteArray> &paths)
{
    const QStringList processes = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &pid : processes) {
        bool numeric = false;
        pid.toInt(&numeric);
        if (!numeric)
            continue;
        const QString fdDir = QStringLiteral("/proc/") + pid + QStringLiteral("/fd");
        const QStringList descriptors = QDir(fdDir).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
        for (const QString &fd : descriptors) {
            char target[PATH_MAX];
            const QByteArray link = QFile::encodeName(fdDir + QLatin1Char('/') + fd);
            const ssize_t n = ::readlink(link.constData(), target, sizeof target - 1);
            if (n > 0 && paths.contains(QByteArray(target, int(n))))
                return true;
        }
    }
    return false;
}

bool hasAnyLock(const QString &path)
{
    FileDescriptor fd(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    return fd.get() >= 0 && (hasConflictingRecordLock(fd.get()) || hasConflictingFlock(fd.get()));
}

/// Whether the office-suite lock file \a lockPath of \a path is held by a running program.
/// The file reads "name,user,host,date,folder;". A lock written on another machine counts
/// (its programs cannot be seen from here); one written on this machine counts while some
/// program here keeps the document or the lock file open or locked. A lock file left behind
/// by a program that ended does not.
bool isLockFileHeld(const QString &path, const QString &lockPath)
{
    QFile lockFile(lockPath);
    QString host;
    if (lockFile.open(QIODevice::ReadOnly)) {
        const QString content = QString::fromUtf8(lockFile.read(4096));
        const QStringList fields = content.section(QLatin1Char(';'), 0, 0).split(QLatin1Char(','));
        if (fields.size() > 2)
            host = fields.at(2).trimmed();
        lockFile.close();
    }
    if (!host.isEmpty() && host.compare(QSysInfo::machineHostName(), Qt::CaseInsensitive) != 0)
        return true;
    QSet<QByteArray> paths;
    for (const QString &candidate : {path, lockPath}) {
        const QByteArray real = realPath(candidate);
        if (!real.isEmpty())
            paths.insert(real);
    }
    return hasAnyLock(lockPath) || isOpenByAnyProcess(paths);
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
    const QString lockPath = officeLockFilePath(path);
    if (QFileInfo::exists(lockPath) && isLockFileHeld(path, lockPath))
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
