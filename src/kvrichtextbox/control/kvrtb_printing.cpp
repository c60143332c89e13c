// The printing members and settings: each forwards to the printing area in the core.

#include "control/kvrtb.h"

#include "core/controlcore.h"
#include "printing/printing.h"

namespace kvrtb {

int KvRTB::CommonDialogPrint(short *MyErr) { return core().printing().CommonDialogPrint(MyErr); }
void KvRTB::SelPrint(const QVariant &vStartDoc) { core().printing().SelPrint(vStartDoc); }
bool KvRTB::PrinterInstalled() { return core().printing().PrinterInstalled(); }
void KvRTB::ShowPrintPreview() { core().printing().ShowPrintPreview(); }

QString KvRTB::PageHeading() const { return m_core->printing().decorations().heading; }
int KvRTB::PageHeadingAlignment() const { return m_core->printing().decorations().headingAlign; }
int KvRTB::PageNumbersAndDate() const { return m_core->printing().decorations().pageNumAndNow; }
QString KvRTB::PageCustomText() const { return m_core->printing().decorations().customText; }

void KvRTB::setPageHeading(const QString &value) { core().printing().decorations().heading = value; }
void KvRTB::setPageCustomText(const QString &value) { core().printing().decorations().customText = value; }

void KvRTB::setPageHeadingAlignment(int value)
{
    if (value < CenterAlignHeading || value > LeftAlignHeadingBottom) {
        qWarning("KvRTB: PageHeadingAlignment %d is not a PageHeadingAlign value; the setting stays %d.", value,
                 PageHeadingAlignment());
        return;
    }
    core().printing().decorations().headingAlign = value;
}

void KvRTB::setPageNumbersAndDate(int value)
{
    if (value < PrintNiether || value > PrintCustomWNum) {
        qWarning("KvRTB: PageNumbersAndDate %d is not a PageNumAndNow value; the setting stays %d.", value,
                 PageNumbersAndDate());
        return;
    }
    core().printing().decorations().pageNumAndNow = value;
}

} // namespace kvrtb
