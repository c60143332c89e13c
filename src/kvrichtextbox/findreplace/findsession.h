#pragma once

#include "core/colour.h"
#include "core/editorsurface.h"
#include "findreplace/findquery.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QTimer>

#include <memory>
#include <optional>

namespace kvrtb {

class ControlCore;

/// \brief The engine behind the find dialog: finding with wrap-around, in the whole document or
/// in a fixed part of it, replacing, counting and highlighting every match.
///
/// It works on the document's plain text through the control's `FindReplace` (whose `Find2` and
/// other members it leaves as they are) and the editor surface.
///
/// - **Finding.** "Next" looks from the caret (the end of the selection) to the end of the
///   range searched; a zero-length match right at an empty selection is passed over, so a
///   pattern such as "^" moves on. "Previous" takes the last match that ends before the
///   selection's start. With wrap-around, a search that finds nothing on its way goes on from
///   the other end of the range (once: there is no loop when there is no match at all) and the
///   result says it wrapped.
/// - **In selection.** `setInSelection(true)` fixes the range searched to the selection the
///   user has at that moment; the range follows later edits (text inserted or removed inside it
///   grows or shrinks it), so selecting a match does not change it. An edit that replaces all
///   of it at once (typing over it, an undo of the whole document) ends find in selection and
///   raises `rangeLost`. A caret outside the range,
///   or the range itself still selected, searches from its start (next) or its end (previous).
/// - **Counting.** While the session is active (the dialog shown), every match in the range is
///   counted in slices of about `kSliceMilliseconds` run from the event loop, so a 5 MB
///   document keeps the dialog responsive; the count starts again `kRecountDelay` ms after the
///   search or the document changes. `countText()` reads "3 of 41" when the selection is the
///   third of 41 matches, "41 matches" when it is none of them, "No matches", and
///   "41 matches so far" / "3 of 41 so far" while counting goes on.
/// - **Highlighting.** With highlight-all on, the matches are drawn as the surface's find-match
///   decorations (paint only: never in the document, its RTF, its undo or its formats), at most
///   `kMaxHighlights` of them, those around the current match; the count is never capped.
///   Changing the search clears them at once; `deactivate()` (the dialog closing) clears them.
/// - **Too complex.** A regular expression that hits the engine's step limit gives
///   `Outcome::TooComplex` (and stops a count) instead of running on.
class FindSession : public QObject {
    Q_OBJECT

public:
    static constexpr int kSliceMilliseconds = 8;
    static constexpr int kRecountDelay = 120;
    static constexpr int kMaxHighlights = 10000;

    enum class Outcome { Found, Wrapped, NotFound, Invalid, TooComplex };
    struct Result {
        Outcome outcome = Outcome::NotFound;
        int position = -1;
    };

    explicit FindSession(ControlCore &core, QObject *parent = nullptr);
    ~FindSession() override;

    /// Sets what to find; clears the highlights and recounts.
    void setQuery(const FindQuery::Settings &settings);
    const FindQuery &query() const { return *m_query; }
    void setWrapAround(bool on) { m_wrapAround = on; }
    bool wrapAround() const { return m_wrapAround; }
    void setHighlightAll(bool on);
    /// Limits the search to the current selection (on) or lifts the limit (off). Returns false,
    /// leaving the whole document searched, when turned on with nothing selected.
    bool setInSelection(bool on);
    bool inSelection() const { return m_inSelection; }
    /// The range searched: the fixed selection, or the whole document.
    EditorSurface::TextSpan range();

    /// Starts counting and highlighting (the dialog is shown).
    void activate();
    /// Stops counting and clears the highlights (the dialog is hidden).
    void deactivate();

    Result findNext();
    Result findPrevious();
    /// Replaces the selection when it is a match (with \a fontColour when given), then finds
    /// the next match. \a replaced tells whether a replacement was made.
    Result replaceNext(const QString &replacement, std::optional<Colour> fontColour, bool *replaced);
    /// Replaces every match in the range as one edit (see `FindReplace::replaceEach`); a literal
    /// search of the whole document is exactly `FindReplace::ReplaceAll`. Returns the number
    /// replaced; \a outcome is `Invalid` or `TooComplex` when nothing could be searched.
    int replaceAll(const QString &replacement, std::optional<Colour> fontColour, Outcome *outcome);

    QString countText() const;
    /// Matches counted so far.
    int matchCount() const { return int(m_matches.size()); }
    bool countComplete() const { return m_countState == CountState::Done; }
    /// True when the count stopped at the regular-expression engine's step limit.
    bool countTooComplex() const { return m_countState == CountState::TooComplex; }
    /// The 1-based index of the selection among the matches counted, 0 when it is none of them.
    int currentIndex() const;
    /// The matches drawn now.
    QList<EditorSurface::TextSpan> highlighted() const;

signals:
    /// The count, the current match or the highlights changed.
    void countChanged();
    /// An edit replaced the whole range searched in selection: the whole document is searched.
    void rangeLost();

private:
    enum class CountState { Idle, Running, Done, TooComplex };

    /// \brief Keeps the range searched in selection out of the text observer while the session
    /// replaces matches inside it, then grows or shrinks it by what the replacements added.
    /// (The surface may report a batch of replacements as a change of whole paragraphs, which
    /// would otherwise stretch the range over them.)
    class ScopeHold {
    public:
        explicit ScopeHold(FindSession &session);
        ~ScopeHold();
        ScopeHold(const ScopeHold &) = delete;
        ScopeHold &operator=(const ScopeHold &) = delete;

    private:
        FindSession &m_session;
        int m_length;
    };

    /// The document's plain text, made searchable (`FindQuery::searchable`) once per change.
    const QString &searchText();
    /// True when the selection is the whole range searched in selection (just fixed).
    bool selectionIsRange() const;
    void scheduleRecount();
    void startCount();
    void countSlice();
    void updateHighlights();
    void clearHighlights();
    void textChanged(int position, int removed, int added);
    Result found(const FindQuery::Match &match, bool wrapped);
    /// The last match in \a searched that ends before \a before: from the count when it is
    /// complete and up to date (a bisection instead of a walk over a regular expression's
    /// matches), from the query otherwise.
    FindQuery::Match previousMatch(const QString &text, EditorSurface::TextSpan searched, int before);
    Result notFound(const FindQuery::Match &match) const;

    ControlCore &m_core;
    std::unique_ptr<FindQuery> m_query;
    bool m_wrapAround = true;
    bool m_highlightAll = true;
    bool m_inSelection = false;
    bool m_active = false;
    bool m_holdScope = false;
    EditorSurface::TextSpan m_scope;

    CountState m_countState = CountState::Idle;
    QString m_searchText;
    quint64 m_searchRevision = 0;
    bool m_searchTextValid = false;
    QString m_countText;
    quint64 m_countRevision = 0;
    int m_countStart = 0;
    int m_countPosition = 0;
    int m_countEnd = 0;
    QList<EditorSurface::TextSpan> m_matches;
    int m_highlightFirst = -1;
    int m_highlightCount = 0;
    QTimer m_recountTimer;
    QTimer m_sliceTimer;
    /// Shared with the surface's text observer, which outlives the session.
    std::shared_ptr<FindSession *> m_self;
};

} // namespace kvrtb
