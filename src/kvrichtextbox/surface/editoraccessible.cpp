#include "surface/editoraccessible.h"

#include "surface/formatmapping.h"
#include "surface/surfacetextedit.h"

#include <QScrollBar>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

#include <algorithm>

namespace kvrtb {

namespace {

QAccessibleInterface *editorFactory(const QString &className, QObject *object)
{
    if (className == QLatin1String(SurfaceTextEdit::staticMetaObject.className()) && object && object->isWidgetType())
        return new EditorAccessible(static_cast<SurfaceTextEdit *>(object));
    return nullptr;
}

/// The attributes of a character format, as assistive technology reads them.
QStringList formatAttributes(const QTextCharFormat &format)
{
    QStringList attributes;
    const QStringList families = format.fontFamilies().toStringList();
    if (!families.isEmpty() && !families.first().isEmpty())
        attributes << QStringLiteral("font-family:\"%1\"").arg(families.first());
    if (format.hasProperty(QTextFormat::FontPointSize))
        attributes << QStringLiteral("font-size:%1pt").arg(format.fontPointSize());
    attributes << QStringLiteral("font-weight:%1").arg(format.fontWeight() >= QFont::DemiBold ? QStringLiteral("bold")
                                                                                             : QStringLiteral("normal"));
    attributes << QStringLiteral("font-style:%1").arg(format.fontItalic() ? QStringLiteral("italic")
                                                                         : QStringLiteral("normal"));
    attributes << QStringLiteral("text-underline-style:%1")
                      .arg(format::userUnderline(format) != QTextCharFormat::NoUnderline ? QStringLiteral("solid")
                                                                                        : QStringLiteral("none"));
    if (format.fontStrikeOut())
        attributes << QStringLiteral("text-line-through-type:single");
    if (format.boolProperty(format::LinkEffect))
        attributes << QStringLiteral("link:%1").arg(format.anchorHref());
    return attributes;
}

} // namespace

EditorAccessible::EditorAccessible(SurfaceTextEdit *edit)
    : QAccessibleWidget(edit, QAccessible::EditableText)
{
}

void EditorAccessible::installFactory()
{
    static const bool installed = [] {
        QAccessible::installFactory(editorFactory);
        return true;
    }();
    Q_UNUSED(installed)
}

SurfaceTextEdit *EditorAccessible::edit() const
{
    return static_cast<SurfaceTextEdit *>(widget());
}

int EditorAccessible::clampOffset(int offset) const
{
    return std::clamp(offset, 0, characterCount());
}

void *EditorAccessible::interface_cast(QAccessible::InterfaceType type)
{
    if (type == QAccessible::TextInterface)
        return static_cast<QAccessibleTextInterface *>(this);
    if (type == QAccessible::EditableTextInterface)
        return static_cast<QAccessibleEditableTextInterface *>(this);
    return QAccessibleWidget::interface_cast(type);
}

QAccessible::State EditorAccessible::state() const
{
    QAccessible::State state = QAccessibleWidget::state();
    state.multiLine = true;
    state.selectableText = true;
    state.readOnly = edit()->isReadOnly();
    state.editable = !state.readOnly;
    return state;
}

void EditorAccessible::selection(int selectionIndex, int *startOffset, int *endOffset) const
{
    const QTextCursor cursor = edit()->textCursor();
    if (selectionIndex != 0 || !cursor.hasSelection()) {
        *startOffset = *endOffset = 0;
        return;
    }
    *startOffset = cursor.selectionStart();
    *endOffset = cursor.selectionEnd();
}

int EditorAccessible::selectionCount() const
{
    return edit()->textCursor().hasSelection() ? 1 : 0;
}

void EditorAccessible::addSelection(int startOffset, int endOffset)
{
    setSelection(0, startOffset, endOffset);
}

void EditorAccessible::removeSelection(int selectionIndex)
{
    if (selectionIndex != 0)
        return;
    QTextCursor cursor = edit()->textCursor();
    cursor.clearSelection();
    edit()->setTextCursor(cursor);
}

void EditorAccessible::setSelection(int selectionIndex, int startOffset, int endOffset)
{
    if (selectionIndex != 0)
        return;
    QTextCursor cursor = edit()->textCursor();
    cursor.setPosition(clampOffset(startOffset));
    cursor.setPosition(clampOffset(endOffset), QTextCursor::KeepAnchor);
    edit()->setTextCursor(cursor);
}

int EditorAccessible::cursorPosition() const
{
    return edit()->textCursor().position();
}

void EditorAccessible::setCursorPosition(int position)
{
    QTextCursor cursor = edit()->textCursor();
    cursor.setPosition(clampOffset(position));
    edit()->setTextCursor(cursor);
}

QString EditorAccessible::text(QAccessible::Text t) const
{
    if (t == QAccessible::Value)
        return text(0, characterCount());
    return QAccessibleWidget::text(t);
}

QString EditorAccessible::text(int startOffset, int endOffset) const
{
    QTextCursor cursor(edit()->document());
    cursor.setPosition(clampOffset(startOffset));
    cursor.setPosition(clampOffset(endOffset), QTextCursor::KeepAnchor);
    QString text = cursor.selectedText();
    for (QChar &c : text) {
        if (c == QChar::ParagraphSeparator || c == QChar(0xFDD0) || c == QChar(0xFDD1))
            c = QLatin1Char('\n');
    }
    return text;
}

int EditorAccessible::characterCount() const
{
    return edit()->document()->characterCount() - 1;
}

QRect EditorAccessible::characterRect(int offset) const
{
    QTextCursor cursor(edit()->document());
    cursor.setPosition(clampOffset(offset));
    QRect rect = edit()->cursorRect(cursor);
    if (offset < characterCount()) {
        cursor.setPosition(clampOffset(offset + 1));
        const QRect next = edit()->cursorRect(cursor);
        // The character runs to the next caret place on its line.
        if (next.top() == rect.top() && next.left() > rect.left())
            rect.setRight(next.left() - 1);
    }
    return QRect(edit()->viewport()->mapToGlobal(rect.topLeft()), rect.size());
}

int EditorAccessible::offsetAtPoint(const QPoint &point) const
{
    const QPoint local = edit()->viewport()->mapFromGlobal(point);
    if (!edit()->viewport()->rect().contains(local))
        return -1;
    return edit()->cursorForPosition(local).position();
}

void EditorAccessible::scrollToSubstring(int startIndex, int endIndex)
{
    // Scrolls without moving the caret: the user's selection stays as it is.
    QTextCursor cursor(edit()->document());
    cursor.setPosition(clampOffset(startIndex));
    const QRect first = edit()->cursorRect(cursor);
    cursor.setPosition(clampOffset(endIndex));
    const QRect last = edit()->cursorRect(cursor);
    const int height = edit()->viewport()->height();
    QScrollBar *bar = edit()->verticalScrollBar();
    if (first.top() < 0 || last.bottom() > height)
        bar->setValue(bar->value() + (first.top() < 0 ? first.top() : std::min(first.top(), last.bottom() - height)));
}

QString EditorAccessible::attributes(int offset, int *startOffset, int *endOffset) const
{
    const int count = characterCount();
    if (offset < 0 || offset >= count) {
        *startOffset = *endOffset = std::clamp(offset, 0, count);
        return {};
    }
    // The run of one format around the offset...
    const QTextBlock block = edit()->document()->findBlock(offset);
    int start = block.position();
    int end = block.position() + block.length() - 1;
    QTextCharFormat format = block.charFormat();
    for (auto it = block.begin(); !it.atEnd(); ++it) {
        const QTextFragment fragment = it.fragment();
        if (offset >= fragment.position() && offset < fragment.position() + fragment.length()) {
            start = fragment.position();
            end = fragment.position() + fragment.length();
            format = fragment.charFormat();
            break;
        }
    }
    if (end <= offset) // the paragraph mark
        end = offset + 1;
    QStringList attributes = formatAttributes(format);
    // ...cut to the misspelt word holding it, or to the gap between misspelt words.
    if (const SurfaceTextEdit::MisspeltStretch &stretch = edit()->misspeltStretch()) {
        int from = start;
        int to = end;
        if (stretch(offset, count, &from, &to))
            attributes << QStringLiteral("invalid:spelling");
        start = std::max(start, from);
        end = std::min(end, to);
    }
    *startOffset = start;
    *endOffset = end;
    return attributes.join(QLatin1Char(';'));
}

void EditorAccessible::deleteText(int startOffset, int endOffset)
{
    replaceText(startOffset, endOffset, QString());
}

void EditorAccessible::insertText(int offset, const QString &text)
{
    replaceText(offset, offset, text);
}

void EditorAccessible::replaceText(int startOffset, int endOffset, const QString &text)
{
    if (edit()->isReadOnly())
        return;
    QTextCursor cursor(edit()->document());
    cursor.setPosition(clampOffset(startOffset));
    cursor.setPosition(clampOffset(endOffset), QTextCursor::KeepAnchor);
    // The maximum length holds here as it does for typing.
    const int max = edit()->maxLength();
    const int replaced = cursor.selectionEnd() - cursor.selectionStart();
    const int room = max <= 0 ? -1 : std::max(0, max - (characterCount() - replaced));
    cursor.insertText(room < 0 ? text : text.left(room));
}

} // namespace kvrtb
