#include "editing/specialundo.h"

#include "core/controlcore.h"
#include "core/kvrtbtypes.h"
#include "core/threadstate.h"
#include "editing/displayfreeze.h"
#include "hyperlinks/hyperlinks.h"

#include <QStringList>

namespace kvrtb {

namespace {

/// Marks the RTF lines a snapshot drops; no RTF text holds it (the writer escapes such bytes).
const QString kSentinel = QString(6, QChar(0x00F8));

/// Only spaces are trimmed, as the snapshot's writer and reader expect; other white space is
/// part of the RTF.
QString trimSpaces(const QString &text)
{
    int from = 0;
    int to = int(text.size());
    while (from < to && text.at(from) == QLatin1Char(' '))
        ++from;
    while (to > from && text.at(to - 1) == QLatin1Char(' '))
        --to;
    return text.mid(from, to - from);
}

/// A line of its own that is a carriage return and "\par ".
const QString kBreakLine = QStringLiteral("\r\\par ");

/// True when \a rtf has a line equal to `kBreakLine`.
bool hasBreakLine(const QString &rtf)
{
    for (qsizetype at = rtf.indexOf(kBreakLine); at >= 0; at = rtf.indexOf(kBreakLine, at + 1)) {
        const qsizetype end = at + kBreakLine.size();
        if ((at == 0 || rtf.at(at - 1) == QLatin1Char('\n')) && (end == rtf.size() || rtf.at(end) == QLatin1Char('\n')))
            return true;
    }
    return false;
}

} // namespace

SpecialUndo::SpecialUndo(ControlCore &core)
    : m_core(core)
{
}

QString SpecialUndo::CaptureUndoSnapshot(const EditorSurface &surface)
{
    const QString rtf = surface.rtf();
    // Only a line that is exactly a carriage return and "\par " can be dropped; when the RTF
    // holds none, the snapshot is the RTF as it stands, found without splitting either text.
    if (surface.textLength() == 0 || !hasBreakLine(rtf))
        return rtf;
    const QString plain = surface.text();

    QStringList rtfLines = rtf.split(QLatin1Char('\n'));
    const QStringList plainLines = plain.split(QLatin1Char('\n'));
    int cursor = 0;
    bool inBody = false;
    bool dropped = false;
    for (QString &line : rtfLines) {
        if (!inBody)
            inBody = line.contains(QLatin1String("\\pard\\"));
        if (!inBody)
            continue;
        if (line == kBreakLine) {
            const QString under = cursor >= 0 && cursor < plainLines.size() ? plainLines.at(cursor) : QString();
            if (!under.isEmpty() && under != QLatin1String("\r")) {
                line = kSentinel;
                dropped = true;
                --cursor;
            }
        }
        ++cursor;
    }
    if (!dropped)
        return rtf;
    QStringList kept;
    kept.reserve(rtfLines.size());
    for (const QString &line : std::as_const(rtfLines)) {
        if (!line.contains(kSentinel))
            kept.append(line);
    }
    return kept.join(QLatin1Char('\n'));
}

QString SpecialUndo::StripLineBreaks(const QString &text)
{
    QString result = trimSpaces(text);
    result.remove(QStringLiteral("\r\n"));
    return result;
}

namespace {
struct SnapshotPolicy {
    bool keepInHistory = true;
};
} // namespace

void SpecialUndo::setKeepSnapshotsInHistory(bool keep)
{
    perThread<SnapshotPolicy>().keepInHistory = keep;
}

QString SpecialUndo::snapshotText()
{
    SpecialUndoSlot &slot = threadState().specialUndo;
    if (slot.keptBy)
        writeKeptSnapshot(slot.keptBy);
    return slot.writtenText;
}

void SpecialUndo::writeKeptSnapshot(EditorSurface *surface)
{
    SpecialUndoSlot &slot = threadState().specialUndo;
    if (slot.keptBy != surface)
        return; // a later capture replaced it
    slot.keptBy = nullptr;
    QString text;
    slot.readable = surface->readAtHistoryPoint([&text, surface] { text = CaptureUndoSnapshot(*surface); });
    slot.writtenText = text;
    surface->forgetHistoryPoint();
}

void SpecialUndo::takeIntoSlot(bool kept, int selStart, int selLength)
{
    EditorSurface &surface = m_core.surface();
    SpecialUndoSlot &slot = threadState().specialUndo;
    slot.selLength = selLength;
    slot.selStart = selStart;
    if (slot.keptBy && slot.keptBy != &surface)
        slot.keptBy->forgetHistoryPoint();
    slot.keptBy = kept ? &surface : nullptr;
    slot.writtenText = kept ? QString() : CaptureUndoSnapshot(surface);
    slot.readable = true;
    m_linkUndoPending = true;
}

void SpecialUndo::storeInSlot()
{
    EditorSurface &surface = m_core.surface();
    EditorSurface *kept = &surface;
    const bool marked =
        perThread<SnapshotPolicy>().keepInHistory && surface.markHistoryPoint([kept] { writeKeptSnapshot(kept); });
    takeIntoSlot(marked, surface.selStart(), surface.selLength());
}

bool SpecialUndo::storeStateBeforeLastEdit()
{
    EditorSurface &surface = m_core.surface();
    EditorSurface *kept = &surface;
    int caret = -1;
    if (!perThread<SnapshotPolicy>().keepInHistory ||
        !surface.markHistoryPointBeforeLastEdit([kept] { writeKeptSnapshot(kept); }, &caret))
        return false;
    takeIntoSlot(true, caret, 0);
    return true;
}

void SpecialUndo::SaveSpecialUndoData()
{
    m_core.hyperlinks().SaveTopPosition();
    storeInSlot();
    threadState().specialUndo.available = true;
}

void SpecialUndo::SaveRegularUndoData()
{
    if (m_undoRunState >= 1)
        return;
    m_core.hyperlinks().SaveTopPosition();
    if (m_core.surface().canUndo() && storeStateBeforeLastEdit()) {
        // The state before the edit is known without going back over it: the host still sees
        // the two undo steps of the round trip.
        for (int step = 0; step < 2; ++step) {
            m_core.events().begin();
            m_core.events().finish();
            m_core.events().ready();
            m_undoRunState = 0;
            m_core.refreshRuler();
        }
    } else {
        Undo();
        storeInSlot();
        Undo(); // the second step of the toggling undo redoes the edit
    }
    threadState().specialUndo.available = true;
}

void SpecialUndo::SaveDeleteUndoData()
{
    if (m_undoRunState == 1) {
        m_core.hyperlinks().EmptyEditorUndoBuffer();
        return;
    }
    Undo();
    m_core.hyperlinks().SaveTopPosition();
    storeInSlot();
    Undo();
    m_core.hyperlinks().EmptyEditorUndoBuffer();
    threadState().specialUndo.available = true;
}

void SpecialUndo::SaveInLinkUndoData()
{
    if (m_undoRunState >= 1)
        return;
    SaveSpecialUndoData();
}

bool SpecialUndo::GetCanUndoSpecial() const
{
    return threadState().specialUndo.available;
}

bool SpecialUndo::CanUndo() const
{
    return m_core.surface().canUndo() && !threadState().colouringBusy;
}

void SpecialUndo::Undo()
{
    m_core.events().begin();
    EditorSurface &surface = m_core.surface();
    if (!surface.canUndo())
        return;
    surface.undo();
    m_core.events().finish();
    m_core.events().ready();
    m_undoRunState = 0;
    m_core.refreshRuler();
}

void SpecialUndo::HyperUndo()
{
    EditorSurface &surface = m_core.surface();
    ThreadState &state = threadState();
    BusyGuard busy(m_core.services());
    state.rewriteInProgress = true;
    m_undoRunState = 0;
    m_core.events().begin();
    {
        DisplayFreeze freeze(m_core);
        const QString currentText = CaptureUndoSnapshot(surface);
        const int currentStart = surface.selStart();
        const int currentLength = surface.selLength();

        SpecialUndoSlot &slot = state.specialUndo;
        bool restored = false;
        if (slot.keptBy == &surface) {
            // The snapshot is this document's own history point: going back through the
            // history gives the state itself, without writing and reading it as RTF.
            slot.keptBy = nullptr;
            restored = surface.restoreHistoryPoint();
            if (!restored) {
                surface.forgetHistoryPoint();
                slot.readable = false;
            }
        } else {
            const QString snapshot = snapshotText();
            restored = slot.readable && surface.setRtf(trimSpaces(snapshot));
        }
        if (restored) {
            if (m_core.properties().DetectHyperLinks) {
                state.rewriteInProgress = false;
                // The linking pass remembers its own top position; the snapshot's is the one
                // to go back to.
                const int snapshotTop = state.savedTopPosition;
                m_core.hyperlinks().HyperLinkDocument();
                state.savedTopPosition = snapshotTop;
            }
            surface.setSelStart(slot.selStart);
            surface.setSelLength(slot.selLength);
            freeze.release();

            if (state.lastUndoKind == HyperLinkUD)
                m_core.hyperlinks().RestoreTopPosition();
            else if (state.lastUndoKind == ReplaceTextUD)
                m_core.hyperlinks().RestoreTopPositionTo(state.replacePositionRestored ? state.savedTopPosition
                                                                                        : state.replaceTopPosition);

            slot.writtenText = currentText;
            slot.readable = true;
            slot.selLength = currentLength;
            slot.selStart = currentStart;
        }
    }
    m_core.events().finish();
    m_core.events().ready();
    m_core.refreshRuler(); // the handles and the tab stops of the caret's paragraph
    m_core.hyperlinks().EmptyEditorUndoBuffer();
}

void SpecialUndo::EmptyRTBUndoRedoBuffer()
{
    m_core.surface().emptyUndoBuffer();
}

} // namespace kvrtb
