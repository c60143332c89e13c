// Find and replace on large documents: replace-all of 100,000 hits in a 5 MB document (and the
// one HyperUndo that takes it back), and Find2 of the last word of a 10 MB document from the top.

#include "benchsupport.h"
#include "core/threadstate.h"
#include "editing/specialundo.h"
#include "findreplace/findreplace.h"
#include "findreplace/textsearch.h"

#include <cstdio>

using namespace kvrtb;
using kvrtb::bench::ms;

namespace {

/// About \a bytes of prose, in paragraphs of eight sentences, holding \a hits whole words
/// "target" spread evenly.
QString prose(int bytes, int hits)
{
    const QString sentence = QStringLiteral("The quick brown fox jumps over the lazy dog near the bank. ");
    QString text;
    text.reserve(bytes + 200);
    const int every = hits > 0 ? std::max(1, bytes / hits) : bytes;
    int next = every;
    int placed = 0;
    int sentences = 0;
    while (text.size() < bytes) {
        if (placed < hits && text.size() + sentence.size() >= next) {
            // Short sentences holding the word, as many as this stretch needs.
            while (placed < hits && text.size() >= next - every) {
                text += QStringLiteral("A target. ");
                ++placed;
                next += every;
            }
        } else {
            text += sentence;
        }
        if (++sentences % 8 == 0)
            text += QLatin1Char('\n');
    }
    while (placed < hits) {
        text += QStringLiteral("A target. ");
        ++placed;
    }
    return text;
}

} // namespace

int main(int argc, char *argv[])
{
    bench::BenchApplication app(argc, argv);
    bench::BenchControl control;
    ControlCore &core = control.core;
    core.properties().DetectHyperLinks = false;
    int status = 0;

    const QString replaceDoc = prose(5 * 1024 * 1024, 100'000);
    core.surface().setText(replaceDoc);
    core.surface().lineCount(); // lay the document out before timing
    QElapsedTimer timer;
    timer.start();
    core.specialUndo().SaveSpecialUndoData();
    const double snapshot = ms(timer);
    timer.restart();
    const qsizetype hits = TextSearch(QStringLiteral("target"), WholeWord).allIn(core.findReplace().documentText()).size();
    std::printf("  parts: snapshot %.1f ms, finding %lld hits %.1f ms\n", snapshot, static_cast<long long>(hits), ms(timer));
    timer.restart();
    const int count = core.findReplace().ReplaceAll(QStringLiteral("target"), QStringLiteral("goal"), WholeWord);
    const double replacing = ms(timer);
    const bool oneStep = !core.surface().canUndo() && threadState().lastUndoKind == ReplaceTextUD;
    std::printf("ReplaceAll, 5 MB, 100,000 hits:    %8.1f ms  (goal < 1000; %d replaced, %s)\n", replacing, count,
                oneStep ? "one undo step" : "NOT one undo step");
    timer.restart();
    core.specialUndo().HyperUndo();
    const bool restored = core.surface().text() == replaceDoc;
    std::printf("HyperUndo of it:                   %8.1f ms  (%s)\n", ms(timer),
                restored ? "document restored" : "NOT restored");
    if (count != 100'000 || !oneStep || !restored)
        status = 1;

    QString findDoc = prose(10 * 1024 * 1024, 0);
    findDoc += QStringLiteral("zebra");
    core.surface().setText(findDoc);
    core.surface().lineCount();
    for (const FindOptionsQ options : {AllMatches, WholeWord_MatchCase}) {
        // An edit (the first letter typed over), so that the first search reads the text anew.
        core.surface().setSelection(0, 1);
        core.surface().replaceSelection(findDoc.left(1));
        core.surface().setSelStart(0);
        timer.restart();
        const int first = core.findReplace().Find2(QStringLiteral("zebra"), FindNext, options);
        const double firstMs = ms(timer);
        core.surface().setSelStart(0);
        timer.restart();
        const int again = core.findReplace().Find2(QStringLiteral("zebra"), FindNext, options);
        const double againMs = ms(timer);
        timer.restart();
        const QString &text = core.findReplace().documentText();
        const double textMs = ms(timer);
        timer.restart();
        const qsizetype searched = TextSearch(QStringLiteral("zebra"), options).indexIn(text, 0);
        const double searchMs = ms(timer);
        timer.restart();
        core.surface().setSelection(int(searched), 5);
        std::printf("  parts: text %.2f ms, search %.2f ms, select %.2f ms\n", textMs, searchMs, ms(timer));
        std::printf("Find2 last word, 10 MB, options %d: %8.1f ms first after a change, %6.2f ms next "
                    "(goal < 20; found at %d)\n",
                    int(options), firstMs, againMs, again);
        if (first != findDoc.size() - 5 || again != first)
            status = 1;
    }
    return status;
}
