#pragma once

#include <QString>

namespace kvrtb {

class ControlCore;

/// \brief Line, caret and selection queries and commands, and the five case changes.
///
/// Numbering differs by member on purpose, and callers rely on it: `CurrentLine`,
/// `FirstVisibleLine`, `LastVisibleLine` and `TovrinLine` count lines from 1;
/// `GetAnyLineText`, `GetPosOfFirstCharInLine` and `GoToLine` take 0-based line indexes, as the
/// surface's `lineIndex` does; `GetLineText` reports a 1-based line start. Character positions
/// are 0-based. A line is a display line of the surface. No member shows a message.
class LinesAndCase {
public:
    explicit LinesAndCase(ControlCore &core);

    /// Freezes (true) or thaws (false) the editor's display through the control's lock.
    void FreezeRichText(bool FreezeRTB);
    /// Selects the caret's line, without its break.
    void SelectLine();
    /// The caret's line. \a LineStart receives its first position, 1-based; \a LineLength its
    /// length. On an empty document the result is empty and neither is written.
    QString GetLineText(int *LineStart = nullptr, int *LineLength = nullptr) const;
    /// The line before the caret's; on the first line, the first line itself.
    QString GetPrevLineText() const;
    /// The line with 0-based index \a MyLineNum; empty past the last line.
    QString GetAnyLineText(int MyLineNum) const;
    /// First position of the 0-based line \a MyLine (-1, the default, is the caret's line);
    /// -1 for a line past the end.
    int GetPosOfFirstCharInLine(int MyLine = -1) const;
    /// First position of the line before the caret's (of the first line when on it).
    int GetPosOfFirstCharInPrevLine() const;
    /// 1-based number of the first visible line.
    int FirstVisibleLine() const;
    /// 1-based number of the last line that is visible for the most part: the line at the
    /// right edge, 5 % of the formatting rectangle's bottom coordinate above its bottom.
    int LastVisibleLine() const;
    int TotalLineCount() const;
    /// 1-based number of the line holding the selection's start.
    int CurrentLine() const;
    /// Scrolls the 0-based line \a LineNumQ to the top of the view and, with \a SelectLineQ,
    /// selects it. Nothing happens for a line past the end.
    void GoToLine(int LineNumQ, bool SelectLineQ = false);
    /// Selects everything and raises `Ready`.
    void SelectAllText();
    /// 0-based line of a position (-1: of the selection's start).
    int GetLineFromChar(int lChar) const;
    void Span(const QString &bstrCharacterSet, bool vForward = true, bool vNegate = false);
    void UpTo(const QString &bstrCharacterSet, bool vForward = true, bool vNegate = false);
    /// 1-based line of the selection's start.
    int TovrinLine() const;
    /// 1 + the characters between the start of the selection's line and the selection's start.
    int TovrinColumn() const;
    /// 1-based character index of the selection's start.
    int TovrinChar() const;
    void TovrinUpperCase();
    void TovrinLowerCase();
    void TovrinSentenceCase();
    void TovrinToggleCase();
    void TovrinTitleCase();

private:
    /// The text of the line starting at \a start, empty when there is no such line.
    QString lineTextAt(int start) const;

    ControlCore &m_core;
};

} // namespace kvrtb
