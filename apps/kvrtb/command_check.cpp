// kvrtb check: prints the words the built-in dictionary does not know.

#include "commandregistry.h"

#include "spelling/dictionary.h"

#include <QByteArray>
#include <QFile>
#include <QString>

#include <cstdio>

namespace {

int runCheck(const QStringList &args)
{
    using namespace kvrtb::cli;
    QString unknown;
    auto check = [&unknown](QStringView word) {
        if (!kvrtb::Dictionary::IsWordInDictionary(word)) {
            unknown += word;
            unknown += QLatin1Char('\n');
        }
    };
    if (!args.isEmpty()) {
        // An empty argument holds no word: it is neither known nor reported.
        for (const QString &word : args) {
            if (!word.isEmpty())
                check(word);
        }
        printOut(unknown);
        return 0;
    }
    // No words given: read them from standard input, separated by white space.
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly)) {
        printErr(QStringLiteral("kvrtb check: cannot read standard input\n"));
        return 1;
    }
    const QString text = QString::fromUtf8(input.readAll());
    qsizetype start = -1;
    for (qsizetype i = 0; i <= text.size(); ++i) {
        const bool space = i == text.size() || text[i].isSpace();
        if (space && start >= 0) {
            check(QStringView(text).mid(start, i - start));
            start = -1;
        } else if (!space && start < 0) {
            start = i;
        }
    }
    printOut(unknown);
    return 0;
}

const kvrtb::cli::Registration registration{
    {QStringLiteral("check"), QStringLiteral("check [WORD...]"),
     QStringLiteral("print the words the dictionary does not know, one a line (no words: read standard input)"),
     runCheck}};

} // namespace
