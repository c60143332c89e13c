// The control's events: from the editing surface to the host, and from the areas to the host.

#include "core/controlcore.h"
#include "control/kvrtb_p.h"

#include <QProgressBar>

namespace kvrtb {

// --- Editor events --------------------------------------------------------------------------

void KvRTB::EditorEvents::click()
{
    emit m_control.Click();
}

void KvRTB::EditorEvents::dblClick()
{
    emit m_control.DblClick();
}

void KvRTB::EditorEvents::selChange()
{
    // Bulk passes move the selection without telling the host.
    if (!m_control.core().isSelectionQuiet())
        emit m_control.SelChange();
}

void KvRTB::EditorEvents::change()
{
    emit m_control.Change();
}

void KvRTB::EditorEvents::keyDown(int &keyCode, int &shift)
{
    short code = short(keyCode);
    short state = short(shift);
    emit m_control.KeyDown(code, state);
    keyCode = code;
    shift = state;
    // The control's own keyboard shortcuts come with the editor-events area.
}

void KvRTB::EditorEvents::keyPress(int &keyAscii)
{
    short ascii = short(keyAscii);
    emit m_control.KeyPress(ascii);
    keyAscii = ascii;
}

void KvRTB::EditorEvents::keyUp(int &keyCode, int &shift)
{
    short code = short(keyCode);
    short state = short(shift);
    emit m_control.KeyUp(code, state);
    keyCode = code;
    shift = state;
    // Recording undo data for what was typed and the link pass around the caret come with the
    // editor-events area; they run here, between KeyUp and Finish.
    emit m_control.Finish();
    emit m_control.Ready();
}

void KvRTB::EditorEvents::raiseMouse(MouseSignal signal, int &button, int &shift, float &x, float &y)
{
    short buttonCode = short(button);
    short state = short(shift);
    float xTwips = x * kTwipsPerPixel;
    float yTwips = y * kTwipsPerPixel;
    (m_control.*signal)(buttonCode, state, xTwips, yTwips);
    button = buttonCode;
    shift = state;
    x = xTwips / kTwipsPerPixel;
    y = yTwips / kTwipsPerPixel;
}

void KvRTB::EditorEvents::mouseDown(int &button, int &shift, float &x, float &y)
{
    raiseMouse(&KvRTB::MouseDown, button, shift, x, y);
}

void KvRTB::EditorEvents::mouseMove(int &button, int &shift, float &x, float &y)
{
    raiseMouse(&KvRTB::MouseMove, button, shift, x, y);
}

void KvRTB::EditorEvents::mouseUp(int &button, int &shift, float &x, float &y)
{
    emit m_control.Begin();
    raiseMouse(&KvRTB::MouseUp, button, shift, x, y);
    // Following a clicked link and the pop-up menu come with the editor-events area; they run
    // here, between MouseUp and Finish.
    emit m_control.Finish();
}

void KvRTB::EditorEvents::contextMenu(const QPoint &)
{
    // The control's pop-up menu comes with the editor-events area; until then the editor shows
    // none (the right button still raises MouseDown and MouseUp).
}

// --- Events raised by the areas -------------------------------------------------------------

void KvRTB::click() { emit Click(); }
void KvRTB::dblClick() { emit DblClick(); }
void KvRTB::selChange() { emit SelChange(); }
void KvRTB::change() { emit Change(); }
void KvRTB::keyDown(short &keyCode, short &shift) { emit KeyDown(keyCode, shift); }
void KvRTB::keyPress(short &keyAscii) { emit KeyPress(keyAscii); }
void KvRTB::keyUp(short &keyCode, short &shift) { emit KeyUp(keyCode, shift); }
void KvRTB::mouseDown(short &button, short &shift, float &x, float &y) { emit MouseDown(button, shift, x, y); }
void KvRTB::mouseMove(short &button, short &shift, float &x, float &y) { emit MouseMove(button, shift, x, y); }
void KvRTB::mouseUp(short &button, short &shift, float &x, float &y) { emit MouseUp(button, shift, x, y); }
void KvRTB::begin() { emit Begin(); }
void KvRTB::finish() { emit Finish(); }
void KvRTB::ready() { emit Ready(); }
void KvRTB::updateParentMenu() { emit UpdateParentMenu(); }
void KvRTB::menuFontColorClick() { emit MenuFontColorClick(); }
void KvRTB::menuHLColorClick() { emit MenuHLColorClick(); }
void KvRTB::menuVBSyntaxClickStart() { emit MenuVBSyntaxClickStart(); }
void KvRTB::menuVBSyntaxClickEnd() { emit MenuVBSyntaxClickEnd(); }
void KvRTB::propertyChanged(const QString &key) { emit PropertyChanged(key); }

void KvRTB::progressChanged(int percent)
{
    m_progressBar->setValue(percent);
    m_progressBar->setVisible(percent > 0);
}

} // namespace kvrtb
