#include "fonts/fontselection.h"

#include "core/controlcore.h"
#include "documents/fileerror.h"
#include "fonts/fontfrm.h"

#include <QKeyEvent>
#include <QWidget>

namespace kvrtb {

namespace {

void setError(short *MyErr, int value)
{
    if (MyErr)
        *MyErr = short(value);
}

} // namespace

FontSelection::FontSelection(ControlCore &core) : m_core(core)
{
    if (QWidget *editor = m_core.surface().widget())
        editor->installEventFilter(this);
}

FontSelection::~FontSelection() = default;

FontChoice FontSelection::selectionFont() const
{
    return FontChoice::fromCharFormat(m_core.surface().selectionCharFormat(), m_core.surface().font());
}

std::optional<FontChoice> FontSelection::askFont(const FontChoice &initial, bool custom, bool withColour)
{
    if (custom) {
        QWidget *editor = m_core.surface().widget();
        FontFrm dialog(m_core.services(), initial, editor ? editor->window() : nullptr);
        if (m_core.properties().TurnOnSound)
            m_core.services().playClickSound();
        if (dialog.exec() != QDialog::Accepted)
            return std::nullopt;
        FontChoice chosen = dialog.choice();
        if (!withColour)
            chosen.colour = initial.colour;
        return chosen;
    }
    const FontDialogResult result = m_core.services().fontDialog(initial.toFont());
    if (!result.accepted)
        return std::nullopt;
    FontChoice chosen = FontChoice::fromFont(result.font);
    chosen.colour = initial.colour; // the desktop's dialog has no colour
    return chosen;
}

void FontSelection::CommonDialogFontSelect(short *MyErr)
{
    setError(MyErr, FileError::None);
    const FontChoice before = selectionFont();
    const std::optional<FontChoice> chosen = askFont(before, false, false);
    if (!chosen) {
        setError(MyErr, FileError::DialogCancelled);
        return;
    }
    applyToSelection(chosen->changesFrom(before));
}

void FontSelection::ShowFontSelect()
{
    if (!m_core.properties().UseCustomFontDialog) {
        CommonDialogFontSelect();
        return;
    }
    const FontChoice before = selectionFont();
    const std::optional<FontChoice> chosen = askFont(before, true, true);
    if (!chosen)
        return;
    applyToSelection(chosen->changesFrom(before));
}

void FontSelection::SetDefaultFontMode()
{
    const FontChoice start = m_defaultFont.value_or(selectionFont());
    const std::optional<FontChoice> chosen = askFont(start, m_core.properties().UseCustomFontDialog, true);
    if (!chosen)
        return;
    m_defaultFont = chosen;
    m_defaultMode = true;
}

void FontSelection::EndDefaultFontMode()
{
    m_defaultMode = false;
}

DEFUALT_FONT_DATA FontSelection::GetDefaultFontData() const
{
    if (m_defaultFont)
        return m_defaultFont->toDefaultFontData();
    return FontChoice::fromFont(m_core.surface().font()).toDefaultFontData();
}

void FontSelection::ShareDefaultFontData(const DEFUALT_FONT_DATA &MyDefFontData)
{
    if (MyDefFontData.tFONTNAME.trimmed().isEmpty())
        return;   // a record never filled in names no font
    FontChoice choice = FontChoice::fromDefaultFontData(MyDefFontData);
    // The record carries no colour; a colour this control's default had stays.
    if (m_defaultFont)
        choice.colour = m_defaultFont->colour;
    m_defaultFont = choice;
    m_defaultMode = true;
}

bool FontSelection::eventFilter(QObject *watched, QEvent *event)
{
    // Before a typed character reaches the editor, the typing format becomes the default font.
    if (m_defaultMode && m_defaultFont && event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        const bool typesText = !key->text().isEmpty() && key->text().at(0).isPrint()
            && !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
        EditorSurface &surface = m_core.surface();
        if (typesText && surface.selLength() == 0 && !surface.isReadOnly())
            surface.setSelectionCharFormat(m_defaultFont->toCharFormat());
    }
    return QObject::eventFilter(watched, event);
}

std::optional<Colour> FontSelection::askColour(Colour initial, short *MyErr)
{
    setError(MyErr, FileError::None);
    const ColourDialogResult result = m_core.services().colourDialog(translateColour(initial));
    if (!result.accepted) {
        setError(MyErr, FileError::DialogCancelled);
        return std::nullopt;
    }
    return result.colour;
}

void FontSelection::applyToSelection(const CharFormat &format)
{
    m_core.surface().setSelectionCharFormat(format);
    m_core.events().finish();
    m_core.events().ready();
}

void FontSelection::setProperty(Colour &field, Colour value, const char *key)
{
    field = value;
    m_core.events().propertyChanged(QString::fromLatin1(key));
}

Colour FontSelection::CommonDialogColor(bool &UserCancelQ, bool UseOrigONCancel, Colour MyOrgigColor, short *MyErr)
{
    const std::optional<Colour> chosen = askColour(MyOrgigColor, MyErr);
    UserCancelQ = !chosen;
    if (!chosen)
        return UseOrigONCancel ? MyOrgigColor : 0;
    return *chosen;
}

Colour FontSelection::CommonDialogFontColor(const QVariant &MyOrgigColor, short *MyErr)
{
    const Colour start = MyOrgigColor.isValid() ? MyOrgigColor.toUInt() : m_core.properties().MyFontColor;
    const std::optional<Colour> chosen = askColour(start, MyErr);
    if (!chosen)
        return start;
    setProperty(m_core.properties().MyFontColor, *chosen, "MyFontColor");
    return *chosen;
}

Colour FontSelection::CommonDialogSelFontColor(const QVariant &CurrentColor, short *MyErr)
{
    Colour start = CurrentColor.isValid() ? CurrentColor.toUInt() : 0;
    if (!CurrentColor.isValid()) {
        const std::optional<Colour> current = m_core.surface().selectionCharFormat().color;
        start = current && *current != kAutoColour ? *current : m_core.properties().MyFontColor;
    }
    const std::optional<Colour> chosen = askColour(start, MyErr);
    if (!chosen)
        return start;
    CharFormat format;
    format.color = *chosen;
    applyToSelection(format);
    setProperty(m_core.properties().MyFontColor, *chosen, "MyFontColor");
    return *chosen;
}

Colour FontSelection::CommonDialogSelColor(const QVariant &CurrentColor, short *MyErr)
{
    const Colour start = CurrentColor.isValid() ? CurrentColor.toUInt() : m_core.properties().MyHLColor;
    const std::optional<Colour> chosen = askColour(start, MyErr);
    if (!chosen)
        return start;
    // As the highlight command: without a selection there is nothing to paint.
    if (m_core.surface().selLength() > 0) {
        CharFormat format;
        format.backColor = *chosen;
        applyToSelection(format);
    }
    setProperty(m_core.properties().MyHLColor, *chosen, "MyHLColor");
    return *chosen;
}

} // namespace kvrtb
