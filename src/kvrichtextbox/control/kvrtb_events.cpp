// The control's events raised by the areas (the editor's own events come through the
// key and mouse handling, which raises them here too), and the members its pop-up menu runs.

#include "control/kvrtb_p.h"

#include <QProgressBar>

namespace kvrtb {

// --- Members the pop-up menu runs ----------------------------------------------------------

void KvRTB::InputCommands::CommonDialogFontSelect()
{
    m_control.CommonDialogFontSelect();
}

void KvRTB::InputCommands::ShowFontSelect()
{
    m_control.ShowFontSelect();
}

Colour KvRTB::InputCommands::CommonDialogFontColor(Colour seed)
{
    return m_control.CommonDialogFontColor(QVariant(uint(seed)));
}

Colour KvRTB::InputCommands::CommonDialogColor(bool &cancelled, Colour original)
{
    return m_control.CommonDialogColor(cancelled, true, original);
}

void KvRTB::InputCommands::setMyFontColor(Colour colour)
{
    m_control.setMyFontColor(colour);
}

void KvRTB::InputCommands::setMyHLColor(Colour colour)
{
    m_control.setMyHLColor(colour);
}

void KvRTB::InputCommands::ApplyVB6Syntax()
{
    m_control.ApplyVB6Syntax(Syntax_All_Text, Retain_All_Formatting);
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
