#include "demowindow.h"

#include "democipher.h"
#include "recentfiles.h"

#include "control/kvrtb.h"
#include "core/controlcore.h"
#include "core/editorsurface.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QStatusBar>
#include <QStyle>
#include <QTemporaryDir>
#include <QToolBar>

namespace {

const char kTitle[] = "KvRichTextBox demo";

const char *const kSample =
    "KvRichTextBox\n"
    "An embeddable rich-text editing control: RTF and plain-text documents, a built-in US-English "
    "dictionary, automatic web and e-mail links and its own undo.\n"
    "Type here and use the menus: File opens and saves RTF, text and enciphered documents; Edit, "
    "Format and Tools reach the control's commands. Addresses such as www.example.com or "
    "someone@example.com become links; click one to follow it, right-click for the control's menu.\n";

// Filters of the demo's own file dialogs: the common document types first, every file last.
const char kOpenFilters[] = "Documents (*.rtf *.txt *.mbdf);;Rich Text Format (*.rtf);;Text files (*.txt);;"
                            "Control documents (*.mbdf);;All files (*)";
const char kSaveFilters[] = "Rich Text Format (*.rtf);;Text file (*.txt);;Control document (*.mbdf)";

kvrtb::QFileType typeOfPath(const QString &path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == QLatin1String("txt"))
        return kvrtb::rtfText;
    if (suffix == QLatin1String("mbdf"))
        return kvrtb::rtfMBF;
    if (suffix == QLatin1String("rtf"))
        return kvrtb::rtfRTF;
    // Any other name: RTF when it starts as RTF, text otherwise.
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.read(5) == "{\\rtf" ? kvrtb::rtfRTF : kvrtb::rtfText;
}

// The extension of the save filter chosen, added when the typed name has none of its own.
QString withExtensionOf(const QString &path, const QString &filter)
{
    const int open = filter.indexOf(QLatin1String("*."));
    const QString extension = filter.mid(open + 1, filter.indexOf(QLatin1Char(')'), open) - open - 1);
    return QFileInfo(path).suffix().isEmpty() ? path + extension : path;
}

// Commands of the control's areas that this build does not have yet: their menu items are hidden
// rather than shown broken. Kept in step with the library as areas land.
const QStringList kNotInThisBuild{
    QStringLiteral("ShowSpellCheck")};

} // namespace

DemoWindow::DemoWindow()
{
    m_editor = new kvrtb::KvRTB(this);
    m_editor->setObjectName(QStringLiteral("KvRTB1"));
    m_editor->initProperties();
    m_editor->setAllowRTFSave(true);
    // Documents open as they are: the clean-up passes (which overwrite text between "<" and ">")
    // run only when the user asks for them in the View menu.
    m_editor->setRemoveUnUsableData(false);
    m_editor->Word_Wrap(true, true); // lines end where they will on the printed page
    m_editor->setPageNumbersAndDate(kvrtb::PrintBoth);
    setCentralWidget(m_editor);

    buildFileMenu();
    buildEditMenu();
    buildFormatMenu();
    buildToolsMenu();
    buildViewMenu();
    buildToolBar();
    QMenu *help = menuBar()->addMenu(QStringLiteral("&Help"));
    help->addAction(QStringLiteral("Editor &Help"), this, [this] { m_editor->ShowHelp(); });
    help->addAction(QStringLiteral("&About"), this, [this] {
        QMessageBox::about(this, QStringLiteral("About the demo"),
                           QStringLiteral("A small word processor built on the KvRTB control."));
    });

    m_position = new QLabel(this);
    statusBar()->addPermanentWidget(m_position);
    connect(m_editor, &kvrtb::KvRTB::SelChange, this, [this] {
        updateCaretPosition();
        updateCommandStates();
    });
    connect(m_editor, &kvrtb::KvRTB::Change, this, [this] { setWindowModified(m_editor->HasRTBChanged()); });
    connect(m_editor, &kvrtb::KvRTB::UpdateParentMenu, this, &DemoWindow::updateCommandStates);
    connect(m_editor, &kvrtb::KvRTB::Ready, this, &DemoWindow::updateCommandStates);
    setCurrentFile(QString());
}

QAction *DemoWindow::addCommand(QMenu *menu, const QString &text, const char *member, std::function<void()> run,
                                const QKeySequence &shortcut)
{
    QAction *action = menu->addAction(text, this, std::move(run));
    if (!shortcut.isEmpty())
        action->setShortcut(shortcut);
    action->setVisible(!kNotInThisBuild.contains(QLatin1String(member)));
    return action;
}

void DemoWindow::buildFileMenu()
{
    QMenu *file = menuBar()->addMenu(QStringLiteral("&File"));
    file->addAction(QStringLiteral("&New"), QKeySequence::New, this, [this] { newDocument(); });
    file->addAction(QStringLiteral("&Open..."), QKeySequence::Open, this, [this] { open(); });
    m_recent = new RecentFiles(file->addMenu(QStringLiteral("Open &Recent")), this);
    connect(m_recent, &RecentFiles::openRequested, this, [this](const QString &path) {
        if (maybeSave())
            openFile(path);
    });
    file->addAction(QStringLiteral("&Save"), QKeySequence::Save, this, [this] { save(); });
    file->addAction(QStringLiteral("Save &As..."), QKeySequence::SaveAs, this, [this] { saveAs(); });
    file->addAction(QStringLiteral("Save &Enciphered..."), this, [this] { saveEnciphered(); });
    file->addSeparator();
    addCommand(file, QStringLiteral("Print Pre&view"), "ShowPrintPreview", [this] { m_editor->ShowPrintPreview(); });
    addCommand(file, QStringLiteral("&Print..."), "CommonDialogPrint", [this] { m_editor->CommonDialogPrint(); },
               QKeySequence::Print);
    file->addSeparator();
    file->addAction(QStringLiteral("E&xit"), QKeySequence::Quit, this, [this] { close(); });
}

void DemoWindow::buildEditMenu()
{
    QMenu *edit = menuBar()->addMenu(QStringLiteral("&Edit"));
    m_undo = edit->addAction(QStringLiteral("&Undo"), QKeySequence::Undo, this, [this] {
        if (m_editor->CanUndo())
            m_editor->Undo();
        else
            m_editor->HyperUndo();
    });
    edit->addSeparator();
    m_cut = edit->addAction(QStringLiteral("Cu&t"), QKeySequence::Cut, this, [this] { m_editor->Cut(); });
    m_copy = edit->addAction(QStringLiteral("&Copy"), QKeySequence::Copy, this, [this] { m_editor->Copy(); });
    m_paste = edit->addAction(QStringLiteral("&Paste"), QKeySequence::Paste, this, [this] { m_editor->Paste(); });
    m_delete = edit->addAction(QStringLiteral("&Delete"), this, [this] { m_editor->Delete(); });
    edit->addAction(QStringLiteral("Select &All"), QKeySequence::SelectAll, this, [this] { m_editor->SelectAllText(); });
    edit->addSeparator();
    addCommand(edit, QStringLiteral("&Find and Replace..."), "ShowFindReplace", [this] { m_editor->ShowFindReplace(); },
               QKeySequence(Qt::CTRL | Qt::Key_H));
    edit->addAction(QStringLiteral("&Go to Line..."), QKeySequence(Qt::CTRL | Qt::Key_G), this, [this] { goToLine(); });
    edit->addSeparator();
    edit->addAction(QStringLiteral("Insert &Link..."), QKeySequence(Qt::CTRL | Qt::Key_K), this, [this] { insertLink(); });
}

void DemoWindow::buildFormatMenu()
{
    QMenu *format = menuBar()->addMenu(QStringLiteral("F&ormat"));
    addCommand(format, QStringLiteral("&Font..."), "ShowFontSelect", [this] {
        if (m_editor->UseCustomFontDialog())
            m_editor->ShowFontSelect();
        else
            m_editor->CommonDialogFontSelect();
    });
    addCommand(format, QStringLiteral("Font &Colour..."), "CommonDialogSelFontColor",
               [this] { m_editor->CommonDialogSelFontColor(m_editor->SelColor()); });
    // Ctrl+B/I/U are the control's own keys; the menu items show the state of the selection.
    m_bold = format->addAction(QStringLiteral("&Bold"), this, [this] { m_editor->setSelBold(!m_editor->SelBold().toBool()); });
    m_italic = format->addAction(QStringLiteral("&Italic"), this,
                                 [this] { m_editor->setSelItalic(!m_editor->SelItalic().toBool()); });
    m_underline = format->addAction(QStringLiteral("&Underline"), this,
                                    [this] { m_editor->setSelUnderline(!m_editor->SelUnderline().toBool()); });
    for (QAction *action : {m_bold, m_italic, m_underline})
        action->setCheckable(true);
    format->addSeparator();
    QMenu *align = format->addMenu(QStringLiteral("&Alignment"));
    align->addAction(QStringLiteral("&Left"), this, [this] { bool on = true; m_editor->AlignLeft(on); });
    align->addAction(QStringLiteral("&Centre"), this, [this] { bool on = true; m_editor->AlignCenter(on); });
    align->addAction(QStringLiteral("&Right"), this, [this] { bool on = true; m_editor->AlignRight(on); });
    QMenu *lists = format->addMenu(QStringLiteral("&List"));
    const QList<QPair<QString, kvrtb::ListNN>> listKinds{
        {QStringLiteral("&None"), kvrtb::ListNoneQ},
        {QStringLiteral("&Bullets"), kvrtb::ListBulletQ},
        {QStringLiteral("N&umbers"), kvrtb::ListNumberQ},
        {QStringLiteral("&Lower-case letters"), kvrtb::ListNumberAsLCLetterQ},
        {QStringLiteral("U&pper-case letters"), kvrtb::ListNumberAsUCLetterQ},
        {QStringLiteral("L&ower-case roman"), kvrtb::ListNumberAsLCRomanQ},
        {QStringLiteral("Upp&er-case roman"), kvrtb::ListNumberAsUCRomanQ}};
    for (const auto &kind : listKinds)
        lists->addAction(kind.first, this, [this, method = kind.second] { m_editor->ListStyle(method); });
    QMenu *spacing = format->addMenu(QStringLiteral("Line &Spacing"));
    spacing->addAction(QStringLiteral("&Single"), this, [this] { m_editor->LineSpacing(kvrtb::LineSpaceSingleQ); });
    spacing->addAction(QStringLiteral("&1.5 Lines"), this, [this] { m_editor->LineSpacing(kvrtb::LineSpace1pt5Q); });
    spacing->addAction(QStringLiteral("&Double"), this, [this] { m_editor->LineSpacing(kvrtb::LineSpaceDoubleQ); });
    QMenu *script = format->addMenu(QStringLiteral("Scri&pt"));
    script->addAction(QStringLiteral("&Normal"), this, [this] { m_editor->ScriptStyle(kvrtb::NoScriptQ); });
    script->addAction(QStringLiteral("&Superscript"), this, [this] { m_editor->ScriptStyle(kvrtb::SuperScriptQ); });
    script->addAction(QStringLiteral("Su&bscript"), this, [this] { m_editor->ScriptStyle(kvrtb::SubScriptQ); });
    format->addSeparator();
    format->addAction(QStringLiteral("&Highlight"), this, [this] { m_editor->HighLightText(m_editor->MyHLColor()); });
    format->addAction(QStringLiteral("&Remove Highlight"), this,
                      [this] { m_editor->UnHighLightText(kvrtb::Unhighlight_Selected_Text); });
    QMenu *changeCase = format->addMenu(QStringLiteral("Change Cas&e"));
    changeCase->addAction(QStringLiteral("&UPPER CASE"), this, [this] { m_editor->TovrinUpperCase(); });
    changeCase->addAction(QStringLiteral("&lower case"), this, [this] { m_editor->TovrinLowerCase(); });
    changeCase->addAction(QStringLiteral("&Sentence case"), this, [this] { m_editor->TovrinSentenceCase(); });
    changeCase->addAction(QStringLiteral("&Title Case"), this, [this] { m_editor->TovrinTitleCase(); });
    changeCase->addAction(QStringLiteral("t&OGGLE cASE"), this, [this] { m_editor->TovrinToggleCase(); });
}

void DemoWindow::buildToolsMenu()
{
    QMenu *tools = menuBar()->addMenu(QStringLiteral("&Tools"));
    addCommand(tools, QStringLiteral("&Spelling..."), "ShowSpellCheck", [this] { m_editor->ShowSpellCheck(); },
               QKeySequence(Qt::Key_F7));
    addCommand(tools, QStringLiteral("&Word Count..."), "ShowWordCount", [this] { m_editor->ShowWordCount(); });
    addCommand(tools, QStringLiteral("&Random Word..."), "ShowRandomWord", [this] { m_editor->ShowRandomWord(); });
    tools->addSeparator();
    tools->addAction(QStringLiteral("&Mark Links"), this, [this] { m_editor->HyperLinkDocument(); });
    tools->addAction(QStringLiteral("Remove Lin&ks"), this, [this] { m_editor->UnHyperLinkDocument(); });
    tools->addSeparator();
    QMenu *colour = tools->addMenu(QStringLiteral("&Colour Keywords"));
    addCommand(colour, QStringLiteral("&VB6"), "ApplyVB6Syntax",
               [this] { m_editor->ApplyVB6Syntax(kvrtb::Syntax_All_Text, kvrtb::Retain_All_Formatting); });
    addCommand(colour, QStringLiteral("VB.&NET"), "ApplyVBNetSyntax",
               [this] { m_editor->ApplyVBNetSyntax(kvrtb::Syntax_All_Text, kvrtb::Retain_All_Formatting); });
    addCommand(colour, QStringLiteral("&My Keywords"), "ApplyMySyntax",
               [this] { m_editor->ApplyMySyntax(kvrtb::Syntax_All_Text, kvrtb::Retain_All_Formatting); });
    colour->addSeparator();
    addCommand(colour, QStringLiteral("&Stop Colouring"), "Cancel_Syntax", [this] { m_editor->Cancel_Syntax(); },
               QKeySequence(Qt::Key_Escape));
}

void DemoWindow::buildViewMenu()
{
    QMenu *view = menuBar()->addMenu(QStringLiteral("&View"));
    m_ruler = addCommand(view, QStringLiteral("&Ruler"), "DrawRuler", [this] { m_editor->setDisplayRuler(m_ruler->isChecked()); });
    m_wrap = view->addAction(QStringLiteral("&Word Wrap"), this, [this] { m_editor->Word_Wrap(m_wrap->isChecked(), true); });
    m_links = view->addAction(QStringLiteral("Detect &Links While Typing"), this,
                              [this] { m_editor->setDetectHyperLinks(m_links->isChecked()); });
    m_cleanUp = view->addAction(QStringLiteral("&Clean Up Opened Documents"), this,
                                [this] { m_editor->setRemoveUnUsableData(m_cleanUp->isChecked()); });
    m_cleanUp->setToolTip(QStringLiteral("Removes pictures and text between < and > from documents as they open"));
    for (QAction *action : {m_ruler, m_wrap, m_links, m_cleanUp})
        action->setCheckable(true);
}

void DemoWindow::buildToolBar()
{
    QToolBar *bar = addToolBar(QStringLiteral("Main"));
    bar->setObjectName(QStringLiteral("mainToolBar"));
    const auto icon = [this](QStyle::StandardPixmap pixmap) { return style()->standardIcon(pixmap); };
    bar->addAction(icon(QStyle::SP_FileIcon), QStringLiteral("New"), this, [this] { newDocument(); });
    bar->addAction(icon(QStyle::SP_DialogOpenButton), QStringLiteral("Open"), this, [this] { open(); });
    bar->addAction(icon(QStyle::SP_DialogSaveButton), QStringLiteral("Save"), this, [this] { save(); });
    bar->addSeparator();
    bar->addAction(m_undo);
    bar->addSeparator();
    bar->addAction(m_bold);
    bar->addAction(m_italic);
    bar->addAction(m_underline);
}

void DemoWindow::showSample()
{
    m_editor->setText(QString::fromUtf8(kSample));
    m_editor->setSelStart(0);
    m_editor->setSelLength(13);
    m_editor->setSelBold(true);
    m_editor->setSelFontSize(16);
    m_editor->setSelColor(0x800000u); // dark blue
    bool centre = true;
    m_editor->AlignCenter(centre);
    // The second paragraph indented, its following lines further in, with two tab stops: the
    // ruler shows them while the caret is there.
    m_editor->setSelStart(20);
    kvrtb::ParaFormat indented;
    indented.leftIndent = 720;
    indented.hangingIndent = 720;
    indented.rightIndent = 1440;
    indented.tabStops = QList<int>{2880, 4320};
    m_editor->RichTextBox1().setSelectionParaFormat(indented);
    m_editor->HyperLinkDocument();
    m_editor->setSelStart(20);
    m_editor->core().refreshRuler();
    m_editor->setPageHeading(QStringLiteral("KvRichTextBox demo"));
    m_editor->SetRTBChanged(false);
    setWindowModified(false);
}

bool DemoWindow::maybeSave()
{
    if (!m_editor->HasRTBChanged())
        return true;
    const auto answer = QMessageBox::warning(
        this, QString::fromLatin1(kTitle),
        QStringLiteral("The document has been changed.\nDo you want to save your changes?"),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel);
    if (answer == QMessageBox::Save)
        return save();
    return answer == QMessageBox::Discard;
}

void DemoWindow::closeEvent(QCloseEvent *event)
{
    if (maybeSave())
        event->accept();
    else
        event->ignore();
}

void DemoWindow::newDocument()
{
    if (!maybeSave())
        return;
    m_editor->setText(QString());
    m_editor->SetRTBChanged(false);
    setCurrentFile(QString());
}

void DemoWindow::open()
{
    if (!maybeSave())
        return;
    const QString path = QFileDialog::getOpenFileName(this, QStringLiteral("Open"), QFileInfo(m_path).path(),
                                                      QString::fromLatin1(kOpenFilters));
    if (!path.isEmpty())
        openFile(path);
}

bool DemoWindow::openFile(const QString &path)
{
    bool opened = false;
    bool links = m_editor->DetectHyperLinks();
    QString name = path;
    if (m_editor->IsFileEncrypted(name)) {
        // The control recognises an enciphered document and leaves deciphering to the host: the
        // demo deciphers into a temporary file and hands that to the control.
        QByteArray plain;
        QString error;
        QTemporaryDir temporary;
        if (!democipher::readEnciphered(path, &plain, &error)) {
            QMessageBox::warning(this, QString::fromLatin1(kTitle), QStringLiteral("Cannot open %1: %2").arg(path, error));
            return false;
        }
        QString plainPath = temporary.filePath(QStringLiteral("document.mbdf"));
        QFile out(plainPath);
        if (!out.open(QIODevice::WriteOnly) || out.write(plain) != plain.size())
            return false;
        out.close();
        short index = 1; // a control document
        m_editor->OpenDecryptedFile(plainPath, index, &links, &opened);
    } else {
        m_editor->LoadFile(path, typeOfPath(path), &links, &opened);
    }
    if (opened) {
        setCurrentFile(path);
        m_recent->add(path);
    }
    return opened;
}

bool DemoWindow::save()
{
    if (m_path.isEmpty() || m_editor->IsFileEncrypted(m_path))
        return saveAs();
    if (!m_editor->SaveFile(m_path, typeOfPath(m_path)))
        return false;
    setCurrentFile(m_path);
    return true;
}

bool DemoWindow::saveAs()
{
    QString filter;
    QString path = QFileDialog::getSaveFileName(this, QStringLiteral("Save As"), m_path,
                                                QString::fromLatin1(kSaveFilters), &filter);
    if (path.isEmpty())
        return false;
    path = withExtensionOf(path, filter);
    if (!m_editor->SaveFile(path, typeOfPath(path)))
        return false;
    setCurrentFile(path);
    m_recent->add(path);
    return true;
}

void DemoWindow::saveEnciphered()
{
    QString path = QFileDialog::getSaveFileName(this, QStringLiteral("Save Enciphered"), QString(),
                                                QStringLiteral("Enciphered control document (*.mbdf)"));
    if (path.isEmpty())
        return;
    path = withExtensionOf(path, QStringLiteral("(*.mbdf)"));
    // The control writes the plain document; the host enciphers it.
    QTemporaryDir temporary;
    const QString plainPath = temporary.filePath(QStringLiteral("document.mbdf"));
    QFile plain(plainPath);
    QString error;
    if (!m_editor->SaveFile(plainPath, kvrtb::rtfMBF) || !plain.open(QIODevice::ReadOnly)
        || !democipher::writeEnciphered(path, plain.readAll(), &error)) {
        QMessageBox::warning(this, QString::fromLatin1(kTitle), QStringLiteral("Cannot save %1 %2").arg(path, error));
        return;
    }
    m_editor->SetRTBChanged(false);
    setCurrentFile(path);
    m_recent->add(path);
}

void DemoWindow::insertLink()
{
    bool ok = false;
    const QString address = QInputDialog::getText(this, QStringLiteral("Insert Link"),
                                                  QStringLiteral("Web or e-mail address:"), QLineEdit::Normal,
                                                  QStringLiteral("https://"), &ok).trimmed();
    if (!ok || address.isEmpty())
        return;
    const int start = m_editor->SelStart();
    m_editor->setSelText(address);
    m_editor->HyperLinkSelected(start, int(address.size()));
    m_editor->setSelStart(start + int(address.size()));
}

void DemoWindow::goToLine()
{
    bool ok = false;
    const int line = QInputDialog::getInt(this, QStringLiteral("Go to Line"), QStringLiteral("Line number:"),
                                          m_editor->CurrentLine(), 1, qMax(1, m_editor->TotalLineCount()), 1, &ok);
    if (ok)
        m_editor->GoToLine(line - 1); // GoToLine counts from 0
}

void DemoWindow::setCurrentFile(const QString &path)
{
    m_path = path;
    const QString name = path.isEmpty() ? QStringLiteral("Untitled") : QFileInfo(path).fileName();
    setWindowTitle(QStringLiteral("%1[*] - %2").arg(name, QString::fromLatin1(kTitle)));
    setWindowModified(false);
    updateCommandStates();
    updateCaretPosition();
}

void DemoWindow::updateCommandStates()
{
    m_undo->setEnabled(m_editor->CanUndo() || m_editor->GetCanUndoSpecial());
    m_cut->setEnabled(m_editor->CanCut());
    m_copy->setEnabled(m_editor->CanCopy());
    m_paste->setEnabled(m_editor->CanPaste());
    m_delete->setEnabled(m_editor->CanDelete());
    m_bold->setChecked(m_editor->SelBold().toBool());
    m_italic->setChecked(m_editor->SelItalic().toBool());
    m_underline->setChecked(m_editor->SelUnderline().toBool());
    m_ruler->setChecked(m_editor->DisplayRuler());
    m_wrap->setChecked(m_editor->MyWrapStyle() != kvrtb::NoWrap);
    m_links->setChecked(m_editor->DetectHyperLinks());
    m_cleanUp->setChecked(m_editor->RemoveUnUsableData());
}

void DemoWindow::updateCaretPosition()
{
    m_position->setText(QStringLiteral("Line %1, Column %2").arg(m_editor->CurrentLine()).arg(m_editor->TovrinColumn()));
}
