#pragma once

// Helpers shared by the files of the Qt editor surface.

#include <QChar>
#include <QTextDocument>

namespace kvrtb::surfacedetail {

/// The character at a position as the surface's plain text shows it: the document's paragraph,
/// line and frame separators are line feeds.
inline QChar characterAt(const QTextDocument *document, int position)
{
    const QChar c = document->characterAt(position);
    switch (c.unicode()) {
    case QChar::ParagraphSeparator:
    case QChar::LineSeparator:
    case 0xFDD0:
    case 0xFDD1: return QLatin1Char('\n');
    default: return c;
    }
}

} // namespace kvrtb::surfacedetail
