// Reads and writes RTF and prints the times: a 10 MB formatted document (compared, in the same
// run, with importing and exporting the same document as HTML through QTextDocument), a
// generated 10 MB document with nested lists, tables and footnotes, one long table (200 rows a
// megabyte asked for), and the largest files of the shared RTF corpus (each read and written
// several times, the best time kept; processor times beside the wall-clock ones).

#include "surface/rtf/rtfreader.h"
#include "surface/rtf/rtfwriter.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTextDocument>

#include <algorithm>
#include <cstdio>
#include <ctime>

namespace {

QByteArray formattedRtf(int targetBytes)
{
    QByteArray out = "{\\rtf1\\ansi\\ansicpg1252\\deff0{\\fonttbl{\\f0 Arial;}{\\f1 Courier New;}}"
                     "{\\colortbl;\\red255\\green0\\blue0;\\red0\\green0\\blue255;}\n";
    int i = 0;
    while (out.size() < targetBytes) {
        out += "\\pard";
        if (i % 7 == 0)
            out += "\\qc";
        if (i % 11 == 0)
            out += "{\\*\\pn\\pnlvlblt{\\pntxtb\\'95}}";
        out += "\\f0\\fs20 Paragraph " + QByteArray::number(i)
               + " with {\\b bold}, {\\i italic}, {\\ul underlined}, {\\cf1 red} and {\\f1\\fs24 mono} words,"
                 " some caf\\'e9 and \\u1046? text, and a longer plain stretch of ordinary prose to fill the line.\\par\n";
        ++i;
    }
    return out + "}";
}

// A document in the form word processors write: a list table with a three-level list, lists of
// 27 paragraphs over all three levels (each list its own \ls, as in a long report), a small
// bordered table every nine paragraphs and a footnote in every fifth paragraph. (Qt keeps a
// list's paragraphs in one sorted array that it walks on every insertion, so one list of many
// thousand items costs time that grows with the square of its length, in any reader.)
QByteArray structuredRtf(int targetBytes)
{
    QByteArray body;
    int i = 0;
    int lists = 0;
    while (body.size() < targetBytes) {
        if (i % 27 == 0)
            ++lists;
        const int level = i % 3;
        body += "{\\listtext\\tab}\\pard\\ls" + QByteArray::number(lists) + "\\ilvl" + QByteArray::number(level)
                + "\\f0\\fs20 Item " + QByteArray::number(i) + " with {\\b bold} and {\\i italic} words";
        if (i % 5 == 0)
            body += "{\\super\\chftn}{\\footnote\\pard\\plain{\\super\\chftn} Note " + QByteArray::number(i)
                    + " says something about the item.}";
        body += ".\\par\n";
        if (i % 9 == 8) {
            body += "\\pard\\plain Paragraph before a table.\\par\n";
            for (int r = 0; r < 3; ++r) {
                body += "\\trowd\\trgaph108\\clbrdrt\\brdrs\\brdrw10\\cellx2000\\clbrdrt\\brdrs\\brdrw10\\cellx4000"
                        "\\cellx6000\n\\pard\\intbl Cell " + QByteArray::number(r) + " one\\cell two\\cell three\\cell\\row\n";
            }
            body += "\\pard\\plain\n";
        }
        ++i;
    }
    QByteArray out = "{\\rtf1\\ansi\\ansicpg1252\\deff0{\\fonttbl{\\f0 Arial;}{\\f1 Symbol;}}\n"
                     "{\\*\\listtable{\\list\\listtemplateid1"
                     "{\\listlevel\\levelnfc0\\levelstartat1{\\leveltext\\'02\\'00.;}{\\levelnumbers\\'01;}\\fi-360\\li720}"
                     "{\\listlevel\\levelnfc4\\levelstartat1{\\leveltext\\'02\\'01);}{\\levelnumbers\\'01;}\\fi-360\\li1440}"
                     "{\\listlevel\\levelnfc23{\\leveltext\\'01\\u8226 ?;}{\\levelnumbers;}\\fi-360\\li2160}"
                     "\\listid100}}\n{\\*\\listoverridetable";
    for (int ls = 1; ls <= lists; ++ls)
        out += "{\\listoverride\\listid100\\listoverridecount0\\ls" + QByteArray::number(ls) + "}";
    out += "}\n";
    return out + body + "}";
}

// One long table in the form word processors write it: every row with its own definition,
// four bordered cells.
QByteArray longTableRtf(int rows)
{
    QByteArray out = "{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0 Arial;}}\n";
    for (int r = 0; r < rows; ++r) {
        out += "\\trowd\\trgaph108\\trleft-108";
        for (int c = 1; c <= 4; ++c)
            out += "\\clbrdrt\\brdrs\\brdrw10\\clbrdrb\\brdrs\\brdrw10\\cellx" + QByteArray::number(c * 2000);
        out += "\n\\pard\\intbl Row " + QByteArray::number(r) + "\\cell two\\cell three\\cell four\\cell\\row\n";
    }
    return out + "\\pard after the table\\par}";
}

double millis(QElapsedTimer &timer) { return double(timer.nsecsElapsed()) / 1e6; }

// Processor time of this process in milliseconds: the machine may be shared, and other work
// slows the wall clock but not this.
double processorMillis() { return double(std::clock()) * 1000.0 / CLOCKS_PER_SEC; }

struct Times {
    double read = 1e300;
    double write = 1e300;
    double readProcessor = 1e300;
    qsizetype written = 0;
};

// The best of \a repeats reads and writes of \a rtf.
Times measure(const QByteArray &rtf, int repeats)
{
    Times best;
    QElapsedTimer timer;
    for (int i = 0; i < repeats; ++i) {
        QTextDocument doc;
        const double processor = processorMillis();
        timer.start();
        kvrtb::rtf::readRtf(doc, rtf);
        best.read = std::min(best.read, millis(timer));
        best.readProcessor = std::min(best.readProcessor, processorMillis() - processor);
        timer.restart();
        const QByteArray out = kvrtb::rtf::writeRtf(doc);
        best.write = std::min(best.write, millis(timer));
        best.written = out.size();
    }
    return best;
}

double megabytesPerSecond(qsizetype bytes, double ms) { return double(bytes) / 1048576.0 / (ms / 1000.0); }

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    // The size of the generated documents in megabytes (10 when not given).
    const int megabytes = argc > 1 ? std::max(1, QByteArray(argv[1]).toInt()) : 10;
    const QByteArray rtfText = formattedRtf(megabytes * 1024 * 1024);
    QTextDocument doc;
    QElapsedTimer timer;

    timer.start();
    kvrtb::rtf::readRtf(doc, rtfText);
    const double rtfRead = millis(timer);
    timer.restart();
    const QByteArray written = kvrtb::rtf::writeRtf(doc);
    const double rtfWrite = millis(timer);

    timer.restart();
    const QString html = doc.toHtml();
    const double htmlWrite = millis(timer);
    QTextDocument htmlDoc;
    timer.restart();
    htmlDoc.setHtml(html);
    const double htmlRead = millis(timer);

    std::printf("document: %lld bytes of RTF, %d characters, %d paragraphs; HTML %lld characters\n",
                static_cast<long long>(rtfText.size()), doc.characterCount(), doc.blockCount(),
                static_cast<long long>(html.size()));
    std::printf("RTF read   %9.1f ms   HTML import (setHtml) %9.1f ms   ratio %.2f (goal <= 1.5)\n", rtfRead,
                htmlRead, rtfRead / htmlRead);
    std::printf("RTF write  %9.1f ms   HTML export (toHtml)  %9.1f ms   ratio %.2f (goal <= 1.0)\n", rtfWrite,
                htmlWrite, rtfWrite / htmlWrite);
    std::printf("written RTF: %lld bytes\n", static_cast<long long>(written.size()));

    const QByteArray structured = structuredRtf(megabytes * 1024 * 1024);
    const Times s = measure(structured, 3);
    std::printf("\nlists, tables and notes: %lld bytes of RTF (best of 3)\n", static_cast<long long>(structured.size()));
    std::printf("  read  %9.1f ms  %6.2f MB/s (processor %.1f ms)   write %9.1f ms  %6.2f MB/s (%lld bytes written)\n",
                s.read, megabytesPerSecond(structured.size(), s.read), s.readProcessor, s.write,
                megabytesPerSecond(s.written, s.write), static_cast<long long>(s.written));

    const int tableRows = 200 * megabytes;
    const QByteArray table = longTableRtf(tableRows);
    const Times rows = measure(table, 3);
    std::printf("\none table of %d rows: %lld bytes of RTF (best of 3)\n", tableRows, static_cast<long long>(table.size()));
    std::printf("  read  %9.1f ms  %6.2f MB/s (processor %.1f ms)   write %9.1f ms  %6.2f MB/s\n", rows.read,
                megabytesPerSecond(table.size(), rows.read), rows.readProcessor, rows.write,
                megabytesPerSecond(rows.written, rows.write));

    const QDir corpus(QStringLiteral(KVRTB_CORPORA_DIR "/rtf"));
    QFileInfoList files = corpus.entryInfoList({QStringLiteral("*.rtf")}, QDir::Files, QDir::Size);
    files = files.mid(0, 5);
    std::printf("\nlargest corpus files (best of 5 runs):\n");
    for (const QFileInfo &info : files) {
        QFile file(info.filePath());
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QByteArray bytes = file.readAll();
        const Times t = measure(bytes, 5);
        std::printf("  %-42s %7lld bytes  read %7.2f ms %6.2f MB/s (processor %.2f ms)   write %7.2f ms %6.2f MB/s\n",
                    qPrintable(info.fileName()), static_cast<long long>(bytes.size()), t.read,
                    megabytesPerSecond(bytes.size(), t.read), t.readProcessor, t.write, megabytesPerSecond(t.written, t.write));
    }
    return 0;
}
