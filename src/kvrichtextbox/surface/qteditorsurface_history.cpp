// The history point of the Qt surface: an earlier state of the document kept as a place in the
// document's own undo history rather than as a copy of the document.
//
// The point is the document's number of undo steps at that state. Three things keep that number
// meaning the same state for as long as the point is held:
// - the history below the point is never emptied: `emptyUndoBuffer` only raises the floor of the
//   one-step undo, and whatever does empty it (a new document, the surface going away) first
//   lets the point's keeper read it;
// - the document's modified state is set at the point, so Qt starts a new undo step for the next
//   edit made there instead of merging it into the step below the point;
// - the editor's own many-step undo keys are swallowed, and the one-step undo lets go of the
//   point before stepping below it.

#include "surface/qteditorsurface.h"

#include "surface/surfacetextedit.h"

#include <QScrollBar>
#include <QTextDocument>

namespace kvrtb {

bool QtEditorSurface::markHistoryPoint(std::function<void()> beforeLost)
{
    forgetHistoryPoint();
    QTextDocument *doc = document();
    if (!doc->isUndoRedoEnabled())
        return false;
    pauseBatch();
    if (m_lastWasUndo && doc->isRedoAvailable()) {
        // The state just before the last edit (the one-step undo has stepped back over it): the
        // history below is of no further use, and dropping it keeps the history short.
        doc->clearUndoRedoStacks(QTextDocument::UndoStack);
        m_undoFloor = 0;
    } else if (doc->availableUndoSteps() <= m_undoFloor && !doc->isRedoAvailable()) {
        clearHistory(); // nothing the one-step undo could still reach
    }
    resyncLastStep();
    m_historyPoint = doc->availableUndoSteps();
    m_historyPointBroken = false;
    // The next edit made at this state starts an undo step of its own (Qt merges a typed
    // character into the step before it only while the document counts as modified).
    doc->setModified(false);
    m_beforeHistoryPointLost = std::move(beforeLost);
    resumeBatch();
    return true;
}

bool QtEditorSurface::markHistoryPointBeforeLastEdit(std::function<void()> beforeLost, int *undoneCaret)
{
    const QTextDocument *doc = document();
    // Only a step of one change that inserted text, seen whole (its start agrees with the step
    // count), still on top of the history, and in reach of the one-step undo.
    const int steps = doc->availableUndoSteps();
    if (m_freezeCount > 0 || m_lastWasUndo || !doc->isUndoRedoEnabled() || m_lastStep.undoneCaret < 0 ||
        m_lastStep.end != steps || m_lastStep.start != steps - 1 - m_lastStep.fitted || m_lastStep.start < m_undoFloor)
        return false;
    forgetHistoryPoint();
    m_historyPoint = m_lastStep.start;
    m_historyPointBroken = false;
    m_beforeHistoryPointLost = std::move(beforeLost);
    if (undoneCaret)
        *undoneCaret = m_lastStep.undoneCaret;
    return true;
}

bool QtEditorSurface::hasHistoryPoint() const
{
    return m_historyPoint >= 0;
}

void QtEditorSurface::forgetHistoryPoint()
{
    m_historyPoint = -1;
    m_historyPointBroken = false;
    m_beforeHistoryPointLost = nullptr;
}

void QtEditorSurface::letGoOfHistoryPoint()
{
    if (m_historyPoint < 0)
        return;
    const std::function<void()> beforeLost = std::move(m_beforeHistoryPointLost);
    if (beforeLost)
        beforeLost();
    forgetHistoryPoint();
}

void QtEditorSurface::clearHistory()
{
    document()->clearUndoRedoStacks();
    m_undoFloor = 0;
    m_lastWasUndo = false;
    resyncLastStep();
}

void QtEditorSurface::resyncLastStep()
{
    m_lastStep = LastStep();
    m_stepsAtLastStepEnd = document()->availableUndoSteps();
}

bool QtEditorSurface::rollBackToHistoryPoint()
{
    QTextDocument *doc = document();
    if (m_historyPoint < 0 || m_historyPointBroken || doc->availableUndoSteps() < m_historyPoint)
        return false;
    const int now = doc->availableUndoSteps();
    while (doc->availableUndoSteps() > m_historyPoint) {
        const int before = doc->availableUndoSteps();
        doc->undo();
        if (doc->availableUndoSteps() == before)
            break; // the history ends here
    }
    if (doc->availableUndoSteps() == m_historyPoint)
        return true;
    // An edit joined to the step below the point: no whole step ends there.
    while (doc->availableUndoSteps() < now && doc->isRedoAvailable())
        doc->redo();
    m_historyPointBroken = true;
    return false;
}

bool QtEditorSurface::readAtHistoryPoint(const std::function<void()> &read)
{
    if (m_historyPoint < 0 || m_historyPointBroken)
        return false;
    QTextDocument *doc = document();
    pauseBatch();
    const bool updates = m_edit->updatesEnabled();
    m_edit->setUpdatesEnabled(false);
    const QTextCursor widgetCursor = m_edit->textCursor();
    const int anchor = widgetCursor.anchor();
    const int position = widgetCursor.position();
    const QTextCharFormat typing = widgetCursor.charFormat();
    const int frozenAnchor = m_frozenCursor.anchor();
    const int frozenPosition = m_frozenCursor.position();
    const int scrollX = m_edit->horizontalScrollBar()->value();
    const int scrollY = m_edit->verticalScrollBar()->value();
    const int now = doc->availableUndoSteps();

    m_quietHistory = true;
    const bool there = rollBackToHistoryPoint();
    if (there) {
        read();
        while (doc->availableUndoSteps() < now && doc->isRedoAvailable())
            doc->redo();
    }
    // Put the selection, the typing format and the view back as they were.
    QTextCursor restored(doc);
    restored.setPosition(anchor);
    restored.setPosition(position, QTextCursor::KeepAnchor);
    if (restored.charFormat() != typing && !restored.hasSelection())
        restored.setCharFormat(typing);
    m_edit->setTextCursor(restored);
    if (m_freezeCount > 0) {
        m_frozenCursor = QTextCursor(doc);
        m_frozenCursor.setPosition(frozenAnchor);
        m_frozenCursor.setPosition(frozenPosition, QTextCursor::KeepAnchor);
    }
    m_edit->horizontalScrollBar()->setValue(scrollX);
    m_edit->verticalScrollBar()->setValue(scrollY);
    m_quietHistory = false;
    resyncLastStep();
    m_edit->setUpdatesEnabled(updates);
    resumeBatch();
    return there;
}

bool QtEditorSurface::restoreHistoryPoint()
{
    pauseBatch();
    const bool there = rollBackToHistoryPoint();
    resumeBatch();
    if (!there)
        return false;
    forgetHistoryPoint();
    pauseBatch();
    clearHistory();
    resumeBatch();
    m_modified = true;
    setCursor(QTextCursor(document()));
    markLinesDirty();
    return true;
}

} // namespace kvrtb
