#include "editorinput/popupmenu.h"

#include "core/controlcore.h"
#include "editing/editcommands.h"
#include "editing/linesandcase.h"
#include "editing/specialundo.h"
#include "editorinput/inputhost.h"
#include "spelling/spellasyoutype.h"
#include "spelling/suggestions.h"
#include "spelling/thesaurus.h"
#include "spelling/wordlists.h"

namespace kvrtb {

namespace {

MenuItem command(MenuCommand id, const char *text, bool enabled = true)
{
    return MenuItem{int(id), QString::fromLatin1(text), enabled, {}};
}

MenuItem separator()
{
    return MenuItem{};
}

/// A sub-menu listing \a words with ids from \a firstId on, or the greyed \a none item.
MenuItem wordsSubmenu(const char *title, bool enabled, const QStringList &words, int firstId, const char *none)
{
    MenuItem submenu{0, QString::fromLatin1(title), enabled, {}};
    for (int i = 0; i < words.size(); ++i)
        submenu.submenu.append(MenuItem{firstId + i, words.at(i), true, {}});
    if (submenu.submenu.isEmpty())
        submenu.submenu.append(MenuItem{0, QString::fromLatin1(none), false, {}});
    return submenu;
}

} // namespace

PopupMenu::PopupMenu(ControlCore &core)
    : m_core(core)
{
    setSynonymSource(nullptr);
}

void PopupMenu::setSynonymSource(SynonymSource source)
{
    if (source)
        m_synonymSource = std::move(source);
    else
        m_synonymSource = [](const QString &word, QStringList &synonyms) { Thesaurus::GetSynonyms(word, synonyms); };
}

QList<MenuItem> PopupMenu::suggestionItems()
{
    m_suggestions.clear();
    m_misspelt = {};
    SpellAsYouType &spelling = m_core.spellAsYouType();
    if (!spelling.isEnabled())
        return {};
    spelling.checkPending();
    EditorSurface &surface = m_core.surface();
    std::optional<EditorSurface::TextSpan> mark =
        spelling.markAt(surface.charAtGlobalPoint(m_core.services().cursorPosition()));
    if (!mark)
        mark = spelling.markAt(surface.selStart());
    if (!mark)
        return {};
    m_misspelt = *mark;
    SPELL_CHECK_TYPE data;
    data.IncorrectWord = surface.textRange(mark->start, mark->length);
    data.QAccuracy = Suggestions::kDefaultAccuracy;
    Suggestions::GetRankedSpellingCorrections(data);
    const int count = int(MenuCommand::LastSuggestion) - int(MenuCommand::FirstSuggestion) + 1;
    m_suggestions = data.Suggestions.mid(0, count);
    QList<MenuItem> items;
    for (int i = 0; i < m_suggestions.size(); ++i)
        items.append(MenuItem{int(MenuCommand::FirstSuggestion) + i, m_suggestions.at(i), true, {}});
    if (items.isEmpty())
        items.append(MenuItem{0, QStringLiteral("No Spelling Suggestions"), false, {}});
    items.append(separator());
    return items;
}

QList<MenuItem> PopupMenu::build()
{
    EditCommands &commands = m_core.editCommands();
    SpecialUndo &undo = m_core.specialUndo();
    const QString selected = m_core.surface().selectedText();
    m_selectionEndsWithSpace = selected.endsWith(QLatin1Char(' '));

    // Look-ups only for a selection short enough to be a word: a long one gets the greyed
    // sub-menus without searching.
    m_synonyms.clear();
    const bool synonymsEnabled = commands.CanGetSynonym();
    if (synonymsEnabled)
        m_synonymSource(Thesaurus::wordOfSelection(selected), m_synonyms);
    m_completions.clear();
    const bool spellingEnabled = commands.CanGetSpelling();
    if (spellingEnabled) {
        QString letters = Thesaurus::wordOfSelection(selected);
        if (!letters.isEmpty())
            WordLists::GetWordsThatStartWith(letters, m_completions, kSpellingLimit);
    }

    QList<MenuItem> items = suggestionItems();
    if (undo.CanUndo())
        items << command(MenuCommand::Undo, "Undo");
    else
        items << command(MenuCommand::HyperUndo, "Undo", undo.linkUndoPending());
    items << separator() << command(MenuCommand::Cut, "Cut", commands.CanCut())
          << command(MenuCommand::Copy, "Copy", commands.CanCopy())
          << command(MenuCommand::Paste, "Paste", commands.CanPaste())
          << command(MenuCommand::Delete, "Delete", commands.CanDelete()) << separator()
          << command(MenuCommand::SelectAll, "Select All", commands.CanSelectAll()) << separator()
          << command(MenuCommand::Font, "Font") << command(MenuCommand::FontColor, "Font Color") << separator()
          << command(MenuCommand::Highlight, "Highlight", commands.CanHighlight())
          << command(MenuCommand::HighlightColor, "Highlight Color") << separator()
          << wordsSubmenu("Synonyms", synonymsEnabled, m_synonyms, int(MenuCommand::FirstSynonym),
                          "No Synonyms Found")
          << wordsSubmenu("Spell...", spellingEnabled, m_completions, int(MenuCommand::FirstSpelling),
                          "No Spell Help");
    if (m_core.properties().ShowVB6Syntax)
        items << separator() << command(MenuCommand::ApplyVB6Syntax, "Apply VB6 Syntax");
    return items;
}

void PopupMenu::replaceSelection(const QString &word)
{
    m_core.surface().replaceSelection(m_selectionEndsWithSpace ? word + QLatin1Char(' ') : word);
}

void PopupMenu::run(int id)
{
    ControlProperties &properties = m_core.properties();
    if (id >= int(MenuCommand::FirstSynonym) && id <= int(MenuCommand::LastSynonym)) {
        const int index = id - int(MenuCommand::FirstSynonym);
        if (index < m_synonyms.size())
            replaceSelection(m_synonyms.at(index));
        return;
    }
    if (id >= int(MenuCommand::FirstSpelling) && id <= int(MenuCommand::LastSpelling)) {
        const int index = id - int(MenuCommand::FirstSpelling);
        if (index < m_completions.size())
            replaceSelection(m_completions.at(index));
        return;
    }
    if (id >= int(MenuCommand::FirstSuggestion) && id <= int(MenuCommand::LastSuggestion)) {
        const int index = id - int(MenuCommand::FirstSuggestion);
        if (index < m_suggestions.size()) {
            m_core.surface().setSelection(m_misspelt.start, m_misspelt.length);
            m_core.surface().replaceSelection(m_suggestions.at(index));
        }
        return;
    }
    switch (MenuCommand(id)) {
    case MenuCommand::Undo: m_core.specialUndo().Undo(); break;
    case MenuCommand::HyperUndo: m_core.specialUndo().HyperUndo(); break;
    case MenuCommand::Cut: m_core.editCommands().Cut(); break;
    case MenuCommand::Copy: m_core.editCommands().Copy(); break;
    case MenuCommand::Paste: m_core.editCommands().Paste(); break;
    case MenuCommand::Delete: m_core.editCommands().Delete(); break;
    case MenuCommand::SelectAll: m_core.linesAndCase().SelectAllText(); break;
    case MenuCommand::Highlight: m_core.editCommands().HighLightText(properties.MyHLColor); break;
    case MenuCommand::Font:
        if (!m_host)
            break;
        if (properties.UseCustomFontDialog)
            m_host->ShowFontSelect();
        else
            m_host->CommonDialogFontSelect();
        break;
    case MenuCommand::FontColor:
        if (!m_host)
            break;
        m_host->setMyFontColor(m_host->CommonDialogFontColor(properties.MyFontColor));
        m_core.events().menuFontColorClick();
        break;
    case MenuCommand::HighlightColor: {
        if (!m_host)
            break;
        bool cancelled = false;
        // On cancel the dialog gives back the colour it was seeded with: the old one stays.
        m_host->setMyHLColor(m_host->CommonDialogColor(cancelled, properties.MyHLColor));
        m_core.events().menuHLColorClick();
        break;
    }
    case MenuCommand::ApplyVB6Syntax:
        m_core.events().menuVBSyntaxClickStart();
        if (m_host)
            m_host->ApplyVB6Syntax();
        m_core.events().menuVBSyntaxClickEnd();
        break;
    default:
        break; // nothing chosen, or an id no command answers to
    }
}

void PopupMenu::show()
{
    if (m_showing)
        return;
    m_showing = true;
    m_core.events().begin();
    PlatformServices &services = m_core.services();
    const QList<MenuItem> items = build();
    const int chosen = services.popupMenu(items, services.cursorPosition());
    run(chosen);
    m_showing = false;
    m_core.events().finish();
    m_core.events().ready();
}

} // namespace kvrtb
