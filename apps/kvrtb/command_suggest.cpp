// kvrtb suggest: prints spelling suggestions for misspelt words.

#include "commandregistry.h"

#include "spelling/suggestions.h"

#include <QFile>
#include <QRegularExpression>

#include <cstdio>

namespace {

const QString kUsage = QStringLiteral("Usage: kvrtb suggest [--ranked] [--accuracy N] [WORD...]\n");

int runSuggest(const QStringList &args)
{
    using namespace kvrtb::cli;
    bool ranked = false;
    qint16 accuracy = kvrtb::Suggestions::kDefaultAccuracy;
    QStringList words;
    for (int i = 0; i < args.size(); ++i) {
        const QString &arg = args[i];
        if (arg == QLatin1String("--ranked")) {
            ranked = true;
        } else if (arg == QLatin1String("--accuracy")) {
            bool ok = false;
            const int value = i + 1 < args.size() ? args[i + 1].toInt(&ok) : 0;
            if (!ok || value < -32768 || value > 32767) {
                printErr(QStringLiteral("kvrtb suggest: --accuracy needs a whole number from -32768 to 32767\n") + kUsage);
                return 2;
            }
            accuracy = static_cast<qint16>(value);
            ++i;
        } else if (arg == QLatin1String("--")) {
            words += args.mid(i + 1);
            break;
        } else if (arg.startsWith(QLatin1String("--"))) {
            printErr(QStringLiteral("kvrtb suggest: unknown option \"%1\"\n").arg(arg) + kUsage);
            return 2;
        } else {
            words.append(arg);
        }
    }
    if (words.isEmpty()) {
        // No words given: read them from standard input, separated by white space.
        QFile input;
        if (!input.open(stdin, QIODevice::ReadOnly)) {
            printErr(QStringLiteral("kvrtb suggest: cannot read standard input\n"));
            return kvrtb::cli::ExitBadInput;
        }
        words = QString::fromUtf8(input.readAll()).split(QRegularExpression(QStringLiteral("\\s+")), Qt::SkipEmptyParts);
    }
    bool anyFound = false;
    QString out;
    for (const QString &word : std::as_const(words)) {
        kvrtb::SPELL_CHECK_TYPE data;
        data.IncorrectWord = word;
        data.QAccuracy = accuracy;
        if (ranked)
            kvrtb::Suggestions::GetRankedSpellingCorrections(data);
        else
            kvrtb::Suggestions::GetPossibleSpellingCorrections(data);
        anyFound = anyFound || data.SuggestionsFound;
        out += word + QLatin1Char(':');
        if (!data.Suggestions.isEmpty())
            out += QLatin1Char(' ') + data.Suggestions.join(QStringLiteral(", "));
        out += QLatin1Char('\n');
    }
    printOut(out);
    return anyFound ? 0 : 1;
}

const kvrtb::cli::Registration registration{
    {QStringLiteral("suggest"), QStringLiteral("suggest [--ranked] [--accuracy N] [WORD...]"),
     QStringLiteral("print \"WORD: suggestion, ...\" for each word (word-list order, or the likeliest first with "
                    "--ranked; accuracy 50 unless given; no words: read standard input)"),
     runSuggest}};

} // namespace
