// The printing members and settings: each forwards to the printing area in the core.

#include "control/kvrtb.h"

#include "core/controlcore.h"
#include "printing/printing.h"

namespace kvrtb {

namespace {

// True when \a value is one of an enum's values (\a low to \a high); else warns that the setting
// keeps its \a current value.
bool isEnumValue(int value, int low, int high, const char *property, const char *enumName, int current)
{
    if (value >= low && value <= high)
        return true;
    qWarning("KvRTB: %s %d is not a %s value; the setting stays %d.", property, value, enumName, current);
    return false;
}

} // namespace

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
    if (isEnumValue(value, CenterAlignHeading, LeftAlignHeadingBottom, "PageHeadingAlignment", "PageHeadingAlign",
                    PageHeadingAlignment()))
        core().printing().decorations().headingAlign = value;
}

void KvRTB::setPageNumbersAndDate(int value)
{
    if (isEnumValue(value, PrintNiether, PrintCustomWNum, "PageNumbersAndDate", "PageNumAndNow", PageNumbersAndDate()))
        core().printing().decorations().pageNumAndNow = value;
}

} // namespace kvrtb
