#include "wordcount/wordcounter.h"

#include "hyperlinks/addresspatterns.h"

#include <QStringView>

#include <string_view>

namespace kvrtb {

namespace {

bool isAsciiLetter(char16_t c) { return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z'); }
bool isAsciiDigit(char16_t c) { return c >= u'0' && c <= u'9'; }
/// A character of a word as the patterns' word boundaries see it.
bool isWordCharacter(char16_t c) { return isAsciiLetter(c) || isAsciiDigit(c) || c == u'_'; }

/// The accented letters counted as "A": the class of `accentedLetterPatternText`, either case.
bool isAccentedLetter(QChar c)
{
    switch (c.toLower().unicode()) {
    case 0xE0: case 0xE1: case 0xE2: case 0xE3: case 0xE4:  // à á â ã ä
    case 0xE8: case 0xE9: case 0xEA: case 0xEB:             // è é ê ë
    case 0xEC: case 0xED: case 0xEE: case 0xEF:             // ì í î ï
    case 0xF1:                                              // ñ
    case 0xF2: case 0xF3: case 0xF4: case 0xF5: case 0xF6:  // ò ó ô õ ö
    case 0xF9: case 0xFA: case 0xFB: case 0xFC:             // ù ú û ü
    case 0xFD: case 0xFF:                                   // ý ÿ
        return true;
    default:
        return false;
    }
}

/// Whether a token with (or without) letters and digits counts in a word mode.
bool counts(bool letter, bool digit, WordCountMode mode)
{
    switch (mode) {
    case WordCountMode::WordsOnly: return letter && !digit;
    case WordCountMode::WordsAndNumbers: return letter || digit;
    case WordCountMode::Numbers: return digit;
    case WordCountMode::EmailAddresses:
    case WordCountMode::WebAddresses: break;
    }
    return false;
}

/// What an ASCII character is to the count, looked up once per character while scanning.
enum CharClass : unsigned char {
    Other = 0,
    Separator,     ///< a separator wherever it stands
    Conditional,   ///< ":", "," or "-": a separator or not by what follows
    Letter,
    Digit
};

struct CharClassTable {
    CharClass of[128] = {};
    CharClassTable()
    {
        for (const char c : std::string_view("\t\n\x0B\x0C\r !?~@#$%&=+`\"_\\/(){}[]<>;|"))
            of[static_cast<unsigned char>(c)] = Separator;
        for (const char c : std::string_view(":,-"))
            of[static_cast<unsigned char>(c)] = Conditional;
        for (int c = 'A'; c <= 'Z'; ++c)
            of[c] = of[c + 32] = Letter;
        for (int c = '0'; c <= '9'; ++c)
            of[c] = Digit;
    }
};
const CharClassTable kClasses;

/// Whether the ":", "," or "-" at \a index is a separator, by the characters after it.
inline bool conditionalSeparator(const char16_t *text, int index, int size)
{
    const auto digitAt = [&](int i) { return i < size && isAsciiDigit(text[i]); };
    switch (text[index]) {
    case u':':
        return !digitAt(index + 1);
    case u',':
        // Not a separator before exactly three digits that end a word: 1,000.
        return !(digitAt(index + 1) && digitAt(index + 2) && digitAt(index + 3)
                 && (index + 4 >= size || !isWordCharacter(text[index + 4])));
    default: // '-'
        return digitAt(index + 1);
    }
}

/// `WordCounter::isSeparatorAt` on raw characters.
inline bool separatorAt(const char16_t *text, int index, int size)
{
    const char16_t c = text[index];
    if (c >= 128)
        return false;
    const CharClass cls = kClasses.of[c];
    return cls == Separator || (cls == Conditional && conditionalSeparator(text, index, size));
}

/// Maps positions of a text with parts removed back to the text they were removed from.
class RemovalMap {
public:
    /// Removes every match of \a pattern from \a text; returns what is left.
    QString remove(const QString &text, const QRegularExpression &pattern, int *removed)
    {
        m_segments.clear();
        QString left;
        int from = 0;
        const QList<AddressMatch> found = AddressPatterns::matches(pattern, text);
        if (removed)
            *removed = int(found.size());
        if (found.isEmpty()) {
            m_segments.push_back({0, 0});
            return text;
        }
        left.reserve(text.size());
        for (const AddressMatch &match : found) {
            if (match.start > from) {
                m_segments.push_back({int(left.size()), from});
                left.append(QStringView(text).mid(from, match.start - from));
            }
            from = match.start + match.length;
        }
        if (from < text.size()) {
            m_segments.push_back({int(left.size()), from});
            left.append(QStringView(text).mid(from));
        }
        if (m_segments.empty())
            m_segments.push_back({0, int(text.size())}); // all removed: nothing maps anywhere
        return left;
    }

    /// The position in the original text of \a position in what was left. Positions must be
    /// asked for in ascending order (tokens come in text order).
    int map(int position)
    {
        while (m_next + 1 < m_segments.size() && m_segments[m_next + 1].leftStart <= position)
            ++m_next;
        const Segment &segment = m_segments[m_next];
        return segment.sourceStart + (position - segment.leftStart);
    }

private:
    struct Segment {
        int leftStart;   ///< where the kept piece starts in what was left
        int sourceStart; ///< where it starts in the original text
    };
    std::vector<Segment> m_segments{{0, 0}}; // nothing removed: positions map to themselves
    size_t m_next = 0;
};

/// Cuts \a text into tokens at separator runs and hands each counted one to \a take.
template <typename Take>
void cutTokens(const QString &text, WordCountMode mode, Take take)
{
    const char16_t *chars = reinterpret_cast<const char16_t *>(text.constData());
    const int size = int(text.size());
    int start = 0;
    bool letter = false;
    bool digit = false;
    const auto endToken = [&](int end) {
        if (end > start && counts(letter, digit, mode))
            take(start, end - start);
        letter = digit = false;
    };
    for (int i = 0; i < size; ++i) {
        const char16_t c = chars[i];
        if (c >= 128) {
            if (c >= 0xC0 && isAccentedLetter(QChar(c)))
                letter = true;
            continue;
        }
        switch (kClasses.of[c]) {
        case Other: break;
        case Letter: letter = true; break;
        case Digit: digit = true; break;
        case Conditional:
            if (!conditionalSeparator(chars, i, size)) {
                break;
            }
            Q_FALLTHROUGH();
        case Separator:
            endToken(i);
            start = i + 1;
            break;
        }
    }
    endToken(size);
}

/// The text of the word modes: e-mail addresses removed, then web addresses.
struct WordModeText {
    QString text;
    RemovalMap emails;
    RemovalMap urls;
    int emailCount = 0;
    int urlCount = 0;

    explicit WordModeText(const QString &source)
    {
        if (AddressPatterns::quickReject(source)) {
            text = source;   // no address can be in it
            return;
        }
        const QString withoutEmails = emails.remove(source, AddressPatterns::email(), &emailCount);
        text = urls.remove(withoutEmails, AddressPatterns::url(), &urlCount);
    }

    int documentPosition(int position) { return emails.map(urls.map(position)); }
};

bool isLineBreak(char16_t c) { return c == u'\n' || c == u'\r' || c == 0x2028 || c == 0x2029; }

} // namespace

QString WordCountResult::tokenText(int index) const
{
    const Token &t = m_tokens.at(size_t(index));
    return m_text.mid(t.start, t.length);
}

QStringList WordCountResult::tokenTexts() const
{
    QStringList texts;
    texts.reserve(count());
    for (int i = 0; i < count(); ++i)
        texts.append(tokenText(i));
    return texts;
}

QString WordCounter::separatorPatternText()
{
    return QStringLiteral(
        R"re((\s|\!|\?|\~|\@|\#|\$|\%|\&|\=|\+|\`|\"|\_|\\|\/|\(|\)|\{|\}|\[|\]|\<|\>|\:(?!\d)|\;|\||\,(?!\d\d\d\b)|\-(?=\d)){1,})re");
}

QString WordCounter::accentedLetterPatternText()
{
    return QStringLiteral("[\\à\\á\\â\\ã\\ä\\è\\é\\ê\\ë\\ì\\í\\î\\ï\\ñ\\ò\\ó\\ô\\õ\\ö\\ù\\ú\\û\\ü\\ý\\ÿ]");
}

bool WordCounter::isSeparatorAt(const QString &text, int index)
{
    if (index < 0 || index >= text.size())
        return false;
    return separatorAt(reinterpret_cast<const char16_t *>(text.constData()), index, int(text.size()));
}

WordCountResult WordCounter::count(const QString &text, WordCountMode mode)
{
    WordCountResult result;
    if (mode == WordCountMode::EmailAddresses || mode == WordCountMode::WebAddresses) {
        result.m_text = text;
        const QRegularExpression &pattern =
            mode == WordCountMode::EmailAddresses ? AddressPatterns::email() : AddressPatterns::url();
        for (const AddressMatch &match : AddressPatterns::matches(pattern, text))
            result.m_tokens.push_back({match.start, match.length, match.start, match.start + match.length});
        return result;
    }
    WordModeText words(text);
    result.m_text = words.text;
    result.m_tokens.reserve(size_t(words.text.size() / 6));
    cutTokens(words.text, mode, [&](int start, int length) {
        const int documentStart = words.documentPosition(start);
        const int documentEnd = words.documentPosition(start + length - 1) + 1;
        result.m_tokens.push_back({start, length, documentStart, documentEnd});
    });
    return result;
}

TextStatistics WordCounter::statistics(const QString &text)
{
    TextStatistics stats;
    WordModeText words(text);
    cutTokens(words.text, WordCountMode::WordsAndNumbers, [&](int, int) { ++stats.words; });
    stats.words += words.emailCount + words.urlCount;
    stats.readingSeconds = (stats.words * 60 + TextStatistics::kReadingWordsPerMinute - 1)
        / TextStatistics::kReadingWordsPerMinute;

    const int size = int(text.size());
    bool paragraphHasText = false;
    bool inSentence = false;
    for (int i = 0; i < size; ++i) {
        const QChar c = text.at(i);
        const char16_t u = c.unicode();
        if (isLineBreak(u)) {
            // A paragraph ends at a paragraph break; a sentence left open ends with it.
            const bool paragraphEnd = u != 0x2028;
            if (paragraphEnd && paragraphHasText) {
                ++stats.paragraphs;
                paragraphHasText = false;
                if (inSentence)
                    ++stats.sentences;
                inSentence = false;
            }
            continue;
        }
        if (c.isLowSurrogate())
            continue;   // counted with its high surrogate
        ++stats.characters;
        if (c.isSpace())
            continue;
        ++stats.charactersNoSpaces;
        paragraphHasText = true;
        if (c.isHighSurrogate() && i + 1 < size && text.at(i + 1).isLowSurrogate()) {
            inSentence = true;
            continue;
        }
        if (c.isLetterOrNumber()) {
            inSentence = true;
        } else if (inSentence && (u == u'.' || u == u'!' || u == u'?')) {
            // A sentence ends where its mark is followed (after closing quotes or brackets) by
            // white space or the text's end: "3.14" and "e.g" go on.
            int next = i + 1;
            while (next < size && QStringView(u"\"')]\u201D\u2019").contains(text.at(next)))
                ++next;
            if (next >= size || text.at(next).isSpace() || isLineBreak(text.at(next).unicode())) {
                ++stats.sentences;
                inSentence = false;
            }
        }
    }
    if (paragraphHasText)
        ++stats.paragraphs;
    if (inSentence)
        ++stats.sentences;
    return stats;
}

} // namespace kvrtb
