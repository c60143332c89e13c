// Members of the areas that are not in this build yet. Each group is replaced by forwarding to
// its area's object in ControlCore (kvrtb_areas.cpp) when the area lands; until then every
// member reports itself once and gives its not-found value.

#include "control/kvrtb.h"

namespace kvrtb {

namespace {

template <typename T>
void setIf(T *out, const T &value)
{
    if (out)
        *out = value;
}

} // namespace

// Keyword colouring: still to come.
QVariant KvRTB::ApplyVB6Syntax(Syntax_Behavior, Formatting_Options) { reportNotAvailable("ApplyVB6Syntax"); return QVariant(); }
QVariant KvRTB::ApplyVBNetSyntax(Syntax_Behavior, Formatting_Options) { reportNotAvailable("ApplyVBNetSyntax"); return QVariant(); }
QVariant KvRTB::ApplyMySyntax(Syntax_Behavior, Formatting_Options) { reportNotAvailable("ApplyMySyntax"); return QVariant(); }
void KvRTB::Cancel_Syntax() { reportNotAvailable("Cancel_Syntax"); }
bool KvRTB::CanCancelSyntax() { reportNotAvailable("CanCancelSyntax"); return false; }

void KvRTB::ShowRandomWord() { reportNotAvailable("ShowRandomWord"); }

// Ruler: still to come.
void KvRTB::DrawRuler() { reportNotAvailable("DrawRuler"); }
void KvRTB::ClearRuler() { reportNotAvailable("ClearRuler"); }
void KvRTB::SetRulerTabs() { reportNotAvailable("SetRulerTabs"); }
void KvRTB::ShadeRuler() { reportNotAvailable("ShadeRuler"); }

// Printing: still to come.
int KvRTB::CommonDialogPrint(short *) { reportNotAvailable("CommonDialogPrint"); return 0; }
void KvRTB::SelPrint(const QVariant &) { reportNotAvailable("SelPrint"); }
bool KvRTB::PrinterInstalled() { reportNotAvailable("PrinterInstalled"); return false; }
void KvRTB::ShowPrintPreview() { reportNotAvailable("ShowPrintPreview"); }

// Font and colour selection: still to come. The colour dialogs answer "cancelled" with the
// colour they were given.
void KvRTB::CommonDialogFontSelect(short *) { reportNotAvailable("CommonDialogFontSelect"); }
void KvRTB::ShowFontSelect() { reportNotAvailable("ShowFontSelect"); }
void KvRTB::SetDefaultFontMode() { reportNotAvailable("SetDefaultFontMode"); }
void KvRTB::EndDefaultFontMode() { reportNotAvailable("EndDefaultFontMode"); }
DEFUALT_FONT_DATA KvRTB::GetDefaultFontData() { reportNotAvailable("GetDefaultFontData"); return DEFUALT_FONT_DATA(); }
void KvRTB::ShareDefaultFontData(const DEFUALT_FONT_DATA &) { reportNotAvailable("ShareDefaultFontData"); }
uint KvRTB::CommonDialogColor(bool &UserCancelQ, bool, uint MyOrgigColor, short *)
{
    reportNotAvailable("CommonDialogColor");
    UserCancelQ = true;
    return MyOrgigColor;
}
uint KvRTB::CommonDialogFontColor(const QVariant &MyOrgigColor, short *)
{
    reportNotAvailable("CommonDialogFontColor");
    return MyOrgigColor.toUInt();
}
uint KvRTB::CommonDialogSelFontColor(const QVariant &CurrentColor, short *)
{
    reportNotAvailable("CommonDialogSelFontColor");
    return CurrentColor.toUInt();
}
uint KvRTB::CommonDialogSelColor(const QVariant &CurrentColor, short *)
{
    reportNotAvailable("CommonDialogSelColor");
    return CurrentColor.toUInt();
}

// Help and sound: still to come.
void KvRTB::PointToWhatsThisHelpFile() { reportNotAvailable("PointToWhatsThisHelpFile"); }
QString KvRTB::GetHelpFile(bool) { reportNotAvailable("GetHelpFile"); return QString(); }

} // namespace kvrtb
