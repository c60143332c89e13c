#pragma once

#include <QTextEdit>

namespace kvrtb {

class SurfaceListener;

/// \brief The QTextEdit under the Qt surface: turns Qt's input events into the surface's
/// listener calls (virtual-key codes, by-reference arguments that can swallow a key), enforces
/// the maximum length on typing and pasting, and offers and accepts RTF on the clipboard.
class SurfaceTextEdit : public QTextEdit {
    Q_OBJECT
public:
    explicit SurfaceTextEdit(QWidget *parent = nullptr);
    ~SurfaceTextEdit() override;

    void setListener(SurfaceListener *listener) { m_listener = listener; }
    void setMaxLength(int length) { m_maxLength = length; }
    int maxLength() const { return m_maxLength; }

signals:
    /// Emitted when the viewport's width changes (lines re-wrap).
    void viewportResized();
    /// Emitted when the palette changes (a light or dark theme): painted decorations follow it.
    void paletteChanged();
    /// Emitted first thing in the destructor, while the document can still be read.
    void aboutToBeDestroyed();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    /// Paints the text, then the list markers the surface draws (listmarkers.h).
    void paintEvent(QPaintEvent *event) override;
    bool canInsertFromMimeData(const QMimeData *source) const override;
    QMimeData *createMimeDataFromSelection() const override;
    void insertFromMimeData(const QMimeData *source) override;

private:
    /// How many characters may still be inserted in place of the selection (-1 = no limit).
    int roomLeft() const;

    SurfaceListener *m_listener = nullptr;
    int m_maxLength = 0;
};

} // namespace kvrtb
