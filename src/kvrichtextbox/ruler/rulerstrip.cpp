#include "ruler/rulerstrip.h"

#include "core/editorsurface.h"
#include "printing/pagesetup.h"
#include "ruler/ruler.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <functional>

namespace kvrtb {

namespace {

constexpr int kHandleWidth = 11;
constexpr int kHandleHeight = 7;
// How close (pixels) a press must be to a tab stop to take it.
constexpr int kTabGrip = 4;
// How far (pixels) above or below the strip a dragged tab stop counts as dragged off.
constexpr int kTearOff = 12;

// A transparent child of the strip that paints one part of the ruler. The strip handles the
// mouse for all of them.
class RulerLayer : public QWidget {
public:
    RulerLayer(const char *name, QWidget *parent, std::function<void(QPainter &, const QRect &)> paint)
        : QWidget(parent), m_paint(std::move(paint))
    {
        setObjectName(QLatin1String(name));
        setAttribute(Qt::WA_TransparentForMouseEvents);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        m_paint(painter, rect());
    }

private:
    std::function<void(QPainter &, const QRect &)> m_paint;
};

// True when a press at \a pos takes \a handle (a little beside it counts).
bool gripsHandle(const QWidget *handle, const QPoint &pos)
{
    return handle->isVisible() && handle->geometry().adjusted(-2, -2, 2, 2).contains(pos);
}

// An indent handle: a triangle pointing down (at the top of the strip) or up (at the bottom).
void paintHandle(QPainter &painter, const QRect &area, bool pointsDown, const QPalette &palette)
{
    const QRectF r = QRectF(area).adjusted(0.5, 0.5, -0.5, -0.5);
    QPainterPath path;
    if (pointsDown) {
        path.moveTo(r.topLeft());
        path.lineTo(r.topRight());
        path.lineTo(r.center().x(), r.bottom());
    } else {
        path.moveTo(r.bottomLeft());
        path.lineTo(r.bottomRight());
        path.lineTo(r.center().x(), r.top());
    }
    path.closeSubpath();
    painter.setPen(QPen(palette.color(QPalette::WindowText), 1));
    painter.setBrush(palette.color(QPalette::Button));
    painter.drawPath(path);
}

/// The ruler as assistive technology sees it: a named pane (a plain widget would be an anonymous
/// "client" area).
QAccessibleInterface *rulerAccessible(const QString &className, QObject *object)
{
    if (className == QLatin1String("kvrtb::RulerStrip") && object && object->isWidgetType())
        return new QAccessibleWidget(static_cast<QWidget *>(object), QAccessible::Pane);
    return nullptr;
}

} // namespace

RulerStrip::RulerStrip(Ruler &ruler, EditorSurface &surface, QWidget *parent)
    : QWidget(parent), m_ruler(ruler), m_surface(surface)
{
    setObjectName(QStringLiteral("MasterPic"));
    setFocusPolicy(Qt::ClickFocus);
    static const bool accessibleInstalled = [] {
        QAccessible::installFactory(rulerAccessible);
        return true;
    }();
    Q_UNUSED(accessibleInstalled)
    setAccessibleName(tr("Ruler"));
    setAccessibleDescription(tr("Indents and tab stops of the paragraph at the caret"));
    setMouseTracking(true);
    setAutoFillBackground(true);
    setToolTip(tr("Drag the triangles to indent the paragraph; click to add a tab stop, drag one off to remove it."));
    m_shade = new RulerLayer("ShadeRulerPic", this, [this](QPainter &p, const QRect &) { paintShading(p); });
    m_image = new RulerLayer("Image1", this, [this](QPainter &p, const QRect &) { paintScale(p); });
    m_firstLine = new RulerLayer("LIHandle", this, [this](QPainter &p, const QRect &r) {
        paintHandle(p, r, true, palette());
    });
    m_otherLines = new RulerLayer("HIHandle", this, [this](QPainter &p, const QRect &r) {
        paintHandle(p, r, false, palette());
    });
    m_right = new RulerLayer("RIHandle", this, [this](QPainter &p, const QRect &r) {
        paintHandle(p, r, false, palette());
    });
    for (QWidget *handle : {m_firstLine, m_otherLines, m_right})
        handle->resize(kHandleWidth, kHandleHeight);
    m_ruler.setViewUpdater([this](int parts) { onRulerChanged(parts); });
}

RulerStrip::~RulerStrip()
{
    m_ruler.setViewUpdater(nullptr);
}

QSize RulerStrip::sizeHint() const
{
    return QSize(400, 24);
}

int RulerStrip::originX() const
{
    const QWidget *editor = m_surface.widget();
    const QWidget *parent = parentWidget();
    if (!editor || !parent || !parent->isAncestorOf(editor))
        return m_surface.textOriginX();
    return editor->mapTo(parent, QPoint(m_surface.textOriginX(), 0)).x() - x();
}

int RulerStrip::xForTwips(int twips) const
{
    return originX() + int(std::lround(double(twips) / kTwipsPerPixel));
}

int RulerStrip::twipsForX(int xPos) const
{
    return (xPos - originX()) * kTwipsPerPixel;
}

QRectF RulerStrip::band() const
{
    return QRectF(0, kHandleHeight - 2, width(), std::max(4, height() - 2 * kHandleHeight + 4));
}

int RulerStrip::shownFirstLine() const
{
    return m_drag.kind == DragKind::FirstLine ? m_drag.currentTwips : m_ruler.marks().firstLine;
}

int RulerStrip::shownOtherLines() const
{
    return m_drag.kind == DragKind::OtherLines ? m_drag.currentTwips : m_ruler.marks().otherLines;
}

int RulerStrip::shownRightIndentX() const
{
    const int right = m_drag.kind == DragKind::RightIndent ? m_drag.currentTwips
                                                          : m_ruler.rightMargin() - m_ruler.marks().rightIndent;
    return xForTwips(right);
}

QList<int> RulerStrip::shownTabStops() const
{
    QList<int> stops = m_ruler.marks().tabStops;
    if (m_drag.kind == DragKind::Tab) {
        stops.removeAll(m_drag.startTwips);
        if (!m_drag.offStrip)
            stops.append(m_drag.currentTwips);
    }
    return stops;
}

void RulerStrip::onRulerChanged(int parts)
{
    if (parts & Ruler::Shading)
        m_shade->update();
    if (parts & (Ruler::Scale | Ruler::Tabs))
        m_image->update();
    placeHandles();
}

void RulerStrip::placeHandles()
{
    const bool visible = !m_ruler.isCleared();
    const int half = kHandleWidth / 2;
    m_firstLine->move(xForTwips(shownFirstLine()) - half, 0);
    m_otherLines->move(xForTwips(shownOtherLines()) - half, height() - kHandleHeight);
    m_right->move(shownRightIndentX() - half, height() - kHandleHeight);
    for (QWidget *handle : {m_firstLine, m_otherLines, m_right})
        handle->setVisible(visible);
}

void RulerStrip::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    m_shade->setGeometry(rect());
    m_image->setGeometry(rect());
    placeHandles();
}

void RulerStrip::paintEvent(QPaintEvent *)
{
    // The background comes from the palette (auto-fill); the children paint the rest.
}

void RulerStrip::paintShading(QPainter &painter) const
{
    if (m_ruler.isCleared())
        return;
    const QRectF area = band();
    const double left = xForTwips(0);
    const double right = xForTwips(m_ruler.rightMargin());
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette().color(QPalette::Mid));
    painter.drawRect(area);
    painter.setBrush(palette().color(QPalette::Base));
    painter.drawRect(QRectF(QPointF(left, area.top()), QPointF(right, area.bottom())));
    painter.setPen(QPen(palette().color(QPalette::Dark), 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(area.adjusted(0.5, 0.5, -0.5, -0.5));
}

void RulerStrip::paintScale(QPainter &painter) const
{
    if (m_ruler.isCleared())
        return;
    const QRectF area = band();
    const bool inches = m_ruler.unit() == Ruler::Unit::Inch;
    // Ticks every 1/8 inch or 1/4 centimetre; numbers at each whole unit.
    const double unitTwips = inches ? kTwipsPerInch : kTwipsPerCentimetre;
    const int ticksPerUnit = inches ? 8 : 4;
    const double tickTwips = unitTwips / ticksPerUnit;
    QFont small = font();
    small.setPointSizeF(std::max(6.0, small.pointSizeF() * 0.75));
    painter.setFont(small);
    const QColor ink = palette().color(QPalette::Text);
    painter.setPen(QPen(ink, 1));
    const double mid = area.center().y();
    const int lastTick = int(std::ceil(twipsForX(width()) / tickTwips));
    for (int tick = 1; tick <= lastTick; ++tick) {
        const double x = std::round(originX() + tick * tickTwips / kTwipsPerPixel) + 0.5;
        if (tick % ticksPerUnit == 0) {
            const QString label = QString::number(tick / ticksPerUnit);
            const QRectF box(x - 12, area.top(), 24, area.height());
            painter.drawText(box, Qt::AlignCenter, label);
        } else {
            const double length = tick % (ticksPerUnit / 2) == 0 ? area.height() * 0.3 : area.height() * 0.12;
            painter.drawLine(QPointF(x, mid - length), QPointF(x, mid + length));
        }
    }
    // Tab stops: an "L" at the foot of the band, its upright at the stop.
    painter.setPen(QPen(ink, 1.5));
    const double foot = area.bottom() - 2;
    for (int stop : shownTabStops()) {
        const double x = xForTwips(stop) + 0.5;
        painter.drawLine(QPointF(x, foot - 6), QPointF(x, foot));
        painter.drawLine(QPointF(x, foot), QPointF(x + 5, foot));
    }
}

void RulerStrip::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::RightButton && m_drag.kind != DragKind::None) {
        cancelDrag();
        return;
    }
    if (event->button() != Qt::LeftButton || m_ruler.isCleared() || m_surface.isReadOnly()) {
        QWidget::mousePressEvent(event);
        return;
    }
    const QPoint pos = event->position().toPoint();
    m_drag = Drag();
    if (gripsHandle(m_firstLine, pos)) {
        m_drag.kind = DragKind::FirstLine;
        m_drag.startTwips = m_ruler.marks().firstLine;
    } else if (gripsHandle(m_otherLines, pos)) {
        m_drag.kind = DragKind::OtherLines;
        m_drag.startTwips = m_ruler.marks().otherLines;
    } else if (gripsHandle(m_right, pos)) {
        m_drag.kind = DragKind::RightIndent;
        m_drag.startTwips = m_ruler.rightMargin() - m_ruler.marks().rightIndent;
    } else if (const std::optional<int> stop = tabStopAt(pos)) {
        m_drag.kind = DragKind::Tab;
        m_drag.startTwips = *stop;
    } else {
        const int at = twipsForX(pos.x());
        if (at <= 0 || at > m_ruler.rightMargin())
            return;
        m_drag.kind = DragKind::Click;
        m_drag.startTwips = m_ruler.snap(at);
    }
    m_drag.currentTwips = m_drag.startTwips;
}

std::optional<int> RulerStrip::tabStopAt(const QPoint &pos) const
{
    for (int stop : m_ruler.marks().tabStops) {
        if (std::abs(xForTwips(stop) - pos.x()) <= kTabGrip && pos.y() >= height() / 2)
            return stop;
    }
    return std::nullopt;
}

bool RulerStrip::isOverMark(const QPoint &pos) const
{
    return gripsHandle(m_firstLine, pos) || gripsHandle(m_otherLines, pos) || gripsHandle(m_right, pos)
           || tabStopAt(pos).has_value();
}

void RulerStrip::mouseMoveEvent(QMouseEvent *event)
{
    const QPoint pos = event->position().toPoint();
    if (m_drag.kind == DragKind::None || m_drag.kind == DragKind::Click) {
        // Over a handle or a tab stop the pointer says it can be dragged sideways.
        setCursor(!m_ruler.isCleared() && isOverMark(pos) ? Qt::SizeHorCursor : Qt::ArrowCursor);
        return;
    }
    const int margin = m_ruler.rightMargin();
    const int at = twipsForX(pos.x());
    // The right indent is measured from the margin, so it snaps from there.
    const int snapped = m_drag.kind == DragKind::RightIndent ? margin - m_ruler.snap(margin - at) : m_ruler.snap(at);
    m_drag.currentTwips = std::clamp(snapped, 0, margin);
    m_drag.offStrip = m_drag.kind == DragKind::Tab && (pos.y() < -kTearOff || pos.y() > height() + kTearOff);
    m_drag.moved = true;
    m_image->update();
    placeHandles();
}

void RulerStrip::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || m_drag.kind == DragKind::None) {
        QWidget::mouseReleaseEvent(event);
        return;
    }
    const Drag drag = m_drag;
    m_drag = Drag();
    switch (drag.kind) {
    case DragKind::FirstLine:
        if (drag.moved)
            m_ruler.setFirstLineIndent(drag.currentTwips);
        break;
    case DragKind::OtherLines:
        if (drag.moved)
            m_ruler.setOtherLinesIndent(drag.currentTwips);
        break;
    case DragKind::RightIndent:
        if (drag.moved)
            m_ruler.setRightIndent(m_ruler.rightMargin() - drag.currentTwips);
        break;
    case DragKind::Tab:
        if (drag.offStrip)
            m_ruler.removeTabStop(drag.startTwips);
        else if (drag.moved && drag.currentTwips != drag.startTwips)
            m_ruler.moveTabStop(drag.startTwips, drag.currentTwips);
        break;
    case DragKind::Click:
        m_ruler.addTabStop(drag.startTwips);
        break;
    case DragKind::None:
        break;
    }
    m_image->update();
    placeHandles();
}

void RulerStrip::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape && m_drag.kind != DragKind::None) {
        cancelDrag();
        return;
    }
    QWidget::keyPressEvent(event);
}

void RulerStrip::cancelDrag()
{
    m_drag = Drag();
    m_image->update();
    placeHandles();
}

} // namespace kvrtb
