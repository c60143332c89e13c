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

// Spelling suggestions, corrections and the spelling dialog: still to come.
void KvRTB::GetPossibleSpellingCorrections(SPELL_CHECK_TYPE &SCData)
{
    reportNotAvailable("GetPossibleSpellingCorrections");
    SCData.Suggestions.clear();
    SCData.SuggestionsFound = false;
}
int KvRTB::FixSpelling(const QString &, bool, uint) { reportNotAvailable("FixSpelling"); return -1; }
void KvRTB::FixSpelling2(const QString &) { reportNotAvailable("FixSpelling2"); }
int KvRTB::UndoSpellCorrection() { reportNotAvailable("UndoSpellCorrection"); return -1; }
void KvRTB::ShowSpellCheck() { reportNotAvailable("ShowSpellCheck"); }


} // namespace kvrtb
