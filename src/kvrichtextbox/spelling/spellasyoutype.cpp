#include "spelling/spellasyoutype.h"

#include "core/controlcore.h"
#include "core/textspans.h"
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

} // namespace

SpellAsYouType::SpellAsYouType(ControlCore &core)
    : m_core(core)
{
    m_timer.setSingleShot(true);
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
        schedule(0);
    } else {
        m_timer.stop();
        m_core.surface().setDecorations(EditorSurface::DecorationLayer::Misspelling, {});
        if (m_marksObserver)
            m_marksObserver();
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
    moveTextSpans(m_marks, position, removed, added);
    QList<Span> touched;
    moveTextSpans(m_dirty, position, removed, added, [&](const Span &span) { touched.append(span); });
    // A waiting stretch the edit cut into is kept whole (in new positions), so nothing of it
    // is forgotten; checking a little more than needed is harmless.
    int start = position;
    int end = position + std::max(added, 1);
    for (const Span &span : std::as_const(touched)) {
        start = std::min(start, span.start);
        end = std::max(end, span.end() + added - removed);
    }
    queue({start, end - start});
    // While keys keep coming the edited paragraph waits: it is checked once typing pauses.
    schedule(kPauseMilliseconds);
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
}

void SpellAsYouType::schedule(int delayMs)
{
    if (!m_enabled || m_dirty.isEmpty())
        return;
    if (delayMs > 0)
        m_timer.start(delayMs); // (re)starts the wait
    else if (!m_timer.isActive())
        m_timer.start(0);
}

bool SpellAsYouType::checkParagraphAt(int position, int *next)
{
    EditorSurface &surface = m_core.surface();
    const Span paragraph = surface.paragraphAt(position);
    const QList<Span> found = misspeltSpans(surface.textRange(paragraph.start, paragraph.length));
    *next = paragraph.end() + 1;

    auto first = std::lower_bound(m_marks.begin(), m_marks.end(), paragraph.start,
                                  [](const Span &mark, int start) { return mark.end() <= start; });
    auto last = first;
    while (last != m_marks.end() && last->start <= paragraph.end())
        ++last;
    QList<Span> placed;
    placed.reserve(found.size());
    for (const Span &span : found)
        placed.append({paragraph.start + span.start, span.length});
    if (std::equal(first, last, placed.cbegin(), placed.cend()))
        return false;
    const qsizetype index = first - m_marks.begin();
    m_marks.erase(first, last);
    m_marks.insert(index, placed.size(), Span{});
    std::copy(placed.cbegin(), placed.cend(), m_marks.begin() + index);
    return true;
}

void SpellAsYouType::checkSlice(int budgetMs)
{
    if (!m_enabled)
        return;
    QElapsedTimer clock;
    clock.start();
    const int length = m_core.surface().textLength();
    bool changed = false;
    while (!m_dirty.isEmpty() && (budgetMs < 0 || clock.elapsed() < budgetMs)) {
        Span &range = m_dirty.first();
        if (range.start > length) {
            m_dirty.removeFirst();
            continue;
        }
        int next = 0;
        changed |= checkParagraphAt(range.start, &next);
        if (next >= range.end() || next > length)
            m_dirty.removeFirst();
        else
            range = {next, range.end() - next};
    }
    // The surface moves its copy of the marks with every edit as they are moved here, so when
    // no paragraph's marks changed there is nothing to repaint; the copy is compared all the
    // same (a plain comparison, far cheaper than repainting) so that it can never drift.
    EditorSurface &surface = m_core.surface();
    if (changed || surface.decorations(EditorSurface::DecorationLayer::Misspelling) != m_marks)
        surface.setDecorations(EditorSurface::DecorationLayer::Misspelling, m_marks);
    if (changed && m_marksObserver)
        m_marksObserver();
    schedule(0);
}

} // namespace kvrtb
