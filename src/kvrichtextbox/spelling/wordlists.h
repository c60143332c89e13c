#pragma once

#include <QString>
#include <QStringList>

#include <functional>

namespace kvrtb {

/// \brief Completions and random words from the built-in dictionary's plain word lists, as the
/// control's `GetWordsThatStartWith` and `GetRandomWord` members give them.
///
/// Pure logic with no widget: `KvRTB` forwards its members here and passes its platform
/// services as `CompletionHooks`. The lists are indexed once per process on first use
/// (thread-safe); answers are those of a case-insensitive, global search of
/// "(\b" + escaped prefix + ".*)" over the letter's list. Nothing throws.
///
/// \code
/// QString prefix = QStringLiteral("aard");
/// QStringList words;
/// kvrtb::WordLists::GetWordsThatStartWith(prefix, words, 3);  // true; words start "aardvark"
/// \endcode
class WordLists
{
public:
    /// Platform hooks of a completion search. Both may be empty.
    struct CompletionHooks {
        /// True while user input is pending; a match found then is passed over.
        std::function<bool()> hasPendingInput;
        /// Yields to the event loop; called after each stored word.
        std::function<void()> yieldToEventLoop;
    };

    /// A source of random numbers in [0, 1).
    using RandomSource = std::function<double()>;

    /// Completions of `MyStartingLetters` from the plain list of its upper-cased initial.
    ///
    /// - An empty prefix, or one whose first character does not upper-case to "A".."Z", gives
    ///   false and leaves both arguments as they are.
    /// - Otherwise `MyStartingLetters` is rewritten to the escaped prefix: every character that
    ///   does not upper-case to "A".."Z" gets a "\" before it ("e.g" becomes "e\.g"). The
    ///   caller's string changes; the control's interface has always done so.
    /// - Each line where the prefix starts a word (at the line's start, or after a character
    ///   that is not a letter, digit or "_") gives one match: the rest of that line from the
    ///   prefix on. Lines come in list order, so capitalised entries come first.
    /// - A match holding "’" (U+2019) is passed over, as is one found while
    ///   `hooks->hasPendingInput` says true. The others are stored in order until `ReturnLimit`
    ///   words are stored (0 or less: no limit).
    /// - The result is true when at least one line matched. When a word was stored,
    ///   `MyReturnArray` becomes exactly the stored words; otherwise it is left alone.
    static bool GetWordsThatStartWith(QString &MyStartingLetters, QStringList &MyReturnArray,
                                      int ReturnLimit = 0, const CompletionHooks *hooks = nullptr);

    /// A random dictionary word in proper case ("Aardvark\r"), still ending with the carriage
    /// return of its line. The generator is seeded from the clock on every call; the initial is
    /// "a".."y" (never "z"); the word holds no "'", "’" or "." and has at least three letters.
    /// Gives the empty string when the lists hold no such word (missing resources).
    static QString GetRandomWord();

    /// `GetRandomWord` with the random numbers taken from `random`.
    static QString GetRandomWord(const RandomSource &random);

    /// Upper-cases the first letter of every blank-separated word and lower-cases the rest.
    static QString properCase(const QString &text);

    /// The prefix as `GetWordsThatStartWith` rewrites it, or a null string when its first
    /// character is not a letter (or it is empty).
    static QString escapePrefix(const QString &prefix);
};

} // namespace kvrtb
