// Misspelling detection over a 1,000,000-word document, with the system's stand-alone spelling
// checker ("hunspell -l" with its US dictionary) run over the same text in the same run for a
// words-per-second comparison ("--no-reference" leaves it out).

#include "benchsupport.h"
#include "spelling/dictionary.h"
#include "spelling/misspellings.h"

#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <cstdio>

using namespace kvrtb;

namespace {

double seconds(const QElapsedTimer &timer)
{
    return double(timer.nsecsElapsed()) / 1e9;
}

/// The dictionary's lower-case words without apostrophes, as a pool to write prose from.
QStringList wordPool()
{
    QStringList pool;
    for (char letter = 'A'; letter <= 'Z'; ++letter) {
        const QStringList lines = Dictionary::LoadDictionaryText(QString(QLatin1Char(letter))).split(QStringLiteral("\r\n"));
        for (const QString &line : lines) {
            if (line.size() >= 2 && line.at(0).isLower() && !line.contains(QLatin1Char('\'')) &&
                !line.contains(QChar(0x2019)) && !line.contains(QLatin1Char('.')))
                pool << line;
        }
    }
    return pool;
}

/// Misspellings people made, from the shared corpus ("right: wrong1 wrong2 ..."), or a few
/// made-up ones when the corpus is missing.
QStringList misspellingPool()
{
    QStringList pool;
    QFile file(QStringLiteral(KVRTB_CORPORA_DIR "/spelling/norvig__spell-testset1.txt"));
    if (file.open(QIODevice::ReadOnly)) {
        for (const QByteArray &line : file.readAll().split('\n')) {
            const int colon = line.indexOf(':');
            if (colon > 0)
                pool << QString::fromUtf8(line.mid(colon + 1)).split(QLatin1Char(' '), Qt::SkipEmptyParts);
        }
    }
    if (pool.isEmpty())
        pool << QStringLiteral("begining") << QStringLiteral("problam") << QStringLiteral("recieve");
    return pool;
}

/// \a words words of prose: sentences of dictionary words, one word in 50 misspelt, a
/// paragraph every 120 words.
QString prose(int words)
{
    const QStringList pool = wordPool();
    const QStringList wrong = misspellingPool();
    QRandomGenerator random(1234);
    QString text;
    text.reserve(words * 9);
    for (int i = 0; i < words; ++i) {
        const QString &word = (i % 50 == 49) ? wrong.at(random.bounded(int(wrong.size())))
                                             : pool.at(random.bounded(int(pool.size())));
        text += word;
        if (i % 120 == 119)
            text += QStringLiteral(".\n");
        else if (i % 12 == 11)
            text += QStringLiteral(". ");
        else
            text += QLatin1Char(' ');
    }
    return text;
}

} // namespace

int main(int argc, char *argv[])
{
    bench::BenchApplication application(argc, argv);
    bench::BenchControl control;
    ControlCore &core = control.core;

    const int wordCount = 1'000'000;
    const QString text = prose(wordCount);
    std::printf("document: %d words, %.1f MB of text\n", wordCount, double(text.size()) / (1024 * 1024));

    QElapsedTimer timer;
    timer.start();
    Dictionary::Prepare();
    std::printf("dictionary indexes built:          %8.3f s (once per process)\n", seconds(timer));
    core.surface().setText(text);

    QStringList found;
    timer.restart();
    core.misspellings().DetectMisspellings(found);
    const double ours = seconds(timer);
    const int examined = core.misspellings().wordTotal();
    std::printf("DetectMisspellings:                %8.3f s  %10.0f words/s  (%d candidates, %lld misspelt)\n", ours,
                examined / ours, examined, static_cast<long long>(found.size()));

    if (application.app.arguments().contains(QStringLiteral("--no-reference")))
        return 0;
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("prose.txt"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0) {
        std::printf("hunspell -l: the text could not be written for it\n");
        return 1;
    }
    file.close();
    QProcess hunspell;
    hunspell.setStandardInputFile(path);
    timer.restart();
    hunspell.start(QStringLiteral("hunspell"), {QStringLiteral("-d"), QStringLiteral("en_US"), QStringLiteral("-i"),
                                                QStringLiteral("utf-8"), QStringLiteral("-l")});
    if (!hunspell.waitForStarted(10000)) {
        std::printf("hunspell -l: not installed (Debian hunspell, hunspell-en-us); no comparison\n");
        return 1;
    }
    QByteArray listed;
    while (!hunspell.waitForFinished(100))
        listed += hunspell.readAllStandardOutput();
    listed += hunspell.readAllStandardOutput();
    const double theirs = seconds(timer);
    const long long theirCount = listed.count('\n');
    std::printf("hunspell -l:                       %8.3f s  %10.0f words/s  (%lld misspelt)\n", theirs,
                wordCount / theirs, theirCount);
    std::printf("ratio (words per second):          %8.1fx  (goal at least 10x)\n",
                (examined / ours) / (wordCount / theirs));
    return 0;
}
