#pragma once

// Helpers shared by the files of the Qt editor surface.

#include <QChar>
#include <QList>
#include <QTextBlock>
#include <QTextCharFormat>
#include <QTextDocument>

#include <algorithm>

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

/// A stretch of a range that lies in one fragment, so that all its characters share a format.
struct FormatPiece {
    int start;
    int end;
    QTextCharFormat format;
};

/// The pieces of [start, end), in order. Paragraph separators belong to no piece. Edits that
/// replace characters piece by piece must take the pieces first, as editing replaces fragments.
inline QList<FormatPiece> formatPieces(const QTextDocument *document, int start, int end)
{
    QList<FormatPiece> pieces;
    for (QTextBlock block = document->findBlock(start); block.isValid() && block.position() < end;
         block = block.next()) {
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextFragment fragment = it.fragment();
            const int from = std::max(start, fragment.position());
            const int to = std::min(end, fragment.position() + fragment.length());
            if (from < to)
                pieces.append({from, to, fragment.charFormat()});
        }
    }
    return pieces;
}

} // namespace kvrtb::surfacedetail
