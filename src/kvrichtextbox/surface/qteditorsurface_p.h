#pragma once

// Helpers shared by the files of the Qt editor surface.

#include <QChar>
#include <QList>
#include <QTextBlock>
#include <QTextCharFormat>
#include <QTextDocument>

#include <algorithm>

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
