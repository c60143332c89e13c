// kvrtb colour vb6|vbnet|my INPUT OUTPUT.rtf [options]: colours the comments, strings and
// keywords of a document as the control's colouring does, and saves it as RTF.

#include "commandregistry.h"
#include "core/kvrtbtypes.h"
#include "headlesscontrol.h"
#include "syntax/syntax.h"

#include <QRegularExpression>

namespace {

const QString kUsage = QStringLiteral(
    "Usage: kvrtb colour vb6|vbnet|my INPUT OUTPUT.rtf [--first WORDS] [--second WORDS] [--third WORDS]\n"
    "                    [--first-pattern P] [--second-pattern P] [--third-pattern P] [--keep-formatting]\n"
    "  WORDS is a list of words separated by commas or spaces, coloured as whole words in any case;\n"
    "  a pattern P is a regular expression used as it stands. The first list is coloured like\n"
    "  keywords, the second like comments, the third like strings; earlier roles win: comments,\n"
    "  then strings, then keywords. Without --keep-formatting, bold, italics, underline,\n"
    "  strike-through and bullets are removed from the document first.\n");

/// A pattern that matches each word as a whole word: "\b(one|two)\b".
QString patternOfWords(const QString &words)
{
    static const QRegularExpression separators(QStringLiteral("[,\\s]+"));
    QStringList escaped;
    for (const QString &word : words.split(separators, Qt::SkipEmptyParts))
        escaped << QRegularExpression::escape(word);
    return escaped.isEmpty() ? QString() : QStringLiteral("\\b(%1)\\b").arg(escaped.join(QLatin1Char('|')));
}

int runColour(const QStringList &args)
{
    using namespace kvrtb;
    QStringList positional;
    QString lists[3]; // first, second, third
    int formatting = Remove_All_Formatting;
    for (int i = 0; i < args.size(); ++i) {
        const QString &arg = args.at(i);
        static const QStringList listOptions = {QStringLiteral("first"), QStringLiteral("second"),
                                                QStringLiteral("third")};
        if (arg == QLatin1String("--keep-formatting")) {
            formatting = Retain_All_Formatting;
            continue;
        }
        if (arg.startsWith(QLatin1String("--"))) {
            const QString name = arg.mid(2);
            const bool isPattern = name.endsWith(QLatin1String("-pattern"));
            const int which = int(listOptions.indexOf(isPattern ? name.chopped(8) : name));
            if (which < 0 || i + 1 >= args.size()) {
                cli::printErr(which < 0 ? QStringLiteral("kvrtb colour: unknown option %1\n%2").arg(arg, kUsage)
                                        : QStringLiteral("kvrtb colour: %1 needs a value\n").arg(arg));
                return 2;
            }
            const QString value = args.at(++i);
            lists[which] = isPattern ? value : patternOfWords(value);
            continue;
        }
        positional << arg;
    }
    if (positional.size() != 3) {
        cli::printErr(kUsage);
        return 2;
    }
    const QString variant = positional.at(0).toLower();
    if (variant != QLatin1String("vb6") && variant != QLatin1String("vbnet") && variant != QLatin1String("my")) {
        cli::printErr(QStringLiteral("kvrtb colour: the language is vb6, vbnet or my, not \"%1\"\n").arg(positional.at(0)));
        return 2;
    }
    const bool my = variant == QLatin1String("my");
    const bool anyList = !lists[0].isEmpty() || !lists[1].isEmpty() || !lists[2].isEmpty();
    if (my != anyList) {
        cli::printErr(my ? QStringLiteral("kvrtb colour my: give at least one word list or pattern\n")
                         : QStringLiteral("kvrtb colour: word lists and patterns go with \"my\" only\n"));
        return 2;
    }
    static const char *const names[3] = {"--first", "--second", "--third"};
    for (int i = 0; i < 3; ++i) {
        const QRegularExpression pattern(lists[i]);
        if (!pattern.isValid()) {
            cli::printErr(QStringLiteral("kvrtb colour: the pattern of %1 is not valid (%2 at offset %3)\n")
                              .arg(QLatin1String(names[i]), pattern.errorString())
                              .arg(pattern.patternErrorOffset()));
            return 2;
        }
    }

    cli::HeadlessControl control;
    if (!control.load(positional.at(1)))
        return cli::ExitBadInput;
    ControlProperties &properties = control.core.properties();
    properties.MyFirstString = lists[0];
    properties.MySecondString = lists[1];
    properties.MyThirdString = lists[2];
    Syntax &syntax = control.core.syntax();
    if (variant == QLatin1String("vb6"))
        syntax.ApplyVB6Syntax(Syntax_All_Text, formatting);
    else if (variant == QLatin1String("vbnet"))
        syntax.ApplyVBNetSyntax(Syntax_All_Text, formatting);
    else
        syntax.ApplyMySyntax(Syntax_All_Text, formatting);

    QString error;
    if (!control.core.surface().saveFile(positional.at(2), SurfaceFileType::Rtf, &error)) {
        cli::printErr(QStringLiteral("kvrtb: %1\n").arg(error));
        return cli::ExitBadOutput;
    }
    return 0;
}

const kvrtb::cli::Registration registration{
    {QStringLiteral("colour"),
     QStringLiteral("colour vb6|vbnet|my INPUT OUTPUT.rtf [--first WORDS] [--second WORDS] [--third WORDS] "
                    "[--keep-formatting]"),
     QStringLiteral("colour the comments, strings and keywords of VB6 or VB.NET source, or of your own word "
                    "lists, and save the document as RTF"),
     runColour}};

} // namespace
