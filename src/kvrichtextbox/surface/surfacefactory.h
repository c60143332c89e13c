#pragma once

#include "core/editorsurface.h"

#include <memory>

class QWidget;

namespace kvrtb {

/// A new editor surface over Qt's rich-text editor; its widget gets \a parent.
std::unique_ptr<EditorSurface> createEditorSurface(QWidget *parent);

} // namespace kvrtb
