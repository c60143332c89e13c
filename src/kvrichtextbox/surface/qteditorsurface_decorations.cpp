// The Qt surface's decorations: spans painted over the text as the widget's extra selections,
// never written into the document, so they stay out of its formats, RTF and undo.

#include "surface/qteditorsurface.h"

#include "core/textspans.h"
#include "surface/formatmapping.h"
#include "surface/surfacetextedit.h"

#include <QHash>
#include <QPalette>
#include <QTextBlock>
#include <QTextDocument>

#include <algorithm>
#include <cmath>

namespace kvrtb {

namespace {

/// True when the palette paints text light on dark.
bool isDarkPalette(const QPalette &palette)
{
    return palette.color(QPalette::Base).lightness() < palette.color(QPalette::Text).lightness();
}

/// Relative luminance of a colour, 0 (black) to 1 (white), as contrast ratios are reckoned.
double luminance(const QColor &colour)
{
    auto channel = [](double value) {
        return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * channel(colour.redF()) + 0.7152 * channel(colour.greenF()) + 0.0722 * channel(colour.blueF());
}

/// The contrast ratio of two colours, 1 (none) to 21 (black on white).
double contrast(const QColor &a, const QColor &b)
{
    const double la = luminance(a);
    const double lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

/// The palette's link colour, made lighter in steps (keeping its hue) until it reads on the
/// palette's base as well as body text should (a contrast of 4.5 to 1).
QColor readableLinkColour(const QPalette &palette)
{
    const QColor base = palette.color(QPalette::Base);
    QColor link = palette.color(QPalette::Link).toHsl();
    while (contrast(link, base) < 4.5 && link.lightness() < 255)
        link.setHsl(link.hslHue(), link.hslSaturation(), std::min(255, link.lightness() + 8));
    return link.toRgb();
}

/// The runs of characters of \a document shown as links that meet [first, last), as spans.
QList<EditorSurface::TextSpan> linkRuns(const QTextDocument *document, int first, int last)
{
    QList<EditorSurface::TextSpan> runs;
    for (QTextBlock block = document->findBlock(first); block.isValid() && block.position() < last;
         block = block.next()) {
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextFragment fragment = it.fragment();
            if (!fragment.charFormat().boolProperty(format::LinkEffect))
                continue;
            if (!runs.isEmpty() && runs.last().end() == fragment.position())
                runs.last().length += fragment.length();
            else
                runs.append({fragment.position(), fragment.length()});
        }
    }
    return runs;
}

} // namespace

bool QtEditorSurface::paintsLinks() const
{
    return m_edit && isDarkPalette(m_edit->palette());
}

bool QtEditorSurface::decorating() const
{
    return !m_decorations.isEmpty() || paintsLinks();
}

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
    QList<TextSpan> kept;
    kept.reserve(spans.size());
    const int length = textLength();
    for (const TextSpan &span : spans) {
        const int start = std::clamp(span.start, 0, length);
        const int end = std::clamp(span.end(), start, length);
        if (end > start)
            kept.append({start, end - start});
    }
    if (kept.isEmpty())
        m_decorations.remove(int(layer));
    else
        m_decorations.insert(int(layer), kept);
    applyDecorations(false);
}

QList<EditorSurface::TextSpan> QtEditorSurface::decorations(DecorationLayer layer) const
{
    return m_decorations.value(int(layer));
}

void QtEditorSurface::moveDecorations(int position, int removed, int added)
{
    const int delta = added - removed;
    if (position < m_viewStart)
        m_viewStart = std::max(0, m_viewStart + delta);
    if (m_viewEnd >= 0 && position <= m_viewEnd)
        m_viewEnd = std::max(m_viewStart, m_viewEnd + delta);
    // The widget's selections move with the text by themselves, but one the edit cut into or
    // added to would go on painting over the new text: those are handed over again once the
    // edit is laid out.
    for (QList<TextSpan> &spans : m_decorations)
        m_decorationsStale |= moveTextSpans(spans, position, removed, added);
}

void QtEditorSurface::applyDecorations(bool findView)
{
    if (!m_edit)
        return;
    if (findView || m_viewEnd < 0) {
        // The paragraphs in view, from the one at the top-left corner to the one at the
        // bottom-right.
        const QRect view = m_edit->viewport()->rect();
        m_viewStart = document()->findBlock(m_edit->cursorForPosition(view.topLeft()).position()).position();
        const QTextBlock lastBlock = document()->findBlock(m_edit->cursorForPosition(view.bottomRight()).position());
        m_viewEnd = lastBlock.position() + lastBlock.length();
    }
    // A margin covers what typing since the last look has pushed into view.
    constexpr int kMargin = 4096;
    const int first = std::max(0, m_viewStart - kMargin);
    const int last = m_viewEnd + kMargin;

    // The cursors of the selections shown now have moved with every edit since they were
    // placed. A span that still has one keeps it: placing a new cursor asks the layout where
    // its line starts, and the widget repaints only the selections that differ, so unchanged
    // marks cost neither layout work nor painting.
    auto key = [](int start, int end) { return (quint64(quint32(start)) << 32) | quint32(end); };
    QHash<quint64, QTextCursor> shown;
    for (const QTextEdit::ExtraSelection &selection : m_edit->extraSelections()) {
        if (selection.cursor.document() == document())
            shown.insert(key(selection.cursor.selectionStart(), selection.cursor.selectionEnd()), selection.cursor);
    }
    QList<QTextEdit::ExtraSelection> selections;
    auto place = [&](const TextSpan &span, const QTextCharFormat &format) {
        QTextCursor cursor = shown.value(key(span.start, span.end()));
        if (cursor.isNull()) {
            cursor = QTextCursor(document());
            cursor.setPosition(span.start);
            cursor.setPosition(span.end(), QTextCursor::KeepAnchor);
        }
        selections.append({cursor, format});
    };
    if (paintsLinks()) {
        // In a dark palette the links in view are painted in the palette's link colour, under
        // every other decoration: the characters keep the colour stored with them (a link
        // stored dark would not read on a dark base), so the document, its RTF and what the
        // control reports do not change.
        // They are found again after every change, so only a small margin is looked at.
        constexpr int kLinkMargin = 512;
        QTextCharFormat linkFormat;
        linkFormat.setForeground(readableLinkColour(m_edit->palette()));
        for (const TextSpan &run : linkRuns(document(), std::max(0, m_viewStart - kLinkMargin), m_viewEnd + kLinkMargin))
            place(run, linkFormat);
    }
    for (auto it = m_decorations.cbegin(); it != m_decorations.cend(); ++it) {
        const QTextCharFormat format = decorationFormat(DecorationLayer(it.key()));
        const QList<TextSpan> &spans = it.value();
        auto from = std::lower_bound(spans.cbegin(), spans.cend(), first,
                                     [](const TextSpan &span, int at) { return span.end() <= at; });
        for (; from != spans.cend() && from->start < last; ++from)
            place(*from, format);
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

void QtEditorSurface::setAccessibleDescription(const QString &description)
{
    // The widget raises the description-changed event itself.
    if (m_edit)
        m_edit->setAccessibleDescription(description);
}

void QtEditorSurface::addContentsObserver(ContentsObserver observer)
{
    if (observer)
        m_contentsObservers.append(std::move(observer));
}

} // namespace kvrtb
