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

} // namespace kvrtb
