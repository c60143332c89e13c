// The Qt editor surface: display lines, the view's first line and scrolling, and points.

#include "surface/qteditorsurface.h"

#include "surface/surfacetextedit.h"

#include <QAbstractTextDocumentLayout>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace kvrtb {

// --- Lines ----------------------------------------------------------------------------------

const QVector<int> &QtEditorSurface::lineStarts() const
{
    flushBatch();
    if (!m_linesDirty)
        return m_lineStarts;
    QTextDocument *doc = document();
    QAbstractTextDocumentLayout *layout = doc->documentLayout();
    // Lay out the whole document: line numbers count every display line.
    layout->blockBoundingRect(doc->lastBlock());
    m_lineStarts.resize(doc->blockCount() + 1);
    int total = 0;
    int index = 0;
    for (QTextBlock block = doc->begin(); block.isValid(); block = block.next(), ++index) {
        m_lineStarts[index] = total;
        int lines = block.layout() ? block.layout()->lineCount() : 0;
        if (lines == 0) {
            layout->blockBoundingRect(block);
            lines = block.layout() ? block.layout()->lineCount() : 0;
        }
        total += std::max(1, lines);
    }
    m_lineStarts.resize(index + 1);
    m_lineStarts[index] = total;
    m_linesDirty = false;
    return m_lineStarts;
}

QTextBlock QtEditorSurface::layOutBlockAt(int position) const
{
    const QTextBlock block = document()->findBlock(position);
    if (block.isValid())
        document()->documentLayout()->blockBoundingRect(block); // lays out up to this block
    return block;
}

int QtEditorSurface::lineCount() const
{
    return lineStarts().constLast();
}

int QtEditorSurface::lineFromChar(int position) const
{
    const QVector<int> &starts = lineStarts();
    const int pos = position < 0 ? selStart() : clamp(position);
    const QTextBlock block = document()->findBlock(pos);
    if (!block.isValid())
        return std::max(0, starts.constLast() - 1);
    const int first = starts.at(block.blockNumber());
    const QTextLayout *layout = block.layout();
    if (!layout || layout->lineCount() == 0)
        return first;
    const QTextLine line = layout->lineForTextPosition(pos - block.position());
    return first + (line.isValid() ? line.lineNumber() : layout->lineCount() - 1);
}

int QtEditorSurface::lineIndex(int line) const
{
    if (line == -1) {
        // The caret's line needs only the caret's paragraph laid out, not the line numbers of
        // the whole document: typing asks for it on every key.
        flushBatch();
        const int pos = cursor().position();
        const QTextBlock block = layOutBlockAt(pos);
        if (block.isValid()) {
            const QTextLayout *layout = block.layout();
            if (!layout || layout->lineCount() == 0)
                return block.position();
            QTextLine caretLine = layout->lineForTextPosition(pos - block.position());
            if (!caretLine.isValid())
                caretLine = layout->lineAt(layout->lineCount() - 1);
            return block.position() + caretLine.textStart();
        }
    }
    const QVector<int> &starts = lineStarts();
    if (line == -1)
        line = lineFromChar(cursor().position());
    if (line < 0 || line >= starts.constLast())
        return -1;
    const auto it = std::upper_bound(starts.constBegin(), starts.constEnd() - 1, line);
    const int blockNumber = int(it - starts.constBegin()) - 1;
    const QTextBlock block = document()->findBlockByNumber(blockNumber);
    const QTextLayout *layout = block.layout();
    const int within = line - starts.at(blockNumber);
    if (!layout || within >= layout->lineCount())
        return block.position();
    return block.position() + layout->lineAt(within).textStart();
}

int QtEditorSurface::lineLength(int position) const
{
    flushBatch();
    const int pos = position < 0 ? cursor().position() : clamp(position);
    const QTextBlock block = layOutBlockAt(pos);
    const QTextLayout *layout = block.layout();
    if (!block.isValid() || !layout || layout->lineCount() == 0)
        return block.isValid() ? block.length() - 1 : 0;
    QTextLine line = layout->lineForTextPosition(pos - block.position());
    if (!line.isValid())
        line = layout->lineAt(layout->lineCount() - 1);
    int length = line.textLength();
    const QString text = block.text();
    const int end = line.textStart() + length;
    if (length > 0 && end <= text.size() && text.at(end - 1) == QChar::LineSeparator)
        --length;
    return length;
}

int QtEditorSurface::lineTop(int line) const
{
    const QVector<int> &starts = lineStarts();
    line = std::clamp(line, 0, starts.constLast() - 1);
    const auto it = std::upper_bound(starts.constBegin(), starts.constEnd() - 1, line);
    const int blockNumber = int(it - starts.constBegin()) - 1;
    const QTextBlock block = document()->findBlockByNumber(blockNumber);
    const QRectF rect = document()->documentLayout()->blockBoundingRect(block);
    const QTextLayout *layout = block.layout();
    const int within = line - starts.at(blockNumber);
    // Rounded up, so that a view scrolled to this value shows the line itself at its top.
    if (!layout || within >= layout->lineCount())
        return int(std::ceil(rect.top()));
    return int(std::ceil(rect.top() + layout->lineAt(within).y()));
}

int QtEditorSurface::lineAtY(int y) const
{
    const QVector<int> &starts = lineStarts();
    const QTextDocument *doc = document();
    QAbstractTextDocumentLayout *layout = doc->documentLayout();
    // The last block whose top is at or above y (blocks are laid out top to bottom).
    int low = 0;
    int high = doc->blockCount() - 1;
    while (low < high) {
        const int middle = (low + high + 1) / 2;
        if (layout->blockBoundingRect(doc->findBlockByNumber(middle)).top() <= y)
            low = middle;
        else
            high = middle - 1;
    }
    const QTextBlock block = doc->findBlockByNumber(low);
    const int first = starts.at(low);
    const QTextLayout *blockLayout = block.layout();
    if (!blockLayout || blockLayout->lineCount() == 0)
        return first;
    const double local = y - layout->blockBoundingRect(block).top();
    for (int i = 0; i < blockLayout->lineCount(); ++i) {
        const QTextLine line = blockLayout->lineAt(i);
        if (local < line.y() + line.height())
            return first + i;
    }
    return first + blockLayout->lineCount() - 1;
}

int QtEditorSurface::firstVisibleLine() const
{
    return lineAtY(scrollOffset() + int(document()->documentMargin()));
}

void QtEditorSurface::scrollLines(int lines, int columns)
{
    if (lines != 0) {
        const int target = std::clamp(firstVisibleLine() + lines, 0, lineCount() - 1);
        const int margin = int(document()->documentMargin());
        m_edit->verticalScrollBar()->setValue(std::max(0, lineTop(target) - margin));
    }
    if (columns != 0) {
        QScrollBar *horizontal = m_edit->horizontalScrollBar();
        horizontal->setValue(horizontal->value() + columns * m_edit->fontMetrics().averageCharWidth());
    }
}

void QtEditorSurface::scrollToPosition(int position)
{
    flushBatch();
    QTextDocument *doc = document();
    const int pos = clamp(position);
    const QTextBlock block = doc->findBlock(pos);
    if (!block.isValid())
        return;
    // The block's rectangle lays the document out down to the block, no further.
    double y = doc->documentLayout()->blockBoundingRect(block).top();
    if (const QTextLayout *layout = block.layout(); layout && layout->lineCount() > 0) {
        const QTextLine line = layout->lineForTextPosition(pos - block.position());
        if (line.isValid())
            y += line.y();
    }
    const int margin = int(doc->documentMargin());
    m_edit->verticalScrollBar()->setValue(std::max(0, int(std::ceil(y)) - margin));
}

QRect QtEditorSurface::formattingRect() const
{
    const QRect viewport = m_edit->viewport()->rect();
    const int margin = int(document()->documentMargin());
    return QRect(viewport.left() + margin, viewport.top() + margin, std::max(0, viewport.width() - 2 * margin),
                 std::max(0, viewport.height() - 2 * margin));
}

int QtEditorSurface::charFromPoint(const QPoint &point) const
{
    flushBatch();
    return m_edit->cursorForPosition(point).position();
}

int QtEditorSurface::scrollOffset() const
{
    return m_edit->verticalScrollBar()->value();
}

void QtEditorSurface::setScrollOffset(int pixels)
{
    m_edit->verticalScrollBar()->setValue(pixels);
}

} // namespace kvrtb
