#include "documents/fileerror.h"

#include <cerrno>

namespace kvrtb::FileError {

int fromErrno(int osError, bool reading)
{
    switch (osError) {
    case 0:
        return None;
    case ENOENT:
        return reading ? FileNotFound : PathNotFound;
    case ENOTDIR:
        return PathNotFound;
    case ENOSPC:
    case EDQUOT:
        return DiskFull;
    case EBUSY:
    case ETXTBSY:
    case EAGAIN:
        return PermissionDenied;
    case EMFILE:
    case ENFILE:
        return TooManyFiles;
    case EIO:
        return DeviceIo;
    case ENAMETOOLONG:
        return BadFileName;
    case EEXIST:
        return FileExists;
    case EXDEV:
        return RenameAcrossDrives;
    case EINVAL:
        return InvalidCall;
    default:
        // Permissions that forbid the access, a directory in place of the file, a read-only
        // file system, a loop of links and the rest are "path/file access" errors; "permission
        // denied" (70) is kept for a file another program holds.
        return PathFileAccess;
    }
}

} // namespace kvrtb::FileError
