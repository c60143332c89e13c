// kvrtb replace FILE FIND REPLACEMENT OUTPUT [--whole-word] [--match-case]: the control's
// replace-all over a document; prints the number of replacements and writes the result.

#include "commandregistry.h"
#include "findreplace/findreplace.h"
#include "headlesscontrol.h"

namespace {

int runReplace(const QStringList &args)
{
    using namespace kvrtb;
    QStringList positional;
    int options = AllMatches;
    for (const QString &arg : args) {
        if (arg == QLatin1String("--whole-word"))
            options |= WholeWord;
        else if (arg == QLatin1String("--match-case"))
            options |= MatchCase;
        else
            positional << arg;
    }
    if (positional.size() != 4) {
        cli::printErr(QStringLiteral("Usage: kvrtb replace FILE FIND REPLACEMENT OUTPUT [--whole-word] [--match-case]\n"));
        return cli::ExitUsage;
    }
    if (positional.at(1).isEmpty()) {
        cli::printErr(QStringLiteral("kvrtb replace: the text to find is empty\n"));
        return cli::ExitUsage;
    }
    cli::HeadlessControl control;
    if (!control.load(positional.at(0)))
        return cli::ExitBadInput;
    const int count =
        control.core.findReplace().ReplaceAll(positional.at(1), positional.at(2), FindOptionsQ(options));
    const QString &output = positional.at(3);
    const SurfaceFileType type = output.endsWith(QLatin1String(".rtf"), Qt::CaseInsensitive) ? SurfaceFileType::Rtf
                                                                                               : SurfaceFileType::Text;
    QString error;
    if (!control.core.surface().saveFile(output, type, &error)) {
        cli::printErr(QStringLiteral("kvrtb: %1\n").arg(error));
        return cli::ExitBadOutput;
    }
    cli::printOut(QString::number(count) + QLatin1Char('\n'));
    return cli::ExitOk;
}

const kvrtb::cli::Registration registration{
    {QStringLiteral("replace"), QStringLiteral("replace FILE FIND REPLACEMENT OUTPUT [--whole-word] [--match-case]"),
     QStringLiteral("replace every occurrence of FIND (taken literally) and write the result (RTF for .rtf, text "
                    "otherwise); prints the count"),
     runReplace}};

} // namespace
