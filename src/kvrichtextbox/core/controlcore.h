#pragma once

#include "core/controlevents.h"
#include "core/controlproperties.h"
#include "core/editorsurface.h"
#include "core/platformservices.h"

#include <functional>
#include <memory>

class QWidget;

namespace kvrtb {

class Documents;
class EditCommands;
class EditorInput;
class FindReplace;
class FontSelection;
class Hyperlinks;
class LinesAndCase;
class Misspellings;
class Printing;
class Ruler;
class SpecialUndo;
class SpellingCorrections;
class SpellAsYouType;
class Syntax;
class WhatsThisHelp;

/// \brief Everything a control is, without the widget: its two editor surfaces, the platform
/// services, its settings, the sink of its events, and one object per area of its logic.
///
/// `KvRTB` owns one and forwards its public members to the areas. Tests build one directly
/// with recording services and events, so every area runs headless. Areas reach each other
/// through the core (a linking pass records undo, a load runs the linking pass, ...).
///
/// Areas register here as they are built: a member `std::unique_ptr<Area>`, an accessor, and
/// its construction in the constructor (areas are created after the surfaces and may keep a
/// reference to the core).
class ControlCore {
public:
    /// \a parent becomes the parent of the visible editor; the converter surface stays hidden.
    /// The services and events must outlive the core.
    ControlCore(QWidget *parent, PlatformServices &services, ControlEvents &events);
    ~ControlCore();
    ControlCore(const ControlCore &) = delete;
    ControlCore &operator=(const ControlCore &) = delete;

    /// The visible editing surface (`RichTextBox1`).
    EditorSurface &surface() { return *m_surface; }
    /// The hidden converter surface (`RichTextBox2`).
    EditorSurface &converter() { return *m_converter; }
    PlatformServices &services() { return m_services; }
    ControlEvents &events() { return m_events; }
    ControlProperties &properties() { return m_properties; }
    const ControlProperties &properties() const { return m_properties; }

    /// Freezes (true) or thaws (false) the editor's display, unless a paste holds the lock.
    void lockWindowUpdate(bool lock);

    /// Lines, caret and case queries and commands.
    LinesAndCase &linesAndCase() { return *m_linesAndCase; }
    /// The control's own undo: the per-thread snapshot and the surface's one-step undo.
    SpecialUndo &specialUndo() { return *m_specialUndo; }
    /// Alignment, highlight, spacing, lists, script, wrap, clipboard and the Can... queries.
    EditCommands &editCommands() { return *m_editCommands; }
    /// Address detection and link marking.
    Hyperlinks &hyperlinks() { return *m_hyperlinks; }
    /// Loading and saving documents, the file dialogs and the enciphered-file test.
    Documents &documents() { return *m_documents; }
    /// Keyword colouring of VB6, VB.NET and the host's own patterns.
    Syntax &syntax() { return *m_syntax; }
    /// The control's key and mouse handling, typing follow-up and pop-up menu: the listener of
    /// the visible surface once the widget connects it.
    EditorInput &editorInput() { return *m_editorInput; }

    /// Misspelling detection and moving between misspelt words.
    Misspellings &misspellings() { return *m_misspellings; }
    /// Find and replace, and the "Find / Replace" dialog.
    FindReplace &findReplace() { return *m_findReplace; }
    /// Corrections of misspelt words and taking them back.
    SpellingCorrections &spellingCorrections() { return *m_spellingCorrections; }
    /// Misspelt words underlined while the user types (off until switched on).
    SpellAsYouType &spellAsYouType() { return *m_spellAsYouType; }

    /// The font and colour dialogs and default-font mode.
    FontSelection &fontSelection() { return *m_fontSelection; }
    /// What's This help on the editor and the help document.
    WhatsThisHelp &whatsThisHelp() { return *m_whatsThisHelp; }
    /// The ruler: the indents and tab stops of the caret's paragraph, and changing them.
    Ruler &ruler() { return *m_ruler; }
    /// Printing, print preview and the page headings.
    Printing &printing() { return *m_printing; }

    /// \brief Brings the ruler in line with the paragraph at the caret (its indent handles and
    /// tab stops). Everything that moves the caret or changes paragraphs behind the ruler's back
    /// calls it: arrow keys and mouse clicks in the editor, undo, paste, loading a document.
    void refreshRuler();

    /// Completion percentage (0 to 100) of the running long operation; 0 when none runs.
    int progress() const { return m_progress; }
    /// Sets the percentage (clamped to 0..100) and tells the events sink (which shows it in the
    /// progress bar) when it differs from what the sink was last told.
    void setProgress(int percent);
    /// Sets the percentage (clamped to 0..100) without telling the events sink: `progress` is
    /// right at once, the progress bar catches up at the next `setProgress`. For long loops that
    /// keep the number exact at every yield but repaint the bar only now and then.
    void setProgressValue(int percent);

    /// While true, selection changes are not reported to the host: bulk passes move the
    /// selection without telling it. Use `QuietSelection` to set it for a scope.
    bool isSelectionQuiet() const { return m_selectionQuiet > 0; }
    void beginQuietSelection() { ++m_selectionQuiet; }
    void endQuietSelection() { if (m_selectionQuiet > 0) --m_selectionQuiet; }

private:
    PlatformServices &m_services;
    ControlEvents &m_events;
    ControlProperties m_properties;
    std::unique_ptr<EditorSurface> m_surface;
    std::unique_ptr<EditorSurface> m_converter;
    std::unique_ptr<LinesAndCase> m_linesAndCase;
    std::unique_ptr<SpecialUndo> m_specialUndo;
    std::unique_ptr<EditCommands> m_editCommands;
    std::unique_ptr<Hyperlinks> m_hyperlinks;
    std::unique_ptr<Documents> m_documents;
    std::unique_ptr<Syntax> m_syntax;
    std::unique_ptr<EditorInput> m_editorInput;
    std::unique_ptr<Misspellings> m_misspellings;
    std::unique_ptr<FindReplace> m_findReplace;
    std::unique_ptr<FontSelection> m_fontSelection;
    std::unique_ptr<WhatsThisHelp> m_whatsThisHelp;
    std::unique_ptr<Ruler> m_ruler;
    std::unique_ptr<Printing> m_printing;
    std::unique_ptr<SpellingCorrections> m_spellingCorrections;
    std::unique_ptr<SpellAsYouType> m_spellAsYouType;
    int m_progress = 0;
    int m_progressShown = 0; ///< the percentage the events sink was last told
    int m_selectionQuiet = 0;
};

/// \brief Keeps selection changes from the host for the lifetime of the guard.
class QuietSelection {
public:
    explicit QuietSelection(ControlCore &core) : m_core(core) { m_core.beginQuietSelection(); }
    ~QuietSelection() { m_core.endQuietSelection(); }
    QuietSelection(const QuietSelection &) = delete;
    QuietSelection &operator=(const QuietSelection &) = delete;

private:
    ControlCore &m_core;
};

} // namespace kvrtb
