// kvrtb count FILE [--mode N] [--json]: the word count of a document, as the word-count dialog
// gives it: the count of one mode with its tokens, and the document's statistics.

#include "commandregistry.h"
#include "headlesscontrol.h"
#include "wordcount/countwordsfrm.h"
#include "wordcount/wordcount.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

const char *const kModeNames[] = {"words only", "words and numbers", "numbers", "e-mail addresses",
                                  "web addresses"};

constexpr const char *kUsage = "Usage: kvrtb count FILE [--mode N] [--json]\n"
                               "  N: 0 words only (default), 1 words and numbers, 2 numbers,\n"
                               "     3 e-mail addresses, 4 web addresses\n";

int runCount(const QStringList &args)
{
    using namespace kvrtb;
    QString file;
    int mode = 0;
    bool json = false;
    for (int i = 0; i < args.size(); ++i) {
        const QString &arg = args.at(i);
        if (arg == QLatin1String("--json")) {
            json = true;
        } else if (arg == QLatin1String("--mode")) {
            bool ok = false;
            mode = i + 1 < args.size() ? args.at(++i).toInt(&ok) : -1;
            if (!ok || mode < 0 || mode > 4) {
                cli::printErr(QStringLiteral("kvrtb count: --mode takes 0, 1, 2, 3 or 4\n") + QLatin1String(kUsage));
                return 2;
            }
        } else if (file.isEmpty() && !arg.startsWith(QLatin1String("--"))) {
            file = arg;
        } else {
            cli::printErr(QStringLiteral("kvrtb count: unexpected argument \"%1\"\n").arg(arg) + QLatin1String(kUsage));
            return 2;
        }
    }
    if (file.isEmpty()) {
        cli::printErr(QLatin1String(kUsage));
        return 2;
    }
    cli::HeadlessControl control;
    if (!control.load(file))
        return cli::ExitBadInput;
    WordCount area(control.core);
    const WordCountResult result = area.count(WordCountMode(mode));
    const TextStatistics stats = area.statistics().document;
    const QStringList tokens = result.tokenTexts();

    if (json) {
        QJsonObject statistics{{QStringLiteral("words"), stats.words},
                               {QStringLiteral("characters"), stats.characters},
                               {QStringLiteral("charactersNoSpaces"), stats.charactersNoSpaces},
                               {QStringLiteral("sentences"), stats.sentences},
                               {QStringLiteral("paragraphs"), stats.paragraphs},
                               {QStringLiteral("lines"), stats.lines},
                               {QStringLiteral("readingSeconds"), stats.readingSeconds}};
        QJsonObject root{{QStringLiteral("file"), file},
                         {QStringLiteral("mode"), mode},
                         {QStringLiteral("modeName"), QString::fromLatin1(kModeNames[mode])},
                         {QStringLiteral("count"), result.count()},
                         {QStringLiteral("tokens"), QJsonArray::fromStringList(tokens)},
                         {QStringLiteral("statistics"), statistics}};
        cli::printOut(QString::fromUtf8(QJsonDocument(root).toJson(QJsonDocument::Indented)));
        return 0;
    }
    QString out = QStringLiteral("%1: %2\n").arg(QString::fromLatin1(kModeNames[mode])).arg(result.count());
    out += QStringLiteral("words: %1\n").arg(stats.words);
    out += QStringLiteral("characters: %1\n").arg(stats.characters);
    out += QStringLiteral("characters without spaces: %1\n").arg(stats.charactersNoSpaces);
    out += QStringLiteral("sentences: %1\n").arg(stats.sentences);
    out += QStringLiteral("paragraphs: %1\n").arg(stats.paragraphs);
    out += QStringLiteral("lines: %1\n").arg(stats.lines);
    out += QStringLiteral("reading time: %1\n").arg(readingTimeText(stats.readingSeconds));
    // The addresses are what a user of those modes is after; words would flood the terminal.
    if (mode >= 3) {
        for (const QString &token : tokens)
            out += token + QLatin1Char('\n');
    }
    cli::printOut(out);
    return 0;
}

const kvrtb::cli::Registration registration{
    {QStringLiteral("count"), QStringLiteral("count FILE [--mode N] [--json]"),
     QStringLiteral("count words (0), words and numbers (1), numbers (2), e-mail (3) or web addresses (4), "
                    "with the document's statistics; --json adds every counted token"),
     runCount}};

} // namespace
