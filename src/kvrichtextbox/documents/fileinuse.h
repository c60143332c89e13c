#pragma once

#include <QString>

namespace kvrtb {

/// \brief Whether another program holds a document file open for itself.
///
/// A file counts as in use when another open file (of this or another process) holds a lock
/// on it that an exclusive lock would conflict with: a `fcntl` record lock (traditional or
/// open-file-description) or a `flock` lock, shared or exclusive. An office-suite lock file
/// beside the document (".~lock.NAME#") counts while it is really held: it names another
/// machine, or a program on this machine keeps the document or the lock file open or locked.
/// A lock file left behind by a program that ended is passed over (and left where it is). A
/// missing or unreadable file is not "in use": loading it fails on its own with the reason.
/// Nothing is created or changed on disk.
bool isFileInUse(const QString &path);

/// The name of the lock file an office suite keeps beside \a path while it edits it.
QString officeLockFilePath(const QString &path);

} // namespace kvrtb
