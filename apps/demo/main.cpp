// kvrtb-demo: a small word processor over one KvRTB control.
// With --screenshot FILE it renders the window to a PNG and exits (for machines with no display);
// --preview-screenshot FILE does the same with the print preview of the document.

#include "demowindow.h"

#include "control/kvrtb.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QTimer>

#include <cstdio>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("KvRichTextBox"));
    QApplication::setApplicationName(QStringLiteral("kvrtb-demo"));
    QCommandLineParser parser;
    parser.addHelpOption();
    QCommandLineOption screenshot(QStringLiteral("screenshot"), QStringLiteral("Render the window to a PNG file and exit."),
                                  QStringLiteral("file"));
    parser.addOption(screenshot);
    QCommandLineOption previewShot(QStringLiteral("preview-screenshot"),
                                   QStringLiteral("Render the print preview to a PNG file and exit."), QStringLiteral("file"));
    parser.addOption(previewShot);
    parser.addPositionalArgument(QStringLiteral("file"), QStringLiteral("An RTF, text or control document to open instead of the sample."),
                                 QStringLiteral("[file]"));
    parser.process(app);

    DemoWindow window;
    window.resize(820, 520);
    if (parser.positionalArguments().isEmpty())
        window.showSample();
    else if (!window.openFile(parser.positionalArguments().first()))
        window.showSample();
    window.show();

    if (parser.isSet(screenshot)) {
        const QString file = parser.value(screenshot);
        QTimer::singleShot(300, &window, [&window, file] {
            const bool saved = window.grab().save(file);
            std::fprintf(saved ? stdout : stderr, saved ? "Saved a picture of the window to %s\n"
                                                        : "Could not save a picture to %s\n",
                         qPrintable(file));
            // The sample is not the user's work: leave without asking to save it.
            window.editor()->SetRTBChanged(false);
            QApplication::exit(saved ? 0 : 1);
        });
    }
    if (parser.isSet(previewShot)) {
        const QString file = parser.value(previewShot);
        // The preview runs its own event loop; the picture is taken from inside it.
        QTimer::singleShot(300, &window, [&window, file] {
            QTimer::singleShot(800, &window, [&window, file] {
                QWidget *preview = nullptr;
                for (QWidget *top : QApplication::topLevelWidgets()) {
                    if (top->objectName() == QLatin1String("PrintPreview") && top->isVisible())
                        preview = top;
                }
                window.editor()->SetRTBChanged(false);
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
