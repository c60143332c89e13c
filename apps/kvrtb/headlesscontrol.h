#pragma once

#include "consoleservices.h"
#include "core/controlcore.h"
#include "core/controlevents.h"

#include <QString>

namespace kvrtb::cli {

/// \brief A control without a window, for the link commands: loads a document file (RTF by
/// its ".rtf" suffix, plain text otherwise) into the editor surface.
struct HeadlessControl {
    ConsoleServices services;
    ControlEvents events;
    ControlCore core{nullptr, services, events};

    /// Loads \a path; on failure prints why to standard error and returns false.
    bool load(const QString &path);
};

} // namespace kvrtb::cli
