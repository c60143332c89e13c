#pragma once

#include "findreplace/textsearch.h"

#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <optional>

namespace kvrtb {

/// \brief One compiled search of the find dialog: a literal text or a regular expression, with
/// the whole-word and match-case options, run over the document's plain text.
///
/// Literal searches follow `TextSearch` (the rules of the control's `Find2`). Regular
/// expressions use the PCRE2 syntax of `QRegularExpression`, with these settings:
/// - case is ignored unless match case is on; `^` and `$` match at the start and end of every
///   paragraph as well as of the searched range; `\w`, `\b` and the POSIX classes know Unicode;
/// - whole word keeps the matches that neither follow nor precede a letter or a digit;
/// - a pattern that does not compile makes the query invalid: `errorMessage()` names the error
///   and its offset ("Invalid regular expression: missing closing parenthesis at offset 2.");
/// - a match that needs more backtracking than the engine's step limit allows ends in bounded
///   time with `Status::TooComplex` instead of a match.
///
/// Searches take a range [from, to) of the text: a match must start at or after `from` and end
/// at or before `to` (the text is cut at `to`, so `$` also matches there). The text must be
/// well-formed UTF-16, as `searchable()` makes it: the regular-expression engine is told not to
/// check it again on every call, which would cost a pass over the whole text per match.
class FindQuery {
public:
    struct Settings {
        QString pattern;
        bool regex = false;
        bool wholeWord = false;
        bool matchCase = false;
    };

    enum class Status { Found, NotFound, TooComplex };

    /// \brief The outcome of a search. For a regular expression, `groups` holds the whole match
    /// and the numbered groups (an unmatched group is an empty string).
    struct Match {
        Status status = Status::NotFound;
        int start = -1;
        int length = 0;
        QStringList groups;

        bool found() const { return status == Status::Found; }
        int end() const { return start + length; }
    };

    explicit FindQuery(const Settings &settings);

    /// \a text with every lone surrogate (which a document can hold) replaced by U+FFFD, so
    /// positions stay as they are; \a text itself (shared, not copied) when it has none.
    static QString searchable(const QString &text);

    const Settings &settings() const { return m_settings; }
    /// False for an empty pattern or a regular expression that does not compile.
    bool isValid() const { return m_errorMessage.isEmpty(); }
    /// Why the query is not valid; empty when it is.
    QString errorMessage() const { return m_errorMessage; }

    /// The first match in [from, to).
    Match next(QStringView text, int from, int to) const;
    /// The last match in [from, before) (a zero-length match counts only before \a before), as
    /// the matches follow one another from \a from without overlapping.
    Match previous(QStringView text, int from, int before) const;
    /// The match that starts at \a start and covers exactly [start, start + length), the text
    /// being searched up to \a to, if there is one.
    Match exactlyAt(QStringView text, int start, int length, int to) const;

    /// The text that replaces \a match. A literal search inserts \a replacement as it stands. With
    /// a regular expression, "\0".."\9" and "$0".."$9" insert the whole match or a numbered group,
    /// "\\" a backslash, "$$" a dollar sign, "\n" a paragraph break and "\t" a tab; anything else
    /// stands as written.
    QString replacementFor(const Match &match, const QString &replacement) const;

private:
    /// The literal text found at \a position (-1: not found).
    Match literalAt(qsizetype position) const;
    Match fromRegex(const QRegularExpressionMatch &found) const;

    Settings m_settings;
    QString m_errorMessage;
    std::optional<TextSearch> m_literal;
    QRegularExpression m_regex;
};

} // namespace kvrtb
