// A host window with one KvRTB: it opens the file named on its command line, shows the line of
// the caret in the window title, and with --print-text writes the document's text to standard
// output and quits (what the package test runs).

#include <KvRichTextBox/kvrtb.h>

#include <QApplication>
#include <QMainWindow>
#include <QTextStream>
#include <QTimer>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QStringList args = app.arguments().mid(1);
    const bool printText = args.removeAll(QStringLiteral("--print-text")) > 0;

    QMainWindow window;
    auto *editor = new kvrtb::KvRTB(&window);
    editor->setObjectName(QStringLiteral("Notes"));
    editor->initProperties();
    window.setCentralWidget(editor);
    window.resize(640, 480);

    QObject::connect(editor, &kvrtb::KvRTB::SelChange, &window, [&window, editor] {
        window.setWindowTitle(QStringLiteral("Notes - line %1").arg(editor->CurrentLine()));
    });

    if (!args.isEmpty()) {
        bool opened = false;
        const QString name = args.first();
        const auto type = name.endsWith(QStringLiteral(".rtf"), Qt::CaseInsensitive) ? kvrtb::rtfRTF
                                                                                      : kvrtb::rtfText;
        editor->LoadFile(name, type, nullptr, &opened);
        if (!opened)
            return 1;
    }
    if (printText) {
        QTextStream(stdout) << editor->Text() << '\n';
        return 0;
    }
    window.show();
    return app.exec();
}
