#pragma once

#include <QString>

namespace kvrtb {

class ControlCore;
class EditorSurface;

/// \brief The control's own undo: a one-slot snapshot of the whole document, on top of the
/// surface's single toggling undo step.
///
/// The slot (normalised RTF, selection start and length, the "available" flag) lives in the
/// per-thread state and is shared by every control on the thread: a capture by one control
/// replaces the snapshot for all. A capture costs no copy of the document: the state is kept as
/// a point in the surface's edit history and written as RTF only when it must be (see
/// `snapshotText`); `HyperUndo` on the control that took it goes back through the history. `HyperUndo` swaps the document with the slot, so calling it
/// twice returns everything as it was.
///
/// The undo-run state belongs to each control: 0 no snapshot taken for the current run of
/// typing, 1 one taken, 2 a run that began with a deletion. The key handling sets it;
/// `Undo` and `HyperUndo` reset it to 0.
class SpecialUndo {
public:
    explicit SpecialUndo(ControlCore &core);

    /// Captures the current state. Used before whole-document rewrites and destructive edits.
    void SaveSpecialUndoData();
    /// With the undo-run state at 0: captures the state before the user's last edit (undo,
    /// capture, redo), keeping that edit.
    void SaveRegularUndoData();
    /// With the undo-run state other than 1: like `SaveRegularUndoData` but with the top
    /// position taken after the first undo, and the surface's undo emptied afterwards. At 1 it
    /// only empties the surface's undo.
    void SaveDeleteUndoData();
    /// With the undo-run state at 0: captures the current state, no undo round trip.
    void SaveInLinkUndoData();

    /// True once any capture has been made on this thread.
    bool GetCanUndoSpecial() const;
    /// True when the surface can undo and no keyword-colouring pass runs.
    bool CanUndo() const;
    /// Raises `Begin`; when the surface can undo, undoes (or redoes) its one step and raises
    /// `Finish` and `Ready`.
    void Undo();
    /// Swaps the document, selection and scroll position with the snapshot. When the snapshot
    /// cannot be read back, the document and the slot stay as they are.
    void HyperUndo();
    /// Empties the surface's own undo buffer (the snapshot stays).
    void EmptyRTBUndoRedoBuffer();

    int undoRunState() const { return m_undoRunState; }
    void setUndoRunState(int state) { m_undoRunState = state; }

    /// True when this control put a snapshot into the slot (the undo key and the menu's "Undo"
    /// then fall back on `HyperUndo`) and no load has cleared the mark since. The slot itself is
    /// shared by the thread's controls; this mark is the control's own.
    bool linkUndoPending() const { return m_linkUndoPending; }
    void clearLinkUndoPending() { m_linkUndoPending = false; }

    /// The document's RTF, normalised so that a snapshot written back and taken again does not
    /// grow by an empty paragraph per line: from the first "\pard\" line on, a line that is a
    /// carriage return and "\par " opposite a non-empty plain line is dropped.
    static QString CaptureUndoSnapshot(const EditorSurface &surface);
    /// Trims leading and trailing spaces and removes every CR LF pair.
    static QString StripLineBreaks(const QString &text);

    /// The thread's snapshot as normalised RTF, written now if it was still kept as a surface's
    /// history point (which that surface then forgets). Empty when the kept state could not be
    /// read back.
    static QString snapshotText();
    /// With false, every capture on this thread writes the document's RTF at once instead of
    /// keeping the state as a history point: slower at the start of a typing run in a long
    /// document, but the snapshot no longer rests on the document's edit history. On (true) by
    /// default.
    static void setKeepSnapshotsInHistory(bool keep);

private:
    /// Stores selection and snapshot in the slot (the available flag is set by the callers).
    /// The snapshot is kept as a history point of the surface, not written.
    void storeInSlot();
    /// Stores in the slot the state that the surface's undo would go back to, with the caret
    /// where that undo would leave it, without undoing. \return false, storing nothing, when
    /// the surface cannot tell that state so.
    bool storeStateBeforeLastEdit();
    /// The slot takes the surface's new point (or, when \a kept is false, the document written
    /// now); the point of the snapshot it held before is forgotten.
    void takeIntoSlot(bool kept, int selStart, int selLength);
    /// Writes the snapshot that \a surface keeps into the slot, if the slot's snapshot is still
    /// the one it keeps.
    static void writeKeptSnapshot(EditorSurface *surface);

    ControlCore &m_core;
    int m_undoRunState = 0;
    bool m_linkUndoPending = false;
};

} // namespace kvrtb
