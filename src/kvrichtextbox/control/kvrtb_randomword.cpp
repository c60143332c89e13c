// The random-word dialog.

#include "control/kvrtb.h"

#include "core/controlcore.h"
#include "spelling/randomfrm.h"

namespace kvrtb {

void KvRTB::ShowRandomWord()
{
    ControlCore &control = core();
    RandomFrm dialog({}, [&control] {
        if (control.properties().TurnOnSound)
            control.services().playClickSound();
    }, this);
    dialog.exec();
}

} // namespace kvrtb
