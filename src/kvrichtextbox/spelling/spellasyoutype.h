#pragma once

#include "core/editorsurface.h"

#include <QList>
#include <QString>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>

namespace kvrtb {

class ControlCore;

/// \brief Spelling as you type: keeps the misspelt words of the editor marked with a wavy
/// underline while the user edits.
///
/// Words are found exactly as `DetectMisspellings` finds them (addresses and listed
/// abbreviations left out, the same tokenising, the same dictionary test, candidates with an
/// outer apostrophe never reported), paragraph by paragraph. Only the paragraphs an edit touched
/// are checked again, once typing has paused for `kPauseMilliseconds`, in idle slices of at
/// most `kSliceMilliseconds` run from the event loop, so a keystroke itself costs no more than
/// moving the marks (the marks an edit touched go at once; the paragraph's new ones come with
/// the pause). The marks are the surface's `Misspelling` decoration: they never enter the
/// document, its RTF, its undo or `SelUnderline`.
///
/// Off by default; switching it on checks the whole document in idle slices, switching it off
/// removes every mark.
class SpellAsYouType {
public:
    using Span = EditorSurface::TextSpan;

    /// Longest stretch of checking done in one turn of the event loop.
    static constexpr int kSliceMilliseconds = 4;
    /// How long typing must pause before edited paragraphs are checked.
    static constexpr int kPauseMilliseconds = 300;

    explicit SpellAsYouType(ControlCore &core);
    ~SpellAsYouType();

    bool isEnabled() const { return m_enabled; }
    /// Switches checking on (the whole text is queued) or off (all marks removed).
    void setEnabled(bool enabled);

    /// The misspelt words marked now, sorted by position.
    const QList<Span> &marks() const { return m_marks; }
    /// The marked word holding \a position (its first character to just after its last).
    std::optional<Span> markAt(int position) const;
    /// True while edited paragraphs wait to be checked.
    bool hasPending() const { return !m_dirty.isEmpty(); }
    /// Checks every waiting paragraph now (before a decision that needs current marks).
    void checkPending();
    /// Called after the marks changed by checking or by switching off; nullptr for none.
    void setMarksObserver(std::function<void()> observer) { m_marksObserver = std::move(observer); }

    /// The misspelt words of \a text (one paragraph or more) as spans of \a text: the words
    /// `DetectMisspellings` would report, where they stand.
    static QList<Span> misspeltSpans(const QString &text);

private:
    void onContentsChanged(int position, int removed, int added);
    /// Checks waiting paragraphs until the queue is empty or \a budgetMs has passed
    /// (a negative budget: no limit), then shows the marks.
    void checkSlice(int budgetMs);
    /// Checks the paragraph at \a position and sets \a next to the position after its
    /// paragraph mark; returns true when its marks changed.
    bool checkParagraphAt(int position, int *next);
    void queue(Span range);
    /// Runs the next slice after \a delayMs (restarting a wait already running), or, for 0,
    /// in the next turn of the event loop unless one is already due.
    void schedule(int delayMs);

    ControlCore &m_core;
    bool m_enabled = false;
    QList<Span> m_marks;  ///< sorted, non-overlapping
    QList<Span> m_dirty;  ///< stretches to check again, sorted, non-overlapping
    QTimer m_timer;
    std::function<void()> m_marksObserver;
    /// Cleared on destruction: the surface keeps the observer for its own (longer) life.
    std::shared_ptr<bool> m_alive = std::make_shared<bool>(true);
};

} // namespace kvrtb
