#include "ruler/ruler.h"

#include "core/controlcore.h"
#include "printing/pagesetup.h"

#include <QLocale>

#include <algorithm>
#include <cmath>

namespace kvrtb {

namespace {

// The most tab stops a paragraph keeps (what RTF readers accept).
constexpr int kMaxTabStops = 32;
// The narrowest text the indents may leave between them.
constexpr int kMinTextWidth = 360;

} // namespace

Ruler::Ruler(ControlCore &core)
    : m_core(core),
      m_unit(QLocale().measurementSystem() == QLocale::MetricSystem ? Unit::Centimetre : Unit::Inch)
{
}

void Ruler::setUnit(Unit unit)
{
    m_unit = unit;
    redraw(All);
}

double Ruler::snapStep() const
{
    return m_unit == Unit::Inch ? kTwipsPerInch / 16.0 : kTwipsPerCentimetre / 4.0;
}

int Ruler::snap(int twips) const
{
    const double step = snapStep();
    return int(std::lround(std::round(twips / step) * step));
}

int Ruler::rightMargin() const
{
    return printableWidthTwips(m_core.properties().PrinterMargin);
}

int Ruler::clampToRuler(int twips) const
{
    return std::clamp(twips, 0, rightMargin());
}

void Ruler::readParagraph()
{
    EditorSurface &surface = m_core.surface();
    const ParaFormat format = surface.paraFormatAt(surface.selStart());
    m_marks.firstLine = format.leftIndent.value_or(0);
    m_marks.otherLines = m_marks.firstLine + format.hangingIndent.value_or(0);
    m_marks.rightIndent = format.rightIndent.value_or(0);
    QList<int> tabs = format.tabStops.value_or(QList<int>());
    std::sort(tabs.begin(), tabs.end());
    m_marks.tabStops = tabs;
}

void Ruler::redraw(int parts)
{
    if (m_update)
        m_update(parts);
}

void Ruler::refresh()
{
    m_cleared = false;
    readParagraph();
    redraw(Indents | Tabs);
}

void Ruler::draw()
{
    m_cleared = false;
    readParagraph();
    redraw(All);
}

void Ruler::clear()
{
    m_cleared = true;
    redraw(All);
}

void Ruler::setTabsFromParagraph()
{
    m_cleared = false;
    readParagraph();
    redraw(Tabs | Indents);
}

void Ruler::shade()
{
    EditorSurface &surface = m_core.surface();
    if (m_core.properties().MyWrapStyle == RulerWrap && surface.wrapMode() == WrapMode::Width)
        surface.setWrap(WrapMode::Width, rightMargin());
    m_cleared = false;
    redraw(Shading | Scale | Indents | Tabs);
}

void Ruler::setFirstLineIndent(int twips)
{
    if (m_core.surface().isReadOnly())
        return;
    const int right = rightMargin() - m_marks.rightIndent - kMinTextWidth;
    ParaFormat change;
    change.leftIndent = std::clamp(twips, 0, std::max(0, right));
    m_core.surface().setSelectionParaFormat(change);
    refresh();
}

void Ruler::setOtherLinesIndent(int twips)
{
    if (m_core.surface().isReadOnly())
        return;
    const int right = rightMargin() - m_marks.rightIndent - kMinTextWidth;
    ParaFormat change;
    change.hangingIndent = std::clamp(twips, 0, std::max(0, right)) - m_marks.firstLine;
    m_core.surface().setSelectionParaFormat(change);
    refresh();
}

void Ruler::setRightIndent(int twips)
{
    if (m_core.surface().isReadOnly())
        return;
    const int leftmost = std::max(m_marks.firstLine, m_marks.otherLines) + kMinTextWidth;
    ParaFormat change;
    change.rightIndent = std::clamp(twips, 0, std::max(0, rightMargin() - leftmost));
    m_core.surface().setSelectionParaFormat(change);
    refresh();
}

void Ruler::applyTabStops(QList<int> stops)
{
    std::sort(stops.begin(), stops.end());
    ParaFormat change;
    change.tabStops = stops;
    m_core.surface().setSelectionParaFormat(change);
    refresh();
}

bool Ruler::addTabStop(int twips)
{
    if (m_core.surface().isReadOnly() || twips <= 0 || twips > rightMargin())
        return false;
    if (m_marks.tabStops.contains(twips) || m_marks.tabStops.size() >= kMaxTabStops)
        return false;
    applyTabStops(m_marks.tabStops + QList<int>{twips});
    return true;
}

bool Ruler::removeTabStop(int twips)
{
    if (m_core.surface().isReadOnly() || !m_marks.tabStops.contains(twips))
        return false;
    QList<int> stops = m_marks.tabStops;
    stops.removeAll(twips);
    applyTabStops(stops);
    return true;
}

bool Ruler::moveTabStop(int from, int to)
{
    if (m_core.surface().isReadOnly() || !m_marks.tabStops.contains(from))
        return false;
    QList<int> stops = m_marks.tabStops;
    stops.removeAll(from);
    const int target = std::clamp(to, 1, rightMargin());
    if (!stops.contains(target))
        stops.append(target);
    applyTabStops(stops);
    return true;
}

} // namespace kvrtb
