// Printing figures: a formatted document of about 200 pages at printer resolution (headings, bold and coloured runs,
// indented paragraphs with tab stops) printed to PDF with a heading, page numbers and the date
// on every page; pages per second. The machine is shared and busy, so the figures vary from
// run to run; several runs are printed.

#include "control/kvrtb.h"
#include "core/controlcore.h"
#include "core/recordingplatformservices.h"
#include "printing/printing.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QPrinter>
#include <QTemporaryDir>

#include <cstdio>

using namespace kvrtb;

namespace {

// One section: a heading and five paragraphs of mixed formatting, under half a page printed.
QString section(int n)
{
    QString rtf = QStringLiteral("\\pard\\sb240\\sa120\\b\\fs32 Section %1\\b0\\fs22\\par ").arg(n);
    for (int p = 0; p < 5; ++p) {
        rtf += QStringLiteral("\\pard\\li%1\\fi-360\\tx2880\\tx4320 ").arg(360 * (p % 3));
        rtf += QStringLiteral("Paragraph %1 of section %2 has \\b bold\\b0 , \\i italic\\i0  and "
                              "\\cf1 coloured\\cf0  words.\\tab A tab stop\\tab and another. ")
                   .arg(p + 1)
                   .arg(n);
        for (int s = 0; s < 3; ++s)
            rtf += QStringLiteral("The quick brown fox jumps over the lazy dog while the printer lays out lines. ");
        rtf += QStringLiteral("\\par ");
    }
    return rtf;
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    RecordingPlatformServices services;
    KvRTB control(services);
    QString rtf = QStringLiteral("{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0 Liberation Serif;}}"
                                 "{\\colortbl;\\red200\\green0\\blue0;}\\f0\\fs22 ");
    for (int n = 1; n <= 280; ++n) // about 200 pages
        rtf += section(n);
    rtf += QStringLiteral("}");
    control.setTextRTF(rtf);
    control.setPageHeading(QStringLiteral("Benchmark Report"));
    control.setPageNumbersAndDate(PrintBoth);

    QTemporaryDir dir;
    for (int run = 1; run <= 3; ++run) {
        QPrinter printer(QPrinter::HighResolution);
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(dir.filePath(QStringLiteral("bench%1.pdf").arg(run)));
        QElapsedTimer timer;
        timer.start();
        QString error;
        const int pages = control.core().printing().printTo(printer, false, 0, 0, &error);
        const double seconds = double(timer.nsecsElapsed()) / 1e9;
        if (pages < 0) {
            std::printf("printing failed: %s\n", qPrintable(error));
            return 1;
        }
        std::printf("run %d: %d pages to PDF in %.2f s: %.1f pages per second\n", run, pages, seconds,
                    pages / seconds);
    }
    return 0;
}
