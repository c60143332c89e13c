#include "findreplace/findreplace.h"

#include "core/controlcore.h"
#include "core/threadstate.h"
#include "editing/displayfreeze.h"
#include "editing/specialundo.h"
#include "findreplace/findreplacefrm.h"
#include "findreplace/textsearch.h"
#include "hyperlinks/hyperlinks.h"
#include "spelling/misspellings.h"

#include <algorithm>

namespace kvrtb {

namespace {

/// Raises the rewrite-in-progress flag for a scope and puts back what it was.
class RewriteInProgress {
public:
    RewriteInProgress() : m_previous(threadState().rewriteInProgress) { threadState().rewriteInProgress = true; }
    ~RewriteInProgress() { threadState().rewriteInProgress = m_previous; }
    RewriteInProgress(const RewriteInProgress &) = delete;
    RewriteInProgress &operator=(const RewriteInProgress &) = delete;

private:
    bool m_previous;
};

int searchOptions(int options)
{
    return options & (WholeWord | MatchCase);
}

} // namespace

FindReplace::FindReplace(ControlCore &core) : m_core(core) {}

FindReplace::~FindReplace()
{
    delete m_dialog.data();
}

FindReplaceFrm *FindReplace::dialog() const
{
    return m_dialog.data();
}

const QString &FindReplace::documentText()
{
    EditorSurface &surface = m_core.surface();
    const quint64 revision = surface.revision();
    if (!m_textValid || revision != m_textRevision) {
        m_text = surface.text();
        m_textRevision = revision;
        m_textValid = true;
    }
    return m_text;
}

int FindReplace::select(int position, int length)
{
    m_core.surface().setSelection(position, length);
    return position;
}

int FindReplace::Find2(const QString &TextToFind, FindDirectionQ FindDirection, FindOptionsQ FindOptions,
                       bool SkipURLEmail)
{
    if (TextToFind.isEmpty())
        return -1;
    EditorSurface &surface = m_core.surface();
    const int options = searchOptions(FindOptions);
    const TextSearch search(TextToFind, options);
    const int length = int(TextToFind.size());
    const QString &text = documentText();
    auto isNotWord = [&](qsizetype hit) { return SkipURLEmail && m_core.misspellings().DetectNotWords(int(hit)); };

    if (FindDirection != FindPrevious) {
        qsizetype from = surface.selStart() + surface.selLength();
        for (;;) {
            const qsizetype hit = search.indexIn(text, from);
            if (hit < 0)
                return -1;
            if (!isNotWord(hit))
                return select(int(hit), length);
            from = hit + length;
        }
    }

    // Backward: the last occurrence (case as the options say) that ends before the selection,
    // then the whole-word rule; a candidate that fails it sends the search further back only
    // under the whole-word options.
    const TextSearch candidates(TextToFind, options & MatchCase);
    qsizetype end = std::max(surface.selStart(), 1);
    for (;;) {
        const qsizetype candidate = candidates.lastIndexIn(text, end);
        if (candidate < 0)
            return -1;
        if (search.matchesAt(text, candidate)) {
            if (!isNotWord(candidate))
                return select(int(candidate), length);
        } else if (!(options & WholeWord)) {
            return -1;
        }
        end = candidate;
    }
}

bool FindReplace::FindVerify(const QString &FVTextToFind, FindOptionsQ FVFindOptions)
{
    return TextSearch(FVTextToFind, searchOptions(FVFindOptions)).indexIn(documentText(), 0) >= 0;
}

int FindReplace::TopLineSelStart() const
{
    const EditorSurface &surface = m_core.surface();
    return std::max(surface.lineIndex(surface.firstVisibleLine()), 0);
}

void FindReplace::ExitFindRep()
{
    threadState().cancelRequested = true;
}

void FindReplace::ShowFindReplace()
{
    EditorSurface &surface = m_core.surface();
    if (!m_dialog)
        m_dialog = new FindReplaceFrm(m_core, surface.widget());
    const QString selected = surface.selectedText();
    if (!selected.isEmpty() && !selected.contains(QLatin1Char('\n')))
        m_dialog->setFindText(selected);
    m_dialog->show();
    m_dialog->raise();
    m_dialog->activateWindow();
}

int FindReplace::ReplaceAll(const QString &find, const QString &replacement, FindOptionsQ options,
                            std::optional<Colour> fontColour)
{
    const TextSearch search(find, searchOptions(options));
    return replaceEach(
        [&](const QString &text) {
            QList<EditorSurface::TextReplacement> batch;
            for (const qsizetype hit : search.allIn(text))
                batch.append({int(hit), int(find.size()), replacement});
            return batch;
        },
        fontColour);
}

int FindReplace::replaceEach(const ReplacementsIn &replacementsIn, std::optional<Colour> fontColour)
{
    ThreadState &state = threadState();
    state.cancelRequested = false;
    QList<EditorSurface::TextReplacement> batch = replacementsIn(documentText());
    if (batch.isEmpty())
        return 0;

    EditorSurface &surface = m_core.surface();
    PlatformServices &services = m_core.services();
    m_core.events().begin();
    int count = 0;
    {
        BusyGuard busy(services);
        RewriteInProgress rewriting;
        state.replaceTopPosition = TopLineSelStart();
        state.replacePositionRestored = false;
        m_core.specialUndo().SaveSpecialUndoData();
        const quint64 revision = surface.revision();

        // Count the replacements one by one, yielding now and then, so that a stop request
        // (ExitFindRep, the dialog closing) ends the pass after the replacement at hand.
        for (qsizetype i = 0; i < batch.size(); ++i) {
            ++count;
            if (count % kYieldInterval == 0)
                services.processEvents();
            if (state.cancelRequested)
                break;
        }
        // Input handled during a yield may have changed the text: take the hits afresh then.
        if (surface.revision() != revision)
            batch = replacementsIn(documentText());
        count = std::min(count, int(batch.size()));
        batch.resize(count);

        CharFormat colour;
        if (fontColour)
            colour.color = translateColour(*fontColour);
        if (count > 0) {
            QuietSelection quiet(m_core);
            DisplayFreeze freeze(m_core);
            surface.replaceRanges(batch, fontColour ? &colour : nullptr);
        }
        state.lastUndoKind = ReplaceTextUD;
        m_core.hyperlinks().EmptyEditorUndoBuffer();
        m_core.hyperlinks().RestoreTopPositionTo(state.replaceTopPosition);
        state.replacePositionRestored = true;
    }
    m_core.events().finish();
    m_core.events().ready();
    return count;
}

int FindReplace::ReplaceNext(const QString &find, const QString &replacement, FindOptionsQ options,
                             std::optional<Colour> fontColour, bool *replaced)
{
    EditorSurface &surface = m_core.surface();
    const TextSearch search(find, searchOptions(options));
    const int start = surface.selStart();
    const bool selectionIsHit = surface.selLength() == find.size() && search.matchesAt(documentText(), start);
    if (selectionIsHit) {
        CharFormat colour;
        if (fontColour)
            colour.color = translateColour(*fontColour);
        surface.replaceRanges({{start, int(find.size()), replacement}}, fontColour ? &colour : nullptr);
        surface.setSelStart(start + int(replacement.size()));
    }
    if (replaced)
        *replaced = selectionIsHit;
    return Find2(find, FindNext, options, false);
}

} // namespace kvrtb
