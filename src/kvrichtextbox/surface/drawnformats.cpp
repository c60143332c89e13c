#include "surface/drawnformats.h"

#include "surface/lettershadows.h"
#include "surface/listmarkers.h"
#include "surface/paragraphborders.h"
#include "surface/rtf/rtfformats.h"
#include "surface/tableaders.h"

#include <QAbstractTextDocumentLayout>
#include <QPaintDevice>
#include <QPainter>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextLayout>

#include <algorithm>

namespace kvrtb::drawnformats {

namespace {

// Where to hit-test for the first paragraph that reaches \a clip. The layout finds a paragraph
// quickly only when the point lies inside its laid-out lines; a point beside them makes it walk
// every paragraph to the end of the document. A repaint usually starts at the view's left edge,
// left of the document's margin, and at the top of the document above its first paragraph: the
// point is moved into the middle of the page (inside the lines of nearly every paragraph; the
// text's left edge without a page width, when lines do not wrap) and down to the first paragraph.
// A clip that starts in the spacing between two paragraphs still costs the walk.
QPointF hitTestPoint(const QTextDocument &document, const QRectF &clip)
{
    const qreal width = document.pageSize().width();
    const qreal x = width > 0 && width < 1e6 ? width / 2 : document.rootFrame()->frameFormat().leftMargin() + 1;
    const qreal top = document.documentLayout()->blockBoundingRect(document.firstBlock()).top();
    return QPointF(x, std::max(clip.top(), top));
}

} // namespace

bool mayHoldDrawnFormats(const QTextDocument &document)
{
    // The collection holds every format a character, paragraph or list of the document refers to
    // (and formats no longer used, until the document is cleared), so it is never missing one the
    // text shows, whatever route put it there: reading, pasting, typing, undoing.
    const QList<QTextFormat> formats = document.allFormats();
    return std::any_of(formats.cbegin(), formats.cend(), [](const QTextFormat &format) {
        return format.isListFormat() || format.hasProperty(rtf::CharShadow) || format.hasProperty(rtf::ParagraphBorders)
               || format.hasProperty(rtf::TabLeaders);
    });
}

void forEachBlockIn(const QTextDocument &document, const QRectF &clip,
                    const std::function<void(const QTextBlock &, const QRectF &)> &visit)
{
    QAbstractTextDocumentLayout *layout = document.documentLayout();
    // The first paragraph that reaches the clip, then every paragraph down to its bottom.
    const int position = layout->hitTest(hitTestPoint(document, clip), Qt::FuzzyHit);
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
    if (!mayHoldDrawnFormats(document))
        return;
    const qreal scale = deviceScale(document);
    forEachBlockIn(document, clip, [&](const QTextBlock &block, const QRectF &bounds) {
        lettershadows::paint(painter, block, bounds, scale);
    });
}

void paintOverText(QPainter &painter, const QTextDocument &document, const QRectF &clip, const QRectF &borderArea,
                   const QColor &textColour)
{
    if (!mayHoldDrawnFormats(document))
        return;
    const qreal scale = deviceScale(document);
    forEachBlockIn(document, clip, [&](const QTextBlock &block, const QRectF &bounds) {
        paragraphborders::paintBlock(painter, block, bounds, borderArea, scale, textColour);
        tableaders::paint(painter, document, block, bounds, scale, textColour);
    });
    // After the borders: a marker hanging out of a shaded box's text stands on its shading.
    listmarkers::paint(painter, document, clip, textColour);
}

} // namespace kvrtb::drawnformats
