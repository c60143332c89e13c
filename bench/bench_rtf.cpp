// Reads and writes a 10 MB formatted RTF document and, in the same run, imports and exports the
// same document as HTML through QTextDocument, printing the times and their ratios.

#include "surface/rtf/rtfreader.h"
#include "surface/rtf/rtfwriter.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTextDocument>

#include <cstdio>

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

double millis(QElapsedTimer &timer) { return double(timer.nsecsElapsed()) / 1e6; }

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const QByteArray rtfText = formattedRtf(10 * 1024 * 1024);
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
    return 0;
}
