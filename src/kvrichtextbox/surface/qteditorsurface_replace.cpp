// The Qt editor surface: many text replacements as one edit.

#include "surface/qteditorsurface.h"

#include "surface/formatmapping.h"

#include <QTextCursor>
#include <QTextDocument>

#include <algorithm>

namespace kvrtb {

void QtEditorSurface::replaceRanges(const QList<TextReplacement> &replacements, const CharFormat *format)
{
    if (replacements.isEmpty())
        return;
    QTextDocument *doc = document();
    // As with a large batch of formats: the layout starts over lazily after the edit instead
    // of following every change.
    const bool relayoutLazily = replacements.size() >= 256;
    const QSizeF pageSize = doc->pageSize();
    if (relayoutLazily)
        doc->setPageSize(QSizeF());
    QTextCursor edit(doc);
    edit.beginEditBlock();
    // From the last range to the first, so that the positions of the ranges still to do hold.
    for (auto it = replacements.crbegin(); it != replacements.crend(); ++it) {
        const int from = std::clamp(it->start, 0, textLength());
        const int to = std::clamp(it->start + std::max(it->length, 0), from, textLength());
        // The format of the range's first character: a cursor just behind it reports it.
        QTextCursor range(doc);
        range.setPosition(from < to ? from + 1 : from);
        const QTextCharFormat first = range.charFormat();
        range.setPosition(from);
        range.setPosition(to, QTextCursor::KeepAnchor);
        QString text = it->text;
        text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
        text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
        range.insertText(text, first);
        if (format && !text.isEmpty()) {
            range.setPosition(from);
            range.setPosition(from + int(text.size()), QTextCursor::KeepAnchor);
            format::applyCharFormat(range, *format);
        }
    }
    edit.endEditBlock();
    if (relayoutLazily)
        doc->setPageSize(pageSize);
    markLinesDirty();
}

} // namespace kvrtb
