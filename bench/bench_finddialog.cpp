// The find dialog's engine on a 5 MB document: how long counting every match takes, how long
// the longest turn of the event loop is meanwhile (what the user feels as a freeze), how many
// matches are highlighted, and one find next.

#include "benchsupport.h"
#include "findreplace/findreplace.h"
#include "findreplace/findsession.h"

#include <QCoreApplication>
#include <QThread>

#include <algorithm>
#include <cstdio>

using namespace kvrtb;
using kvrtb::bench::ms;

namespace {

/// About \a bytes of text in short paragraphs, one "target" word in every fifth one.
QString document(int bytes)
{
    const QString plain = QStringLiteral("The quick brown fox jumps over the lazy dog near the bank of the river.\n");
    const QString marked = QStringLiteral("A target sits by the bridge where the fox and the dog meet.\n");
    QString text;
    text.reserve(bytes + 100);
    for (int i = 0; text.size() < bytes; ++i)
        text += i % 5 == 4 ? marked : plain;
    return text;
}

} // namespace

int main(int argc, char *argv[])
{
    bench::BenchApplication app(argc, argv);
    bench::BenchControl control;
    ControlCore &core = control.core;
    core.properties().DetectHyperLinks = false;
    core.surface().setText(document(5 * 1024 * 1024));
    core.surface().lineCount();
    QElapsedTimer timer;
    timer.start();
    const QString &text = core.findReplace().documentText();
    const double reading = ms(timer);
    timer.restart();
    const QString searchable = FindQuery::searchable(text);
    const double checking = ms(timer);
    QList<EditorSurface::TextSpan> spans;
    for (int i = 0; i < FindSession::kMaxHighlights; ++i)
        spans.append({i * 50, 3});
    timer.restart();
    core.surface().setDecorations(EditorSurface::DecorationLayer::FindMatch, spans);
    const double drawing = ms(timer);
    core.surface().setDecorations(EditorSurface::DecorationLayer::FindMatch, {});
    std::printf("  parts: reading the text %.1f ms, checking it %.1f ms, setting %d highlights %.1f ms\n", reading,
                checking, FindSession::kMaxHighlights, drawing);

    FindSession session(core);
    session.activate();

    struct Case {
        const char *name;
        FindQuery::Settings settings;
    };
    const Case cases[] = {
        {"literal \"the\"", {QStringLiteral("the"), false, false, false}},
        {"literal whole word \"target\"", {QStringLiteral("target"), false, true, true}},
        {"regex \"\\b[bf]\\w+\"", {QStringLiteral("\\b[bf]\\w+"), true, false, false}},
        {"regex \"fox|dog\" whole word", {QStringLiteral("fox|dog"), true, true, false}},
    };
    std::printf("5 MB document, %d characters; slices of %d ms\n", core.surface().textLength(),
                FindSession::kSliceMilliseconds);
    int status = 0;
    for (const Case &c : cases) {
        core.surface().setSelStart(0);
        session.setQuery(c.settings);
        // The count starts after the recount delay; it is not part of the figures.
        QThread::msleep(FindSession::kRecountDelay + 20);
        QElapsedTimer total;
        total.start();
        double longestTurn = 0;
        int turns = 0;
        while (!session.countComplete() && !session.countTooComplex()) {
            QElapsedTimer turn;
            turn.start();
            QCoreApplication::processEvents();
            longestTurn = std::max(longestTurn, ms(turn));
            ++turns;
        }
        const double counting = ms(total);
        total.restart();
        session.findNext();
        const double finding = ms(total);
        core.surface().setSelStart(core.surface().textLength() / 2);
        total.restart();
        session.findPrevious();
        const double findingBack = ms(total);
        std::printf("%-32s %7d matches: counted in %7.1f ms over %4d turns, longest turn %5.1f ms; "
                    "%5lld highlighted; find next %.1f ms, previous from the middle %.1f ms (%s)\n",
                    c.name, session.matchCount(), counting, turns, longestTurn,
                    static_cast<long long>(session.highlighted().size()), finding, findingBack,
                    qPrintable(session.countText()));
        if (session.matchCount() == 0 || session.highlighted().size() > FindSession::kMaxHighlights)
            status = 1;
    }
    return status;
}
