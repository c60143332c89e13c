#include "spelling/misspellings.h"

#include "core/controlcore.h"
#include "core/threadstate.h"
#include "findreplace/findreplace.h"

#include <algorithm>

namespace kvrtb {

Misspellings::Misspellings(ControlCore &core) : m_core(core) {}

bool Misspellings::DetectMisspellings(QStringList &MyReturnArray, const Observer *observer)
{
    ThreadState &state = threadState();
    // The scan is a new long operation: a stop request left from before it does not count.
    state.cancelRequested = false;

    PlatformServices &services = m_core.services();
    BusyGuard busy(services);
    MisspellingScanner::Hooks hooks;
    hooks.hasPendingInput = [&services] { return services.hasPendingInput(); };
    hooks.yieldToEventLoop = [&services] { services.processEvents(); };
    hooks.isCancelled = [&state, observer] {
        return state.cancelRequested || (observer && observer->isCancelled && observer->isCancelled());
    };
    hooks.progress = [this, observer](int counter, int total) {
        m_core.setProgress(total > 0 ? int(qint64(counter) * 100 / total) : 0);
        if (observer && observer->progress)
            observer->progress(counter, total);
    };

    const bool result = MisspellingScanner::scan(m_core.surface().text(), MyReturnArray, hooks, &m_progress);
    m_core.setProgress(0);
    if (m_progress.cancelled && observer && observer->cancelled)
        observer->cancelled();
    return result;
}

int Misspellings::SpellCheck(QStringList &ReturnArray)
{
    m_list1.clear();
    m_currentEntry = -1;
    if (!DetectMisspellings(ReturnArray))
        return -1;
    if (ReturnArray.isEmpty()) // cancelled after a find: not a usable array
        return 0;
    m_list1 = ReturnArray;
    m_errorPosition = 0;
    m_errorLength = 0;
    m_currentEntry = 0;
    if (selectEntry(0, 0, FindNext) < 0) {
        // Not in the text as a whole word (e.g. one joined from both sides of a removed
        // address): the caret stays at the top, which is the current error position.
        m_core.surface().setSelStart(0);
        m_errorPosition = 0;
    }
    return int(m_list1.size());
}

void Misspellings::PrepNonSpellCheckRTB(const QStringList &PassInArray)
{
    m_list1 = PassInArray;
    m_currentEntry = -1;
    m_errorPosition = 0;
    m_errorLength = 0;
}

int Misspellings::selectEntry(int entry, int caret, int direction)
{
    EditorSurface &surface = m_core.surface();
    const int oldStart = surface.selStart();
    const int oldLength = surface.selLength();
    surface.setSelStart(caret);
    const int position = m_core.findReplace().Find2(m_list1.at(entry), FindDirectionQ(direction),
                                                    WholeWord_MatchCase, true);
    if (position < 0) {
        surface.setSelection(oldStart, oldLength);
        return -1;
    }
    m_currentEntry = entry;
    m_errorLength = surface.selLength();
    m_errorPosition = surface.selStart() + m_errorLength;
    return position;
}

int Misspellings::GoToNextSpellError()
{
    for (int entry = std::max(m_currentEntry + 1, 0); entry < m_list1.size(); ++entry) {
        const int position = selectEntry(entry, m_errorPosition, FindNext);
        if (position >= 0)
            return position;
    }
    return -1;
}

int Misspellings::GoToPreviousSpellError()
{
    const int currentStart = std::max(m_errorPosition - m_errorLength, 0);
    for (int entry = std::min(m_currentEntry, int(m_list1.size())) - 1; entry >= 0; --entry) {
        const int position = selectEntry(entry, currentStart, FindPrevious);
        if (position >= 0)
            return position;
    }
    return -1;
}

bool Misspellings::DetectNotWords(int MyHitSpot)
{
    EditorSurface &surface = m_core.surface();
    if (MyHitSpot < 0 || MyHitSpot >= surface.textLength())
        return false;
    const quint64 revision = surface.revision();
    if (!m_zonesValid || revision != m_zonesRevision) {
        // Merged into disjoint stretches (an abbreviation may lie inside an address), so that
        // one binary search answers.
        m_zones.clear();
        for (const MisspellingScanner::Zone &zone : MisspellingScanner::nonWordZones(surface.text())) {
            if (!m_zones.isEmpty() && zone.start <= m_zones.last().start + m_zones.last().length)
                m_zones.last().length = std::max(m_zones.last().length, zone.start + zone.length - m_zones.last().start);
            else
                m_zones.append(zone);
        }
        m_zonesRevision = revision;
        m_zonesValid = true;
    }
    auto after = std::upper_bound(m_zones.cbegin(), m_zones.cend(), MyHitSpot,
                                  [](int spot, const MisspellingScanner::Zone &zone) { return spot < zone.start; });
    if (after == m_zones.cbegin())
        return false;
    --after;
    return MyHitSpot < after->start + after->length;
}

} // namespace kvrtb
