// kvrtb link INPUT OUTPUT.rtf: marks every address in the document as a link and saves it as RTF.

#include "commandregistry.h"
#include "hyperlinks/hyperlinks.h"
#include "headlesscontrol.h"

namespace {

int runLink(const QStringList &args)
{
    using namespace kvrtb;
    if (args.size() != 2) {
        cli::printErr(QStringLiteral("Usage: kvrtb link INPUT OUTPUT.rtf\n"));
        return 2;
    }
    cli::HeadlessControl control;
    if (!control.load(args.at(0)))
        return cli::ExitBadInput;
    control.core.hyperlinks().HyperLinkDocument();
    QString error;
    if (!control.core.surface().saveFile(args.at(1), SurfaceFileType::Rtf, &error)) {
        cli::printErr(QStringLiteral("kvrtb: %1\n").arg(error));
        return cli::ExitBadOutput;
    }
    return 0;
}

const kvrtb::cli::Registration registration{
    {QStringLiteral("link"), QStringLiteral("link INPUT OUTPUT.rtf"),
     QStringLiteral("mark every web and e-mail address as a link and save the document as RTF"), runLink}};

} // namespace
