// Misspelling detection and navigation, and find and replace: forwarded to their areas.

#include "control/kvrtb.h"

#include "core/controlcore.h"
#include "findreplace/findreplace.h"
#include "spelling/misspellings.h"

namespace kvrtb {

bool KvRTB::DetectMisspellings(QStringList &MyReturnArray)
{
    return core().misspellings().DetectMisspellings(MyReturnArray);
}
bool KvRTB::DetectNotWords(int MyHitSpot) { return core().misspellings().DetectNotWords(MyHitSpot); }
int KvRTB::SpellCheck(QStringList &ReturnArray) { return core().misspellings().SpellCheck(ReturnArray); }
void KvRTB::PrepNonSpellCheckRTB(const QStringList &PassInArray)
{
    core().misspellings().PrepNonSpellCheckRTB(PassInArray);
}
int KvRTB::GoToNextSpellError() { return core().misspellings().GoToNextSpellError(); }
int KvRTB::GoToPreviousSpellError() { return core().misspellings().GoToPreviousSpellError(); }

int KvRTB::Find2(const QString &TextToFind, FindDirectionQ FindDirection, FindOptionsQ FindOptions, bool SkipURLEmail)
{
    return core().findReplace().Find2(TextToFind, FindDirection, FindOptions, SkipURLEmail);
}
bool KvRTB::FindVerify(const QString &FVTextToFind, FindOptionsQ FVFindOptions)
{
    return core().findReplace().FindVerify(FVTextToFind, FVFindOptions);
}
int KvRTB::TopLineSelStart() { return core().findReplace().TopLineSelStart(); }
void KvRTB::ShowFindReplace() { core().findReplace().ShowFindReplace(); }
void KvRTB::ExitFindRep() { core().findReplace().ExitFindRep(); }

} // namespace kvrtb
