// kvrtb random: prints one random dictionary word.

#include "commandregistry.h"

#include "spelling/wordlists.h"

namespace {

int runRandom(const QStringList &args)
{
    using namespace kvrtb::cli;
    if (!args.isEmpty()) {
        printErr(QStringLiteral("kvrtb random: takes no arguments\nUsage: kvrtb random\n"));
        return 2;
    }
    QString word = kvrtb::WordLists::GetRandomWord();
    if (word.isEmpty()) {
        printErr(QStringLiteral("kvrtb random: the dictionary has no words\n"));
        return 1;
    }
    if (word.endsWith(QLatin1Char('\r')))
        word.chop(1);   // the word keeps its list's carriage return; a terminal line ends in LF
    printOut(word + QLatin1Char('\n'));
    return 0;
}

const kvrtb::cli::Registration registration{
    {QStringLiteral("random"), QStringLiteral("random"), QStringLiteral("print a random dictionary word"), runRandom}};

} // namespace
