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

namespace {

/// A code point read from UTF-16 text, and how many units it took.
struct CodePoint {
    char32_t value = '\n';
    int units = 1;
};

/// The code point that ends just before \a position (a paragraph break before the text).
CodePoint codePointBefore(const QTextDocument *doc, int position)
{
    if (position <= 0)
        return {};
    const QChar low = characterAt(doc, position - 1);
    if (low.isLowSurrogate() && position >= 2) {
        const QChar high = characterAt(doc, position - 2);
        if (high.isHighSurrogate())
            return {QChar::surrogateToUcs4(high, low), 2};
    }
    return {low.unicode(), 1};
}

bool isApostrophe(char32_t c)
{
    return c == U'\'' || c == U'\u2019';
}

bool endsSentence(char32_t c)
{
    return c == U'.' || c == U'!' || c == U'?';
}

/// \a mapped when it takes as many UTF-16 units as the original, else the original: a case
/// change never changes the length of the text (so selection and formatting keep their place).
char32_t sameLength(const CodePoint &original, char32_t mapped)
{
    return (QChar::requiresSurrogates(mapped) ? 2 : 1) == original.units ? mapped : original.value;
}

} // namespace

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

    // Where words and sentences begin depends on what stands before the selection. A word goes
    // on after a letter or digit, and after an apostrophe that follows one ("don't", "don’t").
    CodePoint previous = codePointBefore(doc, start);
    bool previousAfterWord = QChar::isLetterOrNumber(codePointBefore(doc, start - previous.units).value);
    bool sentenceStart = true;
    for (int p = start - 1; p >= 0; --p) {
        const QChar c = characterAt(doc, p);
        if (c == QLatin1Char('\n'))
            break;
        if (c.isSpace())
            continue;
        sentenceStart = endsSentence(c.unicode());
        break;
    }

    const QList<surfacedetail::FormatPiece> pieces = surfacedetail::formatPieces(doc, start, end);

    QTextCursor work(doc);
    work.beginEditBlock();
    int lastEnd = start;
    for (const surfacedetail::FormatPiece &piece : pieces) {
        // Paragraph breaks between pieces start a new sentence and a new word.
        if (piece.start > lastEnd) {
            previous = CodePoint();
            previousAfterWord = false;
            sentenceStart = true;
        }
        lastEnd = piece.end;
        QTextCursor read(doc);
        read.setPosition(piece.start);
        read.setPosition(piece.end, QTextCursor::KeepAnchor);
        const QString before = read.selectedText();
        QString after;
        after.reserve(before.size());
        for (qsizetype i = 0; i < before.size();) {
            CodePoint c{before.at(i).unicode(), 1};
            if (before.at(i).isHighSurrogate() && i + 1 < before.size() && before.at(i + 1).isLowSurrogate())
                c = {QChar::surrogateToUcs4(before.at(i), before.at(i + 1)), 2};
            char32_t out = c.value;
            switch (kind) {
            case 0: out = QChar::toLower(c.value); break;
            case 1: out = QChar::toUpper(c.value); break;
            case 2:
                if (QChar::isLetter(c.value)) {
                    const bool inWord = QChar::isLetterOrNumber(previous.value)
                                        || (isApostrophe(previous.value) && previousAfterWord);
                    out = inWord ? QChar::toLower(c.value) : QChar::toUpper(c.value);
                }
                break;
            case 4:
                if (QChar::isLetter(c.value)) {
                    out = sentenceStart ? QChar::toUpper(c.value) : QChar::toLower(c.value);
                    sentenceStart = false;
                } else if (endsSentence(c.value)) {
                    sentenceStart = true;
                }
                break;
            case 5:
                if (QChar::isUpper(c.value))
                    out = QChar::toLower(c.value);
                else if (QChar::isLower(c.value))
                    out = QChar::toUpper(c.value);
                break;
            }
            out = sameLength(c, out);
            if (QChar::requiresSurrogates(out)) {
                after += QChar(QChar::highSurrogate(out));
                after += QChar(QChar::lowSurrogate(out));
            } else {
                after += QChar(char16_t(out));
            }
            previousAfterWord = QChar::isLetterOrNumber(previous.value);
            previous = c;
            i += c.units;
        }
        if (after != before)
            read.insertText(after, piece.format);
    }
    work.endEditBlock();
    setSelection(start, end - start);
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
