#pragma once

#include <QAccessibleWidget>

namespace kvrtb {

class SurfaceTextEdit;

/// \brief What assistive technology reads from the editor widget: its text, caret, selection,
/// character geometry and text attributes, and edits made through it.
///
/// Besides the font attributes of each run of text, a word marked misspelt (spelling as you
/// type) carries the attribute "invalid:spelling", the standard text attribute by which screen
/// readers tell a spelling error, and a link carries "link:<address>"; attribute runs end where
/// such a word or link begins or ends. Offsets are the surface's positions (a paragraph break is
/// one "\n"). Edits go through the widget's document, so they are undone as typing is.
class EditorAccessible : public QAccessibleWidget,
                         public QAccessibleTextInterface,
                         public QAccessibleEditableTextInterface {
public:
    explicit EditorAccessible(SurfaceTextEdit *edit);

    /// Installs, once per process, the factory that gives every editor widget this interface.
    static void installFactory();

    void *interface_cast(QAccessible::InterfaceType type) override;
    QAccessible::State state() const override;

    // Selection and caret.
    void selection(int selectionIndex, int *startOffset, int *endOffset) const override;
    int selectionCount() const override;
    void addSelection(int startOffset, int endOffset) override;
    void removeSelection(int selectionIndex) override;
    void setSelection(int selectionIndex, int startOffset, int endOffset) override;
    int cursorPosition() const override;
    void setCursorPosition(int position) override;

    // Text and geometry.
    QString text(QAccessible::Text t) const override;
    QString text(int startOffset, int endOffset) const override;
    int characterCount() const override;
    QRect characterRect(int offset) const override;
    int offsetAtPoint(const QPoint &point) const override;
    void scrollToSubstring(int startIndex, int endIndex) override;
    QString attributes(int offset, int *startOffset, int *endOffset) const override;

    // Editing.
    void deleteText(int startOffset, int endOffset) override;
    void insertText(int offset, const QString &text) override;
    void replaceText(int startOffset, int endOffset, const QString &text) override;

private:
    SurfaceTextEdit *edit() const;
    int clampOffset(int offset) const;
};

} // namespace kvrtb
