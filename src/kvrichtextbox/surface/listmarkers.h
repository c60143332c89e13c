#pragma once

// List markers drawn by the surface. Qt's own list markers cannot start at a number other than
// one, know only disc, circle and square bullets, and take their font from the paragraph's
// block character format. The paragraphs of lists read from RTF or numbered by the user carry a
// block property that makes Qt draw no marker; the surface paints their markers instead, in the
// editor's viewport and on printed pages. The markers are never document text: they are not in
// the text, the selection, the clipboard, the RTF body or the undo history.

#include <QString>
#include <QTextFormat>

class QColor;
class QPainter;
class QRectF;
class QTextBlock;
class QTextBlockFormat;
class QTextDocument;
class QTextListFormat;

namespace kvrtb::listmarkers {

/// The list format property that holds the bullet a bulleted list shows (QString; "•" when
/// absent).
inline constexpr int BulletTextProperty = QTextFormat::UserProperty + 60;

/// The list format property that holds a list's level (0 to 8) when its Qt indent does not
/// tell it: lists whose paragraphs give their own indents have a Qt indent of 0.
inline constexpr int ListLevelProperty = QTextFormat::UserProperty + 61;

/// \brief The level (0 to 8) of a list of format \a format.
int levelOf(const QTextListFormat &format);

/// \brief Makes \a list show its paragraphs where their own indents put them (the paragraph
/// gives \a level's indent itself), instead of adding Qt's indent per level.
void setOwnIndents(QTextListFormat &list, int level);

/// \brief Marks \a format so that Qt draws no marker for its paragraph (the surface does).
void setDrawnBySurface(QTextBlockFormat &format);

/// \brief True when the paragraph of \a format has its marker drawn by the surface.
bool isDrawnBySurface(const QTextBlockFormat &format);

/// \brief The marker of a list paragraph as it is shown: the number from the list's start
/// number with its prefix and suffix ("7.", "(c)", "iv)"), or the list's bullet ("•", "o",
/// "-", "▪"). Empty for a paragraph in no list and for lists without numbers.
QString markerText(const QTextBlock &block);

/// \brief \a number written in a list's numbering: Qt's QTextListFormat::Style as an int
/// (decimal, lower or upper letters, lower or upper roman). Letters past z repeat (aa, bb);
/// numbers roman numerals cannot show (below 1, above 3999) are written in digits.
QString formatNumber(int number, int listStyle);

/// \brief Paints the markers of the surface-drawn list paragraphs of \a document whose first
/// line meets \a clip. \a painter is in the document's coordinates (as the document layout
/// draws); \a textColour is used where the paragraph's text has no colour of its own.
void paint(QPainter &painter, const QTextDocument &document, const QRectF &clip, const QColor &textColour);

} // namespace kvrtb::listmarkers
