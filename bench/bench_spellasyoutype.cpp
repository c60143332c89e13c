// Typing into a shown control holding about 1 MB of prose with some misspelt words and links,
// with spelling as you type off in one control, on in another, and on in a third with a dark
// palette (where links in view are painted in the link colour after every change). Bursts of
// keys go to the three in turn, so all see the same load on a shared machine. A keystroke is the key itself plus the
// event-loop turn after it (repainting, and whatever checking is due). Edited paragraphs are
// checked once typing pauses: after each burst of the "on" control that check is timed on its
// own (checking the waiting paragraphs and repainting their marks). Also printed: how long the
// first check of the whole document takes.

#include "benchsupport.h"
#include "control/kvrtb.h"
#include "core/editorsurface.h"
#include "spelling/spellasyoutype.h"

#include <QPalette>
#include <QTest>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <vector>

using namespace kvrtb;
using kvrtb::bench::ms;

namespace {

constexpr int kBursts = 10;
constexpr int kKeysPerBurst = 150;

QString prose(int bytes)
{
    QString text;
    text.reserve(bytes + 200);
    int paragraph = 0;
    while (text.size() < bytes) {
        text += QStringLiteral("Paragraph %1 tells how teh quick brown fox jumps over the lazy dog, and how "
                               "the dog did not recieve the news with any pleasure at all.\n")
                    .arg(paragraph);
        if (paragraph++ % 4 == 0)
            text += QStringLiteral("More at www.example.com/page%1 or from mail@example.org.\n").arg(paragraph);
    }
    return text;
}

/// CPU time of this thread in milliseconds: less disturbed than the clock by other processes.
double threadCpuMs()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

struct Samples {
    std::vector<double> wall;
    std::vector<double> cpu;
};

double percentile(std::vector<double> values, double fraction)
{
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    return values[size_t(double(values.size() - 1) * fraction)];
}

struct Shown {
    RecordingPlatformServices services;
    KvRTB control{services};
    int length = 0;

    explicit Shown(const QString &text)
    {
        control.resize(900, 600);
        control.show();
        if (!QTest::qWaitForWindowExposed(&control))
            qFatal("the control was not shown");
        control.setDetectHyperLinks(false);
        control.setText(text);
        control.HyperLinkDocument();
        length = control.RichTextBox1().textLength();
    }
    ~Shown() { control.SetRTBChanged(false); }
    QWidget *editor() { return control.RichTextBox1().widget(); }
};

/// Types one burst of keys at a new place of \a shown, adding each key's cost to \a samples.
void typeBurst(Shown &shown, int burst, Samples &samples)
{
    const QString keys = QStringLiteral("the quikc brown fox jumsp over the lazy dog ");
    shown.control.setSelStart(std::min(shown.length, (burst + 1) * shown.length / (kBursts + 1)));
    QCoreApplication::processEvents();
    QElapsedTimer timer;
    for (int i = 0; i < kKeysPerBurst; ++i) {
        const double cpu = threadCpuMs();
        timer.start();
        QTest::keyClick(shown.editor(), keys.at((burst * kKeysPerBurst + i) % keys.size()).toLatin1());
        QCoreApplication::processEvents();
        samples.wall.push_back(ms(timer));
        samples.cpu.push_back(threadCpuMs() - cpu);
    }
}

void print(const char *label, const Samples &samples)
{
    std::printf("  %s median %.3f ms (cpu %.3f), 95th percentile %.3f ms (cpu %.3f)\n", label,
                percentile(samples.wall, 0.5), percentile(samples.cpu, 0.5), percentile(samples.wall, 0.95),
                percentile(samples.cpu, 0.95));
}

} // namespace

int main(int argc, char *argv[])
{
    kvrtb::bench::BenchApplication application(argc, argv);
    std::printf("Spelling-as-you-type benchmark (figures from a shared, busy machine: read them as rough).\n");
    const QString text = prose(1 << 20);
    Shown off(text);
    Shown on(text);
    Shown dark(text);
    QPalette palette = dark.editor()->palette();
    palette.setColor(QPalette::Base, QColor(30, 30, 30));
    palette.setColor(QPalette::Text, QColor(230, 230, 230));
    palette.setColor(QPalette::Link, QColor(110, 170, 255));
    dark.editor()->setPalette(palette);

    SpellAsYouType &spelling = on.control.core().spellAsYouType();
    QElapsedTimer whole;
    whole.start();
    on.control.setSpellAsYouType(true);
    while (spelling.hasPending())
        QCoreApplication::processEvents();
    const double wholeMs = ms(whole);
    const qsizetype marks = spelling.marks().size();
    dark.control.setSpellAsYouType(true);
    dark.control.core().spellAsYouType().checkPending();

    Samples offKeys;
    Samples onKeys;
    Samples darkKeys;
    Samples pauses;
    QElapsedTimer timer;
    for (int burst = 0; burst < kBursts; ++burst) {
        typeBurst(off, burst, offKeys);
        typeBurst(on, burst, onKeys);
        // The pause after the burst: the waiting paragraph is checked and its marks repainted.
        const double cpu = threadCpuMs();
        timer.start();
        spelling.checkPending();
        QCoreApplication::processEvents();
        pauses.wall.push_back(ms(timer));
        pauses.cpu.push_back(threadCpuMs() - cpu);
        typeBurst(dark, burst, darkKeys);
        dark.control.core().spellAsYouType().checkPending();
    }

    std::printf("%d characters, %d bursts of %d keys to each control in turn, each burst at a new place:\n",
                off.length, kBursts, kKeysPerBurst);
    print("per key, spelling as you type off:", offKeys);
    print("per key, spelling as you type on: ", onKeys);
    std::printf("  difference of medians: %.3f ms (cpu %.3f) (goal: within 1 ms)\n",
                percentile(onKeys.wall, 0.5) - percentile(offKeys.wall, 0.5),
                percentile(onKeys.cpu, 0.5) - percentile(offKeys.cpu, 0.5));
    print("per key, on, in a dark palette:   ", darkKeys);
    print("check when typing pauses:          ", pauses);
    std::printf("  first check of the whole document: %.0f ms in idle slices, %lld words underlined\n", wholeMs,
                static_cast<long long>(marks));
    return 0;
}
