#include "control/controlcore.h"

#include "control/threadstate.h"
#include "surface/surfacefactory.h"

#include <QWidget>

namespace kvrtb {

ControlCore::ControlCore(QWidget *parent, PlatformServices &services, ControlEvents &events)
    : m_services(services),
      m_events(events),
      m_surface(createEditorSurface(parent)),
      m_converter(createEditorSurface(nullptr))
{
    m_converter->widget()->hide();
}

ControlCore::~ControlCore() = default;

void ControlCore::lockWindowUpdate(bool lock)
{
    // A paste freezes the display for its whole sequence; nested passes may not thaw it early.
    if (threadState().pasteLock == 3)
        return;
    if (lock)
        m_surface->freeze();
    else
        m_surface->unfreeze();
}

} // namespace kvrtb
