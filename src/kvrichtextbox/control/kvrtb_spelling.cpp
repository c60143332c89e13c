// The spelling members of suggestions, corrections and the spelling dialog, forwarded to the
// spelling area.

#include "control/kvrtb.h"

#include "core/controlcore.h"
#include "spelling/spellcheckfrm.h"
#include "spelling/spellingcorrections.h"
#include "spelling/suggestions.h"

namespace kvrtb {

void KvRTB::GetPossibleSpellingCorrections(SPELL_CHECK_TYPE &SCData)
{
    Suggestions::GetPossibleSpellingCorrections(SCData);
}

void KvRTB::GetRankedSpellingCorrections(SPELL_CHECK_TYPE &SCData)
{
    Suggestions::GetRankedSpellingCorrections(SCData);
}

int KvRTB::FixSpelling(const QString &CorrectSpelling, bool HighlightFixes, uint HighLightColor)
{
    return core().spellingCorrections().FixSpelling(CorrectSpelling, HighlightFixes, HighLightColor);
}

void KvRTB::FixSpelling2(const QString &CorrectSpelling)
{
    core().spellingCorrections().FixSpelling2(CorrectSpelling);
}

int KvRTB::UndoSpellCorrection()
{
    return core().spellingCorrections().UndoSpellCorrection();
}

void KvRTB::ShowSpellCheck()
{
    SpellCheckFrm::showFor(core());
}

} // namespace kvrtb
