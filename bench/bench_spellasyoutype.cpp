// Typing into a shown control holding about 1 MB of prose with some misspelt words, with
// spelling as you type off and then on: the median and 95th percentile per keystroke, where a
// keystroke is the key itself plus the event-loop turn after it (in which the idle checking of
// the edited paragraph runs), and how long the first check of the whole document takes.

#include "control/kvrtb.h"
#include "core/controlcore.h"
#include "core/editorsurface.h"
#include "core/recordingplatformservices.h"
#include "spelling/spellasyoutype.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTest>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace kvrtb;

namespace {

constexpr int kKeystrokes = 1500;
constexpr int kKeysPerRun = 150;

QString prose(int bytes)
{
    QString text;
    text.reserve(bytes + 200);
    int paragraph = 0;
    while (text.size() < bytes) {
        text += QStringLiteral("Paragraph %1 tells how teh quick brown fox jumps over the lazy dog, and how "
                               "the dog did not recieve the news with any pleasure at all.\n")
                    .arg(paragraph++);
    }
    return text;
}

struct Figures {
    double median = 0;
    double p95 = 0;
};

Figures typeInto(KvRTB &control, QWidget *editor, int length)
{
    const QString keys = QStringLiteral("the quikc brown fox jumsp over the lazy dog ");
    std::vector<double> each;
    QElapsedTimer timer;
    for (int i = 0; i < kKeystrokes; ++i) {
        if (i % kKeysPerRun == 0) {
            control.setSelStart(std::min(length, (i / kKeysPerRun + 1) * length / 11));
            QCoreApplication::processEvents();
        }
        timer.start();
        QTest::keyClick(editor, keys.at(i % keys.size()).toLatin1());
        QCoreApplication::processEvents();
        each.push_back(double(timer.nsecsElapsed()) / 1e6);
    }
    std::sort(each.begin(), each.end());
    return {each[each.size() / 2], each[size_t(double(each.size() - 1) * 0.95)]};
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    std::printf("Spelling-as-you-type benchmark (figures from a shared, busy machine: read them as rough).\n");
    RecordingPlatformServices services;
    KvRTB control(services);
    control.resize(900, 600);
    control.show();
    if (!QTest::qWaitForWindowExposed(&control))
        return 1;
    control.setDetectHyperLinks(false);
    control.setText(prose(1 << 20));
    const int length = control.RichTextBox1().textLength();
    QWidget *editor = control.RichTextBox1().widget();
    control.SetInFocus();

    const Figures off = typeInto(control, editor, length);

    SpellAsYouType &spelling = control.core().spellAsYouType();
    QElapsedTimer whole;
    whole.start();
    control.setSpellAsYouType(true);
    while (spelling.hasPending())
        QCoreApplication::processEvents();
    const double wholeMs = double(whole.elapsed());
    const qsizetype marks = spelling.marks().size();

    const Figures on = typeInto(control, editor, control.RichTextBox1().textLength());
    std::printf("%d characters, %d keys, a new place every %d:\n", length, kKeystrokes, kKeysPerRun);
    std::printf("  spelling as you type off: median %.3f ms per key, 95th percentile %.3f ms\n", off.median, off.p95);
    std::printf("  spelling as you type on:  median %.3f ms per key, 95th percentile %.3f ms\n", on.median, on.p95);
    std::printf("  difference of medians: %.3f ms (goal: within 1 ms)\n", on.median - off.median);
    std::printf("  first check of the whole document: %.0f ms in idle slices, %lld words underlined\n", wholeMs,
                static_cast<long long>(marks));
    control.SetRTBChanged(false);
    return 0;
}
