// The members of the areas that are built: each forwards to its area's object in the core.

#include "control/kvrtb.h"

#include "core/controlcore.h"
#include "control/kvrtb_p.h"
#include "documents/documents.h"
#include "editing/editcommands.h"
#include "editing/linesandcase.h"
#include "editing/specialundo.h"
#include "hyperlinks/hyperlinks.h"
#include "spelling/thesaurus.h"
#include "spelling/wordlists.h"

namespace kvrtb {

// Documents and encrypted documents.
void KvRTB::LoadFile(const QString &bstrFilename, QFileType vFileType, bool *TXTLinks, bool *OpenSuccess)
{
    core().documents().LoadFile(bstrFilename, vFileType, TXTLinks, OpenSuccess);
}
QVariant KvRTB::LoadFileRTBOriginal(const QString &bstrFilename, QFileType vFileType)
{
    return core().documents().LoadFileRTBOriginal(bstrFilename, vFileType);
}
bool KvRTB::SaveFile(const QString &bstrFilename, QFileType vFlags)
{
    return core().documents().SaveFile(bstrFilename, vFlags);
}
QString KvRTB::CommonDialogFileOpen(QString *DefaultDirectory, QString *CustomFilter, bool *TextWLinks,
                                    short *ShowFilterIndex, short *FindexRet, short *MyErr, bool *OpenSuccess,
                                    QString *Title)
{
    return core().documents().CommonDialogFileOpen(DefaultDirectory, CustomFilter, TextWLinks, ShowFilterIndex,
                                                   FindexRet, MyErr, OpenSuccess, Title);
}
QString KvRTB::CommonDialogFileSave(QString *DefaultDirectory, QString *FileNameSTR, bool *PromptOverWrite,
                                    QString *CustomFilter, short *ShowFilterIndex, short *FindexRet, short *MyErr,
                                    QString *Title, bool *SaveSuccess)
{
    return core().documents().CommonDialogFileSave(DefaultDirectory, FileNameSTR, PromptOverWrite, CustomFilter,
                                                   ShowFilterIndex, FindexRet, MyErr, Title, SaveSuccess);
}
void KvRTB::OpenDecryptedFile(QString &MyFileName, short &MyIndex, bool *TextWLinks, bool *OpenSuccess, short *MyErr)
{
    core().documents().OpenDecryptedFile(MyFileName, MyIndex, TextWLinks, OpenSuccess, MyErr);
}
bool KvRTB::IsFileEncrypted(QString &FileNameSTR)
{
    return Documents::IsFileEncrypted(FileNameSTR);
}

// Lines, selection and case.
void KvRTB::SelectLine() { core().linesAndCase().SelectLine(); }
QString KvRTB::GetLineText(int *LineStart, int *LineLength) { return core().linesAndCase().GetLineText(LineStart, LineLength); }
QString KvRTB::GetPrevLineText() { return core().linesAndCase().GetPrevLineText(); }
QString KvRTB::GetAnyLineText(int MyLineNum) { return core().linesAndCase().GetAnyLineText(MyLineNum); }
int KvRTB::GetPosOfFirstCharInLine(int MyLine) { return core().linesAndCase().GetPosOfFirstCharInLine(MyLine); }
int KvRTB::GetPosOfFirstCharInPrevLine() { return core().linesAndCase().GetPosOfFirstCharInPrevLine(); }
int KvRTB::FirstVisibleLine() { return core().linesAndCase().FirstVisibleLine(); }
int KvRTB::LastVisibleLine() { return core().linesAndCase().LastVisibleLine(); }
int KvRTB::TotalLineCount() { return core().linesAndCase().TotalLineCount(); }
int KvRTB::CurrentLine() { return core().linesAndCase().CurrentLine(); }
void KvRTB::GoToLine(int LineNumQ, bool SelectLineQ) { core().linesAndCase().GoToLine(LineNumQ, SelectLineQ); }
int KvRTB::GetLineFromChar(int lChar) { return core().linesAndCase().GetLineFromChar(lChar); }
void KvRTB::SelectAllText() { core().linesAndCase().SelectAllText(); }
int KvRTB::TovrinLine() { return core().linesAndCase().TovrinLine(); }
int KvRTB::TovrinColumn() { return core().linesAndCase().TovrinColumn(); }
int KvRTB::TovrinChar() { return core().linesAndCase().TovrinChar(); }
void KvRTB::TovrinUpperCase() { core().linesAndCase().TovrinUpperCase(); }
void KvRTB::TovrinLowerCase() { core().linesAndCase().TovrinLowerCase(); }
void KvRTB::TovrinSentenceCase() { core().linesAndCase().TovrinSentenceCase(); }
void KvRTB::TovrinToggleCase() { core().linesAndCase().TovrinToggleCase(); }
void KvRTB::TovrinTitleCase() { core().linesAndCase().TovrinTitleCase(); }
void KvRTB::Span(const QString &bstrCharacterSet, bool vForward, bool vNegate)
{
    core().linesAndCase().Span(bstrCharacterSet, vForward, vNegate);
}
void KvRTB::UpTo(const QString &bstrCharacterSet, bool vForward, bool vNegate)
{
    core().linesAndCase().UpTo(bstrCharacterSet, vForward, vNegate);
}

// Formatting, clipboard and undo commands.
void KvRTB::AlignCenter(bool &MyBool) { core().editCommands().AlignCenter(MyBool); }
void KvRTB::AlignRight(bool &MyBool) { core().editCommands().AlignRight(MyBool); }
void KvRTB::AlignLeft(bool &MyBool) { core().editCommands().AlignLeft(MyBool); }
QVariant KvRTB::GetAlignment() { return core().editCommands().GetAlignment(); }
void KvRTB::LineSpacing(LineSpc LineMethod, int exactORmultiple) { core().editCommands().LineSpacing(LineMethod, exactORmultiple); }
void KvRTB::ScriptStyle(ScripTT ScriptMethod) { core().editCommands().ScriptStyle(ScriptMethod); }
void KvRTB::ListStyle(ListNN ListMethod) { core().editCommands().ListStyle(ListMethod); }
bool KvRTB::SelListMethod(ListNN ListMethod) { return core().editCommands().SelListMethod(ListMethod); }
int KvRTB::ReadOnly(bool ApplyReadOnly) { return core().editCommands().ReadOnly(ApplyReadOnly ? kVbTrue : kVbFalse); }
void KvRTB::HighLightText(uint HighLightColor) { core().editCommands().HighLightText(HighLightColor); }
bool KvRTB::IsTextHighLighted(uint HighLightColor) { return core().editCommands().IsTextHighLighted(HighLightColor); }
void KvRTB::UnHighLightText(Unhighlight_Behavior All_or_Selected_Text) { core().editCommands().UnHighLightText(All_or_Selected_Text); }
bool KvRTB::CanHighlight() { return core().editCommands().CanHighlight(); }
bool KvRTB::ContainSpecialFormatting() { return core().editCommands().ContainSpecialFormatting(); }
bool KvRTB::CanChangeCase() { return core().editCommands().CanChangeCase(); }
bool KvRTB::CanClear() { return core().editCommands().CanClear(); }
bool KvRTB::CanCopy() { return core().editCommands().CanCopy(); }
bool KvRTB::CanCut() { return core().editCommands().CanCut(); }
bool KvRTB::CanDelete() { return core().editCommands().CanDelete(); }
bool KvRTB::CanPaste() { return core().editCommands().CanPaste(); }
bool KvRTB::CanSelectAll() { return core().editCommands().CanSelectAll(); }
bool KvRTB::CanGetSpelling() { return core().editCommands().CanGetSpelling(); }
bool KvRTB::CanUndo() { return core().specialUndo().CanUndo(); }
bool KvRTB::GetCanUndoSpecial() { return core().specialUndo().GetCanUndoSpecial(); }
void KvRTB::Delete() { core().editCommands().Delete(); }
void KvRTB::Copy() { core().editCommands().Copy(); }
void KvRTB::Paste() { core().editCommands().Paste(); }
void KvRTB::Cut() { core().editCommands().Cut(); }
void KvRTB::Undo() { core().specialUndo().Undo(); }
void KvRTB::HyperUndo() { core().specialUndo().HyperUndo(); }
void KvRTB::EmptyRTBUndoRedoBuffer() { core().specialUndo().EmptyRTBUndoRedoBuffer(); }
void KvRTB::SaveSpecialUndoData() { core().specialUndo().SaveSpecialUndoData(); }
void KvRTB::SaveRegularUndoData() { core().specialUndo().SaveRegularUndoData(); }
void KvRTB::SaveDeleteUndoData() { core().specialUndo().SaveDeleteUndoData(); }
void KvRTB::SaveInLinkUndoData() { core().specialUndo().SaveInLinkUndoData(); }

// Hyperlinks.
void KvRTB::HyperLinkDocument() { core().hyperlinks().HyperLinkDocument(); }
void KvRTB::UnHyperLinkDocument() { core().hyperlinks().UnHyperLinkDocument(); }
bool KvRTB::DetectEmailZone(int MyHitSpot, QString &ReturnMyEAddress)
{
    return core().hyperlinks().DetectEmailZone(MyHitSpot, &ReturnMyEAddress);
}
bool KvRTB::DetectURLZone(int MyHitSpot, QString &ReturnMyURL)
{
    return core().hyperlinks().DetectURLZone(MyHitSpot, &ReturnMyURL);
}
void KvRTB::HyperLinkSelected(int RTBSelStart, int RTBSelectedLength)
{
    core().hyperlinks().HyperLinkSelected(RTBSelStart, RTBSelectedLength);
}
void KvRTB::GoToWebsite(const QString &MyWebSite, QString *MyErrorData)
{
    core().hyperlinks().GoToWebsite(MyWebSite, MyErrorData);
}
void KvRTB::GoToEmailClient(const QString &MyEmail, QString *MyErrorData)
{
    core().hyperlinks().GoToEmailClient(MyEmail, MyErrorData);
}

// Thesaurus and word lists.
bool KvRTB::GetWordsThatStartWith(QString &MyStartingLetters, QStringList &MyReturnArray, int ReturnLimit)
{
    PlatformServices &services = core().services();
    // Input handled before the search starts (the key or click that made the host ask) is not
    // input waiting for it; only input that arrives while the search yields passes words over.
    services.hasPendingInput();
    WordLists::CompletionHooks hooks;
    hooks.hasPendingInput = [&services] { return services.hasPendingInput(); };
    hooks.yieldToEventLoop = [&services] { services.processEvents(); };
    return WordLists::GetWordsThatStartWith(MyStartingLetters, MyReturnArray, ReturnLimit, &hooks);
}
QString KvRTB::GetSynonyms(const QString &MYWORD1, QStringList &ASynArray)
{
    return Thesaurus::GetSynonyms(MYWORD1, ASynArray);
}
bool KvRTB::CanGetSynonym() { return core().editCommands().CanGetSynonym(); }
QString KvRTB::GetRandomWord() { return WordLists::GetRandomWord(); }

} // namespace kvrtb
