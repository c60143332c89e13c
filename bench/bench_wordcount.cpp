// The word count on a 10 MB document: each of the five modes, the statistics, and the whole
// path the dialog takes (the document's text read from the editor, then counted).

#include "core/controlcore.h"
#include "core/controlevents.h"
#include "core/recordingplatformservices.h"
#include "wordcount/wordcount.h"
#include "wordcount/wordcounter.h"

#include <QApplication>
#include <QElapsedTimer>

#include <cstdio>

using namespace kvrtb;

namespace {

/// About \a bytes of mixed prose: words, numbers such as 10:30, 1,000 and 3-4, accented words,
/// and one web or e-mail address every 2 KB.
QString document(int bytes)
{
    const QStringList sentences{
        QStringLiteral("The well-known café opened at 10:30 and served 1,000 guests on pages 3-4. "),
        QStringLiteral("Quick brown foxes jump over lazy dogs near the river bank, again and again! "),
        QStringLiteral("Version 2.5 of the report lists 42 items (see part B7) for the naïve reader? "),
    };
    QString text;
    text.reserve(bytes + 256);
    int n = 0;
    while (text.size() < bytes) {
        text += sentences.at(n % sentences.size());
        if (++n % 25 == 0)
            text += (n % 50 == 0) ? QStringLiteral("Mail person%1@mail.example.org today.\n").arg(n)
                                  : QStringLiteral("Visit www.site%1.example.com/page now.\n").arg(n);
    }
    return text;
}

double seconds(const QElapsedTimer &timer) { return double(timer.nsecsElapsed()) / 1e9; }

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const QString text = document(10 * 1024 * 1024);
    std::printf("word count of a %.1f MB document (%lld characters)\n", double(text.size()) / (1024 * 1024),
                static_cast<long long>(text.size()));

    const char *names[] = {"words only", "words and numbers", "numbers", "e-mail addresses", "web addresses"};
    for (int mode = 0; mode < 5; ++mode) {
        QElapsedTimer timer;
        timer.start();
        const WordCountResult result = WordCounter::count(text, WordCountMode(mode));
        std::printf("  mode %d (%-17s) %9d tokens  %.3f s\n", mode, names[mode], result.count(), seconds(timer));
    }
    QElapsedTimer timer;
    timer.start();
    const TextStatistics stats = WordCounter::statistics(text);
    std::printf("  statistics: %d words, %d sentences, %d paragraphs  %.3f s\n", stats.words, stats.sentences,
                stats.paragraphs, seconds(timer));

    // The dialog's path: the text comes from the editor surface.
    RecordingPlatformServices services;
    ControlEvents events;
    ControlCore core(nullptr, services, events);
    core.surface().setText(text);
    WordCount area(core);
    timer.start();
    const WordCountResult fromEditor = area.count(WordCountMode::WordsOnly);
    std::printf("  from the editor, words only: %d tokens  %.3f s (reading the text included)\n",
                fromEditor.count(), seconds(timer));
    return 0;
}
