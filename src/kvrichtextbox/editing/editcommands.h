#pragma once

#include "core/colour.h"

#include <QString>
#include <QVariant>

#include <functional>

namespace kvrtb {

class ControlCore;

/// \brief The control's small formatting and clipboard commands and its Can... queries.
///
/// Members that take a switch given as a number (`ReadOnly`) act only on True (-1, or 1 as C++
/// gives it) and False (0). Long edits (`Delete`, `Cut`, `Paste`) are bracketed by `Begin`,
/// `Finish` and `Ready`; short formatting commands raise `Finish` and `Ready` where noted.
class EditCommands {
public:
    explicit EditCommands(ControlCore &core);

    void AlignLeft(bool MyBool);
    void AlignRight(bool MyBool);
    void AlignCenter(bool MyBool);
    /// The selected paragraphs' `Align_RTF` value; a null variant when they differ (or are
    /// justified, which has no `Align_RTF` value).
    QVariant GetAlignment() const;

    /// Highlights the selection in \a HighLightColor; when it is highlighted in that colour
    /// already, removes the highlight instead. Nothing for an empty selection.
    void HighLightText(Colour HighLightColor);
    /// True when the selection is not empty and its whole background is \a HighLightColor.
    bool IsTextHighLighted(Colour HighLightColor) const;
    /// `Unhighlight_All_Text` clears the whole document's highlight, `Unhighlight_Selected_Text`
    /// the selection's; other values do nothing.
    void UnHighLightText(int All_or_Selected_Text = 2);

    /// Makes the editor read-only (True) or editable (False); returns 1 when applied, 0 for
    /// any other value (nothing changes then).
    int ReadOnly(int ApplyReadOnly);
    /// Sets the selected paragraphs' line-spacing rule (`LineSpc`); \a exactORmultiple is twips
    /// for `LineSpaceExactlyQ` and twentieths of a line for `LineSpaceMultipleQ`.
    void LineSpacing(int LineMethod, int exactORmultiple = 0);
    /// Sub- or superscript (`ScripTT`) for the selection; raises `Finish` and `Ready`.
    void ScriptStyle(int ScriptMethod);
    /// Numbering (`ListNN`) of the selected paragraphs, from 1, number followed by a period;
    /// raises `Finish` and `Ready`.
    void ListStyle(int ListMethod);
    /// True when the selected paragraphs all have the numbering \a ListMethod.
    bool SelListMethod(int ListMethod) const;
    /// No wrapping (false), wrapping at the ruler's right margin (true with \a RulerWrap: the
    /// width of the text on a printed page) or at the window; raises `Finish` and `Ready`.
    void Word_Wrap(bool Wrap, bool RulerWrap = false);

    void Delete();
    void Cut();
    void Copy();
    void Paste();
    /// Sets the per-thread cancel flag that long passes test.
    void KillSwitch();

    bool CanCopy() const;
    bool CanCut() const;
    bool CanDelete() const;
    bool CanClear() const;
    bool CanChangeCase() const;
    bool CanHighlight() const;
    /// True for a selection of 1 to 37 characters.
    bool CanGetSpelling() const;
    bool CanGetSynonym() const;
    bool CanSelectAll() const;
    bool CanPaste() const;

    /// True when the document's RTF holds formatting that plain text would lose.
    bool ContainSpecialFormatting() const;
    /// The test behind `ContainSpecialFormatting`, on any RTF text.
    static bool containsSpecialFormatting(const QString &rtf);

    /// The clean-up run after a paste while `RemoveUnUsableData` is on (the documents area
    /// supplies it). Without one set, `Paste` skips that step.
    void setUnusableContentRemover(std::function<void()> remover) { m_removeUnusable = std::move(remover); }

private:
    void align(bool apply, int alignment);
    void deleteOrCut(bool cut);
    bool hasSelection() const;

    ControlCore &m_core;
    std::function<void()> m_removeUnusable;
};

} // namespace kvrtb
