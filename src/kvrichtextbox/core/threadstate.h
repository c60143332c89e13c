#pragma once

#include <QString>

namespace kvrtb {

class EditorSurface;

/// \brief The one-step document snapshot that the control's own undo restores.
///
/// Taking a snapshot writes nothing: the state stays a history point of the surface it was
/// taken from (`keptBy`), and is written as RTF only when it is read or when that surface is
/// about to lose the history. Read the text through `SpecialUndo::snapshotText`.
struct SpecialUndoSlot {
    QString writtenText;    ///< normalised RTF of the whole document, once written
    EditorSurface *keptBy = nullptr; ///< the surface whose history point holds the snapshot
    bool readable = true;   ///< false when the kept state could not be read back
    int selLength = 0;
    int selStart = 0;
    bool available = false; ///< false until the first capture; nothing sets it back
};

/// \brief State kept once per thread and shared by every control on that thread.
///
/// Controls created on one thread see and change the same flags (a cancel request from one
/// control stops a pass running in another, one undo snapshot serves them all); controls on
/// different threads never see each other's. Obtain it with `threadState()`.
struct ThreadState {
    bool cancelRequested = false;      ///< the stop flag: set by KillSwitch and ExitFindRep
    bool linkingInProgress = false;    ///< a hyperlink marking pass is running
    bool rewriteInProgress = false;    ///< HyperUndo is rewriting the document
    bool colouringBusy = false;        ///< a keyword-colouring pass is running
    bool detectHyperLinks = true;      ///< copy of the last DetectHyperLinks setting
    int pasteLock = 0;                 ///< 3 while Paste runs: freezes may not thaw then
    int savedTopPosition = 0;          ///< first character of the first visible line, saved
    int lastUndoKind = 0;              ///< `UndoTypePE` of the last pass, 0 for neither
    bool replacePositionRestored = false; ///< the replace pass already scrolled back
    int replaceTopPosition = 0;        ///< first character of the top line the replace pass remembered
    SpecialUndoSlot specialUndo;
    QString scratch;                   ///< the shared scratch string
};

/// The calling thread's shared state.
ThreadState &threadState();

/// \brief Per-thread state of an area that keeps its own (e.g. a cache of the current pattern):
/// one instance of T per thread, created on first use.
template <typename T>
T &perThread()
{
    thread_local T instance;
    return instance;
}

} // namespace kvrtb
