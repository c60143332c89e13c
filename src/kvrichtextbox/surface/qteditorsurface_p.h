#pragma once

// Helpers shared by the files of the Qt editor surface.

#include <QChar>
#include <QTextDocument>

namespace kvrtb::surfacedetail {

/// True for the document's own paragraph break and for the marks that begin and end a frame
/// (a table): the surface's plain text shows each of them as a line feed.
inline bool isParagraphBreak(QChar c)
{
    return c == QChar::ParagraphSeparator || c == QChar(0xFDD0) || c == QChar(0xFDD1);
}

/// The character at a position as the surface's plain text shows it: paragraph breaks are line
/// feeds, every other character is itself.
inline QChar characterAt(const QTextDocument *document, int position)
{
    const QChar c = document->characterAt(position);
    return isParagraphBreak(c) ? QChar(QLatin1Char('\n')) : c;
}

} // namespace kvrtb::surfacedetail
