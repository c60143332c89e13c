#pragma once

#include "core/controlevents.h"
#include "core/editorsurface.h"
#include "editorinput/caretdescription.h"
#include "editorinput/popupmenu.h"

#include <QSet>

namespace kvrtb {

class ControlCore;
class InputHost;

/// \brief What the control does with the user's keys and mouse: raises the control's events
/// for what happens on the editor and adds the control's own behaviour around them.
///
/// - Every event reaches the host first, with its arguments by reference: a `KeyDown` handler
///   that sets the key code to 0 stops the key, one that changes `KeyAscii` changes the typed
///   character. Selection changes are not reported while a pass moves the selection itself.
///   Mouse coordinates reach the host in twips.
/// - Key down: after `KeyDown`, the control's shortcuts (Ctrl+B/I/U toggle the selection's
///   bold/italic/underline, Ctrl+Z and Ctrl+Y undo, Ctrl+F is stopped, Ctrl+V pastes through
///   the control's clean-up when `RemoveUnUsableData` is on, Delete with a selection deletes
///   through the control so the deletion can be undone, Enter inside a link records undo data,
///   the menu key opens the pop-up menu). A key the control acts on itself is stopped.
/// - Key up: after `KeyUp`, a key that changed the text records undo data for the run of typing
///   it belongs to and, with `DetectHyperLinks` on, links the addresses on the caret's line;
///   then `Finish` and `Ready`. Page and arrow keys refresh the ruler instead.
/// - Mouse up: `Begin`, `MouseUp`, then a left click on a link opens it, a right click shows the
///   pop-up menu (with `AutoVMenu` on); the ruler is refreshed; `Finish`.
///
/// Runs of typing: the first key of a run takes a snapshot for the control's own undo (state
/// 1; 2 for a run that began with a deletion). A run goes on while the caret is where the
/// previous key of the run left it, moved by exactly what the text grew or shrank (Delete
/// leaves it in place); otherwise the next key starts a new run.
class EditorInput : public SurfaceListener {
public:
    explicit EditorInput(ControlCore &core);

    /// The facade's members the pop-up menu runs; not owned; nullptr for none.
    void setHost(InputHost *host) { m_menu.setHost(host); }
    PopupMenu &popupMenu() { return m_menu; }
    /// What assistive technology is told the caret stands on.
    CaretDescription &caretDescription() { return m_caretDescription; }

    /// True after a key that may be part of an address ("@", ":", "W", ".") until the next
    /// key-up follow-up or mouse-up.
    bool linkMayBeTyped() const { return m_linkMayBeTyped; }

    void click() override;
    void dblClick() override;
    void selChange() override;
    void change() override;
    void keyDown(int &keyCode, int &shift) override;
    void keyPress(int &keyAscii) override;
    void keyUp(int &keyCode, int &shift) override;
    void mouseDown(int &button, int &shift, float &x, float &y) override;
    void mouseMove(int &button, int &shift, float &x, float &y) override;
    void mouseUp(int &button, int &shift, float &x, float &y) override;
    /// The editor's own context-menu request is not used: the menu comes from mouse-up and
    /// from the menu key.
    void contextMenu(const QPoint &globalPos) override;

private:
    using MouseEvent = void (ControlEvents::*)(short &, short &, float &, float &);
    /// Raises a mouse event in twips and takes back what the handler changed.
    void raiseMouse(MouseEvent event, int &button, int &shift, float &x, float &y);
    /// The control's shortcuts; a key acted on comes back with code and shift 0.
    void handleShortcut(int &keyCode, int &shift);
    /// Toggles one attribute of the selection (bold, italic or underline).
    void toggle(std::optional<bool> CharFormat::*attribute);
    /// Records undo data for the key and links the caret's line.
    void followUpTyping(int keyCode);
    /// Opens the address under the caret, e-mail first.
    void followLink();
    /// Remembers where the run of typing has left the caret.
    void anchorRun();

    ControlCore &m_core;
    PopupMenu m_menu;
    CaretDescription m_caretDescription;
    bool m_linkMayBeTyped = false;
    bool m_lastKeyWasW = false;
    /// Codes the control acted on at key-down; their key-up records no typing.
    QSet<int> m_handledKeys;
    /// The document's revision at the last key-down: a key-up finding it unchanged typed nothing.
    quint64 m_revisionAtKeyDown = 0;
    /// Where Enter inside a link was pressed; its line is linked again at key-up (-1: none).
    int m_enterInLinkAt = -1;
    /// Caret and text length where the run of typing left them (-1: no run).
    int m_runCaret = -1;
    int m_runLength = -1;
};

} // namespace kvrtb
