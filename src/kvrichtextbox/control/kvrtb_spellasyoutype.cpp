// Spelling as you type: the run-time switch, forwarded to the spelling area.

#include "control/kvrtb.h"

#include "core/controlcore.h"
#include "spelling/spellasyoutype.h"

namespace kvrtb {

bool KvRTB::SpellAsYouType() const
{
    return const_cast<KvRTB *>(this)->core().spellAsYouType().isEnabled();
}

void KvRTB::setSpellAsYouType(bool value)
{
    core().spellAsYouType().setEnabled(value);
}

} // namespace kvrtb
