#pragma once

#include "core/colour.h"
#include "core/editorsurface.h"
#include "core/kvrtbtypes.h"

#include <QPointer>
#include <QString>

#include <functional>
#include <optional>

namespace kvrtb {

class ControlCore;
class FindReplaceFrm;

/// \brief Finding and replacing text in the control's document: the control's `Find2`,
/// `FindVerify`, `TopLineSelStart`, `ExitFindRep` and `ShowFindReplace`, and the replace
/// operations behind the "Find / Replace" dialog.
///
/// Searches are literal (see `TextSearch` for the whole-word and case rules) and run over the
/// editor's plain text, read once per change of the document. A forward search starts at the
/// caret (the end of the selection, so "find next" moves past a selected hit) and ends at the
/// end of the document: it never wraps to the top. A backward search looks before the
/// selection's start.
///
/// Replace all is one batched edit of the document: it computes every hit of the text as it
/// stands, then replaces them in one change, so a replacement that contains the searched text
/// is never searched again. Before it, the control's own undo takes a snapshot and the undo
/// kind becomes `ReplaceTextUD`, so one `HyperUndo` takes the whole replace-all back.
class FindReplace {
public:
    explicit FindReplace(ControlCore &core);
    ~FindReplace();
    FindReplace(const FindReplace &) = delete;
    FindReplace &operator=(const FindReplace &) = delete;

    /// Finds \a TextToFind and selects it (start = the position, length = the text's length).
    /// Returns the 0-based position, or -1 (selection unchanged) when there is none.
    /// - `FindNext` searches from the caret to the end of the document.
    /// - `FindPrevious` looks for the last occurrence that ends before the selection's start (a
    ///   start below 1 counts as 1, so a one-character text at position 0 is still found with
    ///   the caret at 0), comparing without regard to case for `AllMatches` and `WholeWord`;
    ///   a candidate that is not a whole word (with the whole-word options) makes it look
    ///   again before that candidate.
    /// - With \a SkipURLEmail, a hit inside a web or e-mail address or a listed abbreviation
    ///   (`DetectNotWords`) is passed over and the search goes on past it.
    /// Any direction other than `FindPrevious` searches forward. An empty text gives -1.
    int Find2(const QString &TextToFind, FindDirectionQ FindDirection = FindNext,
              FindOptionsQ FindOptions = AllMatches, bool SkipURLEmail = false);

    /// True when \a FVTextToFind occurs anywhere in the document under the options (an empty
    /// text never does). Nothing moves.
    bool FindVerify(const QString &FVTextToFind, FindOptionsQ FVFindOptions = AllMatches);

    /// The position of the first character of the first visible line.
    int TopLineSelStart() const;

    /// Sets the stop flag (the one `KillSwitch` sets): a running replace-all stops after the
    /// replacement at hand.
    void ExitFindRep();

    /// Shows the modeless "Find / Replace" dialog for this control (one per control; showing it
    /// again raises it). A single-line selection becomes the text to find.
    void ShowFindReplace();
    /// The dialog, when it has been shown and not destroyed.
    FindReplaceFrm *dialog() const;

    /// Replaces every occurrence of \a find by \a replacement under \a options and returns the
    /// number replaced (0 when there is none: then nothing changes and no event is raised).
    /// The stop flag is cleared at the start and tested after every replacement: set meanwhile
    /// (the pass yields to the event loop now and then), the pass stops there and the
    /// replacements made so far are kept and counted. While it runs the rewrite-in-progress flag
    /// is raised, so hyperlink passes stop. With \a fontColour the replacements take that
    /// colour. Raises `Begin`, `Finish` and `Ready`; the view scrolls back to where it was.
    int ReplaceAll(const QString &find, const QString &replacement, FindOptionsQ options,
                   std::optional<Colour> fontColour = std::nullopt);

    /// Computes the replacements of a pass over the document's plain text: ascending ranges that
    /// do not overlap, each with its new text.
    using ReplacementsIn = std::function<QList<EditorSurface::TextReplacement>(const QString &text)>;
    /// A replace-all pass over the ranges \a replacementsIn gives for the document: the same
    /// one batched edit, undo snapshot, stop flag, events and scrolling back as `ReplaceAll`
    /// (which is this pass over the literal hits). \a replacementsIn is called again when input
    /// handled during a yield changed the document. Returns the number replaced.
    int replaceEach(const ReplacementsIn &replacementsIn, std::optional<Colour> fontColour = std::nullopt);

    /// The dialog's "Replace": when the selection is an occurrence of \a find under \a options
    /// it is replaced (taking \a fontColour when given); then the next occurrence after the
    /// caret is found and selected. Returns that occurrence's position or -1. \a replaced (when
    /// given) tells whether a replacement was made.
    int ReplaceNext(const QString &find, const QString &replacement, FindOptionsQ options,
                    std::optional<Colour> fontColour = std::nullopt, bool *replaced = nullptr);

    /// The document's plain text, read again only when the document changed.
    const QString &documentText();

    /// Replace-all hits handled between two yields to the event loop.
    static constexpr int kYieldInterval = 64;

private:
    /// Selects [position, position + length) and returns \a position.
    int select(int position, int length);

    ControlCore &m_core;
    QPointer<FindReplaceFrm> m_dialog;
    QString m_text;
    quint64 m_textRevision = 0;
    bool m_textValid = false;
};

} // namespace kvrtb
