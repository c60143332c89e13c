// Keyword colouring of large sources: a 20,000-line VB6 module and a 20,000-line VB.NET file,
// made by repeating the corpus files, coloured through a shown control with every format
// applied. Prints lines per second, the share of the pure computation, and the peak memory.
//
// When kate-syntax-highlighter is installed (Debian package libkf5syntaxhighlighting-tools) it
// highlights the same files in the same run and the ratio of the two speeds is printed; its
// Debian build has no definition named "Visual Basic", so the definition it picks itself for
// .vb and .bas files (MonoBasic) is named explicitly. Without the tool, that line says it is
// absent.
//
// The machine these figures come from is shared with other builds and tests: take them as rough.

#include "control/kvrtb.h"
#include "core/controlcore.h"
#include "core/kvrtbtypes.h"
#include "syntax/colouringengine.h"
#include "syntax/syntax.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <sys/resource.h>

#include <cstdio>

using namespace kvrtb;

namespace {

constexpr int kLines = 20000;

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

/// Lines per second of kate-syntax-highlighter on \a path, or a negative value when absent.
double highlighterLinesPerSecond(const QString &tool, const QString &path, long *peakKiB)
{
    QProcess process;
    QElapsedTimer timer;
    timer.start();
    process.start(tool, {QStringLiteral("-s"), QStringLiteral("MonoBasic"), QStringLiteral("-f"),
                         QStringLiteral("ansi"), path});
    process.closeWriteChannel();
    // Its output is read as it comes so that the pipe never fills.
    while (process.state() != QProcess::NotRunning) {
        process.waitForReadyRead(100);
        process.readAllStandardOutput();
    }
    process.readAllStandardOutput();
    const double elapsed = seconds(timer);
    struct rusage usage {};
    getrusage(RUSAGE_CHILDREN, &usage);
    *peakKiB = usage.ru_maxrss;
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return -1;
    return kLines / elapsed;
}

void run(const char *label, const QString &source, const QString &extension, const QString &tool,
         const QTemporaryDir &dir)
{
    KvRTB control;
    control.resize(900, 700);
    control.show();
    QApplication::processEvents();
    control.setDetectHyperLinks(false);
    control.setText(source);
    control.RichTextBox1().lineCount(); // lay the document out before timing

    Syntax &syntax = control.core().syntax();
    const bool vb6 = extension == QLatin1String("bas");
    QElapsedTimer timer;
    timer.start();
    ColouringEngine engine(control.RichTextBox1().text(), syntax.rulesFor(vb6 ? Syntax::Variant::VB6
                                                                                : Syntax::Variant::VBNet));
    while (!engine.atEnd())
        engine.handleNext();
    const double computed = seconds(timer);

    timer.restart();
    if (vb6)
        control.ApplyVB6Syntax(Syntax_All_Text, Retain_All_Formatting);
    else
        control.ApplyVBNetSyntax(Syntax_All_Text, Retain_All_Formatting);
    QApplication::processEvents(); // the repaint that follows the run
    const double coloured = seconds(timer);
    const double ours = kLines / coloured;
    // The run lays out again only down to the first visible line; the rest follows when the
    // application is idle. Asking for the line count lays out everything now.
    timer.restart();
    control.RichTextBox1().lineCount();
    const double laidOut = seconds(timer);
    std::printf("%s, %d lines, %d matches:\n", label, kLines, engine.total());
    std::printf("  colouring through the control:  %8.3f s  %9.0f lines/s\n", coloured, ours);
    std::printf("  of which computing the spans:   %8.3f s  (%d colour spans, %d rewrites)\n", computed,
                int(engine.colourSpans(0).size()), int(engine.rewrites(0).size()));
    std::printf("  laying out the rest afterwards: %8.3f s  (done while idle; %.0f lines/s with it)\n", laidOut,
                kLines / (coloured + laidOut));

    if (tool.isEmpty()) {
        std::printf("  kate-syntax-highlighter: absent (Debian package libkf5syntaxhighlighting-tools), no ratio\n");
        return;
    }
    const QString path = dir.filePath(QStringLiteral("source.") + extension);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return;
    file.write(source.toUtf8());
    file.close();
    long childPeak = 0;
    const double theirs = highlighterLinesPerSecond(tool, path, &childPeak);
    if (theirs < 0) {
        std::printf("  kate-syntax-highlighter failed on the file; no ratio\n");
        return;
    }
    std::printf("  kate-syntax-highlighter (MonoBasic definition, ANSI output, process start included):\n"
                "                                  %8.3f s  %9.0f lines/s\n",
                kLines / theirs, theirs);
    std::printf("  ratio ours / theirs:            %8.2f x  (goal: at least 4 x)\n", ours / theirs);
    std::printf("  its peak memory:                %8.1f MiB\n", double(childPeak) / 1024.0);
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const QString tool = QStandardPaths::findExecutable(QStringLiteral("kate-syntax-highlighter"));
    QTemporaryDir dir;

    const QString vb6 = repeatedSource({QStringLiteral("*.bas"), QStringLiteral("*.cls"), QStringLiteral("*.frm"),
                                        QStringLiteral("*.ctl")},
                                       kLines);
    const QString vbNet = repeatedSource({QStringLiteral("*.vb")}, kLines);
    run("VB6 module", vb6, QStringLiteral("bas"), tool, dir);
    run("VB.NET file", vbNet, QStringLiteral("vb"), tool, dir);

    struct rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("peak memory of this run (both documents, RTF snapshots, layout): %.1f MiB\n",
                double(usage.ru_maxrss) / 1024.0);
    std::printf("(figures from a machine shared with other work: expect noise of tens of percent)\n");
    return 0;
}
