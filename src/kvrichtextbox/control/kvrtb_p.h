#pragma once

#include "core/editorsurface.h"
#include "control/kvrtb.h"

namespace kvrtb {

/// \brief Turns what happens on the editing surface into the control's events.
///
/// Arguments travel by reference both ways, so a handler connected directly to a signal can
/// change them and the editor acts on the changed values (a key code set to 0 swallows the key,
/// a changed character is typed instead). Mouse coordinates reach the host in twips.
class KvRTB::EditorEvents : public SurfaceListener {
public:
    explicit EditorEvents(KvRTB &control) : m_control(control) {}

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
    void contextMenu(const QPoint &globalPos) override;

private:
    using MouseSignal = void (KvRTB::*)(short &, short &, float &, float &);
    /// Raises a mouse signal in the host's units and takes back what the handler changed.
    void raiseMouse(MouseSignal signal, int &button, int &shift, float &x, float &y);

    KvRTB &m_control;
};

} // namespace kvrtb
