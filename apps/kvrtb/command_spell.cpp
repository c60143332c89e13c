// kvrtb spell FILE: the document's misspelt words, one a line, in text order, duplicates
// included, as the control's DetectMisspellings finds them ("-" reads standard input).

#include "commandregistry.h"
#include "headlesscontrol.h"
#include "spelling/misspellings.h"

#include <QFile>

namespace {

int runSpell(const QStringList &args)
{
    using namespace kvrtb;
    if (args.size() != 1) {
        cli::printErr(QStringLiteral("Usage: kvrtb spell FILE\n"));
        return cli::ExitUsage;
    }
    cli::HeadlessControl control;
    if (args.first() == QLatin1String("-")) {
        QFile input;
        if (!input.open(stdin, QIODevice::ReadOnly)) {
            cli::printErr(QStringLiteral("kvrtb spell: cannot read standard input\n"));
            return cli::ExitBadInput;
        }
        control.core.surface().setText(QString::fromUtf8(input.readAll()));
    } else if (!control.load(args.first())) {
        return cli::ExitBadInput;
    }
    QStringList words;
    control.core.misspellings().DetectMisspellings(words);
    QString out;
    for (const QString &word : std::as_const(words))
        out += word + QLatin1Char('\n');
    cli::printOut(out);
    return cli::ExitOk;
}

const kvrtb::cli::Registration registration{
    {QStringLiteral("spell"), QStringLiteral("spell FILE"),
     QStringLiteral("print the document's misspelt words, one a line, in text order (FILE \"-\": standard input)"),
     runSpell}};

} // namespace
