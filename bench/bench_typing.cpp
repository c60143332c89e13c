// Typing into a shown control holding a large formatted document, with automatic linking on:
// the time per keystroke (key down to the end of the key-up follow-up), its median and 95th
// percentile, and the first keystroke of each run of typing (the one that takes the undo
// snapshot). The same keys typed into a bare QTextEdit holding the same document give Qt's own
// cost per key, the floor.

#include "control/kvrtb.h"
#include "core/editorsurface.h"
#include "core/recordingplatformservices.h"

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QElapsedTimer>
#include <QTest>
#include <QTextBlock>
#include <QTextEdit>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace kvrtb;

namespace {

/// Keys typed into each editor (KVRTB_TYPING_KEYS in the environment may lower it for a quick look).
const int kKeystrokes = qEnvironmentVariableIsSet("KVRTB_TYPING_KEYS") ? qEnvironmentVariableIntValue("KVRTB_TYPING_KEYS") : 2000;
/// The caret jumps elsewhere every this many keys, so each jump starts a new run of typing.
constexpr int kKeysPerRun = 200;

/// About \a bytes of text as RTF: paragraphs of prose with bold, italic and coloured words.
QString formattedDocument(int bytes)
{
    QString rtf = QStringLiteral("{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0 Arial;}{\\f1 Courier New;}}"
                                 "{\\colortbl;\\red200\\green0\\blue0;}\n\\pard\\f0\\fs20 ");
    rtf.reserve(bytes * 5 / 4);
    int text = 0;
    int paragraph = 0;
    while (text < bytes) {
        const QString line = QStringLiteral("Paragraph %1 has {\\b bold words} and {\\i italic ones}, "
                                            "{\\cf1 a coloured phrase} and {\\f1 some code} in plain prose. ")
                                 .arg(paragraph);
        rtf += line + line + QStringLiteral("\\par\n");
        text += 2 * 90;
        ++paragraph;
    }
    rtf += QLatin1Char('}');
    return rtf;
}

struct Figures {
    double median = 0;
    double p95 = 0;
    double firstOfRunMedian = 0; ///< first keystrokes of the runs
    double firstOfRunMax = 0;
};

double percentile(std::vector<double> values, double fraction)
{
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    const size_t index = std::min(values.size() - 1, size_t(fraction * double(values.size() - 1) + 0.5));
    return values[index];
}

/// Types the benchmark's keys into \a editor; \a moveCaret puts the caret somewhere new.
template <typename MoveCaret>
Figures typeInto(QWidget *editor, MoveCaret moveCaret)
{
    const QString keys = QStringLiteral("the quick brown fox jumps over the lazy dog ");
    std::vector<double> each;
    std::vector<double> firsts;
    QElapsedTimer timer;
    for (int i = 0; i < kKeystrokes; ++i) {
        if (i % kKeysPerRun == 0)
            moveCaret(i / kKeysPerRun);
        const char key = keys.at(i % keys.size()).toLatin1();
        timer.start();
        QTest::keyClick(editor, key);
        const double ms = double(timer.nsecsElapsed()) / 1e6;
        (i % kKeysPerRun == 0 ? firsts : each).push_back(ms);
    }
    return {percentile(each, 0.5), percentile(each, 0.95), percentile(firsts, 0.5), percentile(firsts, 1.0)};
}

void run(int bytes)
{
    RecordingPlatformServices services;
    KvRTB control(services);
    control.resize(900, 600);
    control.show();
    if (!QTest::qWaitForWindowExposed(&control))
        return;
    control.setDetectHyperLinks(false); // no linking pass over the whole document on load
    QElapsedTimer load;
    load.start();
    control.setTextRTF(formattedDocument(bytes));
    // A host's event loop lays the document out in the background after a load; here the
    // layout is finished before typing starts, so that no keystroke pays for it.
    control.TotalLineCount();
    const double loadMs = double(load.elapsed());
    control.setDetectHyperLinks(true);
    const int length = control.RichTextBox1().textLength();
    auto *edit = qobject_cast<QTextEdit *>(control.RichTextBox1().widget());

    // The same document in a bare editor, typed into first.
    QTextEdit bare;
    bare.setDocument(edit->document()->clone(&bare));
    bare.resize(900, 600);
    bare.show();
    if (!QTest::qWaitForWindowExposed(&bare))
        return;
    bare.document()->documentLayout()->blockBoundingRect(bare.document()->lastBlock());
    const Figures floor = typeInto(&bare, [&bare, length](int run) {
        QTextCursor cursor = bare.textCursor();
        cursor.setPosition(std::min(length, (run + 1) * length / 11));
        bare.setTextCursor(cursor);
    });
    bare.hide();

    control.SetInFocus();
    const Figures figures = typeInto(edit, [&control, length](int run) {
        control.setSelStart(std::min(length, (run + 1) * length / 11));
    });
    std::printf("%d KB of formatted text (%d characters; loaded in %.0f ms), %d keys, a new run every %d:\n",
                bytes / 1024, length, loadMs, kKeystrokes, kKeysPerRun);
    std::printf("  bare QTextEdit:  median %.2f ms per key, 95th percentile %.2f ms; first key after a jump:"
                " median %.1f ms, slowest %.1f ms\n",
                floor.median, floor.p95, floor.firstOfRunMedian, floor.firstOfRunMax);
    std::printf("  control:         median %.2f ms per key, 95th percentile %.2f ms\n", figures.median, figures.p95);
    std::printf("  control:         first key of a run (undo snapshot): median %.1f ms, slowest of %d %.1f ms\n",
                figures.firstOfRunMedian, kKeystrokes / kKeysPerRun, figures.firstOfRunMax);
    std::printf("  automatic linking still on: %s; message boxes: %lld\n", control.DetectHyperLinks() ? "yes" : "no",
                static_cast<long long>(services.callsOf(QStringLiteral("messageBox")).size()));
    control.SetRTBChanged(false);
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    std::setvbuf(stdout, nullptr, _IOLBF, 0); // figures appear as they are measured
    std::printf("Typing benchmark (figures from a shared, busy machine: read them as rough).\n");
    // Sizes in KB may be given on the command line; by default 1 MB and 5 MB.
    const QStringList sizes = app.arguments().mid(1);
    if (sizes.isEmpty()) {
        run(1 << 20);
        run(5 << 20);
    }
    for (const QString &size : sizes)
        run(size.toInt() * 1024);
    return 0;
}
