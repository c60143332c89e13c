#include "surface/drawnformats.h"

#include "surface/lettershadows.h"
#include "surface/listmarkers.h"
#include "surface/paragraphborders.h"
#include "surface/tableaders.h"

#include <QAbstractTextDocumentLayout>
#include <QPaintDevice>
#include <QPainter>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>

#include <algorithm>

namespace kvrtb::drawnformats {

void forEachBlockIn(const QTextDocument &document, const QRectF &clip,
                    const std::function<void(const QTextBlock &, const QRectF &)> &visit)
{
    QAbstractTextDocumentLayout *layout = document.documentLayout();
    // The first paragraph that reaches the clip, then every paragraph down to its bottom.
    const int position = layout->hitTest(QPointF(clip.left(), clip.top()), Qt::FuzzyHit);
    QTextBlock block = document.findBlock(std::max(0, position));
    // A paragraph that starts above the clip may still reach into it: step back over it.
    while (block.isValid() && block.previous().isValid() && layout->blockBoundingRect(block).top() > clip.top())
        block = block.previous();
    for (; block.isValid(); block = block.next()) {
        if (!block.isVisible())
            continue;
        // The editor lays long documents out in steps: past the first paragraph not laid out
        // yet, none is.
        const QTextLayout *lines = block.layout();
        if (!lines || lines->lineCount() == 0)
            break;
        const QRectF bounds = layout->blockBoundingRect(block);
        if (bounds.top() > clip.bottom())
            break;
        visit(block, bounds);
    }
}

qreal deviceScale(const QTextDocument &document)
{
    // The document layout scales pixel lengths to its paint device the same way.
    const QPaintDevice *device = document.documentLayout()->paintDevice();
    return device ? device->logicalDpiY() / 96.0 : 1.0;
}

void paintUnderText(QPainter &painter, const QTextDocument &document, const QRectF &clip)
{
    const qreal scale = deviceScale(document);
    forEachBlockIn(document, clip, [&](const QTextBlock &block, const QRectF &bounds) {
        lettershadows::paint(painter, block, bounds, scale);
    });
}

void paintOverText(QPainter &painter, const QTextDocument &document, const QRectF &clip, const QRectF &borderArea,
                   const QColor &textColour)
{
    const qreal scale = deviceScale(document);
    forEachBlockIn(document, clip, [&](const QTextBlock &block, const QRectF &bounds) {
        paragraphborders::paintBlock(painter, block, bounds, borderArea, scale, textColour);
        tableaders::paint(painter, document, block, bounds, scale, textColour);
    });
    // After the borders: a marker hanging out of a shaded box's text stands on its shading.
    listmarkers::paint(painter, document, clip, textColour);
}

} // namespace kvrtb::drawnformats
