// kvrtb synonyms: prints the synonyms of a word from the built-in thesaurus.

#include "commandregistry.h"

#include "spelling/thesaurus.h"

namespace {

int runSynonyms(const QStringList &args)
{
    using namespace kvrtb::cli;
    if (args.size() != 1) {
        printErr(QStringLiteral("kvrtb synonyms: expected exactly one word\nUsage: kvrtb synonyms WORD\n"));
        return 2;
    }
    QStringList synonyms;
    const QString message = kvrtb::Thesaurus::GetSynonyms(args.first(), synonyms);
    if (!message.isEmpty()) {
        printOut(message + QLatin1Char('\n'));
        return 1;
    }
    printOut(synonyms.isEmpty() ? QString() : synonyms.join(QLatin1Char('\n')) + QLatin1Char('\n'));
    return 0;
}

const kvrtb::cli::Registration registration{
    {QStringLiteral("synonyms"), QStringLiteral("synonyms WORD"),
     QStringLiteral("print the synonyms of WORD, one a line, or \"No synonyms found.\""), runSynonyms}};

} // namespace
