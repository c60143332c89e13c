// Link marking and the snapshot undo on large documents: linking a 2 MB document holding
// 20,000 addresses, finding addresses alone, the linking pass run while typing, and swapping a
// 5 MB document with its snapshot.

#include "benchsupport.h"
#include "core/threadstate.h"
#include "editing/specialundo.h"
#include "hyperlinks/addresspatterns.h"
#include "hyperlinks/hyperlinks.h"


#include <cstdio>

using namespace kvrtb;
using kvrtb::bench::ms;

namespace {

/// About \a bytes of prose with \a addresses addresses spread evenly, alternating web and e-mail.
QString documentWithAddresses(int bytes, int addresses)
{
    QString text;
    text.reserve(bytes + 200);
    const QString filler = QStringLiteral("The quick brown fox jumps over the lazy dog near the river bank. ");
    const int every = addresses > 0 ? bytes / addresses : bytes;
    int next = every;
    int count = 0;
    int paragraph = 0;
    while (text.size() < bytes) {
        text += filler;
        if (addresses > 0 && text.size() >= next && count < addresses) {
            text += (count % 2 == 0) ? QStringLiteral("www.site%1.example.com/page ").arg(count)
                                     : QStringLiteral("person%1@mail.example.org ").arg(count);
            ++count;
            next += every;
        }
        if (++paragraph % 8 == 0)
            text += QLatin1Char('\n');
    }
    return text;
}

} // namespace

int main(int argc, char *argv[])
{
    bench::BenchApplication app(argc, argv);
    bench::BenchControl control;
    ControlCore &core = control.core;

    const QString linkDoc = documentWithAddresses(2 * 1024 * 1024, 20000);
    QElapsedTimer timer;
    timer.start();
    const int found = int(AddressPatterns::matches(AddressPatterns::link(), linkDoc).size());
    std::printf("find addresses, 2 MB text:        %8.1f ms  (%d addresses)\n", ms(timer), found);

    core.surface().setText(linkDoc);
    core.surface().lineCount(); // lay the document out before timing
    timer.restart();
    core.hyperlinks().HyperLinkDocument();
    const double linking = ms(timer);
    int marked = 0;
    for (const AddressMatch &m : AddressPatterns::matches(AddressPatterns::link(), linkDoc))
        marked += core.surface().rangeCharFormat(m.start, m.length).hasLinkMarker() ? 1 : 0;
    std::printf("HyperLinkDocument, 2 MB, 20,000:  %8.1f ms  (goal < 300; %d of %d marked)\n", linking, marked, found);

    // The pass run on every key release. It applies the large-document rule first: the RTF
    // is written only when the document changed since the last pass and its text alone does
    // not already exceed the limit.
    const auto currentLinePass = [&](const char *what) {
        core.properties().DetectHyperLinks = true;
        core.surface().setSelStart(core.surface().textLength() / 2);
        timer.restart();
        core.hyperlinks().HyperLinkCurrentLine();
        std::printf("HyperLinkCurrentLine, %-26s %8.1f ms  (text %d, linking %s)\n", what, ms(timer),
                    core.surface().textLength(), core.properties().DetectHyperLinks ? "kept" : "switched off");
    };
    currentLinePass("2 MB, RTF above limit:");
    core.surface().setText(documentWithAddresses(1024 * 1024, 10000));
    currentLinePass("1 MB, after an edit:");
    currentLinePass("1 MB, after its own links:");
    core.hyperlinks().IsDocumentTooLargeForLinking(); // the pass changed the document: its RTF is written
    timer.restart();
    const bool large = core.hyperlinks().IsDocumentTooLargeForLinking();
    std::printf("large-document rule, 1 MB, unchanged: %8.3f ms  (%s)\n", ms(timer), large ? "large" : "not large");
    core.surface().setSelStart(10);
    core.surface().replaceSelection(QStringLiteral("x"));
    timer.restart();
    core.hyperlinks().IsDocumentTooLargeForLinking();
    std::printf("large-document rule, 1 MB, one key typed: %8.1f ms\n", ms(timer));
    core.surface().setText(documentWithAddresses(3 * 1024 * 1024, 0));
    currentLinePass("3 MB text:");

    const QString undoDoc = documentWithAddresses(5 * 1024 * 1024, 0);
    core.properties().DetectHyperLinks = false;
    core.surface().setText(undoDoc);
    timer.restart();
    core.specialUndo().SaveSpecialUndoData();
    std::printf("snapshot capture, 5 MB:           %8.1f ms\n", ms(timer));
    core.surface().setText(QStringLiteral("replaced"));
    timer.restart();
    core.specialUndo().HyperUndo();
    const double undo = ms(timer);
    const bool restored = core.surface().textLength() == undoDoc.size();
    std::printf("HyperUndo, 5 MB:                  %8.1f ms  (goal < 500; %s)\n", undo,
                restored ? "document restored" : "NOT restored: the surface could not read the snapshot back");
    return restored && marked == found ? 0 : 1;
}
