// Editor surface figures on a 1 MB document: setting the text, 10,000 select-and-colour
// operations in one batch (goal: under 100 ms), and 10,000 line queries.

#include "surface/qteditorsurface.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QWidget>

#include <cstdio>

using namespace kvrtb;

namespace {

QString makeDocument(int bytes)
{
    static const char *const words[] = {"alpha", "beta", "gamma", "delta", "epsilon", "zeta", "theta",
                                        "iota", "kappa", "lambda", "omicron", "sigma"};
    QRandomGenerator random(42);
    QString text;
    text.reserve(bytes + 100);
    int lineLength = 0;
    while (text.size() < bytes) {
        const QString word = QString::fromLatin1(words[random.bounded(12)]);
        text += word;
        lineLength += int(word.size());
        if (lineLength > 60 + int(random.bounded(40))) {
            text += QLatin1Char('\n');
            lineLength = 0;
        } else {
            text += QLatin1Char(' ');
        }
    }
    return text;
}

double milliseconds(const QElapsedTimer &timer)
{
    return double(timer.nsecsElapsed()) / 1e6;
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QtEditorSurface surface;
    surface.widget()->resize(800, 600);
    surface.widget()->show();
    const QString text = makeDocument(1 << 20);

    QElapsedTimer timer;
    timer.start();
    surface.setText(text);
    const int lines = surface.lineCount(); // lays the document out
    std::printf("set 1 MB text and lay it out:           %8.1f ms (%d display lines)\n", milliseconds(timer), lines);

    QRandomGenerator random(7);
    QList<EditorSurface::FormatSpan> spans;
    spans.reserve(10000);
    for (int i = 0; i < 10000; ++i) {
        EditorSurface::FormatSpan span;
        span.start = int(random.bounded(text.size() - 20));
        span.length = 1 + int(random.bounded(12));
        span.format.color = i % 2 ? 0x0000FFu : 0xFF0000u;
        spans.append(span);
    }
    timer.restart();
    surface.freeze();
    surface.applyCharFormats(spans);
    surface.unfreeze();
    std::printf("10,000 colour changes in one batch:      %8.1f ms (goal < 100 ms)\n", milliseconds(timer));

    timer.restart();
    surface.freeze();
    for (int i = 0; i < 2000; ++i) {
        surface.setSelection(spans.at(i).start, spans.at(i).length);
        CharFormat bold;
        bold.bold = (i % 2) == 0;
        surface.setSelectionCharFormat(bold);
    }
    surface.unfreeze();
    std::printf("2,000 select-and-format one at a time:   %8.1f ms (frozen)\n", milliseconds(timer));

    timer.restart();
    qint64 sum = 0;
    const int total = surface.lineCount();
    for (int i = 0; i < 10000; ++i) {
        const int line = int(random.bounded(total));
        const int start = surface.lineIndex(line);
        sum += surface.lineLength(start) + surface.lineFromChar(start + 1);
    }
    std::printf("10,000 line queries (index, length, line of char): %8.1f ms (checksum %lld)\n",
                milliseconds(timer), static_cast<long long>(sum));
    return 0;
}
