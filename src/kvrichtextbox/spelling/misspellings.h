#pragma once

#include "spelling/misspellingscanner.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

namespace kvrtb {

class ControlCore;

/// \brief Misspelling detection on the control's document, and moving from one misspelt word
/// to the next: the control's `DetectMisspellings`, `SpellCheck`, `GoToNextSpellError`,
/// `GoToPreviousSpellError`, `PrepNonSpellCheckRTB` and `DetectNotWords`.
///
/// The scan itself is `MisspellingScanner`; this class feeds it the editor's text and the
/// platform's pending-input test and event loop, keeps the progress counters the spelling
/// dialog shows, and keeps the list of misspelt words (`List1`) with the current error that
/// the navigation members work from. Selecting a word uses `Find2` with whole word, match case
/// and addresses skipped, so a misspelt word inside an address or a listed abbreviation is
/// never the one selected.
///
/// A spelling dialog drives a scan with `DetectMisspellings(words, &observer)`: the observer is
/// asked whether to cancel after every word and told the counters as the scan goes on.
class Misspellings {
public:
    /// What a caller of a scan (the spelling dialog) is told and asked. Members may be empty.
    struct Observer {
        /// Polled after every word, besides the control's own stop flag (`KillSwitch`).
        std::function<bool()> isCancelled;
        /// The word counter and the word total, at a bounded rate and at the end.
        std::function<void(int counter, int total)> progress;
        /// Called once when a scan is cancelled (the dialog clears its word box then).
        std::function<void()> cancelled;
    };

    explicit Misspellings(ControlCore &core);

    /// Scans a copy of the whole text; the editor is not touched and may change meanwhile.
    /// Appends every unknown word to \a MyReturnArray in text order, duplicates included, and
    /// returns true when at least one was found; with none, the array is left as it was and
    /// the result is false. The stop flag is cleared when the scan starts (a `KillSwitch` from
    /// an idle moment does not cancel it); set during the scan, by `KillSwitch` or by
    /// \a observer, it empties the array, resets the word counter to 0 and ends the scan, whose
    /// result is then true if an unknown word had been found before (the array is empty all
    /// the same). Words met while user input is pending are passed over unexamined.
    bool DetectMisspellings(QStringList &MyReturnArray, const Observer *observer = nullptr);

    /// Runs `DetectMisspellings` into \a ReturnArray, loads `List1` with it and selects the
    /// first misspelt word in the editor (searched from the top with whole word, match case and
    /// addresses skipped); the end of that selection becomes the current error position.
    /// Returns -1 when there is no misspelling (`List1` stays empty), 0 when the scan was
    /// cancelled after finding one (the array is empty), otherwise the number of entries in
    /// `List1`.
    int SpellCheck(QStringList &ReturnArray);

    /// Loads `List1` with \a PassInArray (misspelt words in text order, e.g. from
    /// `DetectMisspellings`) and puts the current error before the first character, without
    /// moving the selection or marking anything: the next `GoToNextSpellError` selects the first
    /// listed word. An empty array empties `List1`.
    void PrepNonSpellCheckRTB(const QStringList &PassInArray);

    /// Selects the next listed word after the current error: entry by entry from the one after
    /// the current entry, the first that occurs after the current error position. Returns its
    /// position and makes it the current error; returns -1 and leaves the selection alone when
    /// the list has no further entry found in the text. It does not wrap to the top.
    int GoToNextSpellError();
    /// Selects the listed word before the current error, searching backward from the current
    /// error's start, entry by entry from the one before the current entry. Returns its position
    /// and makes it the current error, or -1 (selection unchanged) before the first entry. It
    /// does not wrap to the end.
    int GoToPreviousSpellError();

    /// True when \a MyHitSpot lies inside a stretch that is not a word to spell: a web or e-mail
    /// address (whether linked or not) or an abbreviation of the "DOTS" list as a scan removes
    /// it. A zone holds the positions from its first character to its last. False out of range.
    bool DetectNotWords(int MyHitSpot);

    /// The hidden word list `List1`: the misspelt words `SpellCheck` found, in text order.
    const QStringList &List1() const { return m_list1; }
    /// The entry of `List1` that is the current error, -1 for none.
    int currentEntry() const { return m_currentEntry; }
    /// The current error position: the end of the selection of the current misspelt word.
    int currentErrorPosition() const { return m_errorPosition; }

    /// The number of candidate words of the running (or last) scan, and how many are handled.
    int wordTotal() const { return m_progress.total; }
    int wordCounter() const { return m_progress.counter; }

private:
    /// Selects \a entry's word searching in \a direction from \a caret; on success it becomes
    /// the current error.
    int selectEntry(int entry, int caret, int direction);

    ControlCore &m_core;
    MisspellingScanner::Progress m_progress;
    QStringList m_list1;
    int m_currentEntry = -1;
    int m_errorPosition = 0;
    int m_errorLength = 0;
    /// The non-word zones of the text at surface revision `m_zonesRevision`.
    QList<MisspellingScanner::Zone> m_zones;
    quint64 m_zonesRevision = 0;
    bool m_zonesValid = false;
};

} // namespace kvrtb
