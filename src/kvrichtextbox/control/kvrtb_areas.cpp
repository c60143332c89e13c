// Members of the areas that are not in this build yet. Each group is replaced by forwarding to
// its area's object in ControlCore when the area lands; until then every member reports itself
// once and gives its not-found value.

#include "control/kvrtb.h"

namespace kvrtb {

namespace {

template <typename T>
void setIf(T *out, const T &value)
{
    if (out)
        *out = value;
}

} // namespace

// Documents and encrypted documents: still to come.
void KvRTB::LoadFile(const QString &, QFileType, bool *, bool *OpenSuccess)
{
    reportNotAvailable("LoadFile");
    setIf(OpenSuccess, false);
}
QVariant KvRTB::LoadFileRTBOriginal(const QString &, QFileType)
{
    reportNotAvailable("LoadFileRTBOriginal");
    return QVariant();
}
bool KvRTB::SaveFile(const QString &, QFileType)
{
    reportNotAvailable("SaveFile");
    return false;
}
QString KvRTB::CommonDialogFileOpen(QString *, QString *, bool *, short *, short *, short *, bool *OpenSuccess, QString *)
{
    reportNotAvailable("CommonDialogFileOpen");
    setIf(OpenSuccess, false);
    return QString();
}
QString KvRTB::CommonDialogFileSave(QString *, QString *, bool *, QString *, short *, short *, short *, QString *,
                                    bool *SaveSuccess)
{
    reportNotAvailable("CommonDialogFileSave");
    setIf(SaveSuccess, false);
    return QString();
}
void KvRTB::OpenDecryptedFile(QString &, short &, bool *, bool *OpenSuccess, short *)
{
    reportNotAvailable("OpenDecryptedFile");
    setIf(OpenSuccess, false);
}
bool KvRTB::IsFileEncrypted(QString &)
{
    reportNotAvailable("IsFileEncrypted");
    return false;
}

// Lines, selection and case: still to come.
void KvRTB::SelectLine() { reportNotAvailable("SelectLine"); }
QString KvRTB::GetLineText(int *LineStart, int *LineLength)
{
    reportNotAvailable("GetLineText");
    setIf(LineStart, 0);
    setIf(LineLength, 0);
    return QString();
}
QString KvRTB::GetPrevLineText() { reportNotAvailable("GetPrevLineText"); return QString(); }
QString KvRTB::GetAnyLineText(int) { reportNotAvailable("GetAnyLineText"); return QString(); }
int KvRTB::GetPosOfFirstCharInLine(int) { reportNotAvailable("GetPosOfFirstCharInLine"); return -1; }
int KvRTB::GetPosOfFirstCharInPrevLine() { reportNotAvailable("GetPosOfFirstCharInPrevLine"); return -1; }
int KvRTB::FirstVisibleLine() { reportNotAvailable("FirstVisibleLine"); return -1; }
int KvRTB::LastVisibleLine() { reportNotAvailable("LastVisibleLine"); return -1; }
int KvRTB::TotalLineCount() { reportNotAvailable("TotalLineCount"); return -1; }
int KvRTB::CurrentLine() { reportNotAvailable("CurrentLine"); return -1; }
void KvRTB::GoToLine(int, bool) { reportNotAvailable("GoToLine"); }
int KvRTB::GetLineFromChar(int) { reportNotAvailable("GetLineFromChar"); return -1; }
void KvRTB::SelectAllText() { reportNotAvailable("SelectAllText"); }
int KvRTB::TopLineSelStart() { reportNotAvailable("TopLineSelStart"); return -1; }
int KvRTB::TovrinLine() { reportNotAvailable("TovrinLine"); return -1; }
int KvRTB::TovrinColumn() { reportNotAvailable("TovrinColumn"); return -1; }
int KvRTB::TovrinChar() { reportNotAvailable("TovrinChar"); return -1; }
void KvRTB::TovrinUpperCase() { reportNotAvailable("TovrinUpperCase"); }
void KvRTB::TovrinLowerCase() { reportNotAvailable("TovrinLowerCase"); }
void KvRTB::TovrinSentenceCase() { reportNotAvailable("TovrinSentenceCase"); }
void KvRTB::TovrinToggleCase() { reportNotAvailable("TovrinToggleCase"); }
void KvRTB::TovrinTitleCase() { reportNotAvailable("TovrinTitleCase"); }
void KvRTB::Span(const QString &, bool, bool) { reportNotAvailable("Span"); }
void KvRTB::UpTo(const QString &, bool, bool) { reportNotAvailable("UpTo"); }

// Formatting, clipboard and undo commands: still to come.
void KvRTB::AlignCenter(bool &) { reportNotAvailable("AlignCenter"); }
void KvRTB::AlignRight(bool &) { reportNotAvailable("AlignRight"); }
void KvRTB::AlignLeft(bool &) { reportNotAvailable("AlignLeft"); }
QVariant KvRTB::GetAlignment() { reportNotAvailable("GetAlignment"); return QVariant(); }
void KvRTB::LineSpacing(LineSpc, int) { reportNotAvailable("LineSpacing"); }
void KvRTB::ScriptStyle(ScripTT) { reportNotAvailable("ScriptStyle"); }
void KvRTB::ListStyle(ListNN) { reportNotAvailable("ListStyle"); }
bool KvRTB::SelListMethod(ListNN) { reportNotAvailable("SelListMethod"); return false; }
int KvRTB::ReadOnly(bool) { reportNotAvailable("ReadOnly"); return 0; }
void KvRTB::HighLightText(uint) { reportNotAvailable("HighLightText"); }
bool KvRTB::IsTextHighLighted(uint) { reportNotAvailable("IsTextHighLighted"); return false; }
void KvRTB::UnHighLightText(Unhighlight_Behavior) { reportNotAvailable("UnHighLightText"); }
bool KvRTB::CanHighlight() { reportNotAvailable("CanHighlight"); return false; }
bool KvRTB::ContainSpecialFormatting() { reportNotAvailable("ContainSpecialFormatting"); return false; }
bool KvRTB::CanChangeCase() { reportNotAvailable("CanChangeCase"); return false; }
bool KvRTB::CanClear() { reportNotAvailable("CanClear"); return false; }
bool KvRTB::CanCopy() { reportNotAvailable("CanCopy"); return false; }
bool KvRTB::CanCut() { reportNotAvailable("CanCut"); return false; }
bool KvRTB::CanDelete() { reportNotAvailable("CanDelete"); return false; }
bool KvRTB::CanPaste() { reportNotAvailable("CanPaste"); return false; }
bool KvRTB::CanSelectAll() { reportNotAvailable("CanSelectAll"); return false; }
bool KvRTB::CanUndo() { reportNotAvailable("CanUndo"); return false; }
bool KvRTB::GetCanUndoSpecial() { reportNotAvailable("GetCanUndoSpecial"); return false; }
void KvRTB::Delete() { reportNotAvailable("Delete"); }
void KvRTB::Copy() { reportNotAvailable("Copy"); }
void KvRTB::Paste() { reportNotAvailable("Paste"); }
void KvRTB::Cut() { reportNotAvailable("Cut"); }
void KvRTB::Undo() { reportNotAvailable("Undo"); }
void KvRTB::HyperUndo() { reportNotAvailable("HyperUndo"); }
void KvRTB::EmptyRTBUndoRedoBuffer() { reportNotAvailable("EmptyRTBUndoRedoBuffer"); }
void KvRTB::SaveSpecialUndoData() { reportNotAvailable("SaveSpecialUndoData"); }
void KvRTB::SaveRegularUndoData() { reportNotAvailable("SaveRegularUndoData"); }
void KvRTB::SaveDeleteUndoData() { reportNotAvailable("SaveDeleteUndoData"); }
void KvRTB::SaveInLinkUndoData() { reportNotAvailable("SaveInLinkUndoData"); }

// Hyperlinks: still to come.
void KvRTB::HyperLinkDocument() { reportNotAvailable("HyperLinkDocument"); }
void KvRTB::UnHyperLinkDocument() { reportNotAvailable("UnHyperLinkDocument"); }
bool KvRTB::DetectEmailZone(int, QString &) { reportNotAvailable("DetectEmailZone"); return false; }
bool KvRTB::DetectURLZone(int, QString &) { reportNotAvailable("DetectURLZone"); return false; }
void KvRTB::HyperLinkSelected(int, int) { reportNotAvailable("HyperLinkSelected"); }
void KvRTB::GoToWebsite(const QString &, QString *MyErrorData)
{
    reportNotAvailable("GoToWebsite");
    setIf(MyErrorData, QStringLiteral("Opening addresses is not available in this build yet."));
}
void KvRTB::GoToEmailClient(const QString &, QString *MyErrorData)
{
    reportNotAvailable("GoToEmailClient");
    setIf(MyErrorData, QStringLiteral("Opening addresses is not available in this build yet."));
}

// Keyword colouring: still to come.
QVariant KvRTB::ApplyVB6Syntax(Syntax_Behavior, Formatting_Options) { reportNotAvailable("ApplyVB6Syntax"); return QVariant(); }
QVariant KvRTB::ApplyVBNetSyntax(Syntax_Behavior, Formatting_Options) { reportNotAvailable("ApplyVBNetSyntax"); return QVariant(); }
QVariant KvRTB::ApplyMySyntax(Syntax_Behavior, Formatting_Options) { reportNotAvailable("ApplyMySyntax"); return QVariant(); }
void KvRTB::Cancel_Syntax() { reportNotAvailable("Cancel_Syntax"); }
bool KvRTB::CanCancelSyntax() { reportNotAvailable("CanCancelSyntax"); return false; }

// Spelling: still to come.
bool KvRTB::CanGetSpelling() { reportNotAvailable("CanGetSpelling"); return false; }
bool KvRTB::DetectMisspellings(QStringList &) { reportNotAvailable("DetectMisspellings"); return false; }
bool KvRTB::DetectNotWords(int) { reportNotAvailable("DetectNotWords"); return false; }
void KvRTB::GetPossibleSpellingCorrections(SPELL_CHECK_TYPE &SCData)
{
    reportNotAvailable("GetPossibleSpellingCorrections");
    SCData.Suggestions.clear();
    SCData.SuggestionsFound = false;
}
int KvRTB::SpellCheck(QStringList &) { reportNotAvailable("SpellCheck"); return -1; }
void KvRTB::PrepNonSpellCheckRTB(const QStringList &) { reportNotAvailable("PrepNonSpellCheckRTB"); }
int KvRTB::GoToNextSpellError() { reportNotAvailable("GoToNextSpellError"); return -1; }
int KvRTB::GoToPreviousSpellError() { reportNotAvailable("GoToPreviousSpellError"); return -1; }
int KvRTB::FixSpelling(const QString &, bool, uint) { reportNotAvailable("FixSpelling"); return -1; }
void KvRTB::FixSpelling2(const QString &) { reportNotAvailable("FixSpelling2"); }
int KvRTB::UndoSpellCorrection() { reportNotAvailable("UndoSpellCorrection"); return -1; }
void KvRTB::ShowSpellCheck() { reportNotAvailable("ShowSpellCheck"); }

// Thesaurus and word lists: still to come.
bool KvRTB::GetWordsThatStartWith(QString &, QStringList &, int) { reportNotAvailable("GetWordsThatStartWith"); return false; }
QString KvRTB::GetSynonyms(const QString &, QStringList &)
{
    reportNotAvailable("GetSynonyms");
    return QStringLiteral("No synonyms found.");
}
bool KvRTB::CanGetSynonym() { reportNotAvailable("CanGetSynonym"); return false; }
QString KvRTB::GetRandomWord() { reportNotAvailable("GetRandomWord"); return QString(); }
void KvRTB::ShowRandomWord() { reportNotAvailable("ShowRandomWord"); }

// Ruler: still to come.
void KvRTB::DrawRuler() { reportNotAvailable("DrawRuler"); }
void KvRTB::ClearRuler() { reportNotAvailable("ClearRuler"); }
void KvRTB::SetRulerTabs() { reportNotAvailable("SetRulerTabs"); }
void KvRTB::ShadeRuler() { reportNotAvailable("ShadeRuler"); }

// Printing: still to come.
int KvRTB::CommonDialogPrint(short *) { reportNotAvailable("CommonDialogPrint"); return 0; }
void KvRTB::SelPrint(const QVariant &) { reportNotAvailable("SelPrint"); }
bool KvRTB::PrinterInstalled() { reportNotAvailable("PrinterInstalled"); return false; }
void KvRTB::ShowPrintPreview() { reportNotAvailable("ShowPrintPreview"); }

// Find and replace: still to come.
int KvRTB::Find2(const QString &, FindDirectionQ, FindOptionsQ, bool) { reportNotAvailable("Find2"); return -1; }
bool KvRTB::FindVerify(const QString &, FindOptionsQ) { reportNotAvailable("FindVerify"); return false; }
void KvRTB::ShowFindReplace() { reportNotAvailable("ShowFindReplace"); }
void KvRTB::ExitFindRep() { reportNotAvailable("ExitFindRep"); }

// Font and colour selection: still to come. The colour dialogs answer "cancelled" with the
// colour they were given.
void KvRTB::CommonDialogFontSelect(short *) { reportNotAvailable("CommonDialogFontSelect"); }
void KvRTB::ShowFontSelect() { reportNotAvailable("ShowFontSelect"); }
void KvRTB::SetDefaultFontMode() { reportNotAvailable("SetDefaultFontMode"); }
void KvRTB::EndDefaultFontMode() { reportNotAvailable("EndDefaultFontMode"); }
DEFUALT_FONT_DATA KvRTB::GetDefaultFontData() { reportNotAvailable("GetDefaultFontData"); return DEFUALT_FONT_DATA(); }
void KvRTB::ShareDefaultFontData(const DEFUALT_FONT_DATA &) { reportNotAvailable("ShareDefaultFontData"); }
uint KvRTB::CommonDialogColor(bool &UserCancelQ, bool, uint MyOrgigColor, short *)
{
    reportNotAvailable("CommonDialogColor");
    UserCancelQ = true;
    return MyOrgigColor;
}
uint KvRTB::CommonDialogFontColor(const QVariant &MyOrgigColor, short *)
{
    reportNotAvailable("CommonDialogFontColor");
    return MyOrgigColor.toUInt();
}
uint KvRTB::CommonDialogSelFontColor(const QVariant &CurrentColor, short *)
{
    reportNotAvailable("CommonDialogSelFontColor");
    return CurrentColor.toUInt();
}
uint KvRTB::CommonDialogSelColor(const QVariant &CurrentColor, short *)
{
    reportNotAvailable("CommonDialogSelColor");
    return CurrentColor.toUInt();
}

// Word count: still to come.
void KvRTB::ShowWordCount() { reportNotAvailable("ShowWordCount"); }

// Help and sound: still to come.
void KvRTB::PointToWhatsThisHelpFile() { reportNotAvailable("PointToWhatsThisHelpFile"); }
QString KvRTB::GetHelpFile(bool) { reportNotAvailable("GetHelpFile"); return QString(); }

} // namespace kvrtb
