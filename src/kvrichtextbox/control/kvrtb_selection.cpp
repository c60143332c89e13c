// The selection pass-through properties: each reads or writes an attribute of the editing
// surface's current selection. An attribute that differs across the selection reads as null.

#include "core/controlcore.h"
#include "control/kvrtb.h"

#include <cmath>
#include <optional>

namespace kvrtb {

namespace {

constexpr int kDefaultTabStep = 720; // half an inch in twips
constexpr Colour kSystemWindowText = 0x80000008u;

template <typename T>
QVariant orNull(const std::optional<T> &value)
{
    return value ? QVariant::fromValue(*value) : QVariant();
}

} // namespace

QString KvRTB::SelText() const { return m_core->surface().selectedText(); }
int KvRTB::SelLength() const { return m_core->surface().selLength(); }
int KvRTB::SelStart() const { return m_core->surface().selStart(); }
QString KvRTB::SelRTF() const { return m_core->surface().selectedRtf(); }

void KvRTB::setSelText(const QString &value) { m_core->surface().replaceSelection(value); }
void KvRTB::setSelLength(int value) { m_core->surface().setSelLength(value); }
void KvRTB::setSelStart(int value) { m_core->surface().setSelStart(value); }

void KvRTB::setSelRTF(const QString &value)
{
    QString error;
    if (!m_core->surface().replaceSelectionRtf(value, &error))
        qWarning("KvRTB: SelRTF could not be applied (%s); the selection is unchanged.", qPrintable(error));
}

QVariant KvRTB::SelBold() const { return orNull(m_core->surface().selectionCharFormat().bold); }
QVariant KvRTB::SelItalic() const { return orNull(m_core->surface().selectionCharFormat().italic); }
QVariant KvRTB::SelUnderline() const { return orNull(m_core->surface().selectionCharFormat().underline); }
QVariant KvRTB::SelStrikeThru() const { return orNull(m_core->surface().selectionCharFormat().strikeThrough); }
QVariant KvRTB::SelProtected() const { return orNull(m_core->surface().selectionCharFormat().protectedText); }
QVariant KvRTB::SelFontName() const { return orNull(m_core->surface().selectionCharFormat().fontName); }
QVariant KvRTB::SelCharOffset() const { return orNull(m_core->surface().selectionCharFormat().charOffset); }

QVariant KvRTB::SelColor() const
{
    const std::optional<Colour> colour = m_core->surface().selectionCharFormat().color;
    if (!colour)
        return QVariant();
    // The default text colour reads as the colour it is shown in.
    return QVariant(uint(*colour == kAutoColour ? translateColour(kSystemWindowText) : *colour));
}

QVariant KvRTB::SelFontSize() const
{
    const std::optional<double> size = m_core->surface().selectionCharFormat().fontSize;
    return size ? QVariant(int(std::lround(*size))) : QVariant();
}

#define KVRTB_SET_CHAR(setter, field, convert)                                                      \
    void KvRTB::setter(const QVariant &value)                                                      \
    {                                                                                              \
        if (value.isNull())                                                                        \
            return;                                                                                \
        CharFormat format;                                                                         \
        format.field = value.convert();                                                            \
        m_core->surface().setSelectionCharFormat(format);                                          \
    }

KVRTB_SET_CHAR(setSelBold, bold, toBool)
KVRTB_SET_CHAR(setSelItalic, italic, toBool)
KVRTB_SET_CHAR(setSelUnderline, underline, toBool)
KVRTB_SET_CHAR(setSelStrikeThru, strikeThrough, toBool)
KVRTB_SET_CHAR(setSelProtected, protectedText, toBool)
KVRTB_SET_CHAR(setSelColor, color, toUInt)
KVRTB_SET_CHAR(setSelFontName, fontName, toString)
KVRTB_SET_CHAR(setSelCharOffset, charOffset, toInt)

#undef KVRTB_SET_CHAR

void KvRTB::setSelFontSize(const QVariant &value)
{
    if (value.isNull())
        return;
    bool ok = false;
    const double size = value.toDouble(&ok);
    if (!ok || size <= 0) {
        qWarning("KvRTB: SelFontSize must be a positive number of points; the selection is unchanged.");
        return;
    }
    CharFormat format;
    format.fontSize = size;
    m_core->surface().setSelectionCharFormat(format);
}

// --- Paragraph attributes -------------------------------------------------------------------

QVariant KvRTB::SelBullet() const
{
    const std::optional<Numbering> numbering = m_core->surface().selectionParaFormat().numbering;
    return numbering ? QVariant(*numbering == Numbering::Bullet) : QVariant();
}

QVariant KvRTB::SelIndent() const { return orNull(m_core->surface().selectionParaFormat().leftIndent); }
QVariant KvRTB::SelHangingIndent() const { return orNull(m_core->surface().selectionParaFormat().hangingIndent); }
QVariant KvRTB::SelRightIndent() const { return orNull(m_core->surface().selectionParaFormat().rightIndent); }

QVariant KvRTB::SelTabCount() const
{
    const std::optional<QList<int>> tabs = m_core->surface().selectionParaFormat().tabStops;
    return tabs ? QVariant(int(tabs->size())) : QVariant();
}

QVariant KvRTB::SelTabs(int e_ellmt) const
{
    const std::optional<QList<int>> tabs = m_core->surface().selectionParaFormat().tabStops;
    if (!tabs || e_ellmt < 0 || e_ellmt >= tabs->size())
        return QVariant();
    return QVariant(tabs->at(e_ellmt));
}

void KvRTB::setSelBullet(const QVariant &value)
{
    if (value.isNull())
        return;
    ParaFormat format;
    format.numbering = value.toBool() ? Numbering::Bullet : Numbering::None;
    if (value.toBool())
        format.bulletIndent = m_editorSettings.bulletIndent;
    m_core->surface().setSelectionParaFormat(format);
}

#define KVRTB_SET_PARA(setter, field)                                                               \
    void KvRTB::setter(const QVariant &value)                                                      \
    {                                                                                              \
        if (value.isNull())                                                                        \
            return;                                                                                \
        ParaFormat format;                                                                         \
        format.field = value.toInt();                                                              \
        m_core->surface().setSelectionParaFormat(format);                                          \
    }

KVRTB_SET_PARA(setSelIndent, leftIndent)
KVRTB_SET_PARA(setSelHangingIndent, hangingIndent)
KVRTB_SET_PARA(setSelRightIndent, rightIndent)

#undef KVRTB_SET_PARA

void KvRTB::setSelTabCount(const QVariant &value)
{
    if (value.isNull())
        return;
    const int count = value.toInt();
    if (count < 0) {
        qWarning("KvRTB: SelTabCount cannot be negative; the tab stops are unchanged.");
        return;
    }
    QList<int> tabs = m_core->surface().selectionParaFormat().tabStops.value_or(QList<int>());
    if (tabs.size() > count)
        tabs.resize(count);
    while (tabs.size() < count)
        tabs.append((tabs.isEmpty() ? 0 : tabs.last()) + kDefaultTabStep);
    ParaFormat format;
    format.tabStops = tabs;
    m_core->surface().setSelectionParaFormat(format);
}

void KvRTB::setSelTabs(int e_ellmt, int value)
{
    std::optional<QList<int>> tabs = m_core->surface().selectionParaFormat().tabStops;
    if (!tabs || e_ellmt < 0 || e_ellmt >= tabs->size() || value < 0) {
        qWarning("KvRTB: SelTabs(%d) names no tab stop of the selection; the tab stops are unchanged.", e_ellmt);
        return;
    }
    (*tabs)[e_ellmt] = value;
    std::sort(tabs->begin(), tabs->end());
    ParaFormat format;
    format.tabStops = tabs;
    m_core->surface().setSelectionParaFormat(format);
}

} // namespace kvrtb
