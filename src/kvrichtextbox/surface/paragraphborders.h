#pragma once

// Paragraph borders as documents give them (the sides, style, width, colour and space to the
// text kept in the paragraph's rtf::ParagraphBorders property), drawn by the surface: Qt's
// paragraphs have no borders. Consecutive paragraphs with the same borders and indents form one
// box, as word processors draw them: its top border above the first, its bottom border below the
// last, its side borders down the whole box, and the line between paragraphs (where one is given)
// between each two of them.
//
// Left and right borders stand outside the paragraph's indents, in its margin, as word
// processors place them. Above and below, Qt's layout leaves no room for a border: `makeRoom`
// widens the spacing Qt shows above the box's first paragraph and below its last one. That room
// is for display only: the spacing the paragraph reports and writes back is the one it was
// given (kept in its twips properties), and the room itself is kept in RoomProperty so that a
// later change of spacing keeps it. The room is worked out when a document is read, not after
// each edit (changing formats there would enter the user's undo history): a paragraph the user
// splits inside a box gives both halves its room, which shows as a wider gap inside the box
// until the document is read again; what is drawn and written stays right.
//
// A border that would stand outside the drawing area (a top border above the document's first
// paragraph, whose spacing above Qt does not show) is drawn at the area's edge.

#include <QTextFormat>

class QColor;
class QPainter;
class QRectF;
class QTextBlock;
class QTextBlockFormat;
class QTextDocument;

namespace kvrtb::paragraphborders {

/// The block format property that holds the room (QList<qreal>: pixels above, pixels below) the
/// spacing Qt shows has on top of the paragraph's own, for its borders.
inline constexpr int RoomProperty = QTextFormat::UserProperty + 80;

/// \brief True when the paragraph of \a format has at least one border that shows a line.
bool hasBorders(const QTextBlockFormat &format);

/// \brief Room (pixels) that \a format's spacing above holds for its borders.
qreal roomAbove(const QTextBlockFormat &format);
/// \brief Room (pixels) that \a format's spacing below holds for its borders.
qreal roomBelow(const QTextBlockFormat &format);

/// \brief Gives every bordered paragraph of \a document room for its borders in the spacing Qt
/// shows above and below it (see the file comment), and takes it away where a paragraph's box
/// no longer needs it. Changes block formats: call it where the change is not an edit of the
/// user (reading a document). Does nothing, quickly, in a document without paragraph borders.
void makeRoom(QTextDocument &document);

/// \brief True when a paragraph of \a document has room for borders in its spacing.
bool hasRoom(const QTextDocument &document);

/// \brief Takes the room `makeRoom` gave out of the spacing of every paragraph of \a document,
/// leaving the spacing the paragraphs were given: for a copy that leaves the control as another
/// format (HTML, OpenDocument), which would keep the room as spacing. Changes block formats: call
/// it on a copy. Does nothing, quickly, in a document without room.
void takeRoom(QTextDocument &document);

/// \brief Paints the borders of \a block (laid out at \a bounds, document coordinates) that fall
/// to it as part of its box. A border that would leave \a area is drawn at its edge. \a scale is
/// the device pixels per screen pixel; \a textColour draws borders of automatic colour.
void paintBlock(QPainter &painter, const QTextBlock &block, const QRectF &bounds, const QRectF &area, qreal scale,
                const QColor &textColour);

} // namespace kvrtb::paragraphborders
