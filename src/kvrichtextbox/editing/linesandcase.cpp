#include "editing/linesandcase.h"

#include "core/controlcore.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace kvrtb {

namespace {

// Codes of the surface's case change.
constexpr int kLowerCase = 0;
constexpr int kUpperCase = 1;
constexpr int kTitleCase = 2;
constexpr int kSentenceCase = 4;
constexpr int kToggleCase = 5;

} // namespace

LinesAndCase::LinesAndCase(ControlCore &core)
    : m_core(core)
{
}

void LinesAndCase::FreezeRichText(bool FreezeRTB)
{
    m_core.lockWindowUpdate(FreezeRTB);
}

void LinesAndCase::SelectLine()
{
    EditorSurface &surface = m_core.surface();
    const int start = surface.lineIndex(-1);
    const int length = surface.lineLength(start);
    surface.setSelection(start, length);
}

QString LinesAndCase::lineTextAt(int start) const
{
    if (start < 0)
        return QString();
    const EditorSurface &surface = m_core.surface();
    return surface.textRange(start, surface.lineLength(start));
}

QString LinesAndCase::GetLineText(int *LineStart, int *LineLength) const
{
    const EditorSurface &surface = m_core.surface();
    if (surface.textLength() == 0)
        return QString();
    const int start = surface.lineIndex(-1);
    const int length = surface.lineLength(start);
    if (LineStart)
        *LineStart = start + 1;
    if (LineLength)
        *LineLength = length;
    return surface.textRange(start, length);
}

QString LinesAndCase::GetPrevLineText() const
{
    if (m_core.surface().textLength() == 0)
        return QString();
    // On the first line the index is -1, which the surface reads as the caret's own line.
    return lineTextAt(m_core.surface().lineIndex(CurrentLine() - 2));
}

QString LinesAndCase::GetAnyLineText(int MyLineNum) const
{
    if (m_core.surface().textLength() == 0)
        return QString();
    return lineTextAt(m_core.surface().lineIndex(MyLineNum));
}

int LinesAndCase::GetPosOfFirstCharInLine(int MyLine) const
{
    return m_core.surface().lineIndex(MyLine);
}

int LinesAndCase::GetPosOfFirstCharInPrevLine() const
{
    return m_core.surface().lineIndex(CurrentLine() - 2);
}

int LinesAndCase::FirstVisibleLine() const
{
    return m_core.surface().firstVisibleLine() + 1;
}

int LinesAndCase::LastVisibleLine() const
{
    const EditorSurface &surface = m_core.surface();
    const QRect rect = surface.formattingRect();
    // Right and bottom are the edges past the last pixel, as a formatting rectangle gives them.
    const int bottom = rect.top() + rect.height();
    const int right = rect.left() + rect.width();
    // Round half to even (the default rounding mode), kept within a 16-bit integer.
    const double rounded = std::nearbyint(bottom * 0.05);
    const auto margin = static_cast<std::int16_t>(std::clamp(rounded, -32768.0, 32767.0));
    const int y = bottom - margin;
    const int position = surface.charFromPoint(QPoint(right, y));
    return surface.lineFromChar(position) + 1;
}

int LinesAndCase::TotalLineCount() const
{
    return m_core.surface().lineCount();
}

int LinesAndCase::CurrentLine() const
{
    const EditorSurface &surface = m_core.surface();
    return surface.lineFromChar(surface.selStart()) + 1;
}

void LinesAndCase::GoToLine(int LineNumQ, bool SelectLineQ)
{
    EditorSurface &surface = m_core.surface();
    const int start = surface.lineIndex(LineNumQ);
    if (start == -1)
        return;
    const int length = surface.lineLength(start);
    const int first = surface.firstVisibleLine();
    surface.scrollLines(LineNumQ - first, 0);
    if (SelectLineQ)
        surface.setSelection(start, length);
}

void LinesAndCase::SelectAllText()
{
    m_core.surface().setSelection(0, -1);
    m_core.events().ready();
}

int LinesAndCase::GetLineFromChar(int lChar) const
{
    return m_core.surface().lineFromChar(lChar);
}

void LinesAndCase::Span(const QString &bstrCharacterSet, bool vForward, bool vNegate)
{
    m_core.surface().span(bstrCharacterSet, vForward, vNegate);
}

void LinesAndCase::UpTo(const QString &bstrCharacterSet, bool vForward, bool vNegate)
{
    m_core.surface().upTo(bstrCharacterSet, vForward, vNegate);
}

int LinesAndCase::TovrinLine() const
{
    return CurrentLine();
}

int LinesAndCase::TovrinColumn() const
{
    const EditorSurface &surface = m_core.surface();
    const int start = surface.selStart();
    return 1 + start - surface.lineIndex(surface.lineFromChar(start));
}

int LinesAndCase::TovrinChar() const
{
    return m_core.surface().selStart() + 1;
}

void LinesAndCase::TovrinUpperCase()
{
    m_core.surface().changeCase(kUpperCase);
}

void LinesAndCase::TovrinLowerCase()
{
    m_core.surface().changeCase(kLowerCase);
}

void LinesAndCase::TovrinSentenceCase()
{
    m_core.surface().changeCase(kSentenceCase);
}

void LinesAndCase::TovrinToggleCase()
{
    m_core.surface().changeCase(kToggleCase);
}

void LinesAndCase::TovrinTitleCase()
{
    m_core.surface().changeCase(kTitleCase);
}

} // namespace kvrtb
