// kvrtb-demo: a minimal host window around the editor surface, with a sample document.
// With --screenshot FILE it renders the window to a PNG and exits (for machines with no display).

#include "surface/qteditorsurface.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QMainWindow>
#include <QTimer>

#include <cstdio>

namespace {

const char *const kSample =
    "KvRichTextBox\n"
    "An embeddable rich-text editing control: RTF and plain-text documents, a built-in US-English "
    "dictionary, automatic web and e-mail links, keyword colouring, find and replace and its own "
    "undo.\n"
    "Type here, select text, and try the keyboard: Ctrl+B, Ctrl+I and Ctrl+U toggle bold, italic "
    "and underline.\n";

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

    QMainWindow window;
    window.setWindowTitle(QStringLiteral("KvRichTextBox demo"));
    kvrtb::QtEditorSurface surface(&window);
    window.setCentralWidget(surface.widget());
    surface.setText(QString::fromUtf8(kSample));
    kvrtb::CharFormat title;
    title.bold = true;
    title.fontSize = 16;
    title.color = 0x800000; // dark blue
    surface.setRangeCharFormat(0, 13, title);
    kvrtb::ParaFormat centred;
    centred.alignment = kvrtb::ParaAlignment::Center;
    surface.setSelection(0, 0);
    surface.setSelectionParaFormat(centred);
    surface.setModified(false);
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
