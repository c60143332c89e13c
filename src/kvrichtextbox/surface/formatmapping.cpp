#include "surface/formatmapping.h"

#include "surface/listmarkers.h"
#include "surface/paragraphborders.h"

#include "surface/qteditorsurface_p.h"

#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextList>

#include <cmath>

namespace kvrtb::format {

CharDefaults defaultsOf(const QTextDocument &document, Colour textColour)
{
    CharDefaults defaults;
    const QFont font = document.defaultFont();
    defaults.fontName = font.family();
    defaults.fontSize = font.pointSizeF() > 0 ? font.pointSizeF() : 10.0;
    defaults.color = textColour;
    return defaults;
}

QTextCharFormat::UnderlineStyle userUnderline(const QTextCharFormat &qt)
{
    if (qt.hasProperty(UserUnderline))
        return QTextCharFormat::UnderlineStyle(qt.intProperty(UserUnderline));
    // Text formatted elsewhere (pasted HTML, Qt's own editing): its visible underline is the
    // user's unless it is the link effect's.
    const QTextCharFormat::UnderlineStyle shown = qt.underlineStyle();
    if (shown == kLinkUnderline && qt.boolProperty(LinkEffect))
        return QTextCharFormat::NoUnderline;
    return shown;
}

void setUserUnderline(QTextCharFormat &qt, QTextCharFormat::UnderlineStyle style)
{
    qt.setProperty(UserUnderline, int(style));
    if (style != QTextCharFormat::NoUnderline)
        qt.setUnderlineStyle(style);
    else
        qt.setUnderlineStyle(qt.boolProperty(LinkEffect) ? kLinkUnderline : QTextCharFormat::NoUnderline);
}

CharFormat readChar(const QTextCharFormat &qt, const CharDefaults &defaults)
{
    CharFormat f;
    f.bold = qt.hasProperty(QTextFormat::FontWeight) ? qt.fontWeight() >= QFont::DemiBold : false;
    f.italic = qt.fontItalic();
    f.underline = userUnderline(qt) != QTextCharFormat::NoUnderline;
    f.strikeThrough = qt.fontStrikeOut();
    f.protectedText = qt.boolProperty(Protected);
    f.linkEffect = qt.boolProperty(LinkEffect);
    f.color = qt.hasProperty(QTextFormat::ForegroundBrush) && qt.foreground().style() != Qt::NoBrush
                  ? fromQColor(qt.foreground().color())
                  : defaults.color;
    f.backColor = qt.hasProperty(QTextFormat::BackgroundBrush) && qt.background().style() != Qt::NoBrush
                      ? fromQColor(qt.background().color())
                      : kAutoColour;
    const QStringList families = qt.fontFamilies().toStringList();
    f.fontName = families.isEmpty() || families.first().isEmpty() ? defaults.fontName : families.first();
    f.fontSize = qt.hasProperty(QTextFormat::FontPointSize) && qt.fontPointSize() > 0 ? qt.fontPointSize()
                                                                                      : defaults.fontSize;
    f.charOffset = qt.intProperty(CharOffset);
    switch (qt.verticalAlignment()) {
    case QTextCharFormat::AlignSubScript: f.script = ScriptPosition::Subscript; break;
    case QTextCharFormat::AlignSuperScript: f.script = ScriptPosition::Superscript; break;
    default: f.script = ScriptPosition::Normal; break;
    }
    f.locale = qt.intProperty(Locale);
    f.linkAddress = qt.anchorHref();
    return f;
}

QTextCharFormat charDelta(const CharFormat &change)
{
    QTextCharFormat qt;
    if (change.bold)
        qt.setFontWeight(*change.bold ? QFont::Bold : QFont::Normal);
    if (change.italic)
        qt.setFontItalic(*change.italic);
    if (change.strikeThrough)
        qt.setFontStrikeOut(*change.strikeThrough);
    if (change.protectedText)
        qt.setProperty(Protected, *change.protectedText);
    if (change.color) {
        if (*change.color == kAutoColour)
            qt.setProperty(QTextFormat::ForegroundBrush, QBrush(Qt::NoBrush));
        else
            qt.setForeground(toQColor(*change.color));
    }
    if (change.backColor) {
        if (*change.backColor == kAutoColour)
            qt.setProperty(QTextFormat::BackgroundBrush, QBrush(Qt::NoBrush));
        else
            qt.setBackground(toQColor(*change.backColor));
    }
    if (change.fontName)
        qt.setFontFamilies(QStringList{*change.fontName});
    if (change.fontSize && *change.fontSize > 0)
        qt.setFontPointSize(*change.fontSize);
    if (change.script) {
        switch (*change.script) {
        case ScriptPosition::Subscript: qt.setVerticalAlignment(QTextCharFormat::AlignSubScript); break;
        case ScriptPosition::Superscript: qt.setVerticalAlignment(QTextCharFormat::AlignSuperScript); break;
        case ScriptPosition::Normal: qt.setVerticalAlignment(QTextCharFormat::AlignNormal); break;
        }
    }
    if (change.charOffset) {
        qt.setProperty(CharOffset, *change.charOffset);
        // Shown as a baseline shift in percent of a 10-point line; the exact twips stay above.
        qt.setBaselineOffset(double(*change.charOffset) / 20.0 / 10.0 * 100.0);
    }
    if (change.locale)
        qt.setProperty(Locale, *change.locale);
    if (change.linkAddress) {
        qt.setAnchor(!change.linkAddress->isEmpty());
        qt.setAnchorHref(*change.linkAddress);
    }
    return qt;
}

namespace {

// Applies the underline and link-effect parts of a change to each fragment of the selection,
// since the visible underline of a character depends on both.
void applyUnderlineAndLink(QTextCursor &cursor, const CharFormat &change)
{
    if (!change.underline && !change.linkEffect)
        return;
    QTextDocument *document = cursor.document();
    const QList<surfacedetail::FormatPiece> pieces =
        surfacedetail::formatPieces(document, cursor.selectionStart(), cursor.selectionEnd());
    QTextCursor work(document);
    for (const surfacedetail::FormatPiece &piece : pieces) {
        QTextCharFormat updated;
        const bool link = change.linkEffect ? *change.linkEffect : piece.format.boolProperty(LinkEffect);
        updated.setProperty(LinkEffect, link);
        QTextCharFormat::UnderlineStyle user = userUnderline(piece.format);
        if (change.underline) {
            if (!*change.underline)
                user = QTextCharFormat::NoUnderline;
            else if (user == QTextCharFormat::NoUnderline)
                user = QTextCharFormat::SingleUnderline;
        }
        setUserUnderline(updated, user);
        work.setPosition(piece.start);
        work.setPosition(piece.end, QTextCursor::KeepAnchor);
        work.mergeCharFormat(updated);
    }
}

} // namespace

void applyCharFormat(QTextCursor &cursor, const CharFormat &change)
{
    const QTextCharFormat delta = charDelta(change);
    if (!cursor.hasSelection()) {
        QTextCharFormat typing = cursor.charFormat();
        typing.merge(delta);
        if (change.linkEffect)
            typing.setProperty(LinkEffect, *change.linkEffect);
        if (change.underline || change.linkEffect) {
            QTextCharFormat::UnderlineStyle user = userUnderline(cursor.charFormat());
            if (change.underline)
                user = *change.underline ? (user == QTextCharFormat::NoUnderline ? QTextCharFormat::SingleUnderline : user)
                                         : QTextCharFormat::NoUnderline;
            setUserUnderline(typing, user);
        }
        cursor.setCharFormat(typing);
        return;
    }
    cursor.beginEditBlock();
    if (!delta.properties().isEmpty())
        cursor.mergeCharFormat(delta);
    applyUnderlineAndLink(cursor, change);
    cursor.endEditBlock();
}

namespace {

// Merges one optional field: the first value is kept until a different one makes it mixed.
template <typename T>
void mergeField(std::optional<T> &accumulated, const std::optional<T> &value, quint32 &mixed, int bit, bool first)
{
    const quint32 mask = 1u << bit;
    if (mixed & mask)
        return;
    if (first) {
        accumulated = value;
    } else if (accumulated != value) {
        accumulated.reset();
        mixed |= mask;
    }
}

} // namespace

void CharFormatMerger::add(const CharFormat &f)
{
    const bool first = m_count++ == 0;
    CharFormat &r = m_result;
    mergeField(r.bold, f.bold, m_mixed, 0, first);
    mergeField(r.italic, f.italic, m_mixed, 1, first);
    mergeField(r.underline, f.underline, m_mixed, 2, first);
    mergeField(r.strikeThrough, f.strikeThrough, m_mixed, 3, first);
    mergeField(r.protectedText, f.protectedText, m_mixed, 4, first);
    mergeField(r.linkEffect, f.linkEffect, m_mixed, 5, first);
    mergeField(r.color, f.color, m_mixed, 6, first);
    mergeField(r.backColor, f.backColor, m_mixed, 7, first);
    mergeField(r.fontName, f.fontName, m_mixed, 8, first);
    mergeField(r.fontSize, f.fontSize, m_mixed, 9, first);
    mergeField(r.charOffset, f.charOffset, m_mixed, 10, first);
    mergeField(r.script, f.script, m_mixed, 11, first);
    mergeField(r.locale, f.locale, m_mixed, 12, first);
    mergeField(r.linkAddress, f.linkAddress, m_mixed, 13, first);
}

void ParaFormatMerger::add(const ParaFormat &f)
{
    const bool first = m_count++ == 0;
    ParaFormat &r = m_result;
    mergeField(r.alignment, f.alignment, m_mixed, 0, first);
    mergeField(r.numbering, f.numbering, m_mixed, 1, first);
    mergeField(r.numberingStart, f.numberingStart, m_mixed, 2, first);
    mergeField(r.numberingStyle, f.numberingStyle, m_mixed, 3, first);
    mergeField(r.lineSpacingRule, f.lineSpacingRule, m_mixed, 4, first);
    mergeField(r.lineSpacing, f.lineSpacing, m_mixed, 5, first);
    mergeField(r.leftIndent, f.leftIndent, m_mixed, 6, first);
    mergeField(r.rightIndent, f.rightIndent, m_mixed, 7, first);
    mergeField(r.hangingIndent, f.hangingIndent, m_mixed, 8, first);
    mergeField(r.spaceBefore, f.spaceBefore, m_mixed, 9, first);
    mergeField(r.spaceAfter, f.spaceAfter, m_mixed, 10, first);
    mergeField(r.tabStops, f.tabStops, m_mixed, 11, first);
    mergeField(r.bulletIndent, f.bulletIndent, m_mixed, 12, first);
}

namespace {

int twipsProperty(const QTextFormat &qt, int property, double pixels)
{
    return qt.hasProperty(property) ? qt.intProperty(property) : pixelsToTwips(pixels);
}

Numbering numberingOf(QTextListFormat::Style style)
{
    switch (style) {
    case QTextListFormat::ListDisc:
    case QTextListFormat::ListCircle:
    case QTextListFormat::ListSquare: return Numbering::Bullet;
    case QTextListFormat::ListDecimal: return Numbering::Arabic;
    case QTextListFormat::ListLowerAlpha: return Numbering::LowerLetter;
    case QTextListFormat::ListUpperAlpha: return Numbering::UpperLetter;
    case QTextListFormat::ListLowerRoman: return Numbering::LowerRoman;
    case QTextListFormat::ListUpperRoman: return Numbering::UpperRoman;
    default: return Numbering::None;
    }
}

QTextListFormat::Style listStyleOf(Numbering numbering)
{
    switch (numbering) {
    case Numbering::Bullet: return QTextListFormat::ListDisc;
    case Numbering::Arabic: return QTextListFormat::ListDecimal;
    case Numbering::LowerLetter: return QTextListFormat::ListLowerAlpha;
    case Numbering::UpperLetter: return QTextListFormat::ListUpperAlpha;
    case Numbering::LowerRoman: return QTextListFormat::ListLowerRoman;
    case Numbering::UpperRoman: return QTextListFormat::ListUpperRoman;
    case Numbering::None: break;
    }
    return QTextListFormat::ListStyleUndefined;
}

} // namespace

QTextListFormat listFormatFor(Numbering numbering, int start, NumberingStyle style)
{
    QTextListFormat list;
    list.setStyle(listStyleOf(numbering));
    list.setIndent(1);
    list.setProperty(NumberingStart, start);
    list.setProperty(NumberingStyleProp, int(style));
    if (numbering != Numbering::Bullet) {
        switch (style) {
        case NumberingStyle::RightParen: list.setNumberPrefix(QString()); list.setNumberSuffix(QStringLiteral(")")); break;
        case NumberingStyle::Parens: list.setNumberPrefix(QStringLiteral("(")); list.setNumberSuffix(QStringLiteral(")")); break;
        case NumberingStyle::Period: list.setNumberPrefix(QString()); list.setNumberSuffix(QStringLiteral(".")); break;
        case NumberingStyle::Plain:
        case NumberingStyle::NoNumber: list.setNumberPrefix(QString()); list.setNumberSuffix(QStringLiteral(" ")); break;
        }
    }
    return list;
}

ParaFormat readPara(const QTextBlock &block)
{
    const QTextBlockFormat qt = block.blockFormat();
    ParaFormat f;
    const Qt::Alignment horizontal = qt.alignment() & Qt::AlignHorizontal_Mask;
    if (horizontal & Qt::AlignRight)
        f.alignment = ParaAlignment::Right;
    else if (horizontal & Qt::AlignHCenter)
        f.alignment = ParaAlignment::Center;
    else if (horizontal & Qt::AlignJustify)
        f.alignment = ParaAlignment::Justify;
    else
        f.alignment = ParaAlignment::Left;

    if (const QTextList *list = block.textList()) {
        const QTextListFormat lf = list->format();
        f.numbering = numberingOf(lf.style());
        f.numberingStart = lf.hasProperty(NumberingStart) ? lf.intProperty(NumberingStart) : 1;
        f.numberingStyle = lf.hasProperty(NumberingStyleProp) ? NumberingStyle(lf.intProperty(NumberingStyleProp))
                                                              : NumberingStyle::Period;
    } else {
        f.numbering = Numbering::None;
        f.numberingStart = 0;
        f.numberingStyle = NumberingStyle::RightParen;
    }

    if (qt.hasProperty(LineRule)) {
        f.lineSpacingRule = LineSpacingRule(qt.intProperty(LineRule));
        f.lineSpacing = qt.intProperty(LineAmount);
    } else {
        switch (qt.lineHeightType()) {
        case QTextBlockFormat::ProportionalHeight: {
            const double percent = qt.lineHeight();
            if (qFuzzyCompare(percent, 150.0)) {
                f.lineSpacingRule = LineSpacingRule::OneAndHalf;
                f.lineSpacing = 0;
            } else if (qFuzzyCompare(percent, 200.0)) {
                f.lineSpacingRule = LineSpacingRule::Double;
                f.lineSpacing = 0;
            } else if (qFuzzyCompare(percent, 100.0)) {
                f.lineSpacingRule = LineSpacingRule::Single;
                f.lineSpacing = 0;
            } else {
                f.lineSpacingRule = LineSpacingRule::Multiple;
                f.lineSpacing = int(std::lround(percent / 5.0));
            }
            break;
        }
        case QTextBlockFormat::FixedHeight:
            f.lineSpacingRule = LineSpacingRule::Exactly;
            f.lineSpacing = pixelsToTwips(qt.lineHeight());
            break;
        case QTextBlockFormat::MinimumHeight:
            f.lineSpacingRule = LineSpacingRule::AtLeast;
            f.lineSpacing = pixelsToTwips(qt.lineHeight());
            break;
        default:
            f.lineSpacingRule = LineSpacingRule::Single;
            f.lineSpacing = 0;
            break;
        }
    }

    const int hanging = qt.hasProperty(HangingIndent) ? qt.intProperty(HangingIndent) : -pixelsToTwips(qt.textIndent());
    f.hangingIndent = hanging;
    f.leftIndent = qt.hasProperty(LeftIndent) ? qt.intProperty(LeftIndent) : pixelsToTwips(qt.leftMargin()) - hanging;
    f.rightIndent = twipsProperty(qt, RightIndent, qt.rightMargin());
    f.spaceBefore = twipsProperty(qt, SpaceBefore, qt.topMargin());
    f.spaceAfter = twipsProperty(qt, SpaceAfter, qt.bottomMargin());
    if (qt.hasProperty(TabStops)) {
        f.tabStops = qt.property(TabStops).value<QList<int>>();
    } else {
        QList<int> tabs;
        for (const QTextOption::Tab &tab : qt.tabPositions())
            tabs.append(pixelsToTwips(tab.position));
        f.tabStops = tabs;
    }
    f.bulletIndent = qt.intProperty(BulletIndent);
    return f;
}

namespace {

// Writes the change into \a qt, taking the indents it leaves alone from \a current.
void applyParaFieldsFrom(QTextBlockFormat &qt, const ParaFormat &change, const QTextBlockFormat &current)
{
    if (change.alignment) {
        switch (*change.alignment) {
        case ParaAlignment::Left: qt.setAlignment(Qt::AlignLeft | Qt::AlignAbsolute); break;
        case ParaAlignment::Right: qt.setAlignment(Qt::AlignRight | Qt::AlignAbsolute); break;
        case ParaAlignment::Center: qt.setAlignment(Qt::AlignHCenter); break;
        case ParaAlignment::Justify: qt.setAlignment(Qt::AlignJustify); break;
        }
    }
    if (change.lineSpacingRule) {
        const int amount = change.lineSpacing.value_or(0);
        qt.setProperty(LineRule, int(*change.lineSpacingRule));
        qt.setProperty(LineAmount, amount);
        switch (*change.lineSpacingRule) {
        case LineSpacingRule::Single: qt.setLineHeight(100, QTextBlockFormat::ProportionalHeight); break;
        case LineSpacingRule::OneAndHalf: qt.setLineHeight(150, QTextBlockFormat::ProportionalHeight); break;
        case LineSpacingRule::Double: qt.setLineHeight(200, QTextBlockFormat::ProportionalHeight); break;
        case LineSpacingRule::AtLeast: qt.setLineHeight(twipsToPixels(amount), QTextBlockFormat::MinimumHeight); break;
        case LineSpacingRule::Exactly: qt.setLineHeight(twipsToPixels(amount), QTextBlockFormat::FixedHeight); break;
        case LineSpacingRule::Multiple: qt.setLineHeight(amount * 5.0, QTextBlockFormat::ProportionalHeight); break;
        }
    }
    if (change.leftIndent || change.hangingIndent) {
        const ParaFormat now = [&] {
            ParaFormat p;
            p.hangingIndent = current.hasProperty(HangingIndent) ? current.intProperty(HangingIndent)
                                                                 : -pixelsToTwips(current.textIndent());
            p.leftIndent = current.hasProperty(LeftIndent) ? current.intProperty(LeftIndent)
                                                           : pixelsToTwips(current.leftMargin()) - *p.hangingIndent;
            return p;
        }();
        const int left = change.leftIndent.value_or(*now.leftIndent);
        const int hanging = change.hangingIndent.value_or(*now.hangingIndent);
        qt.setProperty(LeftIndent, left);
        qt.setProperty(HangingIndent, hanging);
        qt.setLeftMargin(twipsToPixels(left + hanging));
        // A list paragraph that shows its marker in its hanging indent starts its first line's
        // text with the other lines (the marker fills the indent).
        const bool markerHangs = listmarkers::isDrawnBySurface(current) && qFuzzyIsNull(current.textIndent())
                                 && current.hasProperty(HangingIndent) && current.intProperty(HangingIndent) > 0;
        qt.setTextIndent(markerHangs && hanging > 0 ? 0 : twipsToPixels(-hanging));
    }
    if (change.rightIndent) {
        qt.setProperty(RightIndent, *change.rightIndent);
        qt.setRightMargin(twipsToPixels(*change.rightIndent));
    }
    // The spacing Qt shows keeps the room a bordered paragraph has for its borders.
    if (change.spaceBefore) {
        qt.setProperty(SpaceBefore, *change.spaceBefore);
        qt.setTopMargin(twipsToPixels(*change.spaceBefore) + paragraphborders::roomAbove(current));
    }
    if (change.spaceAfter) {
        qt.setProperty(SpaceAfter, *change.spaceAfter);
        qt.setBottomMargin(twipsToPixels(*change.spaceAfter) + paragraphborders::roomBelow(current));
    }
    if (change.tabStops) {
        qt.setProperty(TabStops, QVariant::fromValue(*change.tabStops));
        QList<QTextOption::Tab> tabs;
        for (int twips : *change.tabStops)
            tabs.append(QTextOption::Tab(twipsToPixels(twips), QTextOption::LeftTab));
        qt.setTabPositions(tabs);
    }
    if (change.bulletIndent)
        qt.setProperty(BulletIndent, *change.bulletIndent);
}

} // namespace

void applyParaFields(QTextBlockFormat &qt, const ParaFormat &change)
{
    const QTextBlockFormat current = qt;
    applyParaFieldsFrom(qt, change, current);
}

void applyParaFormat(QTextCursor &cursor, const ParaFormat &change)
{
    QTextDocument *document = cursor.document();
    cursor.beginEditBlock();
    const int start = cursor.selectionStart();
    const int end = cursor.selectionEnd();
    QTextCursor work(document);
    const QTextBlock last = document->findBlock(end);
    for (QTextBlock block = document->findBlock(start); block.isValid(); block = block.next()) {
        QTextBlockFormat updated = block.blockFormat();
        applyParaFieldsFrom(updated, change, block.blockFormat());
        work.setPosition(block.position());
        work.setBlockFormat(updated);
        if (block == last)
            break;
    }

    if (change.numbering) {
        QTextCursor range(document);
        range.setPosition(start);
        range.setPosition(end, QTextCursor::KeepAnchor);
        if (*change.numbering == Numbering::None) {
            for (QTextBlock block = document->findBlock(start); block.isValid(); block = block.next()) {
                if (QTextList *list = block.textList()) {
                    list->remove(block);
                    QTextBlockFormat plain = block.blockFormat();
                    plain.setIndent(0);
                    if (listmarkers::isDrawnBySurface(plain)) {
                        // Without its marker the paragraph's first line hangs again.
                        plain.clearProperty(QTextFormat::ListStyle);
                        plain.setTextIndent(twipsToPixels(-plain.intProperty(HangingIndent)));
                    }
                    work.setPosition(block.position());
                    work.setBlockFormat(plain);
                }
                if (block == last)
                    break;
            }
        } else {
            const int numberingStart = change.numberingStart.value_or(1);
            const NumberingStyle style = change.numberingStyle.value_or(NumberingStyle::Period);
            const QTextListFormat listFormat = listFormatFor(*change.numbering, numberingStart, style);
            QTextList *existing = document->findBlock(start).textList();
            bool sameList = existing != nullptr;
            for (QTextBlock block = document->findBlock(start); sameList && block.isValid(); block = block.next()) {
                sameList = block.textList() == existing;
                if (block == last)
                    break;
            }
            if (sameList) {
                // The list keeps its level and the way it indents.
                QTextListFormat renumbered = listFormat;
                const QTextListFormat before = existing->format();
                renumbered.setIndent(before.indent());
                if (before.hasProperty(listmarkers::ListLevelProperty))
                    renumbered.setProperty(listmarkers::ListLevelProperty, before.property(listmarkers::ListLevelProperty));
                existing->setFormat(renumbered);
            } else
                range.createList(listFormat);
            // The surface draws the markers, from the list's start number.
            for (QTextBlock block = document->findBlock(start); block.isValid(); block = block.next()) {
                QTextBlockFormat marked = block.blockFormat();
                if (!listmarkers::isDrawnBySurface(marked)) {
                    listmarkers::setDrawnBySurface(marked);
                    work.setPosition(block.position());
                    work.setBlockFormat(marked);
                }
                if (block == last)
                    break;
            }
        }
    }
    cursor.endEditBlock();
}

} // namespace kvrtb::format
