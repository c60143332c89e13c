// kvrtb print INPUT OUTPUT.pdf [options]: prints a document into a PDF file as the control prints
// it, with a heading, page numbers, the date or a custom text in the margins.

#include "commandregistry.h"
#include "headlesscontrol.h"
#include "printing/printing.h"

#include <QPrinter>

namespace {

constexpr const char *kUsage =
    "Usage: kvrtb print INPUT OUTPUT.pdf [--heading TEXT] [--align N] [--numbers N] [--custom TEXT]\n"
    "                   [--margin TWIPS]\n"
    "  --align N    where the heading goes: 1 centre, 2 right, 3 left (top); 4, 5, 6 the same at the foot\n"
    "  --numbers N  0 nothing, 1 page number and date, 2 page number, 3 date, 4 custom text,\n"
    "               5 custom text and page number (in the margin the heading leaves free)\n"
    "  --margin     page margin in twips (1440 = an inch, the default; 1080 = three quarters)\n";

int usageError(const QString &why)
{
    kvrtb::cli::printErr(QStringLiteral("kvrtb print: %1\n").arg(why) + QLatin1String(kUsage));
    return kvrtb::cli::ExitUsage;
}

int runPrint(const QStringList &args)
{
    using namespace kvrtb;
    QStringList files;
    PageDecorations decorations;
    int margin = Academic;
    for (int i = 0; i < args.size(); ++i) {
        const QString &arg = args.at(i);
        const bool hasValue = i + 1 < args.size();
        auto number = [&](int low, int high, int *out) {
            bool ok = false;
            *out = hasValue ? args.at(++i).toInt(&ok) : 0;
            return ok && *out >= low && *out <= high;
        };
        if (arg == QLatin1String("--heading") && hasValue) {
            decorations.heading = args.at(++i);
        } else if (arg == QLatin1String("--custom") && hasValue) {
            decorations.customText = args.at(++i);
        } else if (arg == QLatin1String("--align")) {
            if (!number(CenterAlignHeading, LeftAlignHeadingBottom, &decorations.headingAlign))
                return usageError(QStringLiteral("--align takes 1 to 6"));
        } else if (arg == QLatin1String("--numbers")) {
            if (!number(PrintNiether, PrintCustomWNum, &decorations.pageNumAndNow))
                return usageError(QStringLiteral("--numbers takes 0 to 5"));
        } else if (arg == QLatin1String("--margin")) {
            if (!number(0, 32767, &margin))
                return usageError(QStringLiteral("--margin takes twips from 0 to 32767"));
        } else if (!arg.startsWith(QLatin1String("--")) && files.size() < 2) {
            files << arg;
        } else {
            return usageError(QStringLiteral("unexpected argument \"%1\"").arg(arg));
        }
    }
    if (files.size() != 2)
        return usageError(QStringLiteral("an input and an output file are needed"));

    cli::HeadlessControl control;
    if (!control.load(files.at(0)))
        return cli::ExitBadInput;
    control.core.properties().PrinterMargin = margin;
    control.core.printing().decorations() = decorations;
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(files.at(1));
    QString error;
    const int pages = control.core.printing().printTo(printer, false, 0, 0, &error);
    if (pages < 0) {
        cli::printErr(QStringLiteral("kvrtb print: %1\n").arg(error));
        return cli::ExitBadOutput;
    }
    cli::printOut(QStringLiteral("%1 pages\n").arg(pages));
    return cli::ExitOk;
}

const kvrtb::cli::Registration registration{
    {QStringLiteral("print"), QStringLiteral("print INPUT OUTPUT.pdf [--heading TEXT] [--numbers N] ..."),
     QStringLiteral("print a document into a PDF file with a heading, page numbers and the date"), runPrint,
     QString::fromLatin1(kUsage)}};

} // namespace
