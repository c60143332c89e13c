#pragma once

#include <QList>
#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <functional>

namespace kvrtb {

/// \brief The misspelling scan without a control: text in, unknown words out.
///
/// A scan works in the order the control has always used:
/// 1. every web and e-mail address (the combined link pattern, case ignored) is removed;
/// 2. every abbreviation of the dictionary's "DOTS" list followed by a word boundary (case
///    respected) is removed. The pattern ends in `\b`, and a boundary after a full stop needs a
///    word character next: "e.g." followed by a blank or the end of the text is therefore NOT
///    removed, while "e.g.x" loses its "e.g.". An abbreviation left in place is then
///    tokenised and looked up like any other word (the common ones are in the dictionary);
/// 3. the remaining text is cut into candidates by `tokenPattern()`: runs of two or more
///    letters and apostrophes (ASCII letters, the accented letters à..ÿ, "'" and "’"), or
///    dotted initialisms such as "e.g", each optionally with one accented letter or apostrophe
///    before and after, and never directly followed by ":" or "#". Single letters and digits
///    are never candidates;
/// 4. each candidate, in text order, is passed over when user input is pending or when it
///    begins or ends with "'" or "’"; otherwise it is looked up (`Dictionary::IsWordInDictionary`)
///    and reported when unknown. Duplicates are reported each time they occur.
///
/// Removing a piece joins the text on either side of it, exactly as replacing it by the empty
/// string does.
///
/// \code
/// QStringList words;
/// kvrtb::MisspellingScanner::scan(QStringLiteral("Teh cat sat"), words, {}); // words == {"Teh"}
/// \endcode
class MisspellingScanner {
public:
    /// What a scan asks of its caller. Every member may be empty.
    struct Hooks {
        /// True when user input waits; the candidate at hand is then passed over unexamined.
        std::function<bool()> hasPendingInput;
        /// Lets the event loop run; called at a bounded rate (see `kYieldInterval`).
        std::function<void()> yieldToEventLoop;
        /// Polled after every candidate; true abandons the scan.
        std::function<bool()> isCancelled;
        /// Told the word counter and the word total after every yield and at the end.
        std::function<void(int counter, int total)> progress;
    };

    /// The scan's counters: the number of candidates and how many have been handled.
    struct Progress {
        int total = 0;
        int counter = 0;
        bool cancelled = false;
    };

    /// Candidates handled between two yields to the event loop (the first comes after the
    /// first candidate, so a cancel request made at once is seen before much work is done).
    static constexpr int kYieldInterval = 256;

    /// Scans \a text. Unknown words are appended to \a found in text order; the result is true
    /// when at least one was appended. On cancel, \a found is emptied (whatever it held), the
    /// counter is reset to 0 and the result stays what it was when the scan stopped: true with
    /// an empty list when an unknown word had already been found. \a progress, when given,
    /// receives the counters.
    static bool scan(const QString &text, QStringList &found, const Hooks &hooks, Progress *progress = nullptr);

    /// \a text with addresses and then "DOTS" abbreviations removed (steps 1 and 2).
    static QString removeNonWords(const QString &text);

    /// The candidates of an already stripped text, in text order (step 3).
    static QList<QStringView> candidates(QStringView stripped);

    /// True when \a word begins or ends with "'" or "’": such a candidate is never reported.
    static bool hasOuterApostrophe(QStringView word);

    /// The tokenising pattern, exactly as the control defines it.
    static QString tokenPatternText();
    /// The compiled tokenising pattern (case ignored), one per thread.
    static const QRegularExpression &tokenPattern();
    /// The "DOTS" alternation followed by `\b`, case respected, one per thread.
    static const QRegularExpression &abbreviationPattern();

    /// \brief A stretch of text that is not a word to spell: an address or a listed abbreviation.
    struct Zone {
        int start = 0;
        int length = 0;
    };
    /// The addresses and "DOTS" abbreviations of \a text (found in the text as it stands, each
    /// kind on its own), sorted by start.
    static QList<Zone> nonWordZones(const QString &text);
};

} // namespace kvrtb
