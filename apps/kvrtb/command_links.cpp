// kvrtb links FILE: every address the link pattern finds in the document's text, in text order.

#include "commandregistry.h"
#include "hyperlinks/addresspatterns.h"
#include "headlesscontrol.h"

namespace {

int runLinks(const QStringList &args)
{
    using namespace kvrtb;
    if (args.size() != 1) {
        cli::printErr(QStringLiteral("Usage: kvrtb links FILE\n"));
        return 2;
    }
    cli::HeadlessControl control;
    if (!control.load(args.first()))
        return cli::ExitBadInput;
    const QString text = control.core.surface().text();
    QString out;
    for (const AddressMatch &match : AddressPatterns::matches(AddressPatterns::link(), text))
        out += match.text + QLatin1Char('\n');
    cli::printOut(out);
    return 0;
}

const kvrtb::cli::Registration registration{
    {QStringLiteral("links"), QStringLiteral("links FILE"),
     QStringLiteral("print each web and e-mail address in the document, one a line, in text order"), runLinks}};

} // namespace
