#pragma once

// What the surface draws itself, around the text Qt's document layout draws: the shadows of
// shadowed letters under the text; list markers, paragraph borders and tab leaders over it. The
// editor's viewport and printed or previewed pages paint through the same two calls, so a
// document looks the same on screen and on paper. None of it is document text.

#include <QRectF>

#include <functional>

class QColor;
class QPainter;
class QTextBlock;
class QTextDocument;

namespace kvrtb::drawnformats {

/// \brief Calls \a visit with each visible paragraph of \a document whose laid-out box may meet
/// \a clip (document coordinates), in document order, and the paragraph's laid-out box.
void forEachBlockIn(const QTextDocument &document, const QRectF &clip,
                    const std::function<void(const QTextBlock &, const QRectF &)> &visit);

/// \brief False when no text, paragraph or list of \a document can have anything the surface
/// draws (shadows, borders, tab leaders, list markers): then the two paint calls return at once.
/// It may be true without need (a format no longer used), never false wrongly. Costs a look at
/// each of the document's distinct formats, not at its paragraphs.
bool mayHoldDrawnFormats(const QTextDocument &document);

/// \brief How many device pixels one screen pixel of the document's formats takes where
/// \a document is laid out (1 on screen; the printer's resolution over 96 on paper).
qreal deviceScale(const QTextDocument &document);

/// \brief Paints what lies under the text of the paragraphs that meet \a clip: the shadows of
/// shadowed letters. Call it before the document layout draws.
void paintUnderText(QPainter &painter, const QTextDocument &document, const QRectF &clip);

/// \brief Paints what lies over the text of the paragraphs that meet \a clip: list markers,
/// paragraph borders and tab leaders. \a borderArea is where borders may reach (the document's
/// area, or the page on paper: a border that would leave it is drawn at its edge);
/// \a textColour is used where a paragraph gives no colour of its own.
void paintOverText(QPainter &painter, const QTextDocument &document, const QRectF &clip, const QRectF &borderArea,
                   const QColor &textColour);

} // namespace kvrtb::drawnformats
