// The ruler members: each forwards to the ruler's logic in the core; the strip redraws itself.

#include "control/kvrtb.h"

#include "core/controlcore.h"
#include "ruler/ruler.h"

namespace kvrtb {

void KvRTB::DrawRuler() { core().ruler().draw(); }
void KvRTB::ClearRuler() { core().ruler().clear(); }
void KvRTB::SetRulerTabs() { core().ruler().setTabsFromParagraph(); }
void KvRTB::ShadeRuler() { core().ruler().shade(); }

} // namespace kvrtb
