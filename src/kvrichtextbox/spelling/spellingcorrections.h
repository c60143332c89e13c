#pragma once

#include "core/colour.h"

#include <QList>
#include <QString>

#include <optional>

namespace kvrtb {

class ControlCore;

/// \brief Correcting misspelt words in the editor: the control's `FixSpelling`,
/// `FixSpelling2` and `UndoSpellCorrection`.
///
/// A correction works on the misspelt word: the selected text (as the spelling check, the
/// navigation members and the spelling dialog leave it selected), or, with nothing selected,
/// the word the caret is in or touches. Whole words only: a word is a run of letters, digits,
/// "_" and apostrophes inside it.
///
/// The replacement follows the capitalisation of the word it replaces when it is itself all
/// lower case: "Teh" becomes "The", "TEH" becomes "THE" (a word of one letter counts as
/// capitalised, not as all upper case). A replacement with capitals of its own is put in as it
/// is. The new text takes the character format of the word it replaces.
///
/// Each correction is one edit of the editor: one `Undo` (Ctrl+Z) takes all of it back, a
/// Change All included. `UndoSpellCorrection` takes back the last correction made through this
/// object, as long as the corrected words are still there unchanged.
///
/// Nothing is changed in a read-only editor, or with an empty correction.
class SpellingCorrections {
public:
    explicit SpellingCorrections(ControlCore &core);

    /// Replaces the misspelt word with `CorrectSpelling`. With `HighlightFixes` the corrected
    /// word gets the background `HighLightColor` (0x00BBGGRR or a system colour; 0xFFFF is
    /// yellow). Raises `Finish` and `Ready`. The caret ends just after the corrected word and
    /// that position is the result; -1 when nothing was corrected (no word, an empty
    /// correction, a read-only editor).
    int FixSpelling(const QString &CorrectSpelling, bool HighlightFixes = false, Colour HighLightColor = 0xFFFF);

    /// Change All: replaces every occurrence of the misspelt word in the document (whole
    /// words, without regard to case, each taking the capitalisation of the occurrence it
    /// replaces) with `CorrectSpelling`, as one edit. Occurrences inside links made by the
    /// control (web and e-mail addresses) are left alone. Raises `Begin`, `Finish` and
    /// `Ready`. The caret ends just after the occurrence that was selected (or after the
    /// last one changed). Returns the number of words changed (0 when nothing was).
    int FixSpelling2(const QString &CorrectSpelling);

    /// Takes back the last `FixSpelling` or `FixSpelling2`: every corrected word gets its
    /// misspelt text back (and its former background when the correction highlighted it),
    /// and the first of them is selected. Returns the start of that word, or -1 when there is
    /// nothing to take back or the document no longer holds the corrected words where they
    /// were put (then nothing changes). A second call after a successful one returns -1.
    int UndoSpellCorrection();

    /// The range of the misspelt word a correction would replace: the selection when it is
    /// not empty, else the word at the caret. Returns false when there is none.
    bool misspeltRange(int &start, int &length) const;

    /// `replacement` with the capitalisation of `original` when it is all lower case.
    static QString matchCapitalisation(const QString &original, const QString &replacement);

    /// Whole-word occurrences of `word` in `text` without regard to case, as start positions.
    static QList<int> wholeWordOccurrences(const QString &text, const QString &word);

private:
    struct Change {
        int start = 0;          ///< where the corrected word starts now
        QString original;       ///< the misspelt text it replaced
        QString replacement;    ///< the corrected text as put in
        bool highlighted = false;
        Colour formerBackColour = kAutoColour;
    };

    bool editable(const QString &correction) const;
    /// Replaces each change's `original` by its `replacement`, in ascending order, as one edit.
    /// The starts are taken as they are before the first replacement and come back as where
    /// each new text now starts. With `highlight` the new texts get that background (the
    /// former one is recorded); without it, a change marked `highlighted` gets its
    /// `formerBackColour` back.
    void apply(QList<Change> &changes, std::optional<Colour> highlight);

    ControlCore &m_core;
    QList<Change> m_lastCorrection;
};

} // namespace kvrtb
