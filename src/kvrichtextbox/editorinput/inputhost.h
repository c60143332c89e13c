#pragma once

#include "core/colour.h"

namespace kvrtb {

/// \brief The members of the control that the pop-up menu runs and that belong to the
/// control's facade rather than to an area: its font and colour dialogs and keyword colouring.
///
/// `KvRTB` implements it by calling its own public members, so the menu does exactly what a
/// host calling those members gets. Tests may give a recording implementation.
class InputHost {
public:
    virtual ~InputHost() = default;
    /// "Font" with `UseCustomFontDialog` off: the common font dialog on the selection.
    virtual void CommonDialogFontSelect() = 0;
    /// "Font" with `UseCustomFontDialog` on: the control's own font dialog on the editor.
    virtual void ShowFontSelect() = 0;
    /// The colour dialog for the font colour, seeded with \a seed; the colour chosen, or the
    /// seed when cancelled.
    virtual Colour CommonDialogFontColor(Colour seed) = 0;
    /// The colour dialog seeded with \a original; \a cancelled tells whether the user cancelled
    /// (the original is returned then).
    virtual Colour CommonDialogColor(bool &cancelled, Colour original) = 0;
    /// Sets the persisted `MyFontColor` / `MyHLColor` as a host setting them would.
    virtual void setMyFontColor(Colour colour) = 0;
    virtual void setMyHLColor(Colour colour) = 0;
    /// Colours VB6 keywords, comments and strings of all the text, keeping its formatting.
    virtual void ApplyVB6Syntax() = 0;
};

} // namespace kvrtb
