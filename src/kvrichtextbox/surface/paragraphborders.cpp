#include "surface/paragraphborders.h"

#include "surface/formatmapping.h"
#include "surface/rtf/rtfformats.h"

#include <QAbstractTextDocumentLayout>
#include <QPainter>
#include <QPainterPath>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextLayout>

#include <algorithm>
#include <cstring>

namespace kvrtb::paragraphborders {

namespace {

// The width of a border given without one (a single hairline), in twips.
constexpr int kDefaultWidthTwips = 15;

// One side of a paragraph's border as it is drawn; lengths in screen pixels.
struct Side {
    bool shown = false;
    int lines = 1;    // parallel lines (double and triple styles, thick-and-thin pairs)
    qreal width = 1;  // of each line, and of the gap between two
    Qt::PenStyle pen = Qt::SolidLine;
    QColor colour;    // invalid: the text's colour
    qreal space = 0;  // between the text and the border

    qreal thickness() const { return (2 * lines - 1) * width; }
};

struct Borders {
    Side sides[rtf::kBorderSides];
    bool any = false;

    const Side &operator[](rtf::BorderSide side) const { return sides[int(side)]; }
};

bool styleIs(const char *word, std::initializer_list<const char *> names)
{
    return std::any_of(names.begin(), names.end(), [word](const char *name) { return std::strcmp(word, name) == 0; });
}

// Styles Qt's pens cannot draw (wavy, embossed, engraved, 3-D) are drawn as solid lines.
Side sideOf(int style, int widthTwips, Colour colour, int spaceTwips)
{
    Side side;
    if (style < 0 || style >= rtf::borderStyleCount())
        return side;
    const char *word = rtf::borderStyleWords()[style];
    if (styleIs(word, {"brdrnone", "brdrnil", "brdrtbl"}))
        return side;
    side.shown = true;
    side.width = format::twipsToPixels(widthTwips > 0 ? widthTwips : kDefaultWidthTwips);
    if (styleIs(word, {"brdrth"}))
        side.width *= 2;
    else if (styleIs(word, {"brdrhair"}))
        side.width = 1;
    if (styleIs(word, {"brdrdb", "brdrwavydb", "brdrtnthsg", "brdrthtnsg", "brdrtnthmg", "brdrthtnmg", "brdrtnthlg",
                       "brdrthtnlg"}))
        side.lines = 2;
    else if (styleIs(word, {"brdrtriple", "brdrtnthtnsg", "brdrtnthtnmg", "brdrtnthtnlg"}))
        side.lines = 3;
    if (styleIs(word, {"brdrdot"}))
        side.pen = Qt::DotLine;
    else if (styleIs(word, {"brdrdash", "brdrdashsm"}))
        side.pen = Qt::DashLine;
    else if (styleIs(word, {"brdrdashd", "brdrdashdotstr"}))
        side.pen = Qt::DashDotLine;
    else if (styleIs(word, {"brdrdashdd"}))
        side.pen = Qt::DashDotDotLine;
    side.colour = toQColor(colour);
    side.space = format::twipsToPixels(spaceTwips);
    return side;
}

Borders bordersOf(const QTextBlockFormat &format)
{
    Borders borders;
    if (!format.hasProperty(rtf::ParagraphBorders))
        return borders;
    const QList<int> values = format.property(rtf::ParagraphBorders).value<QList<int>>();
    for (qsizetype i = 0; i + 4 < values.size(); i += 5) {
        const int side = values[i];
        if (side < 0 || side >= rtf::kBorderSides)
            continue;
        borders.sides[side] = sideOf(values[i + 1], values[i + 2], Colour(values[i + 3]), values[i + 4]);
        borders.any = borders.any || borders.sides[side].shown;
    }
    return borders;
}

// Paragraphs with the same borders and indents share one box.
bool sameBox(const QTextBlockFormat &a, const QTextBlockFormat &b)
{
    return a.property(rtf::ParagraphBorders) == b.property(rtf::ParagraphBorders)
           && qFuzzyCompare(1 + a.leftMargin(), 1 + b.leftMargin())
           && qFuzzyCompare(1 + a.rightMargin(), 1 + b.rightMargin())
           && qFuzzyCompare(1 + std::min<qreal>(0, a.textIndent()), 1 + std::min<qreal>(0, b.textIndent()));
}

bool firstOfBox(const QTextBlock &block, const QTextBlockFormat &format)
{
    const QTextBlock previous = block.previous();
    return !previous.isValid() || !sameBox(previous.blockFormat(), format);
}

bool lastOfBox(const QTextBlock &block, const QTextBlockFormat &format)
{
    const QTextBlock next = block.next();
    return !next.isValid() || !sameBox(next.blockFormat(), format);
}

QList<qreal> roomOf(const QTextBlockFormat &format)
{
    const QList<qreal> room = format.property(RoomProperty).value<QList<qreal>>();
    return room.size() == 2 ? room : QList<qreal>{0, 0};
}

// Draws \a side along the line from \a from to \a to (its middle), a horizontal or a vertical one.
void drawRule(QPainter &painter, const Side &side, QPointF from, QPointF to, bool horizontal, qreal scale,
              const QColor &textColour)
{
    const qreal width = side.width * scale;
    QPen pen(side.colour.isValid() ? side.colour : textColour, width, side.pen, Qt::FlatCap);
    painter.setPen(pen);
    for (int i = 0; i < side.lines; ++i) {
        const qreal offset = (-side.thickness() / 2 + side.width / 2 + 2 * i * side.width) * scale;
        const QPointF shift = horizontal ? QPointF(0, offset) : QPointF(offset, 0);
        painter.drawLine(from + shift, to + shift);
    }
}

} // namespace

bool hasBorders(const QTextBlockFormat &format)
{
    return bordersOf(format).any;
}

qreal roomAbove(const QTextBlockFormat &format)
{
    return roomOf(format).at(0);
}

qreal roomBelow(const QTextBlockFormat &format)
{
    return roomOf(format).at(1);
}

namespace {

bool bordersOrRoom(const QTextFormat &format)
{
    return format.isBlockFormat() && (format.hasProperty(rtf::ParagraphBorders) || format.hasProperty(RoomProperty));
}

// The room \a block's part of its box needs above and below it (pixels).
QList<qreal> roomNeeded(const QTextBlock &block, const QTextBlockFormat &format)
{
    const Borders borders = bordersOf(format);
    qreal above = 0;
    qreal below = 0;
    if (borders.any) {
        const Side &top = borders[rtf::BorderSide::Top];
        const Side &bottom = borders[rtf::BorderSide::Bottom];
        const Side &between = borders[rtf::BorderSide::Between];
        const bool last = lastOfBox(block, format);
        if (top.shown && firstOfBox(block, format))
            above = top.space + top.thickness();
        if (bottom.shown && last)
            below = bottom.space + bottom.thickness();
        else if (between.shown && !last)
            below = 2 * between.space + between.thickness();
    }
    return {above, below};
}

// Gives \a block the room \a room (pixels above, below) in place of the one it has, through
// \a cursor; a block that has that room already is left alone.
void giveRoom(QTextCursor &cursor, const QTextBlock &block, const QList<qreal> &room)
{
    QTextBlockFormat format = block.blockFormat();
    const QList<qreal> old = roomOf(format);
    if (qFuzzyCompare(1 + room[0], 1 + old[0]) && qFuzzyCompare(1 + room[1], 1 + old[1]))
        return;
    format.setTopMargin(std::max<qreal>(0, format.topMargin() - old[0] + room[0]));
    format.setBottomMargin(std::max<qreal>(0, format.bottomMargin() - old[1] + room[1]));
    if (room[0] > 0 || room[1] > 0)
        format.setProperty(RoomProperty, QVariant::fromValue(room));
    else
        format.clearProperty(RoomProperty);
    cursor.setPosition(block.position());
    cursor.setBlockFormat(format);
}

} // namespace

bool hasRoom(const QTextDocument &document)
{
    const QList<QTextFormat> formats = document.allFormats();
    return std::any_of(formats.cbegin(), formats.cend(),
                       [](const QTextFormat &f) { return f.isBlockFormat() && f.hasProperty(RoomProperty); });
}

void makeRoom(QTextDocument &document)
{
    const QList<QTextFormat> formats = document.allFormats();
    if (std::none_of(formats.cbegin(), formats.cend(), bordersOrRoom))
        return;
    QTextCursor cursor(&document);
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        const QTextBlockFormat format = block.blockFormat();
        if (bordersOrRoom(format))
            giveRoom(cursor, block, roomNeeded(block, format));
    }
}

void takeRoom(QTextDocument &document)
{
    if (!hasRoom(document))
        return;
    QTextCursor cursor(&document);
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        if (block.blockFormat().hasProperty(RoomProperty))
            giveRoom(cursor, block, {0, 0});
    }
}

void paintBlock(QPainter &painter, const QTextBlock &block, const QRectF &bounds, const QRectF &area, qreal scale,
                const QColor &textColour)
{
    const QTextBlockFormat format = block.blockFormat();
    if (!format.hasProperty(rtf::ParagraphBorders))
        return;
    const Borders borders = bordersOf(format);
    const QTextLayout *layout = block.layout();
    if (!borders.any || !layout || layout->lineCount() == 0)
        return;
    const Side &top = borders[rtf::BorderSide::Top];
    const Side &bottom = borders[rtf::BorderSide::Bottom];
    const Side &left = borders[rtf::BorderSide::Left];
    const Side &right = borders[rtf::BorderSide::Right];
    const Side &between = borders[rtf::BorderSide::Between];
    const bool first = firstOfBox(block, format);
    const bool last = lastOfBox(block, format);
    const QRectF nextBounds = last ? QRectF() : block.document()->documentLayout()->blockBoundingRect(block.next());

    // The text's edges: the paragraph's indents (the first line's when it hangs out further).
    const QTextLine line = layout->lineAt(layout->lineCount() - 1);
    const qreal textLeft = bounds.left() + format.leftMargin() + std::min<qreal>(0, format.textIndent());
    const qreal textRight = bounds.left() + line.x() + line.width();
    // The middle of each side's line, out from the text by its space, kept within the area.
    const auto outward = [scale](const Side &side) { return (side.space + side.thickness() / 2) * scale; };
    const auto half = [scale](const Side &side) { return side.thickness() * scale / 2; };
    const qreal leftX = std::max(textLeft - outward(left), area.left() + half(left));
    const qreal rightX = std::min(textRight + outward(right), area.right() - half(right));
    const qreal topY = std::max(bounds.top() - outward(top), area.top() + half(top));
    const qreal bottomY = std::min(bounds.bottom() + outward(bottom), area.bottom() - half(bottom));
    // Lines across the box reach the outer edges of the side lines, so that the corners close.
    const qreal acrossFrom = left.shown ? leftX - half(left) : textLeft;
    const qreal acrossTo = right.shown ? rightX + half(right) : textRight;

    // The sides run from this paragraph's part of the box to the next one's.
    const qreal downFrom = !first ? bounds.top() : top.shown ? topY - half(top) : bounds.top();
    const qreal downTo = !last ? nextBounds.top() : bottom.shown ? bottomY + half(bottom) : bounds.bottom();

    painter.save();
    // Shading fills the box out to its borders; Qt fills the text's part.
    if (format.background().style() != Qt::NoBrush) {
        QPainterPath box;
        box.addRect(QRectF(QPointF(acrossFrom, downFrom), QPointF(acrossTo, downTo)));
        QPainterPath text;
        text.addRect(QRectF(QPointF(textLeft, bounds.top()), QPointF(textRight, bounds.bottom())));
        painter.fillPath(box.subtracted(text), format.background());
    }
    if (first && top.shown)
        drawRule(painter, top, QPointF(acrossFrom, topY), QPointF(acrossTo, topY), true, scale, textColour);
    if (last && bottom.shown)
        drawRule(painter, bottom, QPointF(acrossFrom, bottomY), QPointF(acrossTo, bottomY), true, scale, textColour);
    if (!last && between.shown) {
        const qreal y = (bounds.bottom() + nextBounds.top()) / 2;
        drawRule(painter, between, QPointF(acrossFrom, y), QPointF(acrossTo, y), true, scale, textColour);
    }
    if (left.shown)
        drawRule(painter, left, QPointF(leftX, downFrom), QPointF(leftX, downTo), false, scale, textColour);
    if (right.shown)
        drawRule(painter, right, QPointF(rightX, downFrom), QPointF(rightX, downTo), false, scale, textColour);
    painter.restore();
}

} // namespace kvrtb::paragraphborders
