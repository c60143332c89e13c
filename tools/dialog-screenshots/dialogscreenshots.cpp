// Renders the control's own dialogs (word count, font, random word, find) to PNG files, for the
// documentation. Run under a real window system (e.g. Xvfb):
//   kvrtb-dialog-screenshots OUTPUT_FOLDER

#include "control/kvrtb.h"
#include "core/controlcore.h"
#include "core/recordingplatformservices.h"
#include "findreplace/findreplace.h"
#include "findreplace/findreplacefrm.h"
#include "fonts/fontfrm.h"
#include "spelling/randomfrm.h"
#include "wordcount/countwordsfrm.h"
#include "wordcount/wordcount.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QEventLoop>
#include <QLineEdit>
#include <QListView>
#include <QPainter>
#include <QPushButton>
#include <QTimer>

#include <cstdio>

using namespace kvrtb;

namespace {

/// Lets the window system map and paint what was shown.
void settle()
{
    QEventLoop loop;
    QTimer::singleShot(300, &loop, &QEventLoop::quit);
    loop.exec();
}

bool report(bool ok, const QString &path)
{
    std::printf("%s %s\n", ok ? "wrote" : "could not write", qPrintable(path));
    return ok;
}

bool save(QWidget &dialog, const QString &path)
{
    dialog.show();
    dialog.raise();
    settle();
    return report(dialog.grab().save(path), path);
}

/// The find dialog beside the editor, after a regular-expression search that highlights every
/// match, counts them and has wrapped around to the first.
bool saveFind(const QString &path)
{
    RecordingPlatformServices services;
    KvRTB control(services);
    control.resize(460, 300);
    control.setText(QStringLiteral(
        "Invoice 2024-05-01 was paid on 2024-05-20.\n"
        "Invoice 2024-06-01 is due on 2024-06-30; a reminder went out on 2024-06-15.\n"
        "Write to accounts@example.com with questions."));
    control.setSelStart(0);
    control.show();
    control.ShowFindReplace();
    FindReplaceFrm *dialog = control.core().findReplace().dialog();
    dialog->findChild<QCheckBox *>(QStringLiteral("RegexCheck"))->setChecked(true);
    dialog->findChild<QLineEdit *>(QStringLiteral("FindTxt"))->setText(QStringLiteral("(\\d{4})-(\\d\\d)-(\\d\\d)"));
    dialog->findChild<QLineEdit *>(QStringLiteral("ReplacementTxt"))->setText(QStringLiteral("\\3/\\2/\\1"));
    settle();
    for (int i = 0; i < 6; ++i)
        dialog->findChild<QPushButton *>(QStringLiteral("FindNextButton"))->click();
    settle();
    const QPixmap editor = control.grab();
    const QPixmap form = dialog->grab();
    QPixmap both(editor.width() + form.width() + 12, std::max(editor.height(), form.height()));
    both.fill(Qt::white);
    QPainter painter(&both);
    painter.drawPixmap(0, 0, editor);
    painter.drawPixmap(editor.width() + 12, 0, form);
    painter.end();
    return report(both.save(path), path);
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
    ok &= saveFind(out.filePath(QStringLiteral("find-dialog.png")));
    return ok ? 0 : 1;
}
