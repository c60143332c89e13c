#pragma once

#include "spelling/misspellings.h"
#include "spelling/userwordlist.h"

#include <QSet>
#include <QString>
#include <QStringList>

namespace kvrtb {

class ControlCore;

/// \brief One run of the spelling dialog over a control's document, without the dialog.
///
/// `start` scans the document for misspelt words (the control's misspelling detection, with
/// its progress and cancel hooks), then goes through them in text order: each one in turn is
/// found in the editor from where the previous one ended (whole word, case respected,
/// addresses and listed abbreviations passed over) and selected there, so the editor follows
/// the check. The user's answer moves on to the next one:
/// - `change` corrects the selected word (`FixSpelling`);
/// - `changeAll` corrects it everywhere (`FixSpelling2`), and later entries of the same word
///   are passed over;
/// - `ignore` leaves it; `ignoreAll` leaves it and every later entry of the same word (compared
///   without regard to case) for the rest of the run;
/// - `addToDictionary` puts it in the user's word list (kept across runs and programs), and
///   it is accepted from then on.
/// Words the user's word list holds are never stopped at.
///
/// Every correction is one edit of the editor, so the control's undo takes it back.
class SpellCheckSession {
public:
    enum class State {
        Idle,       ///< not started
        Checking,   ///< the scan runs
        Word,       ///< a misspelt word is selected and waits for an answer
        Done,       ///< every misspelt word has been answered (or there was none)
        Cancelled   ///< the scan was cancelled
    };

    /// \a userWords must outlive the session.
    SpellCheckSession(ControlCore &core, UserWordList &userWords);

    /// Scans the document and stops at the first misspelt word. \a observer carries the scan's
    /// progress and cancel hooks. Returns the state reached: `Word`, `Done` or `Cancelled`.
    State start(const Misspellings::Observer &observer);

    State state() const { return m_state; }
    /// The number of misspelt words the scan found (duplicates included), before any answer.
    int found() const { return static_cast<int>(m_entries.size()); }

    /// The misspelt word at hand; empty unless the state is `Word`.
    QString currentWord() const;
    /// Where the word at hand starts in the document, -1 for none.
    int currentPosition() const { return m_state == State::Word ? m_wordStart : -1; }
    /// The sentence the word at hand stands in (at most about 200 characters around it, line
    /// breaks as blanks); \a wordOffset receives the word's offset in it.
    QString context(int *wordOffset) const;
    /// Suggestions for the word at hand at \a accuracy, the likeliest first.
    QStringList suggestions(qint16 accuracy) const;

    /// The answers; each moves on to the next misspelt word and returns the new state.
    /// Without a word at hand they do nothing. An empty replacement is refused (state kept).
    State change(const QString &replacement);
    State changeAll(const QString &replacement);
    State ignore();
    State ignoreAll();
    /// Adds the word at hand to the user's word list. When the list cannot be written the
    /// reason is in \a error, the word is still accepted for this run, and the run goes on.
    State addToDictionary(QString *error = nullptr);

private:
    /// Finds and selects the next entry from `m_searchFrom`; Done when none is left.
    State advance();
    bool passedOver(const QString &word) const;

    ControlCore &m_core;
    UserWordList &m_userWords;
    State m_state = State::Idle;
    QStringList m_entries;
    int m_entry = -1;
    int m_searchFrom = 0;
    int m_wordStart = 0;
    int m_wordLength = 0;
    QSet<QString> m_ignored;    ///< lower-cased: Ignore All and Change All
};

} // namespace kvrtb
