#pragma once

#include "core/colour.h"
#include "core/kvrtbtypes.h"
#include "fonts/fontchoice.h"

#include <QObject>
#include <QVariant>

#include <optional>

namespace kvrtb {

class ControlCore;

/// \brief The font and colour area: the font dialogs (the control's own `FontFrm` or the
/// desktop's), default-font mode, and the colour dialogs.
///
/// Every dialog is modal and changes nothing when cancelled. `MyErr` arguments come back 0 on
/// success and 32755 when the user cancelled (the control's number for a cancelled dialog).
///
/// Default-font mode: once a default font is chosen (`SetDefaultFontMode`) or shared from
/// another control (`ShareDefaultFontData`), what the user types where nothing is selected
/// takes that font, until `EndDefaultFontMode`. Typing over a selection takes the selection's
/// format, as it always does.
class FontSelection : public QObject {
    Q_OBJECT
public:
    /// \a core must outlive the object; the editor's key presses are watched from now on.
    explicit FontSelection(ControlCore &core);
    ~FontSelection() override;

    /// The desktop's font dialog for the selection; what the user changed is applied to it.
    void CommonDialogFontSelect(short *MyErr = nullptr);
    /// The font dialog for the selection: the control's own when `UseCustomFontDialog` is on,
    /// the desktop's otherwise.
    void ShowFontSelect();
    /// Asks for a default font (starting from the current one) and, unless cancelled, turns
    /// default-font mode on with it.
    void SetDefaultFontMode();
    /// Turns default-font mode off; the default font is kept for `GetDefaultFontData`.
    void EndDefaultFontMode();
    /// The default font: the one chosen or shared last, else the editor's font.
    DEFUALT_FONT_DATA GetDefaultFontData() const;
    /// Takes another control's default font and turns default-font mode on with it.
    void ShareDefaultFontData(const DEFUALT_FONT_DATA &MyDefFontData);
    bool isDefaultFontMode() const { return m_defaultMode; }

    /// The colour dialog starting at \a MyOrgigColor. Chosen: \a UserCancelQ false and the
    /// colour. Cancelled: \a UserCancelQ true and \a MyOrgigColor when \a UseOrigONCancel is
    /// true, else 0.
    Colour CommonDialogColor(bool &UserCancelQ, bool UseOrigONCancel, Colour MyOrgigColor, short *MyErr);
    /// Chooses the colour of the "Font Color" command (`MyFontColor`), starting at
    /// \a MyOrgigColor (the current `MyFontColor` when null). Gives the colour chosen, or the
    /// starting colour, unchanged, when cancelled.
    Colour CommonDialogFontColor(const QVariant &MyOrgigColor, short *MyErr);
    /// Colours the selected text. Starts at \a CurrentColor (the selection's colour when null);
    /// gives the colour chosen, or the starting colour when cancelled (the text unchanged).
    /// The choice becomes `MyFontColor`.
    Colour CommonDialogSelFontColor(const QVariant &CurrentColor, short *MyErr);
    /// Highlights the selection (its background). Starts at \a CurrentColor (`MyHLColor` when
    /// null); gives the colour chosen, or the starting colour when cancelled (the text
    /// unchanged). The choice becomes `MyHLColor`.
    Colour CommonDialogSelColor(const QVariant &CurrentColor, short *MyErr);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    /// The font of the selection as the dialogs start from it.
    FontChoice selectionFont() const;
    /// Runs the font dialog the settings ask for; empty when cancelled.
    std::optional<FontChoice> askFont(const FontChoice &initial, bool custom, bool withColour);
    /// Runs the colour dialog; the colour chosen or empty when cancelled. Sets \a MyErr.
    std::optional<Colour> askColour(Colour initial, short *MyErr);
    /// Applies \a format to the selection and raises `Finish` and `Ready`.
    void applyToSelection(const CharFormat &format);
    /// Sets a colour property and tells the host under its key.
    void setProperty(Colour &field, Colour value, const char *key);

    ControlCore &m_core;
    std::optional<FontChoice> m_defaultFont;
    bool m_defaultMode = false;
};

} // namespace kvrtb
