#pragma once

// Tab leaders drawn by the surface: the dots, hyphens, line or equals signs that fill the gap a
// tab leaves before a stop whose leader the paragraph keeps (rtf::TabLeaders). Qt lays the tab
// out but draws nothing in its gap. The leaders are never document text.

#include <QtGlobal>

class QColor;
class QPainter;
class QRectF;
class QTextBlock;
class QTextDocument;

namespace kvrtb::tableaders {

/// \brief Paints the leaders of the tabs of \a block (laid out at \a bounds, in document
/// coordinates) whose stops have one, in the tab's font and colour (\a textColour where the
/// text has none). \a scale is the device pixels per screen pixel of the layout.
void paint(QPainter &painter, const QTextDocument &document, const QTextBlock &block, const QRectF &bounds,
           qreal scale, const QColor &textColour);

} // namespace kvrtb::tableaders
