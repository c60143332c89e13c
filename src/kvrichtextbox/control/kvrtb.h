#pragma once

#include "core/controlevents.h"
#include "core/kvrtbtypes.h"
#include "control/propertytable.h"

#include <QFont>
#include <QPixmap>
#include <QPointer>
#include <QStringList>
#include <QVariant>
#include <QWidget>

#include <memory>

class QProgressBar;

namespace kvrtb {

class ControlCore;
class EditorSurface;
class PlatformServices;
class PropertyBag;

/// \brief The rich-text editing control a host places on its windows.
///
/// `KvRTB` is a facade: it owns a `ControlCore` (the editing surfaces, settings and the logic of
/// every area) and its public members forward to it. Everything a host uses is reachable by
/// name through Qt's meta-object system: members are public slots or `Q_INVOKABLE`, settings
/// are `Q_PROPERTY`s (the persisted ones designable), and the control's events are signals.
///
/// Conventions of the interface:
/// - Booleans are `bool`; the by-name interface accepts -1/true and 0/false alike.
/// - In/out arguments are references (the member writes them back; a directly connected
///   signal handler may change them). Optional out arguments are pointers defaulting to nullptr.
///   Arguments that are passed by reference only to be read are const references.
/// - Nothing is thrown: failures come back as out arguments or as the member's not-found value
///   (-1, false, an empty string or list).
/// - Selection attributes that differ across the selection ("mixed") read as a null QVariant,
///   by name and from C++ alike.
///
/// Life cycle: the constructor initialises (a new document model, the per-thread cancel flag
/// and scratch string cleared); then the host calls either `initProperties()` (first placement)
/// or `readProperties()` (restored from a saved form); `writeProperties()` when it saves; the
/// destructor empties both surfaces and the scratch string.
///
/// \code
/// kvrtb::KvRTB editor(&window);
/// editor.initProperties();
/// QObject::connect(&editor, &kvrtb::KvRTB::Change, &window, [] { ... });
/// editor.setProperty("SelBold", true);
/// \endcode
class KvRTB : public QWidget, private ControlEvents {
    Q_OBJECT

    // --- Persisted properties, in table order -----------------------------------------------
    Q_PROPERTY(bool AllowImages READ AllowImages WRITE setAllowImages DESIGNABLE true)
    Q_PROPERTY(int Appearance READ Appearance WRITE setAppearance DESIGNABLE true)
    Q_PROPERTY(uint BackColor READ BackColor WRITE setBackColor DESIGNABLE true)
    Q_PROPERTY(int BorderStyle READ BorderStyle WRITE setBorderStyle DESIGNABLE true)
    Q_PROPERTY(int BulletIndent READ BulletIndent WRITE setBulletIndent DESIGNABLE true)
    Q_PROPERTY(bool Enabled READ Enabled WRITE setEditorEnabled DESIGNABLE true)
    Q_PROPERTY(QFont Font READ Font WRITE setEditorFont DESIGNABLE true)
    Q_PROPERTY(bool Locked READ Locked WRITE setLocked DESIGNABLE true)
    Q_PROPERTY(int MaxLength READ MaxLength WRITE setMaxLength DESIGNABLE true)
    Q_PROPERTY(QPixmap MouseIcon READ MouseIcon WRITE setMouseIcon DESIGNABLE true)
    Q_PROPERTY(int MousePointer READ MousePointer WRITE setMousePointer DESIGNABLE true)
    Q_PROPERTY(int RightMargin READ RightMargin WRITE setRightMargin DESIGNABLE true)
    Q_PROPERTY(QString Text READ Text WRITE setText DESIGNABLE true)
    Q_PROPERTY(QString TextRTF READ TextRTF WRITE setTextRTF DESIGNABLE true)
    Q_PROPERTY(bool RemoveUnUsableData READ RemoveUnUsableData WRITE setRemoveUnUsableData DESIGNABLE true)
    Q_PROPERTY(uint ColorVBNetKeyWord READ ColorVBNetKeyWord WRITE setColorVBNetKeyWord DESIGNABLE true)
    Q_PROPERTY(uint ColorVB6KeyWord READ ColorVB6KeyWord WRITE setColorVB6KeyWord DESIGNABLE true)
    Q_PROPERTY(uint ColorVBNetComment READ ColorVBNetComment WRITE setColorVBNetComment DESIGNABLE true)
    Q_PROPERTY(uint ColorVB6Comment READ ColorVB6Comment WRITE setColorVB6Comment DESIGNABLE true)
    Q_PROPERTY(uint ColorVBNetString READ ColorVBNetString WRITE setColorVBNetString DESIGNABLE true)
    Q_PROPERTY(uint ColorVB6String READ ColorVB6String WRITE setColorVB6String DESIGNABLE true)
    Q_PROPERTY(uint ColorMyFirstKeyWord READ ColorMyFirstKeyWord WRITE setColorMyFirstKeyWord DESIGNABLE true)
    Q_PROPERTY(uint ColorMySecondKeyWord READ ColorMySecondKeyWord WRITE setColorMySecondKeyWord DESIGNABLE true)
    Q_PROPERTY(uint ColorMyThirdKeyWord READ ColorMyThirdKeyWord WRITE setColorMyThirdKeyWord DESIGNABLE true)
    Q_PROPERTY(QString MyFirstString READ MyFirstString WRITE setMyFirstString DESIGNABLE true)
    Q_PROPERTY(QString MySecondString READ MySecondString WRITE setMySecondString DESIGNABLE true)
    Q_PROPERTY(QString MyThirdString READ MyThirdString WRITE setMyThirdString DESIGNABLE true)
    Q_PROPERTY(bool DetectHyperLinks READ DetectHyperLinks WRITE setDetectHyperLinks DESIGNABLE true)
    Q_PROPERTY(bool AutoVMenu READ AutoVMenu WRITE setAutoVMenu DESIGNABLE true)
    Q_PROPERTY(uint MyFontColor READ MyFontColor WRITE setMyFontColor DESIGNABLE true)
    Q_PROPERTY(uint MyHLColor READ MyHLColor WRITE setMyHLColor DESIGNABLE true)
    Q_PROPERTY(bool ShowVB6Syntax READ ShowVB6Syntax WRITE setShowVB6Syntax DESIGNABLE true)
    Q_PROPERTY(bool UseCustomFontDialog READ UseCustomFontDialog WRITE setUseCustomFontDialog DESIGNABLE true)
    Q_PROPERTY(int PrinterMargin READ PrinterMargin WRITE setPrinterMargin DESIGNABLE true)
    Q_PROPERTY(QString WhatsThisHelpFile READ WhatsThisHelpFile WRITE setWhatsThisHelpFile DESIGNABLE true)
    Q_PROPERTY(bool TurnOnSound READ TurnOnSound WRITE setTurnOnSound DESIGNABLE true)
    Q_PROPERTY(int MyWrapStyle READ MyWrapStyle WRITE setMyWrapStyle DESIGNABLE true)
    Q_PROPERTY(bool DisplayRuler READ DisplayRuler WRITE setDisplayRuler DESIGNABLE true)
    Q_PROPERTY(bool AllowRTFSave READ AllowRTFSave WRITE setAllowRTFSave DESIGNABLE true)

    // --- Run-time properties ------------------------------------------------------------------
    Q_PROPERTY(qulonglong hwnd READ hwnd DESIGNABLE false STORED false)
    Q_PROPERTY(QString SelText READ SelText WRITE setSelText DESIGNABLE false STORED false)
    Q_PROPERTY(int SelLength READ SelLength WRITE setSelLength DESIGNABLE false STORED false)
    Q_PROPERTY(int SelStart READ SelStart WRITE setSelStart DESIGNABLE false STORED false)
    Q_PROPERTY(QString SelRTF READ SelRTF WRITE setSelRTF DESIGNABLE false STORED false)
    Q_PROPERTY(QVariant SelBold READ SelBold WRITE setSelBold DESIGNABLE false STORED false)
    Q_PROPERTY(QVariant SelItalic READ SelItalic WRITE setSelItalic DESIGNABLE false STORED false)
    Q_PROPERTY(QVariant SelUnderline READ SelUnderline WRITE setSelUnderline DESIGNABLE false STORED false)
    Q_PROPERTY(QVariant SelStrikeThru READ SelStrikeThru WRITE setSelStrikeThru DESIGNABLE false STORED false)
    Q_PROPERTY(QVariant SelProtected READ SelProtected WRITE setSelProtected DESIGNABLE false STORED false)
    Q_PROPERTY(QVariant SelColor READ SelColor WRITE setSelColor DESIGNABLE false STORED false)
    Q_PROPERTY(QVariant SelFontName READ SelFontName WRITE setSelFontName DESIGNABLE false STORED false)
    Q_PROPERTY(QVariant SelFontSize READ SelFontSize WRITE setSelFontSize DESIGNABLE false STORED false)
    Q_PROPERTY(QVariant SelCharOffset READ SelCharOffset WRITE setSelCharOffset DESIGNABLE false STORED false)
    Q_PROPERTY(QVariant SelBullet READ SelBullet WRITE setSelBullet DESIGNABLE false STORED false)
    Q_PROPERTY(QVariant SelIndent READ SelIndent WRITE setSelIndent DESIGNABLE false STORED false)
    Q_PROPERTY(QVariant SelHangingIndent READ SelHangingIndent WRITE setSelHangingIndent DESIGNABLE false STORED false)
    Q_PROPERTY(QVariant SelRightIndent READ SelRightIndent WRITE setSelRightIndent DESIGNABLE false STORED false)
    Q_PROPERTY(QVariant SelTabCount READ SelTabCount WRITE setSelTabCount DESIGNABLE false STORED false)
    // Printing: the heading, its place (`PageHeadingAlign`), the page numbers and date
    // (`PageNumAndNow`) and the custom text printed in the page margins.
    Q_PROPERTY(QString PageHeading READ PageHeading WRITE setPageHeading DESIGNABLE false STORED false)
    Q_PROPERTY(int PageHeadingAlignment READ PageHeadingAlignment WRITE setPageHeadingAlignment DESIGNABLE false STORED false)
    Q_PROPERTY(int PageNumbersAndDate READ PageNumbersAndDate WRITE setPageNumbersAndDate DESIGNABLE false STORED false)
    Q_PROPERTY(QString PageCustomText READ PageCustomText WRITE setPageCustomText DESIGNABLE false STORED false)
    // Misspelt words underlined as the user types; off by default, not saved with the control.
    Q_PROPERTY(bool SpellAsYouType READ SpellAsYouType WRITE setSpellAsYouType DESIGNABLE false STORED false)

public:
    /// A control with the desktop's dialogs and services.
    explicit KvRTB(QWidget *parent = nullptr);
    /// A control using \a services (not owned; must outlive the control), e.g. recording ones.
    explicit KvRTB(PlatformServices &services, QWidget *parent = nullptr);
    ~KvRTB() override;

    // --- Life cycle and hosting ---------------------------------------------------------------
    /// First placement on a form: 1575 by 735 twips, every persisted property at its default and
    /// the host's name for the control (`objectName()`, "KvRTB1" when empty) as the text.
    Q_INVOKABLE void initProperties();
    /// Restores the persisted properties from \a bag in table order. On failure the reason is
    /// returned; what was read before it stays applied.
    PropertyPassResult readProperties(PropertyBag &bag);
    /// Saves the persisted properties into \a bag in table order, default values left out.
    PropertyPassResult writeProperties(PropertyBag &bag) const;

    /// The logic behind the control, for the areas and for tests.
    ControlCore &core() { return *m_core; }
    /// The visible editing surface and the hidden converter surface.
    EditorSurface &RichTextBox1();
    EditorSurface &RichTextBox2();
    QProgressBar *ProgressBar1() const { return m_progressBar; }
    /// The frame holding the editor; the layout sizes it and the editor together.
    QWidget *RTBPicture() const { return m_rtbPicture; }
    /// The ruler strip (shown while `DisplayRuler` is true); its pictures are children of it.
    QWidget *MasterPic() const { return m_masterPic; }
    /// Height in pixels of the ruler strip when shown.
    static constexpr int kRulerStripHeight = 24;

    // --- Persisted properties -------------------------------------------------------------
    // Getters read the control or the editor; every setter applies the value, tells the host
    // (`PropertyChanged`) under the key and, for the keys that the host's menus mirror, raises
    // `UpdateParentMenu`, even when the value does not change.
    bool AllowImages() const;
    int Appearance() const;
    uint BackColor() const;
    int BorderStyle() const;
    int BulletIndent() const;
    bool Enabled() const;
    QFont Font() const;
    bool Locked() const;
    int MaxLength() const;
    QPixmap MouseIcon() const;
    int MousePointer() const;
    int RightMargin() const;
    QString Text() const;
    /// The whole document as RTF; empty for an empty document, which has nothing to keep.
    QString TextRTF() const;
    bool RemoveUnUsableData() const;
    uint ColorVBNetKeyWord() const;
    uint ColorVB6KeyWord() const;
    uint ColorVBNetComment() const;
    uint ColorVB6Comment() const;
    uint ColorVBNetString() const;
    uint ColorVB6String() const;
    uint ColorMyFirstKeyWord() const;
    uint ColorMySecondKeyWord() const;
    uint ColorMyThirdKeyWord() const;
    QString MyFirstString() const;
    QString MySecondString() const;
    QString MyThirdString() const;
    bool DetectHyperLinks() const;
    bool AutoVMenu() const;
    uint MyFontColor() const;
    uint MyHLColor() const;
    bool ShowVB6Syntax() const;
    bool UseCustomFontDialog() const;
    int PrinterMargin() const;
    QString WhatsThisHelpFile() const;
    bool TurnOnSound() const;
    int MyWrapStyle() const;
    bool DisplayRuler() const;
    bool AllowRTFSave() const;

    // --- Selection pass-through (null QVariant = mixed) -----------------------------------
    QString SelText() const;
    int SelLength() const;
    int SelStart() const;
    QString SelRTF() const;
    QVariant SelBold() const;
    QVariant SelItalic() const;
    QVariant SelUnderline() const;
    QVariant SelStrikeThru() const;
    QVariant SelProtected() const;
    QVariant SelColor() const;
    QVariant SelFontName() const;
    QVariant SelFontSize() const;
    QVariant SelCharOffset() const;
    QVariant SelBullet() const;
    QVariant SelIndent() const;
    QVariant SelHangingIndent() const;
    QVariant SelRightIndent() const;
    QVariant SelTabCount() const;
    /// The position (twips) of tab stop \a e_ellmt (0-based) of the selection's paragraphs;
    /// null when mixed or when there is no such stop.
    Q_INVOKABLE QVariant SelTabs(int e_ellmt) const;

    /// The editor's native window id (`RichTextBox1`), 0 while it has none. Reading it leaves
    /// the editor as it is: a host that needs a native window calls `winId()` on
    /// `RichTextBox1().widget()` itself, and `hwnd` gives that id from then on.
    qulonglong hwnd() const;

    // --- Printing settings (run time, not persisted) ------------------------------------------
    /// The heading printed on every page; empty for none.
    QString PageHeading() const;
    /// Where the heading goes, a `PageHeadingAlign` value (default `CenterAlignHeading`).
    int PageHeadingAlignment() const;
    /// Page numbers ("Page N") and the date, a `PageNumAndNow` value (default `PrintNiether`).
    int PageNumbersAndDate() const;
    /// The text `PrintCustom` and `PrintCustomWNum` print in the middle of the margin.
    QString PageCustomText() const;
    /// \brief Whether misspelt words are underlined (a red wavy line) as the user types. The
    /// underline is paint only: never in the text, its RTF, its undo or `SelUnderline`. A
    /// right-click on an underlined word lists its ranked suggestions first in the pop-up menu.
    bool SpellAsYouType() const;

public slots:
    void setAllowImages(bool value);
    void setAppearance(int value);
    void setBackColor(uint value);
    void setBorderStyle(int value);
    void setBulletIndent(int value);
    /// `Enabled` of the editor (the QWidget's own `setEnabled` is left alone).
    void setEditorEnabled(bool value);
    /// `Font` of the editor (the QWidget's own `setFont` is left alone).
    void setEditorFont(const QFont &value);
    void setLocked(bool value);
    void setMaxLength(int value);
    void setMouseIcon(const QPixmap &value);
    void setMousePointer(int value);
    void setRightMargin(int value);
    void setText(const QString &value);
    /// Replaces the document with RTF; a text that cannot be read as RTF leaves it unchanged.
    void setTextRTF(const QString &value);
    void setRemoveUnUsableData(bool value);
    void setColorVBNetKeyWord(uint value);
    void setColorVB6KeyWord(uint value);
    void setColorVBNetComment(uint value);
    void setColorVB6Comment(uint value);
    void setColorVBNetString(uint value);
    void setColorVB6String(uint value);
    void setColorMyFirstKeyWord(uint value);
    void setColorMySecondKeyWord(uint value);
    void setColorMyThirdKeyWord(uint value);
    void setMyFirstString(const QString &value);
    void setMySecondString(const QString &value);
    void setMyThirdString(const QString &value);
    void setDetectHyperLinks(bool value);
    void setAutoVMenu(bool value);
    void setMyFontColor(uint value);
    void setMyHLColor(uint value);
    void setShowVB6Syntax(bool value);
    void setUseCustomFontDialog(bool value);
    void setPrinterMargin(int value);
    void setWhatsThisHelpFile(const QString &value);
    void setTurnOnSound(bool value);
    void setMyWrapStyle(int value);
    /// Also re-runs the layout: the ruler strip is shown or hidden and the editor takes the rest.
    void setDisplayRuler(bool value);
    void setAllowRTFSave(bool value);

    // Setting a selection attribute applies it to the selection (to what is typed next when
    // nothing is selected); a null QVariant leaves the attribute as it is.
    void setSelText(const QString &value);
    void setSelLength(int value);
    void setSelStart(int value);
    void setSelRTF(const QString &value);
    void setSelBold(const QVariant &value);
    void setSelItalic(const QVariant &value);
    void setSelUnderline(const QVariant &value);
    void setSelStrikeThru(const QVariant &value);
    void setSelProtected(const QVariant &value);
    void setSelColor(const QVariant &value);
    void setSelFontName(const QVariant &value);
    void setSelFontSize(const QVariant &value);
    void setSelCharOffset(const QVariant &value);
    void setSelBullet(const QVariant &value);
    void setSelIndent(const QVariant &value);
    void setSelHangingIndent(const QVariant &value);
    void setSelRightIndent(const QVariant &value);
    /// Keeps the first \a value stops; new ones follow the last at half-inch (720 twips) steps.
    void setSelTabCount(const QVariant &value);
    /// Moves tab stop \a e_ellmt (0-based, must exist) to \a value twips.
    void setSelTabs(int e_ellmt, int value);

    void setPageHeading(const QString &value);
    /// A value that is not a `PageHeadingAlign` is refused with a warning; the setting stays.
    void setPageHeadingAlignment(int value);
    /// A value that is not a `PageNumAndNow` is refused with a warning; the setting stays.
    void setPageNumbersAndDate(int value);
    void setPageCustomText(const QString &value);
    void setSpellAsYouType(bool value);

    // --- Control shell ----------------------------------------------------------------------
    /// Repaints the control and the editor.
    void Refresh();
    /// Gives the keyboard focus to the editor.
    void SetInFocus();
    /// The tool-tip shown over the editor.
    void ToolTipTxt(const QString &NewTip);
    /// True freezes the editor's display, False thaws it (through `LockWindowUpdateEx`).
    QVariant FreezeRichText(const bool &FreezeRTB);
    /// True freezes the editor's display, False thaws one freeze; painting resumes when the
    /// freezes are all thawed. Bulk passes bracket their work with it.
    void LockWindowUpdateEx(const bool &MyLockBool);
    /// One-time preparation of the control's scratch state and dictionaries.
    void PrepareKvRTB();
    QString GetRTFString() const;
    QString GetTextString() const;
    /// True when \a AnyArray is an array with an upper bound: a list (QVariantList, QStringList
    /// or any sequential container) with at least one element. Empty lists, strings, scalars
    /// and null give false.
    bool IsArrayGood(const QVariant &AnyArray) const;
    /// The completion percentage of the running long operation (0 when none runs).
    short ProgressPercentage() const;
    /// Asks the running long operation to stop at its next check (sets the per-thread flag
    /// that every control on this thread shares; the next long operation clears it).
    void KillSwitch();
    /// Turns wrapping off (\a Wrap false) or on: at the ruler's right margin (the width of the
    /// text on a printed page) when \a RulerWrap is true, else at the window's width.
    /// `MyWrapStyle` follows; `Finish` and `Ready` are raised. Both switches are plain values so
    /// that a host calling by name can pass them.
    void Word_Wrap(const bool &Wrap, const bool &RulerWrap = false);

    // --- Change tracking --------------------------------------------------------------------
    /// True when the document changed since it was loaded, saved or last marked.
    bool HasRTBChanged() const;
    /// Marks the document changed or unchanged. With the argument omitted it marks it
    /// unchanged, as after a save.
    void SetRTBChanged(const bool &BoolValQ = false);

    // --- Documents --------------------------------------------------------------------------
    void LoadFile(const QString &bstrFilename, kvrtb::QFileType vFileType = rtfRTF, bool *TXTLinks = nullptr,
                  bool *OpenSuccess = nullptr);
    QVariant LoadFileRTBOriginal(const QString &bstrFilename, kvrtb::QFileType vFileType = rtfRTF);
    bool SaveFile(const QString &bstrFilename, kvrtb::QFileType vFlags = rtfRTF);
    QString CommonDialogFileOpen(QString *DefaultDirectory = nullptr, QString *CustomFilter = nullptr,
                                 bool *TextWLinks = nullptr, short *ShowFilterIndex = nullptr,
                                 short *FindexRet = nullptr, short *MyErr = nullptr, bool *OpenSuccess = nullptr,
                                 QString *Title = nullptr);
    QString CommonDialogFileSave(QString *DefaultDirectory = nullptr, QString *FileNameSTR = nullptr,
                                 bool *PromptOverWrite = nullptr, QString *CustomFilter = nullptr,
                                 short *ShowFilterIndex = nullptr, short *FindexRet = nullptr,
                                 short *MyErr = nullptr, QString *Title = nullptr, bool *SaveSuccess = nullptr);

    // --- Encrypted documents ----------------------------------------------------------------
    void OpenDecryptedFile(QString &MyFileName, short &MyIndex, bool *TextWLinks = nullptr,
                           bool *OpenSuccess = nullptr, short *MyErr = nullptr);
    bool IsFileEncrypted(QString &FileNameSTR);

    // --- Lines, selection and case ----------------------------------------------------------
    void SelectLine();
    QString GetLineText(int *LineStart = nullptr, int *LineLength = nullptr);
    QString GetPrevLineText();
    QString GetAnyLineText(int MyLineNum);
    int GetPosOfFirstCharInLine(int MyLine = -1);
    int GetPosOfFirstCharInPrevLine();
    int FirstVisibleLine();
    int LastVisibleLine();
    int TotalLineCount();
    int CurrentLine();
    void GoToLine(int LineNumQ, bool SelectLineQ = false);
    int GetLineFromChar(int lChar);
    void SelectAllText();
    int TopLineSelStart();
    int TovrinLine();
    int TovrinColumn();
    int TovrinChar();
    void TovrinUpperCase();
    void TovrinLowerCase();
    void TovrinSentenceCase();
    void TovrinToggleCase();
    void TovrinTitleCase();
    void Span(const QString &bstrCharacterSet, bool vForward = true, bool vNegate = false);
    void UpTo(const QString &bstrCharacterSet, bool vForward = true, bool vNegate = false);

    // --- Formatting and edit commands -------------------------------------------------------
    void AlignCenter(bool &MyBool);
    void AlignRight(bool &MyBool);
    void AlignLeft(bool &MyBool);
    QVariant GetAlignment();
    void LineSpacing(kvrtb::LineSpc LineMethod, int exactORmultiple = 0);
    void ScriptStyle(kvrtb::ScripTT ScriptMethod);
    void ListStyle(kvrtb::ListNN ListMethod);
    bool SelListMethod(kvrtb::ListNN ListMethod);
    int ReadOnly(bool ApplyReadOnly);
    void HighLightText(uint HighLightColor);
    bool IsTextHighLighted(uint HighLightColor);
    void UnHighLightText(kvrtb::Unhighlight_Behavior All_or_Selected_Text = Unhighlight_All_Text);
    bool CanHighlight();
    bool ContainSpecialFormatting();
    bool CanChangeCase();
    bool CanClear();
    bool CanCopy();
    bool CanCut();
    bool CanDelete();
    bool CanPaste();
    bool CanSelectAll();
    bool CanUndo();
    bool GetCanUndoSpecial();
    void Delete();
    void Copy();
    void Paste();
    void Cut();
    void Undo();
    void HyperUndo();
    void EmptyRTBUndoRedoBuffer();
    void SaveSpecialUndoData();
    void SaveRegularUndoData();
    void SaveDeleteUndoData();
    void SaveInLinkUndoData();

    // --- Hyperlinks -------------------------------------------------------------------------
    void HyperLinkDocument();
    void UnHyperLinkDocument();
    bool DetectEmailZone(int MyHitSpot, QString &ReturnMyEAddress);
    bool DetectURLZone(int MyHitSpot, QString &ReturnMyURL);
    void HyperLinkSelected(int RTBSelStart, int RTBSelectedLength);
    void GoToWebsite(const QString &MyWebSite, QString *MyErrorData = nullptr);
    void GoToEmailClient(const QString &MyEmail, QString *MyErrorData = nullptr);

    // --- Keyword colouring ------------------------------------------------------------------
    QVariant ApplyVB6Syntax(kvrtb::Syntax_Behavior Syntax_Method = Syntax_All_Text,
                            kvrtb::Formatting_Options Syntax_Formatting = Retain_All_Formatting);
    QVariant ApplyVBNetSyntax(kvrtb::Syntax_Behavior Syntax_Method = Syntax_All_Text,
                              kvrtb::Formatting_Options Syntax_Formatting = Retain_All_Formatting);
    QVariant ApplyMySyntax(kvrtb::Syntax_Behavior Syntax_Method = Syntax_All_Text,
                           kvrtb::Formatting_Options Syntax_Formatting = Retain_All_Formatting);
    void Cancel_Syntax();
    bool CanCancelSyntax();

    // --- Spelling ---------------------------------------------------------------------------
    bool CanGetSpelling();
    bool DetectMisspellings(QStringList &MyReturnArray);
    bool DetectNotWords(int MyHitSpot);
    void GetPossibleSpellingCorrections(kvrtb::SPELL_CHECK_TYPE &SCData);
    /// The same suggestions as `GetPossibleSpellingCorrections`, the likeliest correction first.
    void GetRankedSpellingCorrections(kvrtb::SPELL_CHECK_TYPE &SCData);
    int SpellCheck(QStringList &ReturnArray);
    void PrepNonSpellCheckRTB(const QStringList &PassInArray);
    int GoToNextSpellError();
    int GoToPreviousSpellError();
    int FixSpelling(const QString &CorrectSpelling, bool HighlightFixes = false, uint HighLightColor = 0xFFFF);
    void FixSpelling2(const QString &CorrectSpelling);
    int UndoSpellCorrection();
    void ShowSpellCheck();

    // --- Thesaurus and word lists -----------------------------------------------------------
    bool GetWordsThatStartWith(QString &MyStartingLetters, QStringList &MyReturnArray, int ReturnLimit = 0);
    QString GetSynonyms(const QString &MYWORD1, QStringList &ASynArray);
    bool CanGetSynonym();
    QString GetRandomWord();
    /// Opens the "Random Word" dialog: a random dictionary word, its synonyms, "Another Word"
    /// and "Copy Selected Synonym"; returns when the user closes it.
    void ShowRandomWord();

    // --- Ruler ------------------------------------------------------------------------------
    // The strip above the editor (shown while `DisplayRuler` is true) measures from where an
    // unindented line starts to the right margin, the width of the text on a printed page.
    /// Draws the whole ruler again: scale, shading, and the caret paragraph's indents and tabs.
    void DrawRuler();
    /// Empties the strip until the next `DrawRuler` or the next caret move.
    void ClearRuler();
    /// Shows the tab stops of the caret's paragraph again.
    void SetRulerTabs();
    /// Redraws the shading outside the margins (after `PrinterMargin` changed); when the
    /// editor wraps to the ruler, it then wraps at the new margin.
    void ShadeRuler();

    // --- Printing ---------------------------------------------------------------------------
    // Pages have margins of `PrinterMargin` twips and carry `PageHeading`, page numbers, the
    // date and `PageCustomText` as `PageHeadingAlignment` and `PageNumbersAndDate` say.
    /// Shows the print dialog (all, a page range, or the selection when there is one) and
    /// prints. Returns the pages printed; 0 when cancelled (\a MyErr 32755) or when printing
    /// failed (\a MyErr 482).
    int CommonDialogPrint(short *MyErr = nullptr);
    /// Prints the selection, or the whole document when nothing is selected, without a dialog:
    /// on the default printer, or into the PDF file that a string \a vStartDoc names.
    void SelPrint(const QVariant &vStartDoc = QVariant());
    /// True when the system has a printer (printing into a PDF file needs none).
    bool PrinterInstalled();
    /// Shows the print preview of the document (`PrintPreview`), from which the user may print.
    void ShowPrintPreview();

    // --- Find and replace -------------------------------------------------------------------
    int Find2(const QString &TextToFind, kvrtb::FindDirectionQ FindDirection = FindNext,
              kvrtb::FindOptionsQ FindOptions = AllMatches, bool SkipURLEmail = false);
    bool FindVerify(const QString &FVTextToFind, kvrtb::FindOptionsQ FVFindOptions = AllMatches);
    void ShowFindReplace();
    void ExitFindRep();

    // --- Font and colour selection ----------------------------------------------------------
    // Every dialog is modal and changes nothing when cancelled; `MyErr` comes back 0, or 32755
    // when the user cancelled.
    /// The desktop's font dialog for the selection; what the user changed there is applied.
    void CommonDialogFontSelect(short *MyErr = nullptr);
    /// The font dialog for the selection: the control's own (`FontFrm`: family, style, size,
    /// strike-through, underline, colour, sample) while `UseCustomFontDialog` is on, else the
    /// desktop's.
    void ShowFontSelect();
    /// Asks for a default font and, unless cancelled, turns default-font mode on: text typed
    /// where nothing is selected takes that font until `EndDefaultFontMode`.
    void SetDefaultFontMode();
    void EndDefaultFontMode();
    /// The default font (the one chosen or shared last, else the editor's font).
    kvrtb::DEFUALT_FONT_DATA GetDefaultFontData();
    /// Takes another control's default font (from its `GetDefaultFontData`) and turns
    /// default-font mode on with it. A record without a font name is ignored.
    void ShareDefaultFontData(const kvrtb::DEFUALT_FONT_DATA &MyDefFontData);
    /// The colour dialog starting at \a MyOrgigColor: the colour chosen, or when cancelled
    /// (\a UserCancelQ true) \a MyOrgigColor if \a UseOrigONCancel, else 0.
    uint CommonDialogColor(bool &UserCancelQ, bool UseOrigONCancel = false, uint MyOrgigColor = 0,
                           short *MyErr = nullptr);
    /// Chooses `MyFontColor`, starting at \a MyOrgigColor (else `MyFontColor`); returns the
    /// colour chosen, or the starting colour when cancelled.
    uint CommonDialogFontColor(const QVariant &MyOrgigColor = QVariant(), short *MyErr = nullptr);
    /// Colours the selected text ("Font Color"), starting at \a CurrentColor (else the
    /// selection's colour); the choice also becomes `MyFontColor`. Returns the colour chosen,
    /// or the starting colour when cancelled.
    uint CommonDialogSelFontColor(const QVariant &CurrentColor = QVariant(), short *MyErr = nullptr);
    /// Highlights the selection ("Highlight Color"), starting at \a CurrentColor (else
    /// `MyHLColor`); the choice also becomes `MyHLColor`. Returns the colour chosen, or the
    /// starting colour when cancelled.
    uint CommonDialogSelColor(const QVariant &CurrentColor = QVariant(), short *MyErr = nullptr);

    // --- Word count, help and sound ---------------------------------------------------------
    /// Opens the "Word Count" dialog on this control and returns when the user closes it.
    void ShowWordCount();
    /// The counts the word-count dialog shows beside the token list, by name: "Words",
    /// "Characters", "CharactersNoSpaces", "Sentences", "Paragraphs", "Lines" and
    /// "ReadingSeconds" (at 230 words a minute) for the whole document, and the same keys
    /// prefixed "Selection" ("SelectionWords", ...) for the selected text alone, all 0 when
    /// nothing is selected. Words are words and numbers, each web or e-mail address one word.
    QVariantMap GetWordCountStatistics();
    /// Points `WhatsThisHelpFile` at the control's own help document. The editor answers What's
    /// This (Shift+F1) with a short description linking to `WhatsThisHelpFile`, or to the
    /// control's own document while it is empty.
    void PointToWhatsThisHelpFile();
    /// The control's help document for end users ("KvRTBHelp.html"): the installed copy, else a
    /// copy written from the library into the user's cache folder. With \a NoColonFilePath the
    /// plain path, else its address ("file:///..."). Empty when no copy could be had.
    QString GetHelpFile(bool NoColonFilePath = false);
    /// Opens the help file (`WhatsThisHelpFile`, else the control's own) with the desktop's
    /// viewer.
    void ShowHelp();

    // --- By-name forms of the members with optional out arguments ---------------------------
    // A host calling by name cannot pass a pointer; these overloads take every argument, the
    // optional ones as references (Q_ARG(bool &, ok) and the like), and write them back. They
    // behave exactly like the members above.
    void LoadFile(const QString &bstrFilename, kvrtb::QFileType vFileType, bool &TXTLinks, bool &OpenSuccess);
    QString CommonDialogFileOpen(QString &DefaultDirectory, QString &CustomFilter, bool &TextWLinks,
                                 short &ShowFilterIndex, short &FindexRet, short &MyErr, bool &OpenSuccess,
                                 QString &Title);
    QString CommonDialogFileSave(QString &DefaultDirectory, QString &FileNameSTR, bool &PromptOverWrite,
                                 QString &CustomFilter, short &ShowFilterIndex, short &FindexRet, short &MyErr,
                                 QString &Title, bool &SaveSuccess);
    void OpenDecryptedFile(QString &MyFileName, short &MyIndex, bool &TextWLinks, bool &OpenSuccess, short &MyErr);
    QString GetLineText(int &LineStart, int &LineLength);
    void GoToWebsite(const QString &MyWebSite, QString &MyErrorData);
    void GoToEmailClient(const QString &MyEmail, QString &MyErrorData);
    int CommonDialogPrint(short &MyErr);
    void CommonDialogFontSelect(short &MyErr);
    uint CommonDialogColor(bool &UserCancelQ, bool UseOrigONCancel, uint MyOrgigColor, short &MyErr);
    uint CommonDialogFontColor(const QVariant &MyOrgigColor, short &MyErr);
    uint CommonDialogSelFontColor(const QVariant &CurrentColor, short &MyErr);
    uint CommonDialogSelColor(const QVariant &CurrentColor, short &MyErr);

signals:
    void Click();
    void DblClick();
    void SelChange();
    void Change();
    /// A key went down in the editor, before the control's own shortcuts. `KeyCode` is the
    /// platform's virtual-key code (keypad keys their own, 96..111; a character without a key
    /// of its own, such as "é", 231), `Shift` 1 Shift, 2 Ctrl, 4 Alt. A directly connected
    /// handler may change both: 0 stops the key; another code makes the editor act on that
    /// key instead, translated back to a key through the same table (a code with no key there
    /// stops the key, as 0 does).
    void KeyDown(short &KeyCode, short &Shift);
    /// A character is about to be typed (13 for Enter, 9 for Tab); a handler may change it, 0
    /// drops it.
    void KeyPress(short &KeyAscii);
    /// A key went up; the control's typing follow-up comes after, then `Finish` and `Ready`.
    void KeyUp(short &KeyCode, short &Shift);
    /// Coordinates are twips from the editor's top-left corner.
    void MouseDown(short &Button, short &Shift, float &X, float &Y);
    void MouseMove(short &Button, short &Shift, float &X, float &Y);
    void MouseUp(short &Button, short &Shift, float &X, float &Y);
    void Begin();
    void Finish();
    void Ready();
    void UpdateParentMenu();
    void MenuFontColorClick();
    void MenuHLColorClick();
    void MenuVBSyntaxClickStart();
    void MenuVBSyntaxClickEnd();
    /// A persisted property was set, under its key (the host marks its form dirty).
    void PropertyChanged(const QString &PropertyName);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    class InputCommands;

    void initialise(PlatformServices &services);
    /// Sizes the ruler strip, the editor's frame and the progress bar to the control.
    void layoutChildren();
    PropertyTarget propertyTarget() const;
    QVariant propertyValue(const char *key) const;
    /// Applies a persisted property and tells the host (and its menus, for the keys they mirror).
    void setPropertyValue(const char *key, const QVariant &value);

    // ControlEvents: the areas raise the control's events through these.
    void click() override;
    void dblClick() override;
    void selChange() override;
    void change() override;
    void keyDown(short &keyCode, short &shift) override;
    void keyPress(short &keyAscii) override;
    void keyUp(short &keyCode, short &shift) override;
    void mouseDown(short &button, short &shift, float &x, float &y) override;
    void mouseMove(short &button, short &shift, float &x, float &y) override;
    void mouseUp(short &button, short &shift, float &x, float &y) override;
    void begin() override;
    void finish() override;
    void ready() override;
    void updateParentMenu() override;
    void menuFontColorClick() override;
    void menuHLColorClick() override;
    void menuVBSyntaxClickStart() override;
    void menuVBSyntaxClickEnd() override;
    void progressChanged(int percent) override;
    void propertyChanged(const QString &key) override;

    std::unique_ptr<PlatformServices> m_ownServices;
    QWidget *m_masterPic = nullptr;     // the ruler strip
    QWidget *m_rtbPicture = nullptr;    // the editor's frame
    QWidget *m_picture1 = nullptr;      // auxiliary drawing surface
    QProgressBar *m_progressBar = nullptr;
    std::unique_ptr<ControlCore> m_core;
    std::unique_ptr<InputCommands> m_inputCommands;
    mutable EditorSettings m_editorSettings;
    // Scratch space of word and pattern passes (hidden list and text boxes of the interface).
    QStringList m_list1;
    QString m_regexTxt;
    QString m_regexTxt2;
    QString m_regexTxt3;
};

} // namespace kvrtb
