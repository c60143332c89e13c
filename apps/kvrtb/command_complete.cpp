// kvrtb complete: prints the dictionary words that complete a prefix.

#include "commandregistry.h"

#include "spelling/wordlists.h"

namespace {

int runComplete(const QStringList &args)
{
    using namespace kvrtb::cli;
    const QString usage = QStringLiteral("Usage: kvrtb complete PREFIX [LIMIT]\n");
    if (args.isEmpty() || args.size() > 2) {
        printErr(QStringLiteral("kvrtb complete: expected a prefix and an optional limit\n") + usage);
        return 2;
    }
    int limit = 0;
    if (args.size() == 2) {
        bool ok = false;
        limit = args[1].toInt(&ok);
        if (!ok || limit < 0) {
            printErr(QStringLiteral("kvrtb complete: the limit must be a whole number of 0 or more, not \"%1\"\n")
                         .arg(args[1]) + usage);
            return 2;
        }
    }
    QString prefix = args[0];
    if (prefix.isEmpty()) {
        printErr(QStringLiteral("kvrtb complete: the prefix is empty\n") + usage);
        return 2;
    }
    if (kvrtb::WordLists::escapePrefix(prefix).isNull()) {
        printErr(QStringLiteral("kvrtb complete: the prefix must start with a letter A-Z, not \"%1\"\n").arg(prefix) + usage);
        return 2;
    }
    QStringList words;
    if (!kvrtb::WordLists::GetWordsThatStartWith(prefix, words, limit))
        return 1;   // no completions
    printOut(words.isEmpty() ? QString() : words.join(QLatin1Char('\n')) + QLatin1Char('\n'));
    return 0;
}

const kvrtb::cli::Registration registration{
    {QStringLiteral("complete"), QStringLiteral("complete PREFIX [LIMIT]"),
     QStringLiteral("print the dictionary words that start with PREFIX, at most LIMIT (0: all)"), runComplete}};

} // namespace
