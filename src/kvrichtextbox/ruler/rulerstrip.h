#pragma once

#include <QWidget>

#include <optional>

namespace kvrtb {

class EditorSurface;
class Ruler;

/// \brief The ruler strip above the editor (`MasterPic`): a scale in inches or centimetres, the
/// shading outside the margins, the caret paragraph's tab stops and its three indent handles.
///
/// Its children carry the control's component names: `ShadeRulerPic` paints the shading,
/// `Image1` the scale and the tab stops, and the handles `LIHandle` (first-line indent, a
/// triangle at the top), `HIHandle` (hanging indent: where the following lines start, at the
/// bottom) and `RIHandle` (right indent) paint themselves where their indent is. Everything is
/// drawn with vector strokes in logical pixels, so it stays sharp at any device pixel ratio.
///
/// The strip takes the mouse for its children: dragging a handle sets that indent of the
/// selected paragraphs when the button is released (one undo step); a click on the scale adds a
/// tab stop; dragging a stop moves it, dragging it off the strip removes it. Escape or the
/// right button during a drag cancels it. Position 0 of the ruler lines up with where the
/// editor starts an unindented line.
class RulerStrip : public QWidget {
    Q_OBJECT
public:
    /// \a ruler and \a surface must outlive the strip; the strip sets itself as the ruler's view.
    RulerStrip(Ruler &ruler, EditorSurface &surface, QWidget *parent = nullptr);
    ~RulerStrip() override;

    /// The strip's x for a ruler position in twips, and the ruler position at an x.
    int xForTwips(int twips) const;
    int twipsForX(int x) const;

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    enum class DragKind { None, FirstLine, OtherLines, RightIndent, Tab, Click };
    struct Drag {
        DragKind kind = DragKind::None;
        int startTwips = 0;     ///< the mark's position when the drag began (tab: which stop)
        int currentTwips = 0;   ///< where it would go now, snapped
        bool offStrip = false;  ///< a tab stop dragged off: released there, it is removed
        bool moved = false;
    };

    void onRulerChanged(int parts);
    void placeHandles();
    int originX() const;
    /// The band the scale is drawn in.
    QRectF band() const;
    void paintShading(QPainter &painter) const;
    void paintScale(QPainter &painter) const;
    /// Where a mark is drawn: its drag position while it is being dragged.
    int shownFirstLine() const;
    int shownOtherLines() const;
    int shownRightIndentX() const;
    QList<int> shownTabStops() const;
    void cancelDrag();
    /// The tab stop (twips) a press at \a pos takes, if any.
    std::optional<int> tabStopAt(const QPoint &pos) const;
    /// True when \a pos is on an indent handle or a tab stop.
    bool isOverMark(const QPoint &pos) const;

    Ruler &m_ruler;
    EditorSurface &m_surface;
    QWidget *m_shade = nullptr;     // ShadeRulerPic
    QWidget *m_image = nullptr;     // Image1
    QWidget *m_firstLine = nullptr; // LIHandle
    QWidget *m_otherLines = nullptr; // HIHandle
    QWidget *m_right = nullptr;     // RIHandle
    Drag m_drag;
};

} // namespace kvrtb
