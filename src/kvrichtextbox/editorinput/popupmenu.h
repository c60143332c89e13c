#pragma once

#include "core/editorsurface.h"
#include "core/platformservices.h"

#include <QList>
#include <QStringList>

#include <functional>

namespace kvrtb {

class ControlCore;
class InputHost;

/// \brief The command ids of the control's pop-up menu: what `PlatformServices::popupMenu`
/// returns for each item. Ids 3 and 12 are not used; 0 means nothing was chosen.
enum class MenuCommand : int {
    None = 0,
    Undo = 1,           ///< the surface can undo
    HyperUndo = 2,      ///< "Undo" when only the control's own snapshot can bring text back
    Cut = 4,
    Copy = 5,
    Paste = 6,
    Delete = 7,
    SelectAll = 8,
    Font = 9,
    FontColor = 10,
    Highlight = 11,
    HighlightColor = 13,
    FirstSynonym = 37,  ///< synonym i (0-based) has id 37 + i
    LastSynonym = 42,   ///< only the first six synonyms are acted upon
    FirstSpelling = 47, ///< completion i (0-based) has id 47 + i
    LastSpelling = 56,
    ApplyVB6Syntax = 99,
    FirstSuggestion = 101, ///< spelling-as-you-type suggestion i (0-based) has id 101 + i
    LastSuggestion = 110
};

/// \brief The control's right-click menu: built fresh for each showing from the state of the
/// editor, shown through the platform services, and the chosen command run.
///
/// The synonym items carry ids from 37 on and the completion ("Spell...") items ids from 47 on.
/// Only the first six synonyms (37..42) replace the selection; a seventh to tenth synonym is
/// listed but does nothing, and from the eleventh on a synonym's id is that of a completion
/// item, so choosing it acts as that completion (or does nothing when there are fewer). These
/// limits are the menu's documented behaviour and are kept.
///
/// With spelling as you type on and the pointer (or else the caret) on an underlined word, the
/// menu begins with that word's ranked suggestions (at most ten, ids 101 to 110, or a greyed
/// "No Spelling Suggestions" with id 0) and a separator; choosing one replaces the word. The
/// documented items follow in their order with their ids unchanged. With it off (the default)
/// the menu is exactly the documented one.
class PopupMenu {
public:
    /// Most completions listed under "Spell...".
    static constexpr int kSpellingLimit = 10;

    explicit PopupMenu(ControlCore &core);
    /// The facade's members the menu runs (dialogs, keyword colouring); not owned. Without one,
    /// those items do nothing.
    void setHost(InputHost *host) { m_host = host; }
    /// Where the "Synonyms" sub-menu gets a word's synonyms: the built-in thesaurus unless
    /// another source is given (a host's own word list, or a test's).
    using SynonymSource = std::function<void(const QString &word, QStringList &synonyms)>;
    void setSynonymSource(SynonymSource source);

    /// Raises `Begin`, shows the menu at the mouse pointer, runs the chosen command and raises
    /// `Finish` and `Ready` (also when nothing was chosen). A request made while the menu is
    /// already showing (from a handler that runs inside it) is ignored.
    void show();

    /// The items as the menu would show them now; fills the synonym and completion lists that
    /// a chosen id refers to.
    QList<MenuItem> build();
    /// Runs the command with id \a id against the lists of the last `build`.
    void run(int id);

private:
    /// Replaces the selection with \a word, followed by a space when the selection ended with one.
    void replaceSelection(const QString &word);
    /// The suggestion items for the underlined word under the pointer or caret, if any; fills
    /// `m_suggestions` and `m_misspelt`.
    QList<MenuItem> suggestionItems();

    ControlCore &m_core;
    InputHost *m_host = nullptr;
    SynonymSource m_synonymSource;
    QStringList m_synonyms;
    QStringList m_completions;
    QStringList m_suggestions;
    EditorSurface::TextSpan m_misspelt;
    bool m_selectionEndsWithSpace = false;
    bool m_showing = false;
};

} // namespace kvrtb
