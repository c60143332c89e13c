#pragma once

#include <QList>

#include <functional>

namespace kvrtb {

class ControlCore;

/// \brief The ruler's logic: what the strip above the editor shows and what dragging on it does.
///
/// The ruler measures from where an unindented line starts (0) to its right margin, the width of
/// the text on a printed page (the paper less `PrinterMargin` on both sides). It shows the
/// indents and tab stops of the paragraph at the caret (the start of the selection). Every change
/// the user makes on it goes to all paragraphs the selection touches, as one undo step, through
/// the editor's paragraph format: the first-line indent is `SelIndent`, the hanging indent
/// (where the following lines start, relative to the first) `SelHangingIndent`, the right indent
/// `SelRightIndent`. All positions are in twips.
///
/// The widget (`RulerStrip`) draws from this object and is told to redraw through the view
/// hook; without a widget the ruler still works (headless tests, the command-line tool).
class Ruler {
public:
    enum class Unit { Inch, Centimetre };

    /// What the ruler shows for the caret's paragraph.
    struct Marks {
        int firstLine = 0;     ///< where the first line starts (`SelIndent`)
        int otherLines = 0;    ///< where the following lines start (`SelIndent` + `SelHangingIndent`)
        int rightIndent = 0;   ///< distance of the lines' end from the right margin
        QList<int> tabStops;   ///< ascending
    };

    /// Which part of the strip a redraw concerns (the view may redraw more).
    enum Part { Scale = 1, Shading = 2, Indents = 4, Tabs = 8, All = 15 };

    explicit Ruler(ControlCore &core);

    /// Inches or centimetres; from the locale's measurement system unless set.
    Unit unit() const { return m_unit; }
    void setUnit(Unit unit);
    /// The step positions snap to: 1/16 inch or 1/4 centimetre, in twips.
    double snapStep() const;
    /// \a twips rounded to the nearest step.
    int snap(int twips) const;

    /// The right margin in twips (the printed text's width).
    int rightMargin() const;
    const Marks &marks() const { return m_marks; }
    /// True after `clear` until the next draw or refresh: the strip shows nothing.
    bool isCleared() const { return m_cleared; }

    /// Reads the indents and tab stops of the caret's paragraph and redraws; called when the
    /// caret moves, after undo, paste and loading.
    void refresh();
    /// Redraws the whole ruler: the scale, shading, indents and tab stops.
    void draw();
    /// Empties the strip until the next draw or refresh.
    void clear();
    /// Reads the caret paragraph's tab stops (and indents) again and redraws them.
    void setTabsFromParagraph();
    /// Redraws the shading outside the margins (after `PrinterMargin` changed, say); when the
    /// editor wraps to the ruler, it wraps at the new margin.
    void shade();

    /// Sets the first-line indent of the selected paragraphs; their other lines keep their own
    /// start relative to it. Clamped to the ruler.
    void setFirstLineIndent(int twips);
    /// Sets where the following lines of the selected paragraphs start (absolute, twips).
    void setOtherLinesIndent(int twips);
    /// Sets the right indent of the selected paragraphs.
    void setRightIndent(int twips);
    /// Adds a tab stop to the selected paragraphs (they all take the caret paragraph's stops
    /// plus the new one). Returns false when the position is off the ruler or already a stop.
    bool addTabStop(int twips);
    /// Removes the stop at \a twips; false when there is none.
    bool removeTabStop(int twips);
    /// Moves the stop at \a from to \a to, as one step; false when there is none at \a from.
    bool moveTabStop(int from, int to);

    /// Called with the parts to redraw; set by the strip widget.
    void setViewUpdater(std::function<void(int parts)> update) { m_update = std::move(update); }

private:
    void readParagraph();
    void redraw(int parts);
    void applyTabStops(QList<int> stops);
    int clampToRuler(int twips) const;

    ControlCore &m_core;
    Unit m_unit;
    Marks m_marks;
    bool m_cleared = false;
    std::function<void(int)> m_update;
};

} // namespace kvrtb
