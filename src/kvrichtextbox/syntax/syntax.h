#pragma once

#include "syntax/colouringengine.h"

#include <QString>

#include <future>

namespace kvrtb {

class ControlCore;

/// \brief Keyword colouring: VB6 or VB.NET source, or the host's three patterns.
///
/// A run colours every comment, string and keyword of the whole text (`Syntax_All_Text`) or of
/// the selection (`Syntax_Selected_Text`), may strip chosen formatting first, sets the text in
/// 10-point "Courier New" and, for the VB variants, restores the canonical capitalisation of
/// keywords and proper-cases "Rem" comments. It is taken back as one step by the control's own
/// undo (`HyperUndo`), whose snapshot the run takes first.
///
/// How a run goes: the matches are collected from one read of the text and walked by a
/// `ColouringEngine`, which decides every colour without touching the document. The walk yields
/// to the event loop every `kMatchesPerYield` matches and at the end of each pass, updating the
/// progress (`ProgressPercentage` at every yield, `ProgressBar1` at most every
/// `kProgressRepaintInterval`); there the host may ask `CanCancelSyntax` or
/// call `Cancel_Syntax` (or `KillSwitch`), and user input that arrived during the yield makes
/// the walk pass over the next match uncoloured. Only a walk that ran to its end is applied: the
/// colour runs and capitalisation changes go to the surface as one batch inside one display freeze.
/// So a cancelled run changes nothing at all, which is exactly the document as it was; the
/// snapshot taken at the start stays in the undo slot.
///
/// The busy flag is the per-thread one that `CanUndo` reads: while a run is busy on a thread,
/// no other colouring run starts there and `Cancel_Syntax` of any control on it cancels the run.
class Syntax {
public:
    /// Matches handled between two yields to the event loop (a few milliseconds of work), besides
    /// the yield at the end of each pass.
    static constexpr int kMatchesPerYield = 2048;
    /// The progress bar is repainted at most this often (milliseconds) during the walk, so a
    /// walk shorter than that never shows it; `ProgressPercentage` is exact at every yield.
    static constexpr qint64 kProgressRepaintInterval = 100;

    enum class Variant { VB6, VBNet, My };

    explicit Syntax(ControlCore &core);

    /// Colours VB6 source. \a Syntax_Method is `Syntax_Behavior` (1 all text, 2 the
    /// selection; anything else shows the "Invalid Syntax_Method" box and changes nothing);
    /// \a Syntax_Formatting is `Formatting_Options`. Raises `Begin`, `Finish`, `Ready` (none
    /// for an invalid method or while a run is busy).
    void ApplyVB6Syntax(int Syntax_Method, int Syntax_Formatting);
    /// Colours VB.NET source, as `ApplyVB6Syntax`.
    void ApplyVBNetSyntax(int Syntax_Method, int Syntax_Formatting);
    /// Colours the matches of the host's patterns `MyFirstString` (keyword role),
    /// `MySecondString` (comment role) and `MyThirdString` (string role); an empty pattern skips
    /// its pass, an invalid one skips it with a warning. No capitalisation.
    void ApplyMySyntax(int Syntax_Method, int Syntax_Formatting);
    /// Asks the running colouring pass to stop; nothing when none runs.
    void Cancel_Syntax();
    /// True while a colouring run is busy on this thread.
    bool CanCancelSyntax() const;

    /// What a variant colours with the control's current colours and patterns.
    ColouringEngine::Rules rulesFor(Variant variant) const;

    /// Title and text of the box that rejects a `Syntax_Method` other than 1 or 2; \a member
    /// is the public member that was called ("ApplyVB6Syntax", ...).
    static QString invalidMethodTitle();
    static QString invalidMethodText(const QString &member);

private:
    /// The subject of a run, read at its start, and its matches being found on a worker thread.
    struct EarlySearch {
        QString subject;
        quint64 revision = 0; ///< the surface's revision when the subject was read
        std::future<ColouringEngine::Matches> matches;
    };

    void applySyntax(Variant variant, const QString &member, int method, int formatting);
    /// Reads the run's subject and starts finding its matches on a worker thread.
    EarlySearch searchEarly(Variant variant, int method) const;
    /// The colouring run proper; its first attempt takes the subject and matches of \a early.
    void colouringPass(Variant variant, int method, int formatting, EarlySearch &early);
    /// Walks the engine to its end with yields; false when the run was cancelled.
    bool walk(ColouringEngine &engine);
    /// Applies the walked result and the formatting option to [start, start + length) (length
    /// -1: the whole document) as one frozen edit.
    void applyResult(const ColouringEngine &engine, int start, int length, int formatting);

    ControlCore &m_core;
};

} // namespace kvrtb
