// The Qt surface's decorations: spans painted over the text as the widget's extra selections,
// never written into the document, so they stay out of its formats, RTF and undo.

#include "surface/qteditorsurface.h"

#include "surface/surfacetextedit.h"

#include <QPalette>
#include <QTextBlock>
#include <QTextDocument>

#include <algorithm>

namespace kvrtb {

namespace {

/// True when the palette paints text light on dark.
bool isDarkPalette(const QPalette &palette)
{
    return palette.color(QPalette::Base).lightness() < palette.color(QPalette::Text).lightness();
}

} // namespace

QTextCharFormat QtEditorSurface::decorationFormat(DecorationLayer layer) const
{
    const QPalette palette = m_edit->palette();
    const bool dark = isDarkPalette(palette);
    QTextCharFormat format;
    switch (layer) {
    case DecorationLayer::Misspelling:
        // A pure red wave is hard to see on a dark base: a lighter red keeps it readable.
        format.setUnderlineStyle(QTextCharFormat::WaveUnderline);
        format.setUnderlineColor(dark ? QColor(255, 110, 110) : QColor(220, 0, 0));
        break;
    case DecorationLayer::FindMatch: {
        QColor tint = palette.color(QPalette::Highlight);
        tint.setAlpha(dark ? 110 : 70);
        format.setBackground(tint);
        break;
    }
    case DecorationLayer::FindCurrent:
        format.setBackground(palette.color(QPalette::Highlight));
        format.setForeground(palette.color(QPalette::HighlightedText));
        break;
    }
    return format;
}

void QtEditorSurface::setDecorations(DecorationLayer layer, const QList<TextSpan> &spans)
{
    if (!m_edit)
        return;
    QList<QTextCursor> cursors;
    cursors.reserve(spans.size());
    const int length = textLength();
    for (const TextSpan &span : spans) {
        const int start = std::clamp(span.start, 0, length);
        const int end = std::clamp(span.end(), start, length);
        if (end <= start)
            continue;
        QTextCursor cursor(document());
        cursor.setPosition(start);
        cursor.setPosition(end, QTextCursor::KeepAnchor);
        cursors.append(cursor);
    }
    if (cursors.isEmpty())
        m_decorations.remove(int(layer));
    else
        m_decorations.insert(int(layer), cursors);
    applyDecorations();
}

QList<EditorSurface::TextSpan> QtEditorSurface::decorations(DecorationLayer layer) const
{
    QList<TextSpan> spans;
    for (const QTextCursor &cursor : m_decorations.value(int(layer))) {
        if (cursor.hasSelection())
            spans.append({cursor.selectionStart(), cursor.selectionEnd() - cursor.selectionStart()});
    }
    return spans;
}

void QtEditorSurface::applyDecorations()
{
    QList<QTextEdit::ExtraSelection> selections;
    for (auto it = m_decorations.cbegin(); it != m_decorations.cend(); ++it) {
        const QTextCharFormat format = decorationFormat(DecorationLayer(it.key()));
        for (const QTextCursor &cursor : it.value())
            selections.append({cursor, format});
    }
    m_edit->setExtraSelections(selections);
}

EditorSurface::TextSpan QtEditorSurface::paragraphAt(int position) const
{
    const QTextBlock block = document()->findBlock(clamp(position));
    if (!block.isValid())
        return {};
    return {block.position(), block.length() - 1};
}

int QtEditorSurface::charAtGlobalPoint(const QPoint &globalPoint) const
{
    return charFromPoint(m_edit->viewport()->mapFromGlobal(globalPoint));
}

void QtEditorSurface::addContentsObserver(ContentsObserver observer)
{
    if (observer)
        m_contentsObservers.append(std::move(observer));
}

} // namespace kvrtb
