#pragma once

#include <QTextEdit>

#include <functional>

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

    /// Finds the stretch [start, end) around \a position that is one word marked misspelt
    /// (returns true) or the gap between two marked words (returns false; the gap after the
    /// last one ends at \a limit). Read by assistive technology (editoraccessible.h).
    using MisspeltStretch = std::function<bool(int position, int limit, int *start, int *end)>;
    void setMisspeltStretch(MisspeltStretch query) { m_misspeltStretch = std::move(query); }
    const MisspeltStretch &misspeltStretch() const { return m_misspeltStretch; }

    /// True while the room for paragraph borders is fitted after an edit, within that edit's
    /// undo step: the document's changes then are not the user's text (the surface's record of
    /// the last step leaves them out).
    bool fittingRoom() const { return m_fittingRoom; }

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
    /// Inserts \a source in place of the selection: RTF where offered, else as QTextEdit does.
    void insertMimeData(const QMimeData *source);
    /// Runs \a edit, which may split or join paragraphs at the selection (or join the ones from
    /// \a joinFrom to \a joinTo); near a bordered box, as one undo step with the room for borders
    /// of the paragraphs it touched fitted to their new places in their boxes (paragraphborders.h).
    void editFittingBoxes(const std::function<void()> &edit, int joinFrom = -1, int joinTo = -1);

    SurfaceListener *m_listener = nullptr;
    bool m_fittingRoom = false;
    int m_maxLength = 0;
    MisspeltStretch m_misspeltStretch;
};

} // namespace kvrtb
