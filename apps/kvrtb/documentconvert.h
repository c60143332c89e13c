#pragma once

#include "core/platformservices.h"

#include <QString>

namespace kvrtb::cli {

/// The control's document type for a file name by its extension: 0 ".rtf", 1 ".txt",
/// 2 ".mbdf" (the control's own document); -1 for any other.
int controlFileType(const QString &path);

/// True, after saying so on standard error, when \a input is an enciphered document, which
/// no conversion reads.
bool refuseEnciphered(const QString &input);

/// \brief Converts \a input to \a output through a control without a window, with the
/// control's own `LoadFile` and `SaveFile`, so the command line behaves as the control does.
///
/// The control's messages go to standard error; its question before saving formatted text as
/// text is answered with \a answer. An enciphered input is refused. Returns the exit status:
/// 0 when written, 1 when the file could not be loaded or saved (the target is then as it
/// was) or the question was answered No.
int convertThroughControl(const QString &input, const QString &output, MessageAnswer answer);

} // namespace kvrtb::cli
