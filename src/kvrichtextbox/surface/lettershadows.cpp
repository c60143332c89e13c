#include "surface/lettershadows.h"

#include "surface/rtf/rtfformats.h"

#include <QGlyphRun>
#include <QPainter>
#include <QRawFont>
#include <QTextBlock>
#include <QTextLayout>

#include <algorithm>

namespace kvrtb::lettershadows {

void paint(QPainter &painter, const QTextBlock &block, const QRectF &bounds, qreal scale)
{
    const QTextLayout *layout = block.layout();
    if (!layout)
        return;
    bool saved = false;
    for (auto it = block.begin(); !it.atEnd(); ++it) {
        const QTextFragment fragment = it.fragment();
        if (!fragment.charFormat().boolProperty(rtf::CharShadow))
            continue;
        if (!saved) {
            painter.save();
            painter.setPen(QColor(150, 150, 150));
            saved = true;
        }
        const QList<QGlyphRun> runs = layout->glyphRuns(fragment.position() - block.position(), fragment.length());
        for (const QGlyphRun &run : runs) {
            // About a twelfth of an em, at least a pixel of the screen.
            const qreal offset = std::max(scale, run.rawFont().pixelSize() / 12);
            painter.drawGlyphRun(bounds.topLeft() + QPointF(offset, offset), run);
        }
    }
    if (saved)
        painter.restore();
}

} // namespace kvrtb::lettershadows
