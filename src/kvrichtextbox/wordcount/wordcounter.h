#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace kvrtb {

/// What the word count counts; the values are those of the dialog's option buttons.
enum class WordCountMode {
    WordsOnly = 0,       ///< tokens with a letter and no digit
    WordsAndNumbers = 1, ///< tokens with a letter or a digit
    Numbers = 2,         ///< tokens with a digit
    EmailAddresses = 3,  ///< every match of the e-mail pattern
    WebAddresses = 4     ///< every match of the web-address pattern
};

/// \brief The tokens one count found, in text order.
///
/// Tokens are kept as spans into the text they were cut from, so that counting a large
/// document allocates no string per token; `tokenText` makes one on demand.
class WordCountResult {
public:
    /// One counted token: where it lies in the counted document (first and one-past-last
    /// position, so a token that had an address removed from its middle spans it).
    struct Token {
        int start = 0;           ///< in the counted text (after addresses were removed)
        int length = 0;
        int documentStart = 0;   ///< in the document's text
        int documentEnd = 0;
    };

    int count() const { return int(m_tokens.size()); }
    /// The token's text as counted: as the document has it, accented letters included, but
    /// without an address that was removed from inside it.
    QString tokenText(int index) const;
    const Token &token(int index) const { return m_tokens.at(size_t(index)); }
    /// Every token's text, in order (for short texts, tests and the command-line tool).
    QStringList tokenTexts() const;

private:
    friend class WordCounter;
    QString m_text;
    std::vector<Token> m_tokens;
};

/// \brief Counts of a text beyond the word count, as a word processor shows them.
struct TextStatistics {
    int words = 0;              ///< words and numbers, plus each web and e-mail address as one word
    int characters = 0;         ///< characters (code points) without paragraph and line breaks
    int charactersNoSpaces = 0; ///< characters that are not white space
    int sentences = 0;          ///< runs of words ended by ".", "!" or "?" (or by the paragraph's end)
    int paragraphs = 0;         ///< paragraphs holding something other than white space
    int lines = 0;              ///< display lines; filled in by whoever knows the layout
    int readingSeconds = 0;     ///< `words` at `kReadingWordsPerMinute`, rounded up to a second

    static constexpr int kReadingWordsPerMinute = 230;
};

/// \brief The counting engine of the word-count dialog: pure functions of a text.
///
/// Counting in the word modes removes every e-mail address and then every web address from
/// the text, cuts it at runs of separators (the pattern `separatorPatternText`), and keeps the
/// tokens the mode asks for. Letters are A-Z and a-z plus the accented letters of
/// `accentedLetterPatternText` (so "café" is a word); digits are 0-9. The address modes list
/// the matches of the address patterns instead. Nothing throws; an empty text counts 0.
///
/// \code
/// WordCountResult r = WordCounter::count(QStringLiteral("10:30 and 3-4"), WordCountMode::Numbers);
/// // r.count() == 3: "10:30", "3", "4"
/// \endcode
class WordCounter {
public:
    /// The separator pattern, exactly as the dialog keeps it (the text of its hidden `Reg1`).
    /// A colon before a digit, a comma before exactly three digits and a word's end, and a
    /// hyphen that is not before a digit are not separators: 10:30, 1,000 and well-known stay
    /// one token each, while 3-4 is two.
    static QString separatorPatternText();
    /// The accented letters counted as letters (matched without regard to case).
    static QString accentedLetterPatternText();

    /// Counts \a text in \a mode. Line breaks may be "\n", "\r\n" or "\r".
    static WordCountResult count(const QString &text, WordCountMode mode);

    /// The counts of \a text beyond the word count (`lines` is left 0).
    static TextStatistics statistics(const QString &text);

    /// True when the character at \a index of \a text is one the separator pattern consumes
    /// there (its look-aheads read the characters that follow).
    static bool isSeparatorAt(const QString &text, int index);
};

} // namespace kvrtb
