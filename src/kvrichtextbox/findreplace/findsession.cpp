#include "findreplace/findsession.h"

#include "core/controlcore.h"
#include "findreplace/findreplace.h"

#include <QElapsedTimer>

#include <algorithm>
#include <iterator>

namespace kvrtb {

namespace {

/// Where the search goes on after \a match, so that matches never overlap and a zero-length
/// match does not hold it in place.
int afterMatch(const FindQuery::Match &match)
{
    return match.length > 0 ? match.end() : match.start + 1;
}

} // namespace

FindSession::FindSession(ControlCore &core, QObject *parent)
    : QObject(parent), m_core(core), m_query(std::make_unique<FindQuery>(FindQuery::Settings{})),
      m_self(std::make_shared<FindSession *>(this))
{
    m_recountTimer.setSingleShot(true);
    m_recountTimer.setInterval(kRecountDelay);
    connect(&m_recountTimer, &QTimer::timeout, this, &FindSession::startCount);
    m_sliceTimer.setSingleShot(true);
    m_sliceTimer.setInterval(0);
    connect(&m_sliceTimer, &QTimer::timeout, this, &FindSession::countSlice);
    std::weak_ptr<FindSession *> self = m_self;
    m_core.surface().addContentsObserver([self](int position, int removed, int added) {
        if (const auto session = self.lock())
            (*session)->textChanged(position, removed, added);
    });
}

FindSession::~FindSession()
{
    m_self.reset();
}

void FindSession::setQuery(const FindQuery::Settings &settings)
{
    m_query = std::make_unique<FindQuery>(settings);
    m_matches.clear();
    m_countState = CountState::Idle;
    m_sliceTimer.stop();
    clearHighlights();
    scheduleRecount();
    emit countChanged();
}

void FindSession::setHighlightAll(bool on)
{
    m_highlightAll = on;
    if (on)
        updateHighlights();
    else
        clearHighlights();
}

bool FindSession::setInSelection(bool on)
{
    EditorSurface &surface = m_core.surface();
    if (on && surface.selLength() <= 0)
        on = false;
    const bool changed = on != m_inSelection || on;
    m_inSelection = on;
    if (on)
        m_scope = {surface.selStart(), surface.selLength()};
    if (changed) {
        m_matches.clear();
        m_countState = CountState::Idle;
        clearHighlights();
        scheduleRecount();
        emit countChanged();
    }
    return on;
}

const QString &FindSession::searchText()
{
    const QString &text = m_core.findReplace().documentText();
    const quint64 revision = m_core.surface().revision();
    if (!m_searchTextValid || revision != m_searchRevision) {
        m_searchText = FindQuery::searchable(text);
        m_searchRevision = revision;
        m_searchTextValid = true;
    }
    return m_searchText;
}

EditorSurface::TextSpan FindSession::range()
{
    const int length = m_core.surface().textLength();
    if (!m_inSelection)
        return {0, length};
    const int start = std::clamp(m_scope.start, 0, length);
    return {start, std::clamp(m_scope.end(), start, length) - start};
}

bool FindSession::selectionIsRange() const
{
    const EditorSurface &surface = m_core.surface();
    return m_inSelection && surface.selLength() > 0 && surface.selStart() == m_scope.start
        && surface.selLength() == m_scope.length;
}

FindSession::ScopeHold::ScopeHold(FindSession &session)
    : m_session(session), m_length(session.m_core.surface().textLength())
{
    m_session.m_holdScope = true;
}

FindSession::ScopeHold::~ScopeHold()
{
    m_session.m_holdScope = false;
    EditorSurface::TextSpan &scope = m_session.m_scope;
    if (m_session.m_inSelection)
        scope.length = std::max(0, scope.length + m_session.m_core.surface().textLength() - m_length);
}

void FindSession::activate()
{
    m_active = true;
    scheduleRecount();
}

void FindSession::deactivate()
{
    m_active = false;
    m_recountTimer.stop();
    m_sliceTimer.stop();
    if (m_countState == CountState::Running)
        m_countState = CountState::Idle;
    clearHighlights();
}

void FindSession::textChanged(int position, int removed, int added)
{
    if (m_inSelection && !m_holdScope && removed != added) {
        // An edit before the range moves it; one that touches it grows or shrinks it.
        const int delta = added - removed;
        const bool before = removed > 0 ? position + removed <= m_scope.start : position < m_scope.start;
        const bool covers = position <= m_scope.start && position + removed >= m_scope.end();
        if (before) {
            m_scope.start += delta;
        } else if (covers) {
            // Replaced with the text around it (an undo of the whole document, say): where the
            // range went cannot be told, so searching in it ends.
            m_inSelection = false;
            emit rangeLost();
        } else if (position < m_scope.end()) {
            const int start = std::min(m_scope.start, position);
            const int end = std::max(position + added, m_scope.end() + delta);
            m_scope = {start, std::max(end - start, 0)};
        }
    }
    if (m_active)
        scheduleRecount();
}

void FindSession::scheduleRecount()
{
    if (m_active)
        m_recountTimer.start();
}

void FindSession::startCount()
{
    m_sliceTimer.stop();
    m_matches.clear();
    m_highlightFirst = -1;
    if (!m_active || !m_query->isValid()) {
        m_countState = CountState::Idle;
        clearHighlights();
        emit countChanged();
        return;
    }
    m_countText = searchText();
    const EditorSurface::TextSpan searched = range();
    m_countRevision = m_core.surface().revision();
    m_countStart = searched.start;
    m_countPosition = searched.start;
    m_countEnd = searched.end();
    m_countState = CountState::Running;
    countSlice();
}

void FindSession::countSlice()
{
    if (m_countState != CountState::Running)
        return;
    QElapsedTimer clock;
    clock.start();
    while (m_countPosition <= m_countEnd) {
        const FindQuery::Match match = m_query->next(m_countText, m_countPosition, m_countEnd);
        if (match.status == FindQuery::Status::TooComplex) {
            m_countState = CountState::TooComplex;
            break;
        }
        if (!match.found()) {
            m_countState = CountState::Done;
            break;
        }
        m_matches.append({match.start, match.length});
        m_countPosition = afterMatch(match);
        if (clock.elapsed() >= kSliceMilliseconds)
            break;
    }
    if (m_countState == CountState::Running && m_countPosition > m_countEnd)
        m_countState = CountState::Done;
    if (m_countState == CountState::Running)
        m_sliceTimer.start();
    if (m_countState != CountState::Running || m_highlightCount < kMaxHighlights)
        updateHighlights();
    emit countChanged();
}

int FindSession::currentIndex() const
{
    const EditorSurface &surface = m_core.surface();
    const int start = surface.selStart();
    const auto it = std::lower_bound(m_matches.cbegin(), m_matches.cend(), start,
                                     [](const EditorSurface::TextSpan &span, int at) { return span.start < at; });
    if (it == m_matches.cend() || it->start != start || it->length != surface.selLength())
        return 0;
    return int(it - m_matches.cbegin()) + 1;
}

QString FindSession::countText() const
{
    if (!m_query->isValid())
        return QString();
    if (m_countState == CountState::TooComplex)
        return QStringLiteral("Count stopped");
    const int total = matchCount();
    const int current = currentIndex();
    if (m_countState != CountState::Done) {
        if (m_countState == CountState::Idle && total == 0)
            return QStringLiteral("Counting...");
        return current > 0 ? QStringLiteral("%1 of %2 so far").arg(current).arg(total)
                           : QStringLiteral("%1 matches so far").arg(total);
    }
    if (total == 0)
        return QStringLiteral("No matches");
    if (current > 0)
        return QStringLiteral("%1 of %2").arg(current).arg(total);
    return total == 1 ? QStringLiteral("1 match") : QStringLiteral("%1 matches").arg(total);
}

void FindSession::updateHighlights()
{
    if (!m_active || !m_highlightAll || m_matches.isEmpty()) {
        clearHighlights();
        return;
    }
    // The window of matches drawn: centred on the current match, or from the first.
    const int total = matchCount();
    const int current = currentIndex();
    int first = current > 0 ? std::max(0, current - 1 - kMaxHighlights / 2) : 0;
    first = std::max(0, std::min(first, total - kMaxHighlights));
    const int count = std::min(kMaxHighlights, total - first);
    if (first == m_highlightFirst && count == m_highlightCount)
        return;
    m_highlightFirst = first;
    m_highlightCount = count;
    m_core.surface().setDecorations(EditorSurface::DecorationLayer::FindMatch, m_matches.mid(first, count));
}

void FindSession::clearHighlights()
{
    m_highlightFirst = -1;
    m_highlightCount = 0;
    m_core.surface().setDecorations(EditorSurface::DecorationLayer::FindMatch, {});
}

QList<EditorSurface::TextSpan> FindSession::highlighted() const
{
    return m_core.surface().decorations(EditorSurface::DecorationLayer::FindMatch);
}

FindSession::Result FindSession::found(const FindQuery::Match &match, bool wrapped)
{
    m_core.surface().setSelection(match.start, match.length);
    // A selection that is not a counted match means the count is behind the document.
    if (countComplete() && currentIndex() == 0)
        scheduleRecount();
    updateHighlights();
    emit countChanged();
    return {wrapped ? Outcome::Wrapped : Outcome::Found, match.start};
}

FindSession::Result FindSession::notFound(const FindQuery::Match &match) const
{
    if (!m_query->isValid())
        return {Outcome::Invalid, -1};
    return {match.status == FindQuery::Status::TooComplex ? Outcome::TooComplex : Outcome::NotFound, -1};
}

FindSession::Result FindSession::findNext()
{
    const QString &text = searchText();
    const EditorSurface &surface = m_core.surface();
    const EditorSurface::TextSpan searched = range();
    const int caret = surface.selStart() + surface.selLength();
    const bool inside = caret >= searched.start && caret <= searched.end() && !selectionIsRange();
    const int from = inside ? caret : searched.start;
    FindQuery::Match match = m_query->next(text, from, searched.end());
    if (match.found() && match.length == 0 && match.start == caret && surface.selLength() == 0)
        match = match.start < searched.end() ? m_query->next(text, match.start + 1, searched.end()) : FindQuery::Match();
    if (match.found())
        return found(match, false);
    if (match.status == FindQuery::Status::NotFound && m_wrapAround && from > searched.start) {
        match = m_query->next(text, searched.start, searched.end());
        if (match.found())
            return found(match, true);
    }
    return notFound(match);
}

FindQuery::Match FindSession::previousMatch(const QString &text, EditorSurface::TextSpan searched, int before)
{
    const bool counted = m_countState == CountState::Done && m_countRevision == m_core.surface().revision()
        && m_countStart == searched.start && m_countEnd == searched.end();
    if (!counted)
        return m_query->previous(text, searched.start, before);
    // The counted matches are the ones a backward search walks: take the last that ends before
    // \a before (a zero-length one only if it is before it), found by bisection.
    const auto after = std::partition_point(m_matches.cbegin(), m_matches.cend(), [before](const EditorSurface::TextSpan &span) {
        return span.end() <= before && (span.length > 0 || span.start < before);
    });
    FindQuery::Match match;
    if (after != m_matches.cbegin()) {
        match.status = FindQuery::Status::Found;
        match.start = std::prev(after)->start;
        match.length = std::prev(after)->length;
    }
    return match;
}

FindSession::Result FindSession::findPrevious()
{
    const QString &text = searchText();
    const EditorSurface::TextSpan searched = range();
    const int caret = m_core.surface().selStart();
    const bool inside = caret >= searched.start && caret <= searched.end() && !selectionIsRange();
    const int before = inside ? caret : searched.end();
    FindQuery::Match match = previousMatch(text, searched, before);
    if (match.found())
        return found(match, false);
    if (match.status == FindQuery::Status::NotFound && m_wrapAround && before < searched.end()) {
        match = previousMatch(text, searched, searched.end());
        if (match.found())
            return found(match, true);
    }
    return notFound(match);
}

FindSession::Result FindSession::replaceNext(const QString &replacement, std::optional<Colour> fontColour,
                                             bool *replaced)
{
    EditorSurface &surface = m_core.surface();
    const EditorSurface::TextSpan searched = range();
    const int start = surface.selStart();
    bool done = false;
    if (start >= searched.start) {
        const FindQuery::Match match =
            m_query->exactlyAt(searchText(), start, surface.selLength(), searched.end());
        if (match.found()) {
            const QString newText = m_query->replacementFor(match, replacement);
            CharFormat colour;
            if (fontColour)
                colour.color = translateColour(*fontColour);
            {
                const ScopeHold hold(*this);
                surface.replaceRanges({{match.start, match.length, newText}}, fontColour ? &colour : nullptr);
            }
            surface.setSelStart(match.start + int(newText.size()));
            done = true;
        }
    }
    if (replaced)
        *replaced = done;
    return findNext();
}

int FindSession::replaceAll(const QString &replacement, std::optional<Colour> fontColour, Outcome *outcome)
{
    *outcome = m_query->isValid() ? Outcome::Found : Outcome::Invalid;
    if (!m_query->isValid())
        return 0;
    FindReplace &findReplace = m_core.findReplace();
    const FindQuery::Settings &settings = m_query->settings();
    if (!settings.regex && !m_inSelection) {
        const int options = (settings.wholeWord ? WholeWord : 0) | (settings.matchCase ? MatchCase : 0);
        return findReplace.ReplaceAll(settings.pattern, replacement, FindOptionsQ(options), fontColour);
    }
    bool tooComplex = false;
    const ScopeHold hold(*this);
    const int count = findReplace.replaceEach(
        [&](const QString &document) {
            const QString text = FindQuery::searchable(document);
            QList<EditorSurface::TextReplacement> batch;
            const EditorSurface::TextSpan searched = range();
            int position = searched.start;
            while (position <= searched.end()) {
                const FindQuery::Match match = m_query->next(text, position, searched.end());
                if (match.status == FindQuery::Status::TooComplex) {
                    // All or nothing: a pass that cannot see every match replaces none.
                    tooComplex = true;
                    return QList<EditorSurface::TextReplacement>();
                }
                if (!match.found())
                    break;
                batch.append({match.start, match.length, m_query->replacementFor(match, replacement)});
                position = afterMatch(match);
            }
            return batch;
        },
        fontColour);
    if (tooComplex)
        *outcome = Outcome::TooComplex;
    return count;
}

} // namespace kvrtb
