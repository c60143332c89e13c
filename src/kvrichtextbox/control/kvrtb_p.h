#pragma once

#include "control/kvrtb.h"
#include "editorinput/inputhost.h"

namespace kvrtb {

/// \brief The control's own members that its pop-up menu runs: the font and colour dialogs and
/// keyword colouring, called exactly as a host would call them.
class KvRTB::InputCommands : public InputHost {
public:
    explicit InputCommands(KvRTB &control) : m_control(control) {}

    void CommonDialogFontSelect() override;
    void ShowFontSelect() override;
    Colour CommonDialogFontColor(Colour seed) override;
    Colour CommonDialogColor(bool &cancelled, Colour original) override;
    void setMyFontColor(Colour colour) override;
    void setMyHLColor(Colour colour) override;
    void ApplyVB6Syntax() override;

private:
    KvRTB &m_control;
};

} // namespace kvrtb
