#pragma once

#include "core/colour.h"
#include "core/editorsurface.h"
#include "syntax/keywordscanner.h"

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

#include <array>
#include <vector>

namespace kvrtb {

/// \brief The colouring of one text, worked out without touching any document.
///
/// The engine collects the matches of three patterns in the text once, then handles them one
/// at a time in the order of precedence: every match of the comment-role pattern, then the
/// string-role pattern, then the keyword-role pattern. It keeps its own copy of what the
/// document would hold after each handled match (the colour and the temporary "protected"
/// marker of every character, and the text with its capitalisation changes), so each decision
/// is the one a pass over the document itself would take: a string inside a comment stays
/// comment-coloured, a keyword inside a comment or a string is left alone.
///
/// The caller drives the walk (`handleNext`), which lets it yield, report progress and stop
/// between matches; then it takes the result as colour runs and text rewrites and applies
/// them to the surface in one batch. The text is assumed to be freshly reset to black (the
/// colouring run sets colour 0 over the whole subject before the passes).
///
/// \code
/// ColouringEngine engine(text, rules);
/// while (!engine.atEnd())
///     engine.handleNext();
/// surface.applyColourRuns(0, -1, base, engine.colourRuns(0));
/// surface.rewriteCharacters(engine.rewrites(0));
/// \endcode
class ColouringEngine {
public:
    /// The passes, in the order they run (the order is the precedence).
    enum Role { CommentRole = 0, StringRole = 1, KeywordRole = 2 };
    static constexpr int kRoleCount = 3;

    /// One pass: its pattern (empty: the pass is skipped), its colour as `SelColor` takes it
    /// (system colours allowed), and the name it is reported under when the pattern is bad.
    struct Pass {
        QString pattern;
        Colour colour = 0;
        QString name;
    };

    /// What a run colours.
    struct Rules {
        std::array<Pass, kRoleCount> passes; ///< indexed by `Role`
        /// The VB colouring's extras: "Rem" comments in proper case, and keywords in the
        /// capitalisation of `canonicalKeywords` ("|AddressOf|Alias|...|").
        bool capitalise = false;
        QString canonicalKeywords;
    };

    /// One match of a pattern: its position in the subject and its length.
    using Match = KeywordScanner::Match;
    /// \brief The matches of the three patterns in a subject, in text order for each role.
    ///
    /// Finding them reads nothing but the subject and the rules, so `collect` may run on
    /// another thread while the control does something else.
    struct Matches {
        std::array<QList<Match>, kRoleCount> byRole; ///< indexed by `Role`
        QStringList warnings;                        ///< one line per pattern that could not be used
    };
    /// Finds the matches of the three patterns in \a subject (case-insensitive, all of them).
    /// An invalid pattern contributes no match and a line in the warnings; a pattern that
    /// backtracks without end stops at the pattern engine's match limit.
    static Matches collect(const QString &subject, const Rules &rules);

    /// Collects the matches of the three patterns in \a subject itself.
    ColouringEngine(const QString &subject, const Rules &rules);
    /// Takes \a matches that `collect` found in this same \a subject with these same \a rules.
    ColouringEngine(const QString &subject, const Rules &rules, Matches matches);

    /// The number of matches of all three passes.
    int total() const { return m_total; }
    /// Matches handled (coloured, left alone or skipped) so far.
    int handled() const { return m_handled; }
    bool atEnd() const { return m_handled >= m_total; }

    /// Handles the next match; with \a skip it is passed over uncoloured (it still counts).
    /// Returns true when that match was the last of its pass. Does nothing at the end.
    bool handleNext(bool skip = false);

    /// One line per pattern that could not be used.
    const QStringList &warnings() const { return m_matches.warnings; }

    /// The colours the handled matches gave, as runs of equal colour shifted by \a offset.
    /// Characters still black (colour 0) get no run.
    QList<EditorSurface::ColourRun> colourRuns(int offset) const;
    /// The capitalisation changes, as runs of changed characters shifted by \a offset.
    QList<EditorSurface::TextRewrite> rewrites(int offset) const;
    /// The text with the capitalisation changes made so far.
    const QString &text() const { return m_text; }

    /// \a count × 100 ÷ \a total rounded to the nearest integer, halves to the even neighbour;
    /// 0 when \a total is 0.
    static int percentage(int count, int total);

private:
    void handle(int role, const Match &match);
    /// True when every character of the range (paragraph breaks aside) has \a colour.
    bool hasColour(const Match &match, Colour colour) const;
    /// True when every character of the range (paragraph breaks aside) is protected.
    bool isProtected(const Match &match) const;
    void paint(const Match &match, Colour colour);
    /// Replaces the text of \a match by \a text, of the same length.
    void rewrite(const Match &match, const QString &text);
    void makeCanonical(const Match &match);

    const QString m_original;
    QString m_text;
    Rules m_rules;
    std::array<Colour, kRoleCount> m_colours{};
    /// The canonical list as a set of its entries, and its first entry for each lower-case form.
    QSet<QString> m_canonicalExact;
    QHash<QString, QString> m_canonicalByLowerCase;
    Matches m_matches;
    std::vector<Colour> m_colour;
    std::vector<bool> m_protected;
    /// The ranges painted and the ranges whose text was rewritten: outside them every character
    /// is black and as it was, so the result is read from them alone.
    std::vector<Match> m_painted;
    std::vector<Match> m_rewritten;
    int m_total = 0;
    int m_handled = 0;
    int m_role = 0;
    int m_index = 0;
};

} // namespace kvrtb
