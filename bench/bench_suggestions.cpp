// Quality and speed of spelling suggestions over the shared misspelling corpora: for the
// word-list order and for the ranked order, the median and 95th-percentile time per word and
// how often the intended word comes first, among the first five, or anywhere; then the same
// rates for `hunspell -a` on the same words when it is installed. Our times are processor
// time of the searching thread; hunspell's is its wall-clock time per word over the whole run.
//
// Usage: bench_suggestions [ACCURACY [BIRKBECK-SAMPLE [--no-hunspell]]]   (defaults 50, 1000)

#include "spelling/dictionary.h"
#include "spelling/suggestions.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <vector>

using kvrtb::SPELL_CHECK_TYPE;
using kvrtb::Suggestions;

namespace {

struct Pair {
    QString misspelt;
    QString intended;
};

struct Corpus {
    QString name;
    std::vector<Pair> pairs;
};

QStringList linesOf(const QString &file)
{
    QFile f(QStringLiteral(KVRTB_CORPORA_DIR "/spelling/") + file);
    if (!f.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(f.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

void add(Corpus &corpus, const QString &misspelt, const QString &intended)
{
    const QString m = misspelt.trimmed();
    const QString i = intended.trimmed();
    if (!m.isEmpty() && !i.isEmpty() && m != i && !m.contains(QLatin1Char(' ')) && !i.contains(QLatin1Char(' ')))
        corpus.pairs.push_back({m, i});
}

// "misspelt<TAB>intended" lines.
Corpus tabCorpus(const QString &name, const QString &file)
{
    Corpus corpus{name, {}};
    for (const QString &line : linesOf(file)) {
        const QStringList parts = line.split(QLatin1Char('\t'));
        if (parts.size() >= 2)
            add(corpus, parts[0], parts[1]);
    }
    return corpus;
}

// "intended: misspelt misspelt ..." lines.
Corpus norvigCorpus(const QString &name, const QString &file)
{
    Corpus corpus{name, {}};
    for (const QString &line : linesOf(file)) {
        const qsizetype colon = line.indexOf(QLatin1Char(':'));
        if (colon < 0)
            continue;
        const QString intended = line.left(colon);
        for (const QString &m : line.mid(colon + 1).split(QLatin1Char(' '), Qt::SkipEmptyParts))
            add(corpus, m, intended);
    }
    return corpus;
}

// "$intended" lines, each followed by its misspellings; every `step`-th pair is kept.
Corpus birkbeckCorpus(const QString &name, const QString &file, int sample)
{
    Corpus all{name, {}};
    QString intended;
    for (const QString &line : linesOf(file)) {
        if (line.startsWith(QLatin1Char('$')))
            intended = line.mid(1);
        else if (!intended.isEmpty())
            add(all, line, intended);
    }
    if (sample <= 0 || static_cast<int>(all.pairs.size()) <= sample)
        return all;
    Corpus sampled{name, {}};
    const double step = static_cast<double>(all.pairs.size()) / sample;
    for (int i = 0; i < sample; ++i)
        sampled.pairs.push_back(all.pairs[static_cast<size_t>(i * step)]);
    sampled.name += QStringLiteral(" (%1 of %2)").arg(sample).arg(all.pairs.size());
    return sampled;
}

struct Rates {
    int top1 = 0;
    int top5 = 0;
    int anywhere = 0;
    int total = 0;
    void count(const QStringList &suggestions, const QString &intended)
    {
        ++total;
        for (int i = 0; i < suggestions.size(); ++i) {
            if (suggestions[i].compare(intended, Qt::CaseInsensitive) == 0) {
                top1 += i == 0;
                top5 += i < 5;
                ++anywhere;
                return;
            }
        }
    }
    QString text() const
    {
        auto pc = [this](int n) { return total ? 100.0 * n / total : 0.0; };
        return QStringLiteral("top-1 %1%  top-5 %2%  anywhere %3%")
            .arg(pc(top1), 5, 'f', 1).arg(pc(top5), 5, 'f', 1).arg(pc(anywhere), 5, 'f', 1);
    }
};

// Processor time of this thread: the machine is shared and busy, so wall-clock time per word
// mostly measures the other work on it.
qint64 threadCpuMicroseconds()
{
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<qint64>(t.tv_sec) * 1000000 + t.tv_nsec / 1000;
}

double percentile(std::vector<qint64> values, double p)
{
    if (values.empty())
        return 0.0;
    std::sort(values.begin(), values.end());
    const size_t at = std::min(values.size() - 1, static_cast<size_t>(p * static_cast<double>(values.size())));
    return static_cast<double>(values[at]) / 1000.0;
}

// Runs hunspell -a over the words; the suggestions of each word in order (empty when it has
// none or hunspell takes it as correct). Returns false when hunspell cannot run.
bool hunspellSuggestions(const std::vector<Pair> &pairs, std::vector<QStringList> &out, double &msPerWord)
{
    const QString hunspell = QStandardPaths::findExecutable(QStringLiteral("hunspell"));
    if (hunspell.isEmpty())
        return false;
    QProcess process;
    process.start(hunspell, {QStringLiteral("-a"), QStringLiteral("-d"), QStringLiteral("en_US")});
    if (!process.waitForStarted())
        return false;
    QByteArray input;
    for (const Pair &pair : pairs)
        input += "^" + pair.misspelt.toUtf8() + "\n";
    QElapsedTimer timer;
    timer.start();
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(-1))
        return false;
    msPerWord = static_cast<double>(timer.elapsed()) / static_cast<double>(std::max<size_t>(1, pairs.size()));
    QStringList lines = QString::fromUtf8(process.readAllStandardOutput()).split(QLatin1Char('\n'));
    if (!lines.isEmpty())
        lines.removeFirst();   // the version banner
    // One block of result lines per input line, each block ended by an empty line.
    out.clear();
    QStringList current;
    bool open = false;
    for (const QString &line : lines) {
        if (line.isEmpty()) {
            if (open)
                out.push_back(current);
            current.clear();
            open = false;
            continue;
        }
        open = true;
        if (line.startsWith(QLatin1Char('&')) && current.isEmpty()) {
            const qsizetype colon = line.indexOf(QStringLiteral(": "));
            if (colon >= 0)
                current = line.mid(colon + 2).split(QStringLiteral(", "));
        }
    }
    return out.size() == pairs.size();
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    const qint16 accuracy = static_cast<qint16>(args.size() > 1 ? args[1].toInt() : 50);
    const int birkbeckSample = args.size() > 2 ? args[2].toInt() : 1000;
    const bool compare = !args.contains(QStringLiteral("--no-hunspell"));

    QElapsedTimer warm;
    warm.start();
    kvrtb::Dictionary::Prepare();
    for (char c = 'a'; c <= 'z'; ++c) {
        SPELL_CHECK_TYPE data;
        data.IncorrectWord = QString(QChar(c)) + QStringLiteral("xxxx");
        Suggestions::GetPossibleSpellingCorrections(data);
    }
    std::printf("indexes built in %lld ms; accuracy %d\n\n", static_cast<long long>(warm.elapsed()), accuracy);

    const std::vector<Corpus> corpora = {
        norvigCorpus(QStringLiteral("norvig set 1"), QStringLiteral("norvig__spell-testset1.txt")),
        norvigCorpus(QStringLiteral("norvig set 2"), QStringLiteral("norvig__spell-testset2.txt")),
        tabCorpus(QStringLiteral("aspell special"), QStringLiteral("aspell__00-special.tab")),
        tabCorpus(QStringLiteral("aspell orig"), QStringLiteral("aspell__02-orig.tab")),
        tabCorpus(QStringLiteral("aspell common"), QStringLiteral("aspell__05-common.tab")),
        birkbeckCorpus(QStringLiteral("birkbeck"), QStringLiteral("birkbeck__missp.dat"), birkbeckSample),
    };

    for (const Corpus &corpus : corpora) {
        if (corpus.pairs.empty()) {
            std::printf("%s: no words (corpus missing)\n\n", qPrintable(corpus.name));
            continue;
        }
        Rates listRates, rankedRates, hunspellRates;
        std::vector<qint64> listTimes, rankedTimes;
        int known = 0;
        for (const Pair &pair : corpus.pairs) {
            known += kvrtb::Dictionary::IsWordInDictionary(pair.intended) ? 1 : 0;
            SPELL_CHECK_TYPE data;
            data.IncorrectWord = pair.misspelt;
            data.QAccuracy = accuracy;
            qint64 started = threadCpuMicroseconds();
            Suggestions::GetPossibleSpellingCorrections(data);
            listTimes.push_back(threadCpuMicroseconds() - started);
            listRates.count(data.Suggestions, pair.intended);

            SPELL_CHECK_TYPE ranked;
            ranked.IncorrectWord = pair.misspelt;
            ranked.QAccuracy = accuracy;
            started = threadCpuMicroseconds();
            Suggestions::GetRankedSpellingCorrections(ranked);
            rankedTimes.push_back(threadCpuMicroseconds() - started);
            rankedRates.count(ranked.Suggestions, pair.intended);
        }
        std::printf("%s: %zu words (intended word in our dictionary: %d)\n", qPrintable(corpus.name),
                    corpus.pairs.size(), known);
        std::printf("  list order:  cpu median %.3f ms  p95 %.3f ms  %s\n", percentile(listTimes, 0.5),
                    percentile(listTimes, 0.95), qPrintable(listRates.text()));
        std::printf("  ranked:      cpu median %.3f ms  p95 %.3f ms  %s\n", percentile(rankedTimes, 0.5),
                    percentile(rankedTimes, 0.95), qPrintable(rankedRates.text()));
        std::vector<QStringList> theirs;
        double hunspellMs = 0.0;
        if (!compare) {
            std::printf("  hunspell -a: not asked for\n");
        } else if (hunspellSuggestions(corpus.pairs, theirs, hunspellMs)) {
            for (size_t i = 0; i < corpus.pairs.size(); ++i)
                hunspellRates.count(theirs[i], corpus.pairs[i].intended);
            std::printf("  hunspell -a: wall mean  %.3f ms                %s\n", hunspellMs, qPrintable(hunspellRates.text()));
        } else {
            std::printf("  hunspell -a: not installed or failed, no comparison\n");
        }
        std::printf("\n");
        std::fflush(stdout);
    }
    return 0;
}
