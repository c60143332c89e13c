#include "spelling/spellasyoutype.h"

#include "core/controlcore.h"
#include "hyperlinks/addresspatterns.h"
#include "spelling/dictionary.h"
#include "spelling/misspellingscanner.h"

#include <QElapsedTimer>
#include <QRegularExpression>

#include <algorithm>
#include <numeric>

namespace kvrtb {

namespace {

/// A text with pieces cut out, and where each remaining character stood before the cut.
struct CutText {
    QString text;
    QList<int> origin;
};

/// \a source without the matches of \a pattern, each removed as replacing it by the empty
/// string would, keeping track of the original positions.
CutText cutMatches(const QRegularExpression &pattern, const CutText &source)
{
    CutText kept;
    int from = 0;
    auto keep = [&](int end) {
        kept.text += QStringView(source.text).mid(from, end - from);
        kept.origin += source.origin.mid(from, end - from);
    };
    QRegularExpressionMatchIterator it = pattern.globalMatch(source.text);
    while (it.hasNext()) {
        const QRegularExpressionMatch match = it.next();
        if (match.capturedLength() == 0)
            continue;
        keep(int(match.capturedStart()));
        from = int(match.capturedEnd());
    }
    if (from == 0)
        return source;
    keep(int(source.text.size()));
    return kept;
}

/// Moves the spans of \a spans for an edit at \a position that removed \a removed characters
/// and added \a added: spans before it stay, spans after it move, spans it touched are handed
/// to \a touched (and dropped).
template <typename Touched>
void moveSpans(QList<EditorSurface::TextSpan> &spans, int position, int removed, int added, Touched touched)
{
    const int delta = added - removed;
    QList<EditorSurface::TextSpan> moved;
    moved.reserve(spans.size());
    for (EditorSurface::TextSpan span : std::as_const(spans)) {
        if (span.end() <= position) {
            moved.append(span);
        } else if (span.start >= position + removed) {
            span.start += delta;
            moved.append(span);
        } else {
            touched(span);
        }
    }
    spans.swap(moved);
}

} // namespace

SpellAsYouType::SpellAsYouType(ControlCore &core)
    : m_core(core)
{
    m_timer.setSingleShot(true);
    m_timer.setInterval(0);
    QObject::connect(&m_timer, &QTimer::timeout, [this] { checkSlice(kSliceMilliseconds); });
    m_core.surface().addContentsObserver([this, alive = m_alive](int position, int removed, int added) {
        if (*alive)
            onContentsChanged(position, removed, added);
    });
}

SpellAsYouType::~SpellAsYouType()
{
    *m_alive = false;
}

void SpellAsYouType::setEnabled(bool enabled)
{
    if (enabled == m_enabled)
        return;
    m_enabled = enabled;
    m_marks.clear();
    m_dirty.clear();
    if (enabled) {
        queue({0, std::max(1, m_core.surface().textLength())});
    } else {
        m_timer.stop();
        m_core.surface().setDecorations(EditorSurface::DecorationLayer::Misspelling, {});
    }
}

std::optional<SpellAsYouType::Span> SpellAsYouType::markAt(int position) const
{
    auto it = std::upper_bound(m_marks.cbegin(), m_marks.cend(), position,
                               [](int at, const Span &mark) { return at < mark.start; });
    if (it == m_marks.cbegin())
        return std::nullopt;
    --it;
    if (position <= it->end())
        return *it;
    return std::nullopt;
}

void SpellAsYouType::checkPending()
{
    m_timer.stop();
    checkSlice(-1);
}

QList<SpellAsYouType::Span> SpellAsYouType::misspeltSpans(const QString &text)
{
    CutText cut{text, {}};
    cut.origin.resize(text.size());
    std::iota(cut.origin.begin(), cut.origin.end(), 0);
    if (!AddressPatterns::quickReject(text))
        cut = cutMatches(AddressPatterns::link(), cut);
    cut = cutMatches(MisspellingScanner::abbreviationPattern(), cut);

    QList<Span> spans;
    QRegularExpressionMatchIterator it = MisspellingScanner::tokenPattern().globalMatch(cut.text);
    while (it.hasNext()) {
        const QRegularExpressionMatch match = it.next();
        const QStringView word = match.capturedView();
        if (word.isEmpty() || MisspellingScanner::hasOuterApostrophe(word) || Dictionary::IsWordInDictionary(word))
            continue;
        const int first = cut.origin.at(match.capturedStart());
        const int last = cut.origin.at(match.capturedEnd() - 1);
        spans.append({first, last + 1 - first});
    }
    return spans;
}

void SpellAsYouType::onContentsChanged(int position, int removed, int added)
{
    if (!m_enabled)
        return;
    moveSpans(m_marks, position, removed, added, [](const Span &) {});
    QList<Span> touched;
    moveSpans(m_dirty, position, removed, added, [&](const Span &span) { touched.append(span); });
    // A waiting stretch the edit cut into is kept whole (in new positions), so nothing of it
    // is forgotten; checking a little more than needed is harmless.
    int start = position;
    int end = position + std::max(added, 1);
    for (const Span &span : std::as_const(touched)) {
        start = std::min(start, span.start);
        end = std::max(end, span.end() + added - removed);
    }
    queue({start, end - start});
}

void SpellAsYouType::queue(Span range)
{
    auto at = std::lower_bound(m_dirty.begin(), m_dirty.end(), range.start,
                               [](const Span &span, int start) { return span.start < start; });
    m_dirty.insert(at, range);
    // Merge neighbours that touch or overlap.
    QList<Span> merged;
    for (const Span &span : std::as_const(m_dirty)) {
        if (!merged.isEmpty() && span.start <= merged.last().end())
            merged.last().length = std::max(merged.last().end(), span.end()) - merged.last().start;
        else
            merged.append(span);
    }
    m_dirty.swap(merged);
    schedule();
}

void SpellAsYouType::schedule()
{
    if (m_enabled && !m_dirty.isEmpty() && !m_timer.isActive())
        m_timer.start();
}

int SpellAsYouType::checkParagraphAt(int position)
{
    EditorSurface &surface = m_core.surface();
    const Span paragraph = surface.paragraphAt(position);
    const QList<Span> found = misspeltSpans(surface.textRange(paragraph.start, paragraph.length));

    auto first = std::lower_bound(m_marks.begin(), m_marks.end(), paragraph.start,
                                  [](const Span &mark, int start) { return mark.end() <= start; });
    auto last = first;
    while (last != m_marks.end() && last->start <= paragraph.end())
        ++last;
    const qsizetype index = first - m_marks.begin();
    m_marks.erase(first, last);
    QList<Span> placed;
    placed.reserve(found.size());
    for (const Span &span : found)
        placed.append({paragraph.start + span.start, span.length});
    m_marks.insert(index, placed.size(), Span{});
    std::copy(placed.cbegin(), placed.cend(), m_marks.begin() + index);
    return paragraph.end() + 1;
}

void SpellAsYouType::checkSlice(int budgetMs)
{
    if (!m_enabled)
        return;
    QElapsedTimer clock;
    clock.start();
    const int length = m_core.surface().textLength();
    while (!m_dirty.isEmpty() && (budgetMs < 0 || clock.elapsed() < budgetMs)) {
        Span &range = m_dirty.first();
        if (range.start > length) {
            m_dirty.removeFirst();
            continue;
        }
        const int next = checkParagraphAt(range.start);
        if (next >= range.end() || next > length)
            m_dirty.removeFirst();
        else
            range = {next, range.end() - next};
    }
    m_core.surface().setDecorations(EditorSurface::DecorationLayer::Misspelling, m_marks);
    schedule();
}

} // namespace kvrtb
