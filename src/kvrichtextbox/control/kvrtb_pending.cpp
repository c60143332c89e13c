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

// Spelling dialog: still to come.
void KvRTB::ShowSpellCheck() { reportNotAvailable("ShowSpellCheck"); }

} // namespace kvrtb
