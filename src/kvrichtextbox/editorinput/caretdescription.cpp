#include "editorinput/caretdescription.h"

#include "core/controlcore.h"
#include "core/editorsurface.h"
#include "spelling/spellasyoutype.h"

namespace kvrtb {

CaretDescription::CaretDescription(ControlCore &core)
    : m_core(core)
{
}

QString CaretDescription::describe(int position) const
{
    EditorSurface &surface = m_core.surface();
    if (position >= surface.textLength())
        return {};
    if (const auto mark = m_core.spellAsYouType().markAt(position); mark && position < mark->end())
        return misspeltWord(surface.textRange(mark->start, mark->length));
    const CharFormat format = surface.rangeCharFormat(position, 1);
    if (format.hasLinkMarker() && format.linkEffect.value_or(false))
        return link(format.linkAddress.value_or(QString()));
    return {};
}

void CaretDescription::update()
{
    EditorSurface &surface = m_core.surface();
    const QString description = surface.selLength() == 0 ? describe(surface.selStart()) : QString();
    if (description == m_current)
        return;
    m_current = description;
    surface.setAccessibleDescription(description);
}

} // namespace kvrtb
