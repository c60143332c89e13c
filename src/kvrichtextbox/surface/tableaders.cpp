#include "surface/tableaders.h"

#include "surface/formatmapping.h"
#include "surface/rtf/rtfformats.h"

#include <QFontMetricsF>
#include <QGlyphRun>
#include <QPainter>
#include <QRawFont>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace kvrtb::tableaders {

namespace {

using rtf::TabLeader;

// The leader of the stop a tab starting at \a x (from its line's start, device pixels) reaches:
// the first stop past it, as Qt lays tabs out.
TabLeader leaderAfter(qreal x, const QList<QTextOption::Tab> &stops, const QList<int> &leaders, qreal scale)
{
    const auto stop = std::find_if(stops.cbegin(), stops.cend(),
                                   [x, scale](const QTextOption::Tab &tab) { return tab.position * scale > x + 0.5; });
    if (stop == stops.cend())
        return TabLeader::None;
    for (qsizetype i = 0; i + 1 < leaders.size(); i += 2) {
        if (std::abs(format::twipsToPixels(leaders[i]) - stop->position) < 0.5)
            return TabLeader(leaders[i + 1]);
    }
    return TabLeader::None;
}

QFont fontOf(const QTextCharFormat &format, const QTextDocument &document, QPaintDevice *device)
{
    QFont font = format.font().resolve(document.defaultFont());
    if (format.hasProperty(QTextFormat::FontPointSize) && format.fontPointSize() > 0)
        font.setPointSizeF(format.fontPointSize());
    return QFont(font, device);
}

// Fills the gap from \a left to \a right on the line whose baseline is at \a baseline.
void drawLeader(QPainter &painter, TabLeader leader, qreal left, qreal right, qreal baseline, const QFont &font)
{
    const QFontMetricsF metrics(font);
    if (leader == TabLeader::Underline || leader == TabLeader::Thick) {
        const qreal width = metrics.lineWidth() * (leader == TabLeader::Thick ? 2 : 1);
        QPen pen = painter.pen();
        pen.setWidthF(width);
        pen.setCapStyle(Qt::FlatCap);
        painter.setPen(pen);
        const qreal y = baseline + metrics.underlinePos() + width / 2;
        painter.drawLine(QPointF(left, y), QPointF(right, y));
        return;
    }
    const QChar mark = leader == TabLeader::Hyphen      ? QLatin1Char('-')
                       : leader == TabLeader::Equal     ? QLatin1Char('=')
                       : leader == TabLeader::MiddleDot ? QChar(0x00B7)
                                                        : QLatin1Char('.');
    // The mark's glyph repeated: drawing a run of known glyphs spares shaping a string at
    // every paint.
    const QRawFont raw = QRawFont::fromFont(font);
    const QList<quint32> glyph = raw.glyphIndexesForString(QString(mark));
    const qreal advance = glyph.size() == 1 && glyph[0] != 0 ? raw.advancesForGlyphIndexes(glyph).value(0).x()
                                                             : metrics.horizontalAdvance(mark);
    if (advance <= 0)
        return;
    // As many marks as fit with half a mark clear of the text before; the last ends at the stop.
    const int count = int(std::floor((right - left - advance / 2) / advance));
    if (count <= 0)
        return;
    const QPointF start(right - count * advance, baseline);
    if (glyph.size() != 1 || glyph[0] == 0) {
        painter.setFont(font);
        painter.drawText(start, QString(count, mark));
        return;
    }
    QList<QPointF> positions;
    positions.reserve(count);
    for (int i = 0; i < count; ++i)
        positions.append(QPointF(i * advance, 0));
    QGlyphRun run;
    run.setRawFont(raw);
    run.setGlyphIndexes(QList<quint32>(count, glyph[0]));
    run.setPositions(positions);
    painter.drawGlyphRun(start, run);
}

} // namespace

void paint(QPainter &painter, const QTextDocument &document, const QTextBlock &block, const QRectF &bounds,
           qreal scale, const QColor &textColour)
{
    const QTextBlockFormat format = block.blockFormat();
    if (!format.hasProperty(rtf::TabLeaders))
        return;
    const QList<int> leaders = format.property(rtf::TabLeaders).value<QList<int>>();
    QList<QTextOption::Tab> stops = format.tabPositions();
    std::sort(stops.begin(), stops.end(),
              [](const QTextOption::Tab &a, const QTextOption::Tab &b) { return a.position < b.position; });
    const QTextLayout *layout = block.layout();
    if (!layout || leaders.isEmpty() || stops.isEmpty())
        return;
    painter.save();
    for (auto it = block.begin(); !it.atEnd(); ++it) {
        const QTextFragment fragment = it.fragment();
        const QString text = fragment.text();
        const int start = fragment.position() - block.position();
        for (qsizetype i = text.indexOf(QLatin1Char('\t')); i >= 0; i = text.indexOf(QLatin1Char('\t'), i + 1)) {
            const int at = start + int(i);
            const QTextLine line = layout->lineForTextPosition(at);
            if (!line.isValid())
                continue;
            const qreal from = line.cursorToX(at);
            const qreal to = line.cursorToX(at + 1);
            const TabLeader leader = leaderAfter(std::min(from, to) - line.x(), stops, leaders, scale);
            if (leader == TabLeader::None || std::abs(to - from) < 1)
                continue;
            const QTextCharFormat charFormat = fragment.charFormat();
            const bool coloured = charFormat.hasProperty(QTextFormat::ForegroundBrush)
                                  && charFormat.foreground().style() != Qt::NoBrush;
            painter.setPen(coloured ? charFormat.foreground().color() : textColour);
            drawLeader(painter, leader, bounds.left() + std::min(from, to), bounds.left() + std::max(from, to),
                       bounds.top() + line.y() + line.ascent(), fontOf(charFormat, document, painter.device()));
        }
    }
    painter.restore();
}

} // namespace kvrtb::tableaders
