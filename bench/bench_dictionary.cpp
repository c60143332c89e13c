// Speed of the built-in dictionary: membership tests over a 1,000,000-word English text (and,
// when hunspell is installed, `hunspell -l` on the same text for comparison), and the median
// latency of GetSynonyms and GetWordsThatStartWith once their lists are indexed.

#include "spelling/dictionary.h"
#include "spelling/thesaurus.h"
#include "spelling/wordlists.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryFile>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <vector>

using kvrtb::Dictionary;

namespace {

constexpr int kWords = 1000000;

// A fixed-seed generator, so every run checks the same text.
struct Lcg {
    std::uint64_t state = 0x2545F4914F6CDD1DULL;
    std::uint32_t next()
    {
        state = state * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<std::uint32_t>(state >> 33);
    }
    int below(int n) { return static_cast<int>(next() % static_cast<std::uint32_t>(n)); }
};

QStringList dictionaryWords()
{
    QStringList words;
    for (char c = 'A'; c <= 'Z'; ++c) {
        for (const QString &line : Dictionary::LoadDictionaryText(QString(QChar(c))).split(QStringLiteral("\r\n"))) {
            if (!line.isEmpty())
                words << line;
        }
    }
    return words;
}

// Dictionary words, some capitalised as at a sentence start, about one in ten misspelt (a
// letter dropped, doubled or two letters swapped), twelve words a line.
QString makeText(const QStringList &words)
{
    Lcg random;
    QString text;
    text.reserve(kWords * 9);
    for (int i = 0; i < kWords; ++i) {
        QString word = words[random.below(static_cast<int>(words.size()))];
        const int roll = random.below(100);
        if (roll < 10 && word.size() > 3) {
            const int at = 1 + random.below(static_cast<int>(word.size()) - 2);
            if (roll < 4)
                word.remove(at, 1);
            else if (roll < 7)
                word.insert(at, word[at]);
            else
                std::swap(word[at], word[at + 1]);
        } else if (roll < 18) {
            word[0] = word[0].toUpper();
        }
        text += word;
        text += (i % 12 == 11) ? QLatin1Char('\n') : QLatin1Char(' ');
    }
    return text;
}

double median(std::vector<qint64> values)
{
    std::sort(values.begin(), values.end());
    return values.empty() ? 0.0 : static_cast<double>(values[values.size() / 2]);
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);

    QElapsedTimer timer;
    timer.start();
    const bool prepared = Dictionary::Prepare();
    std::printf("index build (all lists):        %.1f ms%s\n", timer.nsecsElapsed() / 1e6,
                prepared ? "" : "  (resources missing!)");

    const QStringList words = dictionaryWords();
    const QString text = makeText(words);

    // Membership: split at white space and look every word up, as `kvrtb check` does.
    timer.restart();
    int unknown = 0;
    int checked = 0;
    const QStringView all(text);
    qsizetype start = -1;
    for (qsizetype i = 0; i <= all.size(); ++i) {
        const bool space = i == all.size() || all[i] == u' ' || all[i] == u'\n';
        if (space && start >= 0) {
            ++checked;
            unknown += !Dictionary::IsWordInDictionary(all.mid(start, i - start));
            start = -1;
        } else if (!space && start < 0) {
            start = i;
        }
    }
    const double ours = checked / (timer.nsecsElapsed() / 1e9);
    std::printf("membership:                     %d words, %d unknown, %.0f words/s\n", checked, unknown, ours);

    const QString hunspell = QStandardPaths::findExecutable(QStringLiteral("hunspell"));
    if (hunspell.isEmpty()) {
        std::printf("hunspell:                       not installed, no comparison\n");
    } else {
        QTemporaryFile file;
        file.open();
        file.write(text.toUtf8());
        file.flush();
        QProcess process;
        timer.restart();
        process.start(hunspell, {QStringLiteral("-d"), QStringLiteral("en_US"), QStringLiteral("-l"), file.fileName()});
        process.waitForFinished(-1);
        const double seconds = timer.nsecsElapsed() / 1e9;
        const int reported = static_cast<int>(process.readAllStandardOutput().count('\n'));
        if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
            std::printf("hunspell:                       failed (%s)\n", process.readAllStandardError().constData());
        } else {
            const double theirs = kWords / seconds;
            std::printf("hunspell -l:                    %d words, %d unknown, %.0f words/s\n", kWords, reported, theirs);
            std::printf("throughput ratio (goal >= 20):  %.1f\n", ours / theirs);
        }
    }

    // Latencies once the lists are indexed: synonyms of dictionary words, completions of their
    // first three letters with the context menu's limit of 10 and without a limit.
    Lcg random;
    std::vector<qint64> synonymTimes, completionTimes, unlimitedTimes;
    QStringList synonyms;
    QStringList completions;
    for (int i = 0; i < 20000; ++i) {
        const QString &word = words[random.below(static_cast<int>(words.size()))];
        timer.restart();
        kvrtb::Thesaurus::GetSynonyms(word, synonyms);
        synonymTimes.push_back(timer.nsecsElapsed());

        QString prefix = word.left(3);
        timer.restart();
        kvrtb::WordLists::GetWordsThatStartWith(prefix, completions, 10);
        completionTimes.push_back(timer.nsecsElapsed());

        prefix = word.left(3);
        timer.restart();
        kvrtb::WordLists::GetWordsThatStartWith(prefix, completions, 0);
        unlimitedTimes.push_back(timer.nsecsElapsed());
    }
    std::printf("GetSynonyms median:             %.1f us (goal < 50)\n", median(synonymTimes) / 1000);
    std::printf("GetWordsThatStartWith median:   %.1f us with limit 10, %.1f us without limit (goal < 50)\n",
                median(completionTimes) / 1000, median(unlimitedTimes) / 1000);
    return 0;
}
