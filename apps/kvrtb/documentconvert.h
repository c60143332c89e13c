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

/// How `kvrtb convert` runs the control.
struct ConvertOptions {
    /// The answer to the control's question before formatted text is saved as text.
    MessageAnswer answer = MessageAnswer::Yes;
    /// Runs the control's clean-up passes on the loaded document (the control's
    /// `RemoveUnUsableData`). Off by default: the tag pass overwrites everything between a "<"
    /// and the next ">", across paragraphs, and a conversion keeps every character.
    bool cleanUp = false;
};

/// \brief Converts \a input to \a output through a control without a window, with the
/// control's own `LoadFile` and `SaveFile`, so the command line behaves as the control does.
///
/// The control's messages go to standard error, and so does a progress line when loading or
/// saving takes more than a second. An enciphered input is refused. Returns the exit status:
/// `ExitOk` when written, `ExitBadInput` when the input could not be loaded, `ExitNo` when the
/// question was answered No, `ExitBadOutput` when the output could not be saved (the target is
/// then as it was).
int convertThroughControl(const QString &input, const QString &output, const ConvertOptions &options);

} // namespace kvrtb::cli
