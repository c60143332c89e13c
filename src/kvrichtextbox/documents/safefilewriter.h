#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

namespace kvrtb {

/// \brief Writes a whole file so that a failure never loses the file it replaces, and a
/// success keeps what the file was.
///
/// Where it is safe, the bytes go to a new file beside the target, are flushed to the disk,
/// take the target's permissions, owner and group (or those a new file would get), and the new
/// file is renamed over the target; the folder is flushed too. That needs a target with one
/// name and no extended attributes (an access control list is one), a folder the user may
/// create files in, a new file that can take the target's owner and group, and a rename the
/// folder allows (a sticky folder allows it only for the owner's files). Otherwise the target
/// is written in place: its previous content is first copied to a backup (beside it, or in the
/// temporary folder when its folder is closed to the user), and a write that fails puts it
/// back; the backup is removed once the file holds either content, and kept (named in the
/// reason) only when even putting it back fails. Hard links, owner, permissions and attributes
/// stay as they were.
///
/// A target whose own permissions forbid writing is never written, nor is a folder, pipe,
/// socket or device in the target's place (error 75). Symbolic links are followed, chains of
/// them too: the file they end at is written (or created, for a dangling link), the links
/// stay.
class SafeFileWriter {
public:
    struct Result {
        bool ok = false;
        int error = 0;          ///< `FileError` number; 0 when written
        bool readOnly = false;  ///< the target exists and may not be written
        QString reason;         ///< the operating system's message, for logs and the CLI
    };

    /// Writes \a bytes to \a path.
    static Result write(const QString &path, const QByteArray &bytes);

    /// True when \a path names an existing file that its permissions keep from being written
    /// (no write permission at all, or none for this user), or one on a read-only file system.
    static bool isReadOnlyFile(const QString &path);

    /// \brief Test seam: a fault injected into the next writes of this thread.
    ///
    /// Called before each chunk is written with the number of bytes already written; returning
    /// a non-zero `errno` value makes that write fail with it (ENOSPC simulates a full disk).
    /// An empty function (the default) injects nothing.
    using WriteFault = std::function<int(qint64 bytesWritten)>;
    static void setWriteFault(WriteFault fault);
};

} // namespace kvrtb
