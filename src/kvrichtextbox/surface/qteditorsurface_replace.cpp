// The Qt editor surface: many text replacements as one edit.

#include "surface/qteditorsurface.h"

#include "surface/formatmapping.h"

#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

#include <algorithm>

namespace kvrtb {

namespace {

QString withParagraphBreaks(QString text)
{
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return text;
}

/// True when the block's text is one run of one character format (no pictures either).
bool isUniform(const QTextBlock &block)
{
    QTextBlock::iterator it = block.begin();
    if (it.atEnd())
        return false;
    ++it;
    return it.atEnd();
}

} // namespace

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
    const int length = textLength();
    auto fromOf = [&](const TextReplacement &r) { return std::clamp(r.start, 0, length); };
    auto toOf = [&](const TextReplacement &r) { return std::clamp(r.start + std::max(r.length, 0), fromOf(r), length); };

    QTextCursor edit(doc);
    edit.beginEditBlock();
    QTextCursor range(doc);
    // From the last range to the first, so that the positions of the ranges still to do hold.
    // The ranges of one paragraph in a single format are spliced into its text and written in
    // one insertion, which is what makes thousands of replacements fast; the others are
    // replaced one by one, each taking the format of its first character.
    qsizetype last = replacements.size() - 1;
    while (last >= 0) {
        const QTextBlock block = doc->findBlock(fromOf(replacements.at(last)));
        const int blockStart = block.position();
        const int blockEnd = blockStart + block.length() - 1; // before the paragraph break
        qsizetype first = last;
        if (toOf(replacements.at(last)) <= blockEnd) {
            while (first > 0 && fromOf(replacements.at(first - 1)) >= blockStart)
                --first;
        }
        if (first < last && isUniform(block)) {
            const QString old = block.text();
            QString spliced;
            int copied = 0;
            for (qsizetype i = first; i <= last; ++i) {
                const TextReplacement &r = replacements.at(i);
                spliced += QStringView(old).mid(copied, fromOf(r) - blockStart - copied);
                spliced += withParagraphBreaks(r.text);
                copied = toOf(r) - blockStart;
            }
            spliced += QStringView(old).mid(copied);
            range.setPosition(blockStart);
            range.setPosition(blockEnd, QTextCursor::KeepAnchor);
            range.insertText(spliced, block.begin().fragment().charFormat());
        } else {
            for (qsizetype i = last; i >= first; --i) {
                const TextReplacement &r = replacements.at(i);
                const int from = fromOf(r);
                const int to = toOf(r);
                // The format of the range's first character: a cursor just behind it reports it.
                range.setPosition(from < to ? from + 1 : from);
                const QTextCharFormat firstFormat = range.charFormat();
                range.setPosition(from);
                range.setPosition(to, QTextCursor::KeepAnchor);
                range.insertText(withParagraphBreaks(r.text), firstFormat);
            }
        }
        last = first - 1;
    }
    if (format) {
        // Where each new text ended up: its old start moved by the growth of those before it.
        int shift = 0;
        for (const TextReplacement &r : replacements) {
            const int from = fromOf(r) + shift;
            const int size = int(withParagraphBreaks(r.text).size());
            if (size > 0) {
                range.setPosition(from);
                range.setPosition(from + size, QTextCursor::KeepAnchor);
                format::applyCharFormat(range, *format);
            }
            shift += size - (toOf(r) - fromOf(r));
        }
    }
    edit.endEditBlock();
    if (relayoutLazily)
        doc->setPageSize(pageSize);
    markLinesDirty();
}

} // namespace kvrtb
