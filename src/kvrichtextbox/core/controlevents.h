#pragma once

#include <QString>

namespace kvrtb {

/// \brief Where the control's logic raises the control's events.
///
/// `KvRTB` implements it by emitting its signals; tests record the calls. Arguments are
/// references, so a handler may change them (a key code set to 0 swallows the key).
class ControlEvents {
public:
    virtual ~ControlEvents() = default;
    virtual void click() {}
    virtual void dblClick() {}
    virtual void selChange() {}
    virtual void change() {}
    virtual void keyDown(short &keyCode, short &shift) { Q_UNUSED(keyCode) Q_UNUSED(shift) }
    virtual void keyPress(short &keyAscii) { Q_UNUSED(keyAscii) }
    virtual void keyUp(short &keyCode, short &shift) { Q_UNUSED(keyCode) Q_UNUSED(shift) }
    virtual void mouseDown(short &button, short &shift, float &x, float &y) { Q_UNUSED(button) Q_UNUSED(shift) Q_UNUSED(x) Q_UNUSED(y) }
    virtual void mouseMove(short &button, short &shift, float &x, float &y) { Q_UNUSED(button) Q_UNUSED(shift) Q_UNUSED(x) Q_UNUSED(y) }
    virtual void mouseUp(short &button, short &shift, float &x, float &y) { Q_UNUSED(button) Q_UNUSED(shift) Q_UNUSED(x) Q_UNUSED(y) }
    virtual void begin() {}
    virtual void finish() {}
    virtual void ready() {}
    virtual void updateParentMenu() {}
    virtual void menuFontColorClick() {}
    virtual void menuHLColorClick() {}
    virtual void menuVBSyntaxClickStart() {}
    virtual void menuVBSyntaxClickEnd() {}
    /// The completion percentage of the running long operation changed (0 when none runs).
    virtual void progressChanged(int percent) { Q_UNUSED(percent) }
    /// A persisted property changed (the host marks its form dirty), under the property's key.
    virtual void propertyChanged(const QString &key) { Q_UNUSED(key) }
};

} // namespace kvrtb
