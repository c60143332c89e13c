#pragma once

#include <QString>

namespace kvrtb {

/// \brief The error numbers the control reports for file operations, as the classic runtime
/// numbers them (the numbers the save messages and `MyErr` carry).
namespace FileError {
inline constexpr int None = 0;
inline constexpr int InvalidCall = 5;        ///< invalid procedure call or argument
inline constexpr int BadFileName = 52;       ///< bad file name or number
inline constexpr int FileNotFound = 53;
inline constexpr int DeviceIo = 57;          ///< device input/output error
inline constexpr int FileExists = 58;
inline constexpr int DiskFull = 61;
inline constexpr int TooManyFiles = 67;
inline constexpr int PermissionDenied = 70;  ///< a file locked or busy in another program
inline constexpr int RenameAcrossDrives = 74;
inline constexpr int PathFileAccess = 75;    ///< access forbidden, a folder in the way, ...
inline constexpr int PathNotFound = 76;
inline constexpr int InvalidFormat = 321;   ///< the file is not of the type asked for
inline constexpr int DialogCancelled = 32755; ///< the user cancelled a file dialog

/// Maps an operating-system error (`errno` value) to the control's number. \a reading tells a
/// missing file (53) from a missing folder on the way to a new file (76).
int fromErrno(int osError, bool reading);
} // namespace FileError

} // namespace kvrtb
