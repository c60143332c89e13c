#include "editorinput/editorinput.h"

#include "core/controlcore.h"
#include "core/threadstate.h"
#include "core/virtualkeys.h"
#include "editing/editcommands.h"
#include "editing/specialundo.h"
#include "hyperlinks/hyperlinks.h"

namespace kvrtb {

namespace {

/// Keys that never change the text: modifiers and lock keys, Escape, paging and the caret
/// keys, Insert, the Windows and menu keys, and the function keys.
bool changesText(int code)
{
    if (code == 0 || (code >= VkF1 && code <= VkF24))
        return false;
    switch (code) {
    case VkShift:
    case VkControl:
    case VkAlt:
    case VkPause:
    case VkCapsLock:
    case VkEscape:
    case VkPageUp:
    case VkPageDown:
    case VkEnd:
    case VkHome:
    case VkLeft:
    case VkUp:
    case VkRight:
    case VkDown:
    case VkInsert:
    case VkLeftWindows:
    case VkRightWindows:
    case VkApps:
    case VkNumLock:
    case VkScrollLock:
        return false;
    default:
        return true;
    }
}

/// Keys after which only the ruler follows the caret.
bool movesByPageOrArrow(int code)
{
    return code == VkPageUp || code == VkPageDown || (code >= VkLeft && code <= VkDown);
}

} // namespace

EditorInput::EditorInput(ControlCore &core)
    : m_core(core),
      m_menu(core),
      m_caretDescription(core)
{
}

// --- Events passed on as they are ---------------------------------------------------------

void EditorInput::click()
{
    m_core.events().click();
}

void EditorInput::dblClick()
{
    m_core.events().dblClick();
}

void EditorInput::selChange()
{
    // Bulk passes move the selection without telling the host.
    if (m_core.isSelectionQuiet())
        return;
    m_caretDescription.update();
    m_core.events().selChange();
}

void EditorInput::change()
{
    m_core.events().change();
}

void EditorInput::keyPress(int &keyAscii)
{
    short ascii = short(keyAscii);
    m_core.events().keyPress(ascii);
    keyAscii = ascii;
}

void EditorInput::raiseMouse(MouseEvent event, int &button, int &shift, float &x, float &y)
{
    short buttonCode = short(button);
    short state = short(shift);
    float xTwips = x * kTwipsPerPixel;
    float yTwips = y * kTwipsPerPixel;
    (m_core.events().*event)(buttonCode, state, xTwips, yTwips);
    button = buttonCode;
    shift = state;
    x = xTwips / kTwipsPerPixel;
    y = yTwips / kTwipsPerPixel;
}

void EditorInput::mouseDown(int &button, int &shift, float &x, float &y)
{
    raiseMouse(&ControlEvents::mouseDown, button, shift, x, y);
}

void EditorInput::mouseMove(int &button, int &shift, float &x, float &y)
{
    raiseMouse(&ControlEvents::mouseMove, button, shift, x, y);
}

void EditorInput::contextMenu(const QPoint &)
{
}

// --- Key down -----------------------------------------------------------------------------

void EditorInput::keyDown(int &keyCode, int &shift)
{
    short code = short(keyCode);
    short state = short(shift);
    m_core.events().keyDown(code, state);
    keyCode = code;
    shift = state;
    if (keyCode == 0)
        return; // the host stopped the key
    m_handledKeys.remove(keyCode); // a new press of a key whose release was never seen
    m_revisionAtKeyDown = m_core.surface().revision();
    handleShortcut(keyCode, shift);
}

void EditorInput::toggle(std::optional<bool> CharFormat::*attribute)
{
    EditorSurface &surface = m_core.surface();
    const std::optional<bool> current = surface.selectionCharFormat().*attribute;
    CharFormat format;
    // A selection that is partly on (mixed) is turned on throughout.
    format.*attribute = !current.value_or(false);
    surface.setSelectionCharFormat(format);
}

void EditorInput::handleShortcut(int &keyCode, int &shift)
{
    EditorSurface &surface = m_core.surface();
    SpecialUndo &undo = m_core.specialUndo();
    const ControlProperties &properties = m_core.properties();
    const int code = keyCode;
    // A locked editor takes the shortcuts but changes nothing for them.
    const bool locked = surface.isReadOnly();
    bool handled = false;

    if (shift == ShiftCtrl) {
        switch (code) {
        case VkB:
        case VkI:
        case VkU:
            if (!locked)
                toggle(code == VkB ? &CharFormat::bold : code == VkI ? &CharFormat::italic : &CharFormat::underline);
            handled = true;
            break;
        case VkZ:
        case VkY: // there is no redo: both keys undo
            if (!locked) {
                if (undo.CanUndo())
                    undo.Undo();
                else if (undo.linkUndoPending())
                    undo.HyperUndo();
            }
            handled = true;
            break;
        case VkF: handled = true; break;
        case VkV:
            if (properties.RemoveUnUsableData) {
                if (!locked)
                    m_core.editCommands().Paste();
                handled = true;
            }
            break;
        default: break;
        }
    }

    if (code == VkDelete && shift == ShiftNone && surface.selLength() > 0 && !locked) {
        // The control's Delete snapshots the document when everything is selected. That
        // snapshot is what brings the text back, so the run is marked as having one: the
        // key-up that follows must not snapshot the now empty document over it.
        const bool everything = surface.selLength() == surface.textLength();
        m_core.editCommands().Delete();
        if (everything) {
            undo.setUndoRunState(1);
            anchorRun();
        }
        keyCode = 0;
        shift = 0;
        m_lastKeyWasW = false;
        return; // its key-up still records the deletion for the run
    }

    if (code == VkReturn && properties.DetectHyperLinks && m_core.hyperlinks().IsSelectionLinkMarked()) {
        if (surface.selStart() != m_runCaret || surface.textLength() != m_runLength)
            undo.setUndoRunState(0); // the caret left the run: this Enter starts a new one
        undo.SaveInLinkUndoData();
        undo.setUndoRunState(1);
        m_enterInLinkAt = surface.selStart();
        anchorRun();
    }

    if (code == VkApps && properties.AutoVMenu)
        m_menu.show();

    if (properties.DetectHyperLinks) {
        const bool atSign = code == Vk2 && shift == ShiftShift;
        const bool colon = code == VkSemicolon && shift == ShiftShift;
        if (atSign || colon || code == VkW || code == VkPeriod || (code == VkDecimal && m_lastKeyWasW))
            m_linkMayBeTyped = true;
    }
    m_lastKeyWasW = code == VkW;

    if (handled) {
        m_handledKeys.insert(code);
        keyCode = 0;
        shift = 0;
    }
}

// --- Key up -------------------------------------------------------------------------------

void EditorInput::keyUp(int &keyCode, int &shift)
{
    const bool handled = m_handledKeys.remove(keyCode);
    short code = short(keyCode);
    short state = short(shift);
    m_core.events().keyUp(code, state);
    keyCode = code;
    shift = state;
    if (!handled)
        followUpTyping(keyCode);
    m_linkMayBeTyped = false;
    m_enterInLinkAt = -1;
    m_core.events().finish();
    m_core.events().ready();
}

void EditorInput::anchorRun()
{
    m_runCaret = m_core.surface().selStart();
    m_runLength = m_core.surface().textLength();
}

void EditorInput::followUpTyping(int keyCode)
{
    if (movesByPageOrArrow(keyCode)) {
        m_core.refreshRuler();
        return;
    }
    if (!changesText(keyCode))
        return;
    EditorSurface &surface = m_core.surface();
    SpecialUndo &undo = m_core.specialUndo();
    const ControlProperties &properties = m_core.properties();
    // A key that changed nothing (a locked editor, a full one, Backspace at the start) has
    // nothing to record.
    const bool changed = surface.revision() != m_revisionAtKeyDown;

    if (changed) {
        const int caret = surface.selStart();
        const int length = surface.textLength();
        const int expected = keyCode == VkDelete ? m_runCaret : m_runCaret + (length - m_runLength);
        if (m_runCaret < 0 || caret != expected)
            undo.setUndoRunState(0);

        if (keyCode == VkBack || keyCode == VkDelete) {
            if (undo.undoRunState() == 2) {
                // A run of deletions keeps the snapshot taken at its first key.
                m_core.hyperlinks().EmptyEditorUndoBuffer();
            } else {
                const bool startsRun = undo.undoRunState() == 0;
                undo.SaveDeleteUndoData();
                if (startsRun)
                    undo.setUndoRunState(2);
            }
        } else {
            if (undo.undoRunState() == 2)
                undo.setUndoRunState(0); // typing after deleting starts a run of its own
            if (undo.undoRunState() == 0) {
                undo.SaveRegularUndoData();
                undo.setUndoRunState(1);
            }
        }
    }

    if (properties.DetectHyperLinks && (changed || m_linkMayBeTyped)) {
        Hyperlinks &links = m_core.hyperlinks();
        if (m_enterInLinkAt >= 0) {
            // Enter split a link: its first half, on the line above, is examined again.
            QuietSelection quiet(m_core);
            const int caret = surface.selStart();
            surface.setSelStart(m_enterInLinkAt);
            links.HyperLinkCurrentLine();
            surface.setSelStart(caret);
        }
        if (properties.DetectHyperLinks) // the large-document rule may have turned it off
            links.HyperLinkCurrentLine();
    }
    if (changed)
        anchorRun();
}

// --- Mouse up -----------------------------------------------------------------------------

void EditorInput::mouseUp(int &button, int &shift, float &x, float &y)
{
    m_core.events().begin();
    raiseMouse(&ControlEvents::mouseUp, button, shift, x, y);
    // A rewrite by the undo is over once the user acts again; leaving the flag raised would
    // keep every later linking pass on this thread from marking anything.
    threadState().rewriteInProgress = false;
    m_linkMayBeTyped = false;
    if (button == 1 && m_core.surface().selLength() == 0)
        followLink();
    else if (button == 2 && m_core.properties().AutoVMenu)
        m_menu.show();
    m_core.refreshRuler();
    m_core.events().finish();
}

void EditorInput::followLink()
{
    Hyperlinks &links = m_core.hyperlinks();
    // Only text carrying the link marker can be a hit, whatever the address patterns say; the
    // marker at the caret is read once here so that a click in plain text searches nothing.
    if (!links.IsSelectionLinkMarked())
        return;
    PlatformServices &services = m_core.services();
    // Input handled before the click is not input waiting behind it.
    services.hasPendingInput();
    const int spot = m_core.surface().selStart();
    QString address;
    if (links.DetectEmailZone(spot, &address)) {
        if (m_core.properties().TurnOnSound)
            services.playClickSound();
        links.GoToEmailClient(address);
    } else if (links.DetectURLZone(spot, &address)) {
        if (m_core.properties().TurnOnSound)
            services.playClickSound();
        links.GoToWebsite(address);
    }
}

} // namespace kvrtb
