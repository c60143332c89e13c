#pragma once

// Shadowed letters (rtf::CharShadow) drawn by the surface: a grey copy of the glyphs, offset
// down and to the right, painted before Qt draws the text so that the letters stand on it. A
// paragraph with a background (shading) covers the shadows of its letters: they are drawn
// under the whole text, and Qt fills the background with the text.

#include <QtGlobal>

class QPainter;
class QRectF;
class QTextBlock;

namespace kvrtb::lettershadows {

/// \brief Paints the shadows of the shadowed letters of \a block (laid out at \a bounds, in
/// document coordinates); \a scale is the device pixels per screen pixel of the layout.
void paint(QPainter &painter, const QTextBlock &block, const QRectF &bounds, qreal scale);

} // namespace kvrtb::lettershadows
