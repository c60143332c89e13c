#include "surface/surfacefactory.h"

#include "surface/qteditorsurface.h"

namespace kvrtb {

std::unique_ptr<EditorSurface> createEditorSurface(QWidget *parent)
{
    return std::make_unique<QtEditorSurface>(parent);
}

} // namespace kvrtb
