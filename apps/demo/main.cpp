// kvrtb-demo: a host window with one KvRTB control, a sample document and a File menu.
// With --screenshot FILE it renders the window to a PNG and exits (for machines with no display).

#include "control/editorsurface.h"
#include "control/kvrtb.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QMainWindow>
#include <QMenuBar>
#include <QMessageBox>
#include <QTimer>

#include <cstdio>

namespace {

const char *const kSample =
    "KvRichTextBox\n"
    "An embeddable rich-text editing control: RTF and plain-text documents, a built-in US-English "
    "dictionary, automatic web and e-mail links, keyword colouring, find and replace and its own "
    "undo.\n"
    "Type here, select text, and use File > Open and File > Save for RTF and text files.\n";

const QString kFilter = QStringLiteral("Rich Text Format (*.rtf);;Text (*.txt);;All files (*)");

/// The demo's window: the control fills it; the File menu opens and saves documents.
class DemoWindow : public QMainWindow {
public:
    DemoWindow()
    {
        setWindowTitle(QStringLiteral("KvRichTextBox demo"));
        m_editor = new kvrtb::KvRTB(this);
        m_editor->setObjectName(QStringLiteral("KvRTB1"));
        m_editor->initProperties();
        m_editor->setDisplayRuler(false); // no ruler in this build yet
        setCentralWidget(m_editor);

        QMenu *file = menuBar()->addMenu(QStringLiteral("&File"));
        file->addAction(QStringLiteral("&Open..."), QKeySequence::Open, this, [this] { open(); });
        file->addAction(QStringLiteral("&Save As..."), QKeySequence::Save, this, [this] { save(); });
        file->addSeparator();
        file->addAction(QStringLiteral("E&xit"), QKeySequence::Quit, this, [this] { close(); });

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
        m_editor->setSelStart(0);
        bool unchanged = false;
        m_editor->SetRTBChanged(&unchanged);
    }

    void open()
    {
        const QString path = QFileDialog::getOpenFileName(this, QStringLiteral("Open"), QString(), kFilter);
        if (path.isEmpty())
            return;
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            QMessageBox::warning(this, QStringLiteral("Open"),
                                 QStringLiteral("Could not open %1: %2").arg(path, file.errorString()));
            return;
        }
        const QByteArray bytes = file.readAll();
        if (bytes.trimmed().startsWith("{\\rtf")) {
            QString error;
            if (!m_editor->RichTextBox1().setRtf(QString::fromLatin1(bytes), &error)) {
                QMessageBox::warning(this, QStringLiteral("Open"),
                                     QStringLiteral("%1 could not be read as RTF: %2").arg(path, error));
                return;
            }
        } else {
            m_editor->setText(QString::fromUtf8(bytes));
        }
        bool unchanged = false;
        m_editor->SetRTBChanged(&unchanged);
        setWindowTitle(QStringLiteral("%1 - KvRichTextBox demo").arg(QFileInfo(path).fileName()));
    }

    void save()
    {
        QString selected;
        const QString path = QFileDialog::getSaveFileName(this, QStringLiteral("Save As"), QString(), kFilter, &selected);
        if (path.isEmpty())
            return;
        const bool asText = path.endsWith(QStringLiteral(".txt"), Qt::CaseInsensitive) ||
                            selected.startsWith(QStringLiteral("Text"));
        // The RTF string holds one byte per character; text is written as UTF-8.
        const QByteArray bytes = asText ? m_editor->GetTextString().toUtf8() : m_editor->GetRTFString().toLatin1();
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size()) {
            QMessageBox::warning(this, QStringLiteral("Save As"),
                                 QStringLiteral("Could not save %1: %2").arg(path, file.errorString()));
            return;
        }
        bool unchanged = false;
        m_editor->SetRTBChanged(&unchanged);
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
    parser.process(app);

    DemoWindow window;
    window.resize(720, 420);
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
    return app.exec();
}
