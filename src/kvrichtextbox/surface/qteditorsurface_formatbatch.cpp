// Format changes in batches: many ranges changed in one edit, for passes that recolour or
// mark a whole document at once.

#include "surface/formatmapping.h"
#include "surface/qteditorsurface.h"

#include <QHash>
#include <QTextCursor>
#include <QTextDocument>

namespace kvrtb {

namespace {

/// Batches of at least this many ranges are laid out again lazily.
constexpr qsizetype kLazyRelayoutRanges = 256;

/// \brief Withdraws the document's page size for a large batch and puts it back afterwards.
///
/// A large batch touches blocks all over the document. Qt would lay out the whole changed range
/// at once when the edit closes; with the page size withdrawn for the batch, the layout starts
/// over lazily instead: the visible part at once, the rest when the application is idle.
class LazyRelayout {
public:
    LazyRelayout(QTextDocument *document, qsizetype ranges)
        : m_document(ranges >= kLazyRelayoutRanges ? document : nullptr)
    {
        if (m_document) {
            m_pageSize = m_document->pageSize();
            m_document->setPageSize(QSizeF());
        }
    }
    ~LazyRelayout()
    {
        if (m_document)
            m_document->setPageSize(m_pageSize);
    }
    LazyRelayout(const LazyRelayout &) = delete;
    LazyRelayout &operator=(const LazyRelayout &) = delete;

private:
    QTextDocument *m_document;
    QSizeF m_pageSize;
};

} // namespace

void QtEditorSurface::applyCharFormats(const QList<FormatSpan> &spans)
{
    QTextDocument *doc = document();
    QTextCursor batch(doc);
    {
        const LazyRelayout lazy(doc, spans.size());
        batch.beginEditBlock();
        for (const FormatSpan &span : spans) {
            QTextCursor range = rangeCursor(span.start, span.length);
            if (range.hasSelection())
                format::applyCharFormat(range, span.format);
        }
        batch.endEditBlock();
    }
    markLinesDirty();
}

void QtEditorSurface::applyColourRuns(int start, int length, const CharFormat &base, const QList<ColourRun> &runs)
{
    QTextDocument *doc = document();
    QTextCursor batch(doc);
    {
        const LazyRelayout lazy(doc, runs.size() + 1);
        batch.beginEditBlock();
        QTextCursor range = rangeCursor(start, length);
        if (range.hasSelection())
            format::applyCharFormat(range, base);
        // A source file has a handful of colours and tens of thousands of runs: each colour's
        // format change is built once, and one cursor walks the runs.
        QHash<Colour, QTextCharFormat> changes;
        const int end = textLength();
        for (const ColourRun &run : runs) {
            const int from = clamp(run.start);
            const int to = run.length < 0 ? end : clamp(from + run.length);
            if (to <= from)
                continue;
            auto change = changes.constFind(run.colour);
            if (change == changes.constEnd()) {
                CharFormat colour;
                colour.color = run.colour;
                change = changes.insert(run.colour, format::charDelta(colour));
            }
            range.setPosition(from);
            range.setPosition(to, QTextCursor::KeepAnchor);
            range.mergeCharFormat(*change);
        }
        batch.endEditBlock();
    }
    markLinesDirty();
}

} // namespace kvrtb
