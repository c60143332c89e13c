#include "surface/listmarkers.h"

#include "surface/drawnformats.h"
#include "surface/formatmapping.h"

#include <QAbstractTextDocumentLayout>
#include <QFontMetricsF>
#include <QPainter>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>
#include <QTextList>

#include <algorithm>

namespace kvrtb::listmarkers {

namespace {

QString roman(int number, bool upper)
{
    static const struct {
        int value;
        const char *digits;
    } table[] = {{1000, "m"}, {900, "cm"}, {500, "d"}, {400, "cd"}, {100, "c"}, {90, "xc"}, {50, "l"},
                 {40, "xl"},  {10, "x"},   {9, "ix"},   {5, "v"},    {4, "iv"},   {1, "i"}};
    QString out;
    for (const auto &step : table) {
        while (number >= step.value) {
            out += QLatin1String(step.digits);
            number -= step.value;
        }
    }
    return upper ? out.toUpper() : out;
}

// The font a marker is drawn in: that of the paragraph's first character (of the paragraph
// itself when it is empty), upright on the baseline whatever the character's script position.
QFont markerFont(const QTextBlock &block, const QTextDocument &document)
{
    QTextCharFormat format = block.charFormat();
    const QTextBlock::iterator first = block.begin();
    if (!first.atEnd())
        format = first.fragment().charFormat();
    QFont font = document.defaultFont();
    font = format.font().resolve(font);
    if (format.hasProperty(QTextFormat::FontPointSize) && format.fontPointSize() > 0)
        font.setPointSizeF(format.fontPointSize());
    return font;
}

QColor markerColour(const QTextBlock &block, const QColor &textColour)
{
    const QTextBlock::iterator first = block.begin();
    const QTextCharFormat format = first.atEnd() ? block.charFormat() : first.fragment().charFormat();
    if (format.hasProperty(QTextFormat::ForegroundBrush) && format.foreground().style() != Qt::NoBrush)
        return format.foreground().color();
    return textColour;
}

} // namespace

int levelOf(const QTextListFormat &format)
{
    const int level = format.hasProperty(ListLevelProperty) ? format.intProperty(ListLevelProperty) : format.indent() - 1;
    return std::clamp(level, 0, 8);
}

void setOwnIndents(QTextListFormat &list, int level)
{
    list.setIndent(0);
    list.setProperty(ListLevelProperty, std::clamp(level, 0, 8));
}

void setDrawnBySurface(QTextBlockFormat &format)
{
    format.setProperty(QTextFormat::ListStyle, int(QTextListFormat::ListStyleUndefined));
}

bool isDrawnBySurface(const QTextBlockFormat &format)
{
    return format.hasProperty(QTextFormat::ListStyle)
           && format.intProperty(QTextFormat::ListStyle) == int(QTextListFormat::ListStyleUndefined);
}

QString formatNumber(int number, int listStyle)
{
    switch (listStyle) {
    case QTextListFormat::ListLowerAlpha:
    case QTextListFormat::ListUpperAlpha: {
        if (number < 1)
            break;
        const QChar letter(char16_t((listStyle == QTextListFormat::ListLowerAlpha ? 'a' : 'A') + (number - 1) % 26));
        return QString((number - 1) / 26 + 1, letter);
    }
    case QTextListFormat::ListLowerRoman:
    case QTextListFormat::ListUpperRoman:
        if (number < 1 || number > 3999)
            break;
        return roman(number, listStyle == QTextListFormat::ListUpperRoman);
    default: break;
    }
    return QString::number(number);
}

QString markerText(const QTextBlock &block)
{
    const QTextList *list = block.textList();
    if (!list)
        return QString();
    const QTextListFormat format = list->format();
    if (format.intProperty(format::NumberingStyleProp) == int(NumberingStyle::NoNumber))
        return QString();
    switch (format.style()) {
    case QTextListFormat::ListDisc:
    case QTextListFormat::ListCircle:
    case QTextListFormat::ListSquare: {
        const QString bullet = format.stringProperty(BulletTextProperty);
        if (!bullet.isEmpty())
            return bullet;
        return format.style() == QTextListFormat::ListCircle   ? QStringLiteral("\u25e6")
               : format.style() == QTextListFormat::ListSquare ? QStringLiteral("\u25aa")
                                                               : QStringLiteral("\u2022");
    }
    case QTextListFormat::ListStyleUndefined: return QString();
    default: break;
    }
    const int start = format.hasProperty(format::NumberingStart) ? format.intProperty(format::NumberingStart) : 1;
    return format.numberPrefix() + formatNumber(start + list->itemNumber(block), format.style())
           + format.numberSuffix();
}

void paint(QPainter &painter, const QTextDocument &document, const QRectF &clip, const QColor &textColour)
{
    drawnformats::forEachBlockIn(document, clip, [&](const QTextBlock &block, const QRectF &bounds) {
        const QTextBlockFormat blockFormat = block.blockFormat();
        if (!block.textList() || !isDrawnBySurface(blockFormat))
            return;
        const QTextLayout *textLayout = block.layout();
        if (!textLayout || textLayout->lineCount() == 0)
            return;
        const QString marker = markerText(block);
        if (marker.isEmpty())
            return;
        const QTextLine line = textLayout->lineAt(0);
        const QRectF lineRect = line.naturalTextRect().translated(bounds.topLeft());
        if (lineRect.bottom() < clip.top())
            return;
        const QFont font(markerFont(block, document), painter.device());
        const QFontMetricsF metrics(font);
        const qreal width = metrics.horizontalAdvance(marker);
        const qreal gap = metrics.horizontalAdvance(QLatin1Char(' '));
        const bool rightToLeft = block.textDirection() == Qt::RightToLeft;
        qreal x = 0;
        // A paragraph whose first line hangs out by the list's own indent shows its marker at
        // the start of that indent, as the document gives it; others show it just before the
        // text, as lists typed in the editor do.
        // (Printing scales the paragraph margins to the printer: the hanging indent goes with them.)
        const ParaFormat para = format::readPara(block);
        const int hangingTwips = para.hangingIndent.value_or(0);
        const int textTwips = para.leftIndent.value_or(0) + hangingTwips;
        const qreal scale = textTwips > 0 ? blockFormat.leftMargin() / format::twipsToPixels(textTwips) : 1.0;
        const qreal hanging = format::twipsToPixels(hangingTwips) * scale;
        const bool hangs = block.textList()->format().indent() == 0 && hanging > 0
                           && qFuzzyIsNull(blockFormat.textIndent());
        if (rightToLeft)
            x = hangs ? lineRect.right() + hanging - width : lineRect.right() + gap;
        else
            x = hangs && hanging >= width ? lineRect.left() - hanging : lineRect.left() - width - gap;
        const qreal baseline = bounds.top() + line.y() + line.ascent();
        painter.save();
        painter.setFont(font);
        painter.setPen(markerColour(block, textColour));
        painter.drawText(QPointF(x, baseline), marker);
        painter.restore();
    });
}

} // namespace kvrtb::listmarkers
