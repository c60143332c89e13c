#include "core/controlcore.h"

#include "core/threadstate.h"
#include "documents/documents.h"
#include "editing/editcommands.h"
#include "editing/linesandcase.h"
#include "editing/specialundo.h"
#include "editorinput/editorinput.h"
#include "findreplace/findreplace.h"
#include "fonts/fontselection.h"
#include "help/whatsthishelp.h"
#include "hyperlinks/hyperlinks.h"
#include "spelling/misspellings.h"
#include "printing/printing.h"
#include "ruler/ruler.h"
#include "spelling/spellasyoutype.h"
#include "spelling/spellingcorrections.h"
#include "surface/surfacefactory.h"
#include "syntax/syntax.h"

#include <QWidget>

#include <algorithm>

namespace kvrtb {

ControlCore::ControlCore(QWidget *parent, PlatformServices &services, ControlEvents &events)
    : m_services(services),
      m_events(events),
      m_surface(createEditorSurface(parent)),
      m_converter(createEditorSurface(nullptr))
{
    m_converter->widget()->hide();
    m_linesAndCase = std::make_unique<LinesAndCase>(*this);
    m_specialUndo = std::make_unique<SpecialUndo>(*this);
    m_editCommands = std::make_unique<EditCommands>(*this);
    m_hyperlinks = std::make_unique<Hyperlinks>(*this);
    m_documents = std::make_unique<Documents>(*this); // after EditCommands: it hooks the paste clean-up
    m_syntax = std::make_unique<Syntax>(*this);
    m_editorInput = std::make_unique<EditorInput>(*this);
    // A load forgets the control's mark of an undo snapshot, and the ruler follows the caret
    // after it through the one ruler hook.
    m_documents->setLinkUndoPendingClearer([this] { m_specialUndo->clearLinkUndoPending(); });
    m_documents->setRulerRefresher([this] { refreshRuler(); });
    m_misspellings = std::make_unique<Misspellings>(*this);
    m_findReplace = std::make_unique<FindReplace>(*this);
    m_fontSelection = std::make_unique<FontSelection>(*this);
    m_whatsThisHelp = std::make_unique<WhatsThisHelp>(*this);
    m_ruler = std::make_unique<Ruler>(*this);
    m_printing = std::make_unique<Printing>(*this);
    m_spellingCorrections = std::make_unique<SpellingCorrections>(*this);
    m_spellAsYouType = std::make_unique<SpellAsYouType>(*this);
    // A word the caret stands on that becomes marked (or unmarked) is announced at once.
    m_spellAsYouType->setMarksObserver([this] { m_editorInput->caretDescription().update(); });
}

ControlCore::~ControlCore() = default;

void ControlCore::lockWindowUpdate(bool lock)
{
    // A paste freezes the display for its whole sequence; nested passes may not thaw it early.
    if (threadState().pasteLock == 3)
        return;
    if (lock)
        m_surface->freeze();
    else
        m_surface->unfreeze();
}

void ControlCore::refreshRuler()
{
    if (m_ruler) // not while the core is being built
        m_ruler->refresh();
}

void ControlCore::setProgress(int percent)
{
    setProgressValue(percent);
    if (m_progress == m_progressShown)
        return;
    m_progressShown = m_progress;
    m_events.progressChanged(m_progress);
}

void ControlCore::setProgressValue(int percent)
{
    m_progress = std::clamp(percent, 0, 100);
}

} // namespace kvrtb
