#pragma once

#include "core/colour.h"
#include "core/kvrtbtypes.h"

#include <QString>

namespace kvrtb {

/// \brief The settings the control keeps itself (not passed on to the editor), with their
/// defaults. The editor's own settings (back colour, font, text, ...) live on the surface.
///
/// The persisted property table (keys, types, order) is built on these fields and the surface.
struct ControlProperties {
    bool AllowImages = true;
    bool RemoveUnUsableData = true;
    Colour ColorVBNetKeyWord = 0xFF0000;
    Colour ColorVB6KeyWord = 0xC00000;
    Colour ColorVBNetComment = 0x8000;
    Colour ColorVB6Comment = 0x8000;
    Colour ColorVBNetString = 0xC0;
    Colour ColorVB6String = 0;
    Colour ColorMyFirstKeyWord = 0xC00000;
    Colour ColorMySecondKeyWord = 0x8000;
    Colour ColorMyThirdKeyWord = 0;
    QString MyFirstString;
    QString MySecondString;
    QString MyThirdString;
    bool DetectHyperLinks = true;
    bool AutoVMenu = true;
    Colour MyFontColor = 0;
    Colour MyHLColor = 0xFFFF;
    bool ShowVB6Syntax = false;
    bool UseCustomFontDialog = true;
    int PrinterMargin = Academic;
    QString WhatsThisHelpFile;
    bool TurnOnSound = true;
    int MyWrapStyle = RulerWrap;
    bool DisplayRuler = true;
    bool AllowRTFSave = false;
};

} // namespace kvrtb
