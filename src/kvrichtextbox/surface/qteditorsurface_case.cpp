// The Qt editor surface: Span, UpTo, the case changes of the selection and same-length rewrites
// of characters that keep their formats.

#include "surface/qteditorsurface.h"

#include "surface/qteditorsurface_p.h"

#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

#include <algorithm>

namespace kvrtb {

using surfacedetail::characterAt;

// --- Span, UpTo and case --------------------------------------------------------------------

void QtEditorSurface::span(const QString &set, bool forward, bool negate)
{
    const QTextDocument *doc = document();
    const int length = textLength();
    const auto inRun = [&](int position) { return set.contains(characterAt(doc, position)) != negate; };
    const QTextCursor current = cursor();
    int start = current.selectionStart();
    int end = current.selectionEnd();
    if (forward) {
        while (end < length && inRun(end))
            ++end;
    } else {
        while (start > 0 && inRun(start - 1))
            --start;
    }
    setSelection(start, end - start);
}

void QtEditorSurface::upTo(const QString &set, bool forward, bool negate)
{
    const QTextDocument *doc = document();
    const int length = textLength();
    const auto stopsAt = [&](int position) { return set.contains(characterAt(doc, position)) != negate; };
    const QTextCursor current = cursor();
    int position = forward ? current.selectionEnd() : current.selectionStart();
    if (forward) {
        while (position < length && !stopsAt(position))
            ++position;
    } else {
        while (position > 0 && !stopsAt(position - 1))
            --position;
    }
    setSelection(position, 0);
}

void QtEditorSurface::changeCase(int kind)
{
    if (kind != 0 && kind != 1 && kind != 2 && kind != 4 && kind != 5)
        return;
    QTextCursor current = cursor();
    if (!current.hasSelection())
        return;
    QTextDocument *doc = document();
    const int start = current.selectionStart();
    const int end = current.selectionEnd();

    // Where words and sentences begin depends on what stands before the selection.
    QChar previous = start > 0 ? characterAt(doc, start - 1) : QLatin1Char('\n');
    bool sentenceStart = true;
    for (int p = start - 1; p >= 0; --p) {
        const QChar c = characterAt(doc, p);
        if (c == QLatin1Char('\n'))
            break;
        if (c.isSpace())
            continue;
        sentenceStart = c == QLatin1Char('.') || c == QLatin1Char('!') || c == QLatin1Char('?');
        break;
    }

    const QList<surfacedetail::FormatPiece> pieces = surfacedetail::formatPieces(doc, start, end);

    QTextCursor work(doc);
    work.beginEditBlock();
    int delta = 0;
    int lastEnd = start;
    for (const surfacedetail::FormatPiece &piece : pieces) {
        // Paragraph breaks between pieces start a new sentence and a new word.
        if (piece.start > lastEnd) {
            previous = QLatin1Char('\n');
            sentenceStart = true;
        }
        lastEnd = piece.end;
        QTextCursor read(doc);
        read.setPosition(piece.start + delta);
        read.setPosition(piece.end + delta, QTextCursor::KeepAnchor);
        const QString before = read.selectedText();
        QString after;
        after.reserve(before.size());
        for (const QChar c : before) {
            QString out(c);
            switch (kind) {
            case 0: out = QString(c).toLower(); break;
            case 1: out = QString(c).toUpper(); break;
            case 2:
                if (c.isLetter())
                    out = (previous.isLetter() || previous == QLatin1Char('\'')) ? QString(c).toLower()
                                                                                 : QString(c).toUpper();
                break;
            case 4:
                if (c.isLetter()) {
                    out = sentenceStart ? QString(c).toUpper() : QString(c).toLower();
                    sentenceStart = false;
                } else if (c == QLatin1Char('.') || c == QLatin1Char('!') || c == QLatin1Char('?')) {
                    sentenceStart = true;
                }
                break;
            case 5:
                if (c.isUpper())
                    out = QString(c).toLower();
                else if (c.isLower())
                    out = QString(c).toUpper();
                break;
            }
            after += out;
            previous = c;
        }
        if (after != before) {
            read.insertText(after, piece.format);
            delta += int(after.size() - before.size());
        }
    }
    work.endEditBlock();
    setSelection(start, end - start + delta);
}

void QtEditorSurface::rewriteCharacters(const QList<TextRewrite> &rewrites)
{
    if (rewrites.isEmpty())
        return;
    QTextDocument *doc = document();
    const int length = textLength();
    // A selection edge inside a rewritten piece would slide to the piece's start: keep it.
    const QTextCursor before = cursor();
    const int anchor = before.anchor();
    const int position = before.position();
    QTextCursor batch(doc);
    batch.beginEditBlock();
    for (const TextRewrite &rewrite : rewrites) {
        const int start = std::clamp(rewrite.start, 0, length);
        const int end = std::clamp(rewrite.start + int(rewrite.text.size()), start, length);
        // Piece by piece, so that every character keeps its own format; the lengths stay the
        // same, so no position moves.
        for (const surfacedetail::FormatPiece &piece : surfacedetail::formatPieces(doc, start, end)) {
            const QString text = rewrite.text.mid(piece.start - rewrite.start, piece.end - piece.start);
            QTextCursor range(doc);
            range.setPosition(piece.start);
            range.setPosition(piece.end, QTextCursor::KeepAnchor);
            if (range.selectedText() != text)
                range.insertText(text, piece.format);
        }
    }
    batch.endEditBlock();
    QTextCursor after = cursor();
    if (after.anchor() != anchor || after.position() != position) {
        after.setPosition(anchor);
        after.setPosition(position, QTextCursor::KeepAnchor);
        setCursor(after);
    }
    markLinesDirty();
}

} // namespace kvrtb
