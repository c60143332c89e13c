// The font and colour members: forwarded to the font-selection area.

#include "control/kvrtb.h"

#include "core/controlcore.h"
#include "fonts/fontselection.h"

namespace kvrtb {

void KvRTB::CommonDialogFontSelect(short *MyErr) { core().fontSelection().CommonDialogFontSelect(MyErr); }
void KvRTB::ShowFontSelect() { core().fontSelection().ShowFontSelect(); }
void KvRTB::SetDefaultFontMode() { core().fontSelection().SetDefaultFontMode(); }
void KvRTB::EndDefaultFontMode() { core().fontSelection().EndDefaultFontMode(); }
DEFUALT_FONT_DATA KvRTB::GetDefaultFontData() { return core().fontSelection().GetDefaultFontData(); }
void KvRTB::ShareDefaultFontData(const DEFUALT_FONT_DATA &MyDefFontData)
{
    core().fontSelection().ShareDefaultFontData(MyDefFontData);
}
uint KvRTB::CommonDialogColor(bool &UserCancelQ, bool UseOrigONCancel, uint MyOrgigColor, short *MyErr)
{
    return core().fontSelection().CommonDialogColor(UserCancelQ, UseOrigONCancel, MyOrgigColor, MyErr);
}
uint KvRTB::CommonDialogFontColor(const QVariant &MyOrgigColor, short *MyErr)
{
    return core().fontSelection().CommonDialogFontColor(MyOrgigColor, MyErr);
}
uint KvRTB::CommonDialogSelFontColor(const QVariant &CurrentColor, short *MyErr)
{
    return core().fontSelection().CommonDialogSelFontColor(CurrentColor, MyErr);
}
uint KvRTB::CommonDialogSelColor(const QVariant &CurrentColor, short *MyErr)
{
    return core().fontSelection().CommonDialogSelColor(CurrentColor, MyErr);
}

} // namespace kvrtb
