#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringView>

#include <optional>
#include <vector>

namespace kvrtb {

/// \brief Finds the matches of a keyword pattern by splitting the text into words, without the
/// regular-expression engine.
///
/// It takes patterns of the form "\b(Word|Word(?!\()|Word Word|...)\b", as the two VB keyword
/// patterns are written, and finds exactly the matches the pattern engine finds for them
/// (case-insensitive, every match of the text), in a fraction of the time.
///
/// Why the results agree: the engine's word characters are the ASCII letters, digits and the
/// underscore, so a match of a one-word alternative must begin where a run of word characters
/// begins and end where it ends (a keyword is made of letters, and a word boundary on both
/// sides allows nothing else). So the matches are the runs whose case-folded text is one of the
/// words; one followed by `(?!\()` is no match when an opening parenthesis follows. An
/// alternative of several words never matches when its first word stands earlier on its own in
/// the alternation (that word alone wins), so it is dropped; one whose first word does not stand
/// earlier cannot be scanned this way, and then `fromPattern` declines the pattern.
///
/// The engine folds case by Unicode rules, under which a few letters outside ASCII (the long s,
/// the Kelvin sign, the dotted capital I, ...) match ASCII ones. `canScan` tells whether a text
/// holds any character whose case variants include an ASCII one; such a text must go through the
/// pattern engine.
class KeywordScanner {
public:
    /// A match: its position in the text and its length.
    struct Match {
        int start;
        int length;
    };

    /// The scanner for \a pattern, or nothing when the pattern is not of the form it handles.
    static std::optional<KeywordScanner> fromPattern(const QString &pattern);

    /// True when the scanner finds exactly the pattern engine's matches in \a text: no character
    /// outside ASCII has an upper-, lower- or case-folded form inside ASCII.
    static bool canScan(QStringView text);

    /// Every match in \a text, in text order.
    QList<Match> matches(QStringView text) const;

private:
    /// A keyword in lower case, and whether an opening parenthesis after it stops it matching.
    struct Word {
        QByteArray lower;
        bool notBeforeParenthesis = false;
    };
    /// The keywords by length and first letter: `m_buckets[length * 26 + letter]`.
    std::vector<std::vector<Word>> m_buckets;
    int m_longest = 0;
};

} // namespace kvrtb
