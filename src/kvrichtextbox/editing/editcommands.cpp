#include "editing/editcommands.h"

#include "core/controlcore.h"
#include "core/kvrtbtypes.h"
#include "core/threadstate.h"
#include "editing/displayfreeze.h"
#include "editing/specialundo.h"
#include "hyperlinks/hyperlinks.h"
#include "ruler/ruler.h"

#include <QRegularExpression>

namespace kvrtb {

namespace {

/// A selection this long or longer is no word to spell or look up.
constexpr int kLongestLookup = 38;

bool isTrue(int value)
{
    return value == kVbTrue || value == 1;
}

/// Restores the paste lock on every path out of `Paste`.
class PasteLock {
public:
    PasteLock() { threadState().pasteLock = 3; }
    ~PasteLock() { threadState().pasteLock = 0; }
    PasteLock(const PasteLock &) = delete;
    PasteLock &operator=(const PasteLock &) = delete;
};

} // namespace

EditCommands::EditCommands(ControlCore &core)
    : m_core(core)
{
}

bool EditCommands::hasSelection() const
{
    return m_core.surface().selLength() > 0;
}

void EditCommands::align(bool apply, int alignment)
{
    if (!apply)
        return;
    ParaFormat format;
    format.alignment = static_cast<ParaAlignment>(alignment);
    m_core.surface().setSelectionParaFormat(format);
}

void EditCommands::AlignLeft(bool MyBool)
{
    align(MyBool, mLeft);
}

void EditCommands::AlignRight(bool MyBool)
{
    align(MyBool, mRight);
}

void EditCommands::AlignCenter(bool MyBool)
{
    align(MyBool, mCenter);
}

QVariant EditCommands::GetAlignment() const
{
    const std::optional<ParaAlignment> alignment = m_core.surface().selectionParaFormat().alignment;
    if (!alignment)
        return QVariant();
    switch (*alignment) {
    case ParaAlignment::Left: return int(mLeft);
    case ParaAlignment::Right: return int(mRight);
    case ParaAlignment::Center: return int(mCenter);
    case ParaAlignment::Justify: break;
    }
    return QVariant();
}

bool EditCommands::IsTextHighLighted(Colour HighLightColor) const
{
    if (!hasSelection())
        return false;
    const std::optional<Colour> back = m_core.surface().selectionCharFormat().backColor;
    return back && *back == translateColour(HighLightColor);
}

void EditCommands::HighLightText(Colour HighLightColor)
{
    if (!hasSelection())
        return;
    if (IsTextHighLighted(HighLightColor)) {
        UnHighLightText(Unhighlight_Selected_Text);
        return;
    }
    CharFormat format;
    format.backColor = translateColour(HighLightColor); // a failed translation is the automatic background
    m_core.surface().setSelectionCharFormat(format);
}

void EditCommands::UnHighLightText(int All_or_Selected_Text)
{
    CharFormat format;
    format.backColor = kAutoColour;
    if (All_or_Selected_Text == Unhighlight_All_Text)
        m_core.surface().setDocumentCharFormat(format);
    else if (All_or_Selected_Text == Unhighlight_Selected_Text && hasSelection())
        m_core.surface().setSelectionCharFormat(format);
}

int EditCommands::ReadOnly(int ApplyReadOnly)
{
    if (isTrue(ApplyReadOnly))
        m_core.surface().setReadOnly(true);
    else if (ApplyReadOnly == kVbFalse)
        m_core.surface().setReadOnly(false);
    else
        return 0;
    return 1;
}

void EditCommands::LineSpacing(int LineMethod, int exactORmultiple)
{
    // The rule numbers run from single (0) to multiple (5); anything else is no rule.
    if (LineMethod < int(LineSpacingRule::Single) || LineMethod > int(LineSpacingRule::Multiple))
        return;
    ParaFormat format;
    format.lineSpacingRule = static_cast<LineSpacingRule>(LineMethod);
    if (LineMethod == LineSpaceExactlyQ || LineMethod == LineSpaceMultipleQ)
        format.lineSpacing = exactORmultiple;
    m_core.surface().setSelectionParaFormat(format);
}

void EditCommands::ScriptStyle(int ScriptMethod)
{
    if (ScriptMethod == NoScriptQ || ScriptMethod == SubScriptQ || ScriptMethod == SuperScriptQ) {
        CharFormat format;
        format.script = static_cast<ScriptPosition>(ScriptMethod);
        m_core.surface().setSelectionCharFormat(format);
    }
    m_core.events().finish();
    m_core.events().ready();
}

void EditCommands::ListStyle(int ListMethod)
{
    if (ListMethod >= ListNoneQ && ListMethod <= ListNumberAsUCRomanQ) {
        ParaFormat format;
        format.numbering = static_cast<Numbering>(ListMethod);
        format.numberingStart = 1;
        format.numberingStyle = NumberingStyle::Period;
        m_core.surface().setSelectionParaFormat(format);
    }
    m_core.events().finish();
    m_core.events().ready();
}

bool EditCommands::SelListMethod(int ListMethod) const
{
    const std::optional<Numbering> numbering = m_core.surface().selectionParaFormat().numbering;
    return numbering && int(*numbering) == ListMethod;
}

void EditCommands::Word_Wrap(bool Wrap, bool RulerWrap)
{
    EditorSurface &surface = m_core.surface();
    if (!Wrap)
        surface.setWrap(WrapMode::None);
    else if (RulerWrap)
        surface.setWrap(WrapMode::Width, m_core.ruler().rightMargin());
    else
        surface.setWrap(WrapMode::Window);
    m_core.events().finish();
    m_core.events().ready();
}

void EditCommands::deleteOrCut(bool cut)
{
    EditorSurface &surface = m_core.surface();
    const QString selected = surface.selectedText();
    if (selected.isEmpty())
        return;
    m_core.events().begin();
    if (selected.size() == surface.textLength())
        m_core.specialUndo().SaveSpecialUndoData();
    if (cut)
        surface.cut();
    else
        surface.clear();
    if (surface.textLength() == 0)
        m_core.hyperlinks().ClearTrailingLinkMarker(surface.selStart());
    m_core.events().finish();
    m_core.events().ready();
}

void EditCommands::Delete()
{
    deleteOrCut(false);
}

void EditCommands::Cut()
{
    deleteOrCut(true);
}

void EditCommands::Copy()
{
    if (hasSelection())
        m_core.surface().copy();
}

void EditCommands::Paste()
{
    EditorSurface &surface = m_core.surface();
    m_core.events().begin();
    if (surface.canPaste()) {
        BusyGuard busy(m_core.services());
        DisplayFreeze freeze(m_core);
        {
            PasteLock lock;
            const bool detect = m_core.properties().DetectHyperLinks;
            if (detect && m_core.hyperlinks().IsSelectionLinkMarked())
                m_core.hyperlinks().ClearTrailingLinkMarker(surface.selStart());
            m_core.specialUndo().SaveSpecialUndoData();
            if (surface.textLength() > 0 && surface.selLength() == surface.textLength())
                surface.setRtf(QString());
            surface.paste();
            if (m_core.properties().RemoveUnUsableData && m_removeUnusable)
                m_removeUnusable();
            if (detect)
                m_core.hyperlinks().HyperLinkCurrentLine();
        }
        m_core.refreshRuler();
    }
    m_core.events().finish();
    m_core.events().ready();
}

void EditCommands::KillSwitch()
{
    threadState().cancelRequested = true;
}

bool EditCommands::CanCopy() const
{
    return hasSelection();
}

bool EditCommands::CanCut() const
{
    return hasSelection();
}

bool EditCommands::CanDelete() const
{
    return hasSelection();
}

bool EditCommands::CanClear() const
{
    return hasSelection();
}

bool EditCommands::CanChangeCase() const
{
    return hasSelection();
}

bool EditCommands::CanHighlight() const
{
    return hasSelection();
}

bool EditCommands::CanGetSpelling() const
{
    const qsizetype length = m_core.surface().selectedText().size();
    return length > 0 && length < kLongestLookup;
}

bool EditCommands::CanGetSynonym() const
{
    return CanGetSpelling();
}

bool EditCommands::CanSelectAll() const
{
    const EditorSurface &surface = m_core.surface();
    const int length = surface.textLength();
    return length > 0 && surface.selLength() != length;
}

bool EditCommands::CanPaste() const
{
    return m_core.surface().canPaste();
}

bool EditCommands::containsSpecialFormatting(const QString &rtf)
{
    thread_local const QRegularExpression pattern(
        QStringLiteral(R"re((\\cf|\\b|\\i|\\ulnone|\\strike|\\pn|\\qc|\\qr|\\highlight))re"));
    return pattern.match(rtf).hasMatch();
}

bool EditCommands::ContainSpecialFormatting() const
{
    return containsSpecialFormatting(m_core.surface().rtf());
}

} // namespace kvrtb
