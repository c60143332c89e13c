#pragma once

#include "core/kvrtbtypes.h"

#include <QString>
#include <QStringList>

namespace kvrtb {

/// \brief Spelling suggestions for one misspelt word from the built-in dictionary, as the
/// control's `GetPossibleSpellingCorrections` gives them, and the same candidates ranked by
/// likelihood.
///
/// The search builds a fuzzy pattern from the word, runs it over the plain word list of the
/// word's initial, scores every hit against the word (`ScoreCandidate`) and keeps the hits that
/// reach the caller's `QAccuracy`:
///
/// 1. `w` is `IncorrectWord` with every "." removed, then lower-cased. A word whose initial
///    does not upper-case to "A".."Z" (a digit, a symbol, an empty word) gives nothing.
/// 2. When `IncorrectWord` itself is a listed abbreviation ("etc.", "Dr.", compared without
///    regard to case) it is not misspelt and gives nothing.
/// 3. When "$" + `w` + ".<" occurs in the lower-cased "DOTS2" list, the single suggestion is
///    that abbreviation as listed, with its full stop ("etc" gives "etc.", "approx" gives
///    "approx."). Because step 1 removes every "." first, a dotted abbreviation typed without
///    its last full stop ("e.g") becomes "eg", which is not listed, and gets the ordinary
///    search instead; only abbreviations with a single final full stop are found this way.
/// 4. Otherwise the pattern (`BuildSuggestionPattern` for four or more characters,
///    `BuildShortWordPattern` below that) is matched case-insensitively over the list; every
///    match without its trailing white space is a candidate. A candidate holding "’" (U+2019)
///    is dropped, as is one whose `ScoreCandidate` is below `QAccuracy`. The others are the
///    suggestions, in word-list order (capitalised entries first), duplicates kept.
///
/// `Suggestions` is always replaced (emptied when nothing is found) and `SuggestionsFound`
/// tells whether it holds anything, so a record never carries stale results from an earlier
/// call. Raising `QAccuracy` can only remove suggestions, never add or reorder them.
///
/// The matching over the list is answered from an index built once per letter on first use
/// (thread-safe) for words of the letters a-z and apostrophes, and by the pattern itself for
/// any other word; both give the same candidates. Nothing throws; a pattern that does not
/// compile (a word with characters that mean something in a pattern) finds nothing.
///
/// \code
/// kvrtb::SPELL_CHECK_TYPE data;
/// data.IncorrectWord = QStringLiteral("speling");
/// data.QAccuracy = 60;
/// kvrtb::Suggestions::GetPossibleSpellingCorrections(data);   // ... "spelling" ..., list order
/// kvrtb::Suggestions::GetRankedSpellingCorrections(data);     // "spelling" first
/// \endcode
class Suggestions
{
public:
    /// The accuracy the spelling dialog and the command-line tool start with: it keeps the
    /// intended word for about nine misspellings in ten of the common kinds while dropping
    /// most of the far-fetched candidates.
    static constexpr qint16 kDefaultAccuracy = 50;

    /// The suggestions for `SCData.IncorrectWord` at `SCData.QAccuracy`, in word-list order.
    static void GetPossibleSpellingCorrections(SPELL_CHECK_TYPE &SCData);

    /// The same suggestions as `GetPossibleSpellingCorrections`, ordered from the likeliest
    /// correction to the least likely (see `rankCandidates`).
    static void GetRankedSpellingCorrections(SPELL_CHECK_TYPE &SCData);

    /// The pattern for a word `w` of four or more characters (already lower-cased, without
    /// full stops). With n its length, c1 its first and cL its last character, F2 its first
    /// two, M the characters 2..n-1, R the characters 2..n, k = n-3 when n >= 7 and n-2 below
    /// that, Q = "{k,n}": "(\b(c1)[M\S]Q(cL)\b|\b(c1)[R]Q\w?\b|\b(F2)[a-z\'\’]Q\b)\s". The
    /// characters of the word are put in as they are. A word shorter than four characters
    /// gives the empty string.
    static QString BuildSuggestionPattern(const QString &w);

    /// The pattern for a word of one to three characters: "\b" + c1, then "(c|\S)" for every
    /// further character c, then "\S?\.?\s". An empty word or one of four or more characters
    /// gives the empty string.
    static QString BuildShortWordPattern(const QString &w);

    /// How well `candidate` fits the misspelt word `misspelt`: the `CommonSubsequencePercent`
    /// s of the two, plus 10 when their `SoundexCode`s are equal and minus 10 otherwise, minus
    /// their `LetterDistance` bounded by s. Equal words score 110.
    static qint16 ScoreCandidate(const QString &misspelt, const QString &candidate);

    /// The length of the longest common subsequence of `a` and `b` (characters compared
    /// exactly, case included) as a whole percentage of the length of `b`; 0 when either is
    /// empty.
    static qint16 CommonSubsequencePercent(const QString &a, const QString &b);

    /// The unpadded sound code of `word`: its upper-cased first character, then the digits of
    /// the following letters A-Z ("01230120022455012623010202" from A to Z) where a digit is
    /// neither "0" nor equal to the previous letter's digit, at most four characters in all.
    /// Characters outside A-Z after the first are passed over without changing the previous
    /// digit; a vowel, H, W or Y between two like consonants lets the second be coded again.
    /// An empty word gives the empty string.
    static QString SoundexCode(const QString &word);

    /// The number of single steps that turn `a` into `b`, counted up to `bound`: dropping a
    /// character from either word is one step, two swapped neighbours ("ei" for "ie") are one
    /// step, equal characters cost nothing (a changed character is thus two steps). The result
    /// is 0 for equal words, grows with each further edit, and is never more than `bound`
    /// (nor less than 0): a pair whose lengths differ by `bound` or more gives `bound` at once.
    static int LetterDistance(const QString &a, const QString &b, int bound);

    /// The word the search works on: `IncorrectWord` without its full stops, lower-cased.
    static QString searchWord(const QString &IncorrectWord);

    /// Orders `candidates` (suggestions for `misspelt`) from the likeliest correction to the
    /// least likely. The order weighs the kinds of typing and spelling slips (a doubled or
    /// dropped letter, neighbouring keys, swapped letters, a vowel for a vowel, words that
    /// sound alike), prefers an entry in the word's own capitalisation and without an
    /// apostrophe the word lacks, and keeps list order among equals. Duplicates are removed.
    static QStringList rankCandidates(const QString &misspelt, const QStringList &candidates);
};

} // namespace kvrtb
