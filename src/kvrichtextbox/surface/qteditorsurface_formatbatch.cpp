// Format changes in batches: many ranges changed in one edit, for passes that recolour or
// mark a whole document at once.

#include "surface/formatmapping.h"
#include "surface/qteditorsurface.h"

#include <QHash>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFrame>

#include <algorithm>

#ifdef KVRTB_HAVE_QT_TEXT_PRIVATE
// The document's own fragment table (Debian qt6-base-private-dev, the same Qt version as the
// library): the colour batch writes formats into it without a cursor and without merging each
// run's format again, which for tens of thousands of runs takes about 40% less time than the
// public API. Without these headers the batch takes the public cursor path, with the same result.
#include <QtGui/private/qtextdocument_p.h>
#endif

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

#ifdef KVRTB_HAVE_QT_TEXT_PRIVATE
/// \brief Merges format changes into the document's text fragments directly.
///
/// The result of `merge` is that of a cursor selecting the range and merging the change: each
/// fragment's format merged with the change, one undo command per fragment, the blocks laid out
/// again. But the merged format is worked out once for each original format and change, and
/// whole stretches of fragments with the same format are set in one call. Only for documents
/// without tables or frames, where a cursor's selection is a plain range of text.
class FragmentFormatter {
public:
    explicit FragmentFormatter(QTextDocument *document)
        : m_document(QTextDocumentPrivate::get(document))
    {
    }

    /// Merges \a change, known by \a key (one key for one change), into [from, to). Returns the
    /// number of stretches of equal format it found there.
    int merge(int from, int to, const QTextCharFormat &change, quint64 key)
    {
        if (from >= m_untouched && to <= m_uniformEnd) {
            // The range lies in the part known to hold one format: no need to look it up.
            m_document->setCharFormat(from, to - from, merged(m_uniformFormat, change, key),
                                      QTextDocumentPrivate::SetFormat);
            m_untouched = to;
            return 1;
        }
        if (from < m_uniformEnd && to > m_untouched)
            m_untouched = to; // what lies before no longer counts as known
        int stretches = 0;
        int position = from;
        while (position < to) {
            QTextDocumentPrivate::FragmentIterator it = m_document->find(position);
            const int format = it.value()->format;
            int end = it.position() + int(it.value()->size_array[0]);
            for (++it; end < to && !it.atEnd() && it.value()->format == format; ++it)
                end += int(it.value()->size_array[0]);
            end = std::min(end, to);
            m_document->setCharFormat(position, end - position, merged(format, change, key),
                                      QTextDocumentPrivate::SetFormat);
            position = end;
            ++stretches;
        }
        return stretches;
    }

    /// Notes that [from, to) holds one format throughout, so that later merges into it, in
    /// ascending order, need not look up the format they change.
    void knowUniform(int from, int to)
    {
        m_uniformFormat = m_document->find(from).value()->format;
        m_untouched = from;
        m_uniformEnd = to;
    }

private:
    const QTextCharFormat &merged(int format, const QTextCharFormat &change, quint64 key)
    {
        const QPair<int, quint64> id(format, key);
        auto found = m_merged.constFind(id);
        if (found == m_merged.constEnd()) {
            QTextFormat result = m_document->formatCollection()->format(format);
            result.merge(change);
            found = m_merged.insert(id, result.toCharFormat());
        }
        return *found;
    }

    QTextDocumentPrivate *m_document;
    QHash<QPair<int, quint64>, QTextCharFormat> m_merged;
    /// [m_untouched, m_uniformEnd) holds m_uniformFormat throughout (empty when nothing is known).
    int m_uniformFormat = -1;
    int m_untouched = 0;
    int m_uniformEnd = 0;
};
#endif

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
        const int end = textLength(); // format changes keep the length
        // A source file has a handful of colours and tens of thousands of runs: each colour's
        // format change is built once.
        QHash<Colour, QTextCharFormat> changes;
        const auto changeFor = [&changes](Colour colour) -> const QTextCharFormat & {
            auto change = changes.constFind(colour);
            if (change == changes.constEnd()) {
                CharFormat format;
                format.color = colour;
                change = changes.insert(colour, format::charDelta(format));
            }
            return *change;
        };
        bool direct = false;
#ifdef KVRTB_HAVE_QT_TEXT_PRIVATE
        direct = doc->rootFrame()->childFrames().isEmpty();
        if (direct) {
            FragmentFormatter formatter(doc);
            if (range.hasSelection()) {
                // Underline and the link effect depend on each character's other one: those
                // changes take the general path.
                if (base.underline || base.linkEffect)
                    format::applyCharFormat(range, base);
                else if (formatter.merge(range.selectionStart(), range.selectionEnd(), format::charDelta(base), 0) == 1)
                    formatter.knowUniform(range.selectionStart(), range.selectionEnd());
            }
            for (const ColourRun &run : runs) {
                const int from = std::clamp(run.start, 0, end);
                const int to = run.length < 0 ? end : std::clamp(from + run.length, 0, end);
                if (to > from)
                    formatter.merge(from, to, changeFor(run.colour), (quint64(1) << 32) | run.colour);
            }
        }
#endif
        if (!direct) {
            if (range.hasSelection())
                format::applyCharFormat(range, base);
            // One cursor walks the runs.
            for (const ColourRun &run : runs) {
                const int from = std::clamp(run.start, 0, end);
                const int to = run.length < 0 ? end : std::clamp(from + run.length, 0, end);
                if (to <= from)
                    continue;
                range.setPosition(from);
                range.setPosition(to, QTextCursor::KeepAnchor);
                range.mergeCharFormat(changeFor(run.colour));
            }
        }
        batch.endEditBlock();
    }
    markLinesDirty();
}

} // namespace kvrtb
