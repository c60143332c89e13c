// Keyword colouring of large sources: a 20,000-line VB6 module and a 20,000-line VB.NET file,
// made by repeating the corpus files, coloured through a shown control with every format
// applied. Prints lines per second (the member call and the repaint after it, which is when the
// control answers again; the call comes when the control is at rest), the processor time, how
// the rest of the document is laid out while the application is idle afterwards (and the
// longest the event loop is busy meanwhile), and the peak memory.
//
// When kate-syntax-highlighter is installed (Debian package libkf5syntaxhighlighting-tools) it
// highlights the same files in the same run and the ratio of the two speeds is printed; its
// Debian build has no definition named "Visual Basic", so the definition it picks itself for
// .vb and .bas files (MonoBasic) is named explicitly. Without the tool, that line says it is
// absent.
//
// The machine these figures come from is shared with other builds and tests, so each side runs
// several times, the two alternating, and the median and the best of each are printed; the ratio
// is that of the medians.
//
// `bench_syntax --peak COMMAND ARGS...` is the helper the benchmark measures the highlighter
// through: it runs the command and prints its wall time and peak memory. A child of this small
// helper, rather than of the benchmark itself, has a peak memory that is its own (a child's peak
// includes what its parent had resident when it was forked).

#include "control/kvrtb.h"
#include "core/controlcore.h"
#include "core/kvrtbtypes.h"
#include "syntax/colouringengine.h"
#include "syntax/syntax.h"

#include <QApplication>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextEdit>
#include <QTextLayout>
#include <QTimer>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>
#include <tuple>

using namespace kvrtb;

namespace {

constexpr int kLines = 20000;
constexpr int kRepeats = 5;

/// The corpus files whose names match \a filters, repeated until the text has \a lines lines.
QString repeatedSource(const QStringList &filters, int lines)
{
    const QDir corpus(QStringLiteral(KVRTB_CORPORA_DIR "/vb"));
    QStringList parts;
    int count = 0;
    const QStringList files = corpus.entryList(filters, QDir::Files, QDir::Name);
    while (!files.isEmpty() && count < lines) {
        for (const QString &name : files) {
            QFile file(corpus.filePath(name));
            if (!file.open(QIODevice::ReadOnly))
                continue;
            for (const QString &line : QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'))) {
                if (count++ >= lines)
                    break;
                parts << line;
            }
        }
    }
    return parts.join(QLatin1Char('\n'));
}

double seconds(const QElapsedTimer &timer)
{
    return double(timer.nsecsElapsed()) / 1e9;
}

/// The peak resident memory of this process since the last `resetPeakMemory`, in MiB.
double peakMemoryMiB()
{
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind("VmHWM:", 0) == 0)
            return std::stod(line.substr(6)) / 1024.0;
    }
    return 0;
}

/// Starts the peak over from the memory resident now (Linux: "5" to clear_refs).
void resetPeakMemory()
{
    std::ofstream("/proc/self/clear_refs") << "5";
}

/// The processor time (user and system) of \a usage, in seconds.
double processorSeconds(const struct rusage &usage)
{
    return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec)
           + double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

/// The processor time this process (all its threads) has used, in seconds.
double cpuSeconds()
{
    struct rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    return processorSeconds(usage);
}

/// The helper mode: runs argv[2..] with its output thrown away, and prints
/// "<seconds> <processor seconds> <peak KiB> <exit status>".
int runMeasured(char *argv[])
{
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0) {
        std::freopen("/dev/null", "w", stdout);
        execvp(argv[2], argv + 2);
        _exit(127);
    }
    int status = 0;
    struct rusage usage {};
    if (child < 0 || wait4(child, &status, 0, &usage) < 0)
        return 1;
    const double elapsed = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("%.6f %.6f %ld %d\n", elapsed, processorSeconds(usage), usage.ru_maxrss,
                WIFEXITED(status) ? WEXITSTATUS(status) : 128);
    return 0;
}

struct Figures {
    QList<double> times;
    double peakMiB = 0;
    void add(double time, double peak)
    {
        times.append(time);
        peakMiB = std::max(peakMiB, peak);
    }
    double median() const
    {
        QList<double> sorted = times;
        std::sort(sorted.begin(), sorted.end());
        return sorted.isEmpty() ? 0 : sorted.at(sorted.size() / 2);
    }
    double best() const { return times.isEmpty() ? 0 : *std::min_element(times.begin(), times.end()); }
};

struct ToolRun {
    double time = -1; ///< wall time in seconds, negative when the tool failed
    double cpu = 0;
    double peakMiB = 0;
};

/// One run of the highlighter on \a path through the helper mode.
ToolRun runHighlighter(const QString &tool, const QString &path)
{
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(),
                  {QStringLiteral("--peak"), tool, QStringLiteral("-s"), QStringLiteral("MonoBasic"),
                   QStringLiteral("-f"), QStringLiteral("ansi"), path});
    if (!process.waitForFinished(120000))
        return {};
    const QList<QByteArray> fields = process.readAllStandardOutput().trimmed().split(' ');
    if (fields.size() != 4 || fields.at(3) != "0")
        return {};
    return {fields.at(0).toDouble(), fields.at(1).toDouble(), fields.at(2).toDouble() / 1024.0};
}

struct Run {
    double total = 0;    ///< the member call and the repaint after it
    double cpu = 0;      ///< the processor time of the same
    double computed = 0; ///< the matches and the walk alone, outside the control
    double laidOut = 0;  ///< until the rest of the document is laid out, done while idle
    double stall = 0;    ///< the longest the event loop was busy meanwhile
    double peakMiB = 0;
    int matches = 0;
    int runs = 0;
    int rewrites = 0;
};

/// The run lays out again only down to the first visible line; the rest follows in steps while
/// the application is idle. Returns how long after the run the last paragraph was laid out, and
/// the longest a 10 ms timer was late meanwhile: the longest the control kept the event loop
/// busy, which is how long a key pressed then would wait.
std::pair<double, double> idleLayout(KvRTB &control)
{
    auto *edit = qobject_cast<QTextEdit *>(control.RichTextBox1().widget());
    if (!edit)
        return {0, 0};
    const QTextBlock last = edit->document()->lastBlock();
    const auto laidOut = [&last] { return last.layout() && last.layout()->lineCount() > 0; };
    QElapsedTimer whole;
    whole.start();
    QEventLoop loop;
    QTimer tick;
    tick.setTimerType(Qt::PreciseTimer);
    tick.setInterval(10);
    QElapsedTimer sinceTick;
    sinceTick.start();
    double worst = 0;
    QObject::connect(&tick, &QTimer::timeout, [&] {
        worst = std::max(worst, seconds(sinceTick) - 0.010);
        sinceTick.restart();
        if (laidOut() || whole.elapsed() > 20000)
            loop.quit();
    });
    tick.start();
    if (!laidOut())
        loop.exec();
    return {seconds(whole), std::max(0.0, worst)};
}

Run colourOnce(const QString &source, bool vb6)
{
    KvRTB control;
    control.resize(900, 700);
    control.show();
    QApplication::processEvents();
    control.setDetectHyperLinks(false);
    control.setText(source);
    // The member is called on a control at rest, as a user finds it: the document laid out and
    // the events the new text caused (its first paint, the layout steps left) handled.
    control.RichTextBox1().lineCount();
    idleLayout(control);
    QApplication::processEvents();

    Run run;
    Syntax &syntax = control.core().syntax();
    QElapsedTimer timer;
    timer.start();
    ColouringEngine engine(control.RichTextBox1().text(),
                           syntax.rulesFor(vb6 ? Syntax::Variant::VB6 : Syntax::Variant::VBNet));
    while (!engine.atEnd())
        engine.handleNext();
    run.computed = seconds(timer);
    run.matches = engine.total();
    run.runs = int(engine.colourRuns(0).size());
    run.rewrites = int(engine.rewrites(0).size());

    resetPeakMemory();
    const double cpuBefore = cpuSeconds();
    timer.restart();
    if (vb6)
        control.ApplyVB6Syntax(Syntax_All_Text, Retain_All_Formatting);
    else
        control.ApplyVBNetSyntax(Syntax_All_Text, Retain_All_Formatting);
    QApplication::processEvents(); // the repaint that follows the run
    run.total = seconds(timer);
    run.cpu = cpuSeconds() - cpuBefore;
    run.peakMiB = peakMemoryMiB();
    std::tie(run.laidOut, run.stall) = idleLayout(control);
    return run;
}

void measure(const char *label, const QString &source, const QString &extension, const QString &toolPath,
             const QTemporaryDir &dir)
{
    const bool vb6 = extension == QLatin1String("bas");
    const QString path = dir.filePath(QStringLiteral("source.") + extension);
    QFile file(path);
    const bool written = file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(source.toUtf8()) > 0;
    file.close();

    Figures ours, oursCpu, computed, laidOut, stall, theirs, theirsCpu;
    Run last;
    bool theirsFailed = toolPath.isEmpty() || !written;
    for (int i = 0; i < kRepeats; ++i) {
        last = colourOnce(source, vb6);
        ours.add(last.total, last.peakMiB);
        oursCpu.add(last.cpu, 0);
        computed.add(last.computed, 0);
        laidOut.add(last.laidOut, 0);
        stall.add(last.stall, 0);
        if (!theirsFailed) {
            const ToolRun tool = runHighlighter(toolPath, path);
            if (tool.time < 0) {
                theirsFailed = true;
            } else {
                theirs.add(tool.time, tool.peakMiB);
                theirsCpu.add(tool.cpu, 0);
            }
        }
    }
    std::printf("%s, %d lines, %d matches (%d colour runs, %d rewrites), %d runs each:\n", label, kLines,
                last.matches, last.runs, last.rewrites, kRepeats);
    std::printf("  colouring through the control:  median %6.3f s  %7.0f lines/s   best %6.3f s  %7.0f lines/s\n",
                ours.median(), kLines / ours.median(), ours.best(), kLines / ours.best());
    std::printf("    processor time:               median %6.3f s\n", oursCpu.median());
    std::printf("    of which matching and walking: median %6.3f s (outside the control)\n", computed.median());
    std::printf("  the rest laid out while idle:   median %6.3f s after the run; the event loop busy at most\n"
                "                                  %6.3f s at a time meanwhile (median of the runs' longest)\n",
                laidOut.median(), stall.median());
    std::printf("  peak memory during the run:     %6.1f MiB (the whole process, the document laid out)\n",
                ours.peakMiB);
    if (toolPath.isEmpty()) {
        std::printf("  kate-syntax-highlighter: absent (Debian package libkf5syntaxhighlighting-tools), no ratio\n");
        return;
    }
    if (theirsFailed) {
        std::printf("  kate-syntax-highlighter failed on the file; no ratio\n");
        return;
    }
    std::printf("  kate-syntax-highlighter (MonoBasic definition, ANSI output, process start included):\n"
                "                                  median %6.3f s  %7.0f lines/s   best %6.3f s  %7.0f lines/s\n",
                theirs.median(), kLines / theirs.median(), theirs.best(), kLines / theirs.best());
    std::printf("    processor time:               median %6.3f s\n", theirsCpu.median());
    std::printf("  its peak memory:                %6.1f MiB\n", theirs.peakMiB);
    std::printf("  ratio ours / theirs:            %6.2f x of the medians, %.2f x of the best (goal: at least 4 x)\n",
                theirs.median() / ours.median(), theirs.best() / ours.best());
    std::printf("  ratio of processor times:       %6.2f x of the medians\n", theirsCpu.median() / oursCpu.median());
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc > 2 && std::strcmp(argv[1], "--peak") == 0)
        return runMeasured(argv);
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const QString tool = QStandardPaths::findExecutable(QStringLiteral("kate-syntax-highlighter"));
    QTemporaryDir dir;

    const QString vb6 = repeatedSource({QStringLiteral("*.bas"), QStringLiteral("*.cls"), QStringLiteral("*.frm"),
                                        QStringLiteral("*.ctl")},
                                       kLines);
    const QString vbNet = repeatedSource({QStringLiteral("*.vb")}, kLines);
    measure("VB6 module", vb6, QStringLiteral("bas"), tool, dir);
    measure("VB.NET file", vbNet, QStringLiteral("vb"), tool, dir);
    std::printf("(figures from a machine shared with other work: expect noise of tens of percent)\n");
    return 0;
}
