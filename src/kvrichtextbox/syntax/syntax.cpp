#include "syntax/syntax.h"

#include "core/controlcore.h"
#include "core/kvrtbtypes.h"
#include "core/threadstate.h"
#include "editing/displayfreeze.h"
#include "editing/specialundo.h"
#include "hyperlinks/hyperlinks.h"
#include "syntax/keywordpatterns.h"

#include <QElapsedTimer>

namespace kvrtb {

namespace {

/// The cancel request of the colouring run on this thread (`Cancel_Syntax`).
struct ColouringCancel {
    bool requested = false;
};

/// Times a run starts over because the text changed while it yielded, before it gives up.
constexpr int kMaxRestarts = 4;

bool cancelRequested()
{
    // Both the colouring's own request and the control-wide stop flag of KillSwitch stop it.
    return perThread<ColouringCancel>().requested || threadState().cancelRequested;
}

/// The fixed-pitch font and colour every run sets over its subject, with the formatting the
/// option removes. The string pass marks strings protected for the keyword pass only, and the
/// marker is cleared over the whole subject afterwards, so the net effect is "not protected".
CharFormat baseFormat(int formatting)
{
    CharFormat format;
    format.fontName = QStringLiteral("Courier New");
    format.fontSize = 10;
    format.color = 0;
    format.protectedText = false;
    const bool all = formatting == Remove_All_Formatting;
    if (all || formatting == Remove_Bold)
        format.bold = false;
    if (all || formatting == Remove_Italics)
        format.italic = false;
    if (all || formatting == Remove_StrikeThru)
        format.strikeThrough = false;
    if (all || formatting == Remove_UnderLine)
        format.underline = false;
    return format;
}

} // namespace

Syntax::Syntax(ControlCore &core)
    : m_core(core)
{
}

QString Syntax::invalidMethodTitle()
{
    return QStringLiteral("Invalid Syntax_Method");
}

QString Syntax::invalidMethodText(const QString &member)
{
    const QString indent(17, QLatin1Char(' '));
    return QStringLiteral("Invalid Syntax_Method assigned to %1 function\r\n").arg(member)
           + QStringLiteral("Valid Methods:\r\n") + indent + QStringLiteral("Syntax_All_Text or 1\r\n") + indent
           + QStringLiteral("Syntax_Selected_Text or 2\r\n") + QStringLiteral("\r\n");
}

void Syntax::ApplyVB6Syntax(int Syntax_Method, int Syntax_Formatting)
{
    applySyntax(Variant::VB6, QStringLiteral("ApplyVB6Syntax"), Syntax_Method, Syntax_Formatting);
}

void Syntax::ApplyVBNetSyntax(int Syntax_Method, int Syntax_Formatting)
{
    applySyntax(Variant::VBNet, QStringLiteral("ApplyVBNetSyntax"), Syntax_Method, Syntax_Formatting);
}

void Syntax::ApplyMySyntax(int Syntax_Method, int Syntax_Formatting)
{
    applySyntax(Variant::My, QStringLiteral("ApplyMySyntax"), Syntax_Method, Syntax_Formatting);
}

void Syntax::Cancel_Syntax()
{
    if (threadState().colouringBusy)
        perThread<ColouringCancel>().requested = true;
}

bool Syntax::CanCancelSyntax() const
{
    return threadState().colouringBusy;
}

ColouringEngine::Rules Syntax::rulesFor(Variant variant) const
{
    const ControlProperties &p = m_core.properties();
    ColouringEngine::Rules rules;
    switch (variant) {
    case Variant::VB6:
    case Variant::VBNet: {
        const bool vb6 = variant == Variant::VB6;
        rules.passes[ColouringEngine::CommentRole] = {KeywordPatterns::comment(),
                                                      vb6 ? p.ColorVB6Comment : p.ColorVBNetComment,
                                                      QStringLiteral("The comment pattern")};
        rules.passes[ColouringEngine::StringRole] = {KeywordPatterns::string(),
                                                     vb6 ? p.ColorVB6String : p.ColorVBNetString,
                                                     QStringLiteral("The string pattern")};
        rules.passes[ColouringEngine::KeywordRole] = {vb6 ? KeywordPatterns::vb6Keywords()
                                                          : KeywordPatterns::vbNetKeywords(),
                                                      vb6 ? p.ColorVB6KeyWord : p.ColorVBNetKeyWord,
                                                      QStringLiteral("The keyword pattern")};
        rules.capitalise = true;
        rules.canonicalKeywords = vb6 ? KeywordPatterns::vb6KeywordList() : KeywordPatterns::vbNetKeywordList();
        break;
    }
    case Variant::My:
        // The second list plays the part of comments, the third of strings, the first of keywords.
        rules.passes[ColouringEngine::CommentRole] = {p.MySecondString, p.ColorMySecondKeyWord,
                                                      QStringLiteral("MySecondString")};
        rules.passes[ColouringEngine::StringRole] = {p.MyThirdString, p.ColorMyThirdKeyWord,
                                                     QStringLiteral("MyThirdString")};
        rules.passes[ColouringEngine::KeywordRole] = {p.MyFirstString, p.ColorMyFirstKeyWord,
                                                      QStringLiteral("MyFirstString")};
        break;
    }
    return rules;
}

void Syntax::applySyntax(Variant variant, const QString &member, int method, int formatting)
{
    if (threadState().colouringBusy)
        return;
    if (method != Syntax_All_Text && method != Syntax_Selected_Text) {
        m_core.services().messageBox(invalidMethodText(member), MessageButtons::OK, MessageIcon::Information,
                                     invalidMethodTitle());
        return;
    }
    EditorSurface &surface = m_core.surface();
    m_core.events().begin();
    const int caret = surface.selStart();
    {
        BusyGuard busy(m_core.services());
        // The subject is searched on a worker thread while the snapshot is taken: both only
        // read, and nothing runs in between that could change the text.
        EarlySearch early = searchEarly(variant, method);
        m_core.specialUndo().SaveSpecialUndoData();
        colouringPass(variant, method, formatting, early);
    }
    if (method == Syntax_All_Text)
        surface.setSelStart(caret);
    m_core.events().finish();
    m_core.events().ready();
}

Syntax::EarlySearch Syntax::searchEarly(Variant variant, int method) const
{
    const EditorSurface &surface = m_core.surface();
    EarlySearch early;
    early.revision = surface.revision();
    early.subject = method == Syntax_All_Text ? surface.text() : surface.selectedText();
    early.matches = std::async(std::launch::async, &ColouringEngine::collect, early.subject, rulesFor(variant));
    return early;
}

void Syntax::colouringPass(Variant variant, int method, int formatting, EarlySearch &early)
{
    ThreadState &state = threadState();
    if (state.colouringBusy)
        return;
    ThreadFlagGuard busy(state.colouringBusy);
    // A stop asked for before the run began does not stop it.
    state.cancelRequested = false;
    perThread<ColouringCancel>().requested = false;
    m_core.hyperlinks().SaveTopPosition();

    EditorSurface &surface = m_core.surface();
    const ColouringEngine::Rules rules = rulesFor(variant);
    const bool allText = method == Syntax_All_Text;
    for (int attempt = 0; attempt < kMaxRestarts; ++attempt) {
        const int start = allText ? 0 : surface.selStart();
        // A restart reads the text as it is now and searches it again.
        const quint64 revision = attempt == 0 ? early.revision : surface.revision();
        const QString subject = attempt == 0 ? early.subject : allText ? surface.text() : surface.selectedText();
        ColouringEngine engine = attempt == 0 ? ColouringEngine(subject, rules, early.matches.get())
                                              : ColouringEngine(subject, rules);
        if (attempt == 0) {
            for (const QString &warning : engine.warnings())
                qWarning("KvRTB: %s", qPrintable(warning));
        }
        if (engine.total() == 0)
            return; // nothing to colour: the document stays exactly as it is

        const bool finished = walk(engine);
        m_core.setProgress(0);
        if (!finished) {
            // Nothing was applied yet, so the document is exactly as it was before the run.
            perThread<ColouringCancel>().requested = false;
            state.cancelRequested = false;
            return;
        }
        // The walk yielded: if the text changed meanwhile (the user typed), its positions no
        // longer fit, so it starts over on the text as it is now. An unchanged revision is an
        // unchanged document, and then the text need not be read again to tell.
        if (surface.revision() != revision) {
            const QString now = allText ? surface.text() : surface.textRange(start, int(subject.size()));
            if (now != subject)
                continue;
        }

        applyResult(engine, start, allText ? -1 : int(subject.size()), formatting);
        // Back to the first visible line of before the run. Only the part of the document down
        // to it is laid out again now; the rest follows while the application is idle.
        surface.scrollToPosition(state.savedTopPosition);
        m_core.hyperlinks().EmptyEditorUndoBuffer();
        return;
    }
    qWarning("KvRTB: the text kept changing while it was being coloured; nothing was coloured.");
}

bool Syntax::walk(ColouringEngine &engine)
{
    PlatformServices &services = m_core.services();
    int sinceYield = 0;
    bool skipNext = false;
    QElapsedTimer sinceRepaint;
    sinceRepaint.start();
    while (!engine.atEnd()) {
        const bool passEnded = engine.handleNext(skipNext);
        skipNext = false;
        if (++sinceYield < kMatchesPerYield && !passEnded)
            continue;
        sinceYield = 0;
        // Repainting the bar costs far more than the yield itself: it follows at a bounded rate.
        const int percent = ColouringEngine::percentage(engine.handled(), engine.total());
        if (sinceRepaint.elapsed() >= kProgressRepaintInterval) {
            m_core.setProgress(percent);
            sinceRepaint.restart();
        } else {
            m_core.setProgressValue(percent);
        }
        services.processEvents();
        if (cancelRequested())
            return false;
        // Input the user gave during the yield: the next match is passed over uncoloured.
        skipNext = services.hasPendingInput();
    }
    return true;
}

void Syntax::applyResult(const ColouringEngine &engine, int start, int length, int formatting)
{
    EditorSurface &surface = m_core.surface();
    QuietSelection quiet(m_core);
    DisplayFreeze freeze(m_core);
    if (formatting == Remove_All_Formatting || formatting == Remove_Bullets) {
        surface.setSelection(start, length);
        ParaFormat noBullets;
        noBullets.numbering = Numbering::None;
        surface.setSelectionParaFormat(noBullets);
    }
    surface.applyColourRuns(start, length, baseFormat(formatting), engine.colourRuns(start));
    surface.rewriteCharacters(engine.rewrites(start));
    surface.setSelection(start, 0);
}

} // namespace kvrtb
