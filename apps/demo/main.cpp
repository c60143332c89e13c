// kvrtb-demo: a host window with one KvRTB control, a sample document and a File menu.
// With --screenshot FILE it renders the window to a PNG and exits (for machines with no display);
// --preview-screenshot FILE does the same with the print preview of the document.

#include "core/editorsurface.h"
#include "control/kvrtb.h"
#include "core/controlcore.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFile>
#include <QFileInfo>
#include <QMainWindow>
#include <QMenuBar>
#include <QTimer>

#include <cstdio>

namespace {

const char *const kSample =
    "KvRichTextBox\n"
    "An embeddable rich-text editing control: RTF and plain-text documents, a built-in US-English "
    "dictionary, automatic web and e-mail links, keyword colouring, find and replace and its own "
    "undo.\n"
    "Type here, select text, and use File > Open and File > Save As for RTF and text files. "
    "Edit > Mark Links turns addresses such as www.example.com or someone@example.com into links.\n";

/// The demo's window: the control fills it; the File menu opens and saves documents.
class DemoWindow : public QMainWindow {
public:
    DemoWindow()
    {
        setWindowTitle(QStringLiteral("KvRichTextBox demo"));
        m_editor = new kvrtb::KvRTB(this);
        m_editor->setObjectName(QStringLiteral("KvRTB1"));
        m_editor->initProperties();
        m_editor->setAllowRTFSave(true);  // offer RTF beside text in the save dialog
        m_editor->Word_Wrap(true, true);  // lines end where they will on the printed page
        setCentralWidget(m_editor);

        QMenu *file = menuBar()->addMenu(QStringLiteral("&File"));
        file->addAction(QStringLiteral("&Open..."), QKeySequence::Open, this, [this] { open(); });
        file->addAction(QStringLiteral("&Save As..."), QKeySequence::Save, this, [this] { save(); });
        file->addSeparator();
        file->addAction(QStringLiteral("&Print..."), QKeySequence::Print, this, [this] { m_editor->CommonDialogPrint(); });
        file->addAction(QStringLiteral("Print Pre&view..."), this, [this] { m_editor->ShowPrintPreview(); });
        file->addSeparator();
        file->addAction(QStringLiteral("E&xit"), QKeySequence::Quit, this, [this] { close(); });

        QMenu *edit = menuBar()->addMenu(QStringLiteral("&Edit"));
        edit->addAction(QStringLiteral("&Undo Last Pass"), this, [this] { m_editor->HyperUndo(); });
        edit->addAction(QStringLiteral("Select &All"), this, [this] { m_editor->SelectAllText(); });
        edit->addSeparator();
        edit->addAction(QStringLiteral("Mark &Links"), this, [this] { m_editor->HyperLinkDocument(); });
        edit->addAction(QStringLiteral("&Highlight"), this, [this] { m_editor->HighLightText(0xFFFF); });
        edit->addAction(QStringLiteral("&Center"), this, [this] {
            bool apply = true;
            m_editor->AlignCenter(apply);
        });
        edit->addAction(QStringLiteral("&Numbered List"), this, [this] { m_editor->ListStyle(kvrtb::ListNumberQ); });
        edit->addAction(QStringLiteral("&Title Case"), this, [this] { m_editor->TovrinTitleCase(); });

        showSample();
    }

private:
    void showSample()
    {
        m_editor->setText(QString::fromUtf8(kSample));
        // The title line, through the control's selection properties.
        m_editor->setSelStart(0);
        m_editor->setSelLength(13);
        m_editor->setSelBold(true);
        m_editor->setSelFontSize(16);
        m_editor->setSelColor(0x800000u); // dark blue
        kvrtb::ParaFormat centred;
        centred.alignment = kvrtb::ParaAlignment::Center;
        m_editor->RichTextBox1().setSelectionParaFormat(centred);
        // The second paragraph indented, with a hanging line start and a tab stop, to show
        // on the ruler when the caret is in it.
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
        m_editor->setPageNumbersAndDate(kvrtb::PrintBoth);
        m_editor->SetRTBChanged(false);
    }

    // The control's own file dialogs and document handling: the open dialog loads the chosen
    // file (RTF, text with links, or a control document), the save dialog writes it and asks
    // before formatting would be lost.
    void open()
    {
        bool opened = false;
        bool links = true;
        const QString path = m_editor->CommonDialogFileOpen(nullptr, nullptr, &links, nullptr, nullptr, nullptr, &opened);
        if (opened)
            setWindowTitle(QStringLiteral("%1 - KvRichTextBox demo").arg(QFileInfo(path).fileName()));
    }

public:
    kvrtb::KvRTB *editor() const { return m_editor; }

    /// Loads a file by its name: RTF when it starts as RTF, text (with links) otherwise.
    void openFile(const QString &path)
    {
        QFile file(path);
        const bool rtf = file.open(QIODevice::ReadOnly) && file.read(5) == "{\\rtf";
        file.close();
        bool links = true;
        bool opened = false;
        m_editor->LoadFile(path, rtf ? kvrtb::rtfRTF : kvrtb::rtfText, &links, &opened);
        if (opened)
            setWindowTitle(QStringLiteral("%1 - KvRichTextBox demo").arg(QFileInfo(path).fileName()));
    }

private:
    void save()
    {
        bool saved = false;
        const QString path = m_editor->CommonDialogFileSave(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                                            nullptr, nullptr, &saved);
        if (saved)
            setWindowTitle(QStringLiteral("%1 - KvRichTextBox demo").arg(QFileInfo(path).fileName()));
    }

    kvrtb::KvRTB *m_editor = nullptr;
};

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("kvrtb-demo"));
    QCommandLineParser parser;
    parser.addHelpOption();
    QCommandLineOption screenshot(QStringLiteral("screenshot"), QStringLiteral("Render the window to a PNG file and exit."),
                                  QStringLiteral("file"));
    parser.addOption(screenshot);
    QCommandLineOption previewShot(QStringLiteral("preview-screenshot"),
                                   QStringLiteral("Render the print preview to a PNG file and exit."), QStringLiteral("file"));
    parser.addOption(previewShot);
    parser.addPositionalArgument(QStringLiteral("file"), QStringLiteral("An RTF or text file to open instead of the sample."),
                                 QStringLiteral("[file]"));
    parser.process(app);

    DemoWindow window;
    window.resize(720, 420);
    if (!parser.positionalArguments().isEmpty())
        window.openFile(parser.positionalArguments().first());
    window.show();

    if (parser.isSet(screenshot)) {
        const QString file = parser.value(screenshot);
        QTimer::singleShot(200, &window, [&window, file] {
            const bool saved = window.grab().save(file);
            std::fprintf(saved ? stdout : stderr, saved ? "Saved a picture of the window to %s\n"
                                                        : "Could not save a picture to %s\n",
                         qPrintable(file));
            QApplication::exit(saved ? 0 : 1);
        });
    }
    if (parser.isSet(previewShot)) {
        const QString file = parser.value(previewShot);
        // The preview runs its own event loop; the picture is taken from inside it.
        QTimer::singleShot(200, &window, [&window, file] {
            QTimer::singleShot(800, &window, [file] {
                QWidget *preview = nullptr;
                for (QWidget *top : QApplication::topLevelWidgets()) {
                    if (top->objectName() == QLatin1String("PrintPreview") && top->isVisible())
                        preview = top;
                }
                if (!preview) {
                    std::fprintf(stderr, "The print preview did not open\n");
                    QApplication::exit(1);
                    return;
                }
                preview->resize(760, 900);
                QTimer::singleShot(800, preview, [preview, file] {
                    const bool saved = preview->grab().save(file);
                    preview->close();
                    std::fprintf(saved ? stdout : stderr, saved ? "Saved a picture of the print preview to %s\n"
                                                                : "Could not save a picture to %s\n",
                                 qPrintable(file));
                    QApplication::exit(saved ? 0 : 1);
                });
            });
            window.editor()->ShowPrintPreview();
        });
    }
    return app.exec();
}
