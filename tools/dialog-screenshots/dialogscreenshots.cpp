// Renders the control's own dialogs (word count, font, random word) to PNG files, for the
// documentation. Run under a real window system (e.g. Xvfb):
//   kvrtb-dialog-screenshots OUTPUT_FOLDER

#include "control/kvrtb.h"
#include "core/controlcore.h"
#include "core/recordingplatformservices.h"
#include "fonts/fontfrm.h"
#include "spelling/randomfrm.h"
#include "wordcount/countwordsfrm.h"
#include "wordcount/wordcount.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QListView>
#include <QTimer>

#include <cstdio>

using namespace kvrtb;

namespace {

bool save(QWidget &dialog, const QString &path)
{
    dialog.show();
    dialog.raise();
    // Let the window system map and paint the window.
    QEventLoop loop;
    QTimer::singleShot(300, &loop, &QEventLoop::quit);
    loop.exec();
    const bool ok = dialog.grab().save(path);
    std::printf("%s %s\n", ok ? "wrote" : "could not write", qPrintable(path));
    return ok;
}

/// Random numbers from a fixed list, so that the picture shows the same word every time.
WordLists::RandomSource fixedNumbers()
{
    static const double numbers[] = {0.09, 0.412, 0.77, 0.23, 0.58, 0.91, 0.35, 0.64};
    auto next = std::make_shared<int>(0);
    return [next] { return numbers[(*next)++ % 8]; };
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "Usage: kvrtb-dialog-screenshots OUTPUT_FOLDER\n");
        return 2;
    }
    const QDir out(QString::fromLocal8Bit(argv[1]));
    QDir().mkpath(out.path());
    bool ok = true;

    RecordingPlatformServices services;
    KvRTB control(services);
    control.setText(QStringLiteral(
        "The well-known café opens at 10:30. It served 1,000 guests on days 3-4 of the fair!\n"
        "Write to bookings@example.com or see www.example.com/menu for the menu.\n"
        "Prices start at 4.50 and the garden seats 40 people."));
    control.setSelStart(0);
    control.setSelLength(36);
    {
        WordCount area(control.core());
        CountWordsFrm dialog(area);
        ok &= save(dialog, out.filePath(QStringLiteral("word-count-dialog.png")));
    }
    {
        FontChoice choice;
        choice.family = QStringLiteral("Liberation Serif");
        choice.bold = true;
        choice.italic = true;
        choice.size = 16;
        choice.underline = true;
        choice.colour = 0x8B3A1E; // a dark blue (0x00BBGGRR)
        FontFrm dialog(services, choice);
        ok &= save(dialog, out.filePath(QStringLiteral("font-dialog.png")));
    }
    {
        const WordLists::RandomSource random = fixedNumbers();
        RandomFrm dialog([random] { return RandomWordEntry::pick(random); });
        ok &= save(dialog, out.filePath(QStringLiteral("random-word-dialog.png")));
    }
    return ok ? 0 : 1;
}
