#include "spelling/suggestionsearch_p.h"

#include "spelling/dictionaryindex_p.h"
#include "spelling/suggestions.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <mutex>
#include <vector>

namespace kvrtb::suggestionsearch {

namespace {

constexpr char16_t kTypographicApostrophe = u'\u2019';

// What "\w" and "\b" see as word characters: ASCII only, as the engine runs without Unicode
// properties.
bool isWordChar(char16_t u)
{
    return (u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z') || (u >= '0' && u <= '9') || u == '_';
}

bool isAsciiLetter(char16_t u)
{
    return (u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z');
}

// What "\s" matches without Unicode properties.
bool isSpace(char16_t u)
{
    return u == ' ' || (u >= 0x09 && u <= 0x0D);
}

/// \brief Where a suggestion pattern can begin a match in one plain list.
///
/// Every pattern starts with "\b" and a letter, and everything it matches up to its final
/// "\s" is non-blank, so a match runs from a word start to the end of that start's run of
/// non-blank characters. The index keeps, in list order, each start (an ASCII letter at the
/// start of the text or behind a non-word character) with the length of the rest of its run.
struct StartIndex {
    QStringView text;
    QStringView lowered;   ///< the text with A-Z lowered
    struct Start {
        int position;
        int length;        ///< characters from the start to the next blank (or the end)
    };
    std::vector<Start> starts;
    /// False when the list holds a character that matches an ASCII letter without regard to
    /// case although it is none (the long s, the Kelvin sign): then only the pattern answers.
    bool usable = true;
};

void buildStartIndex(StartIndex &index, const DictionaryIndex::PlainList &list)
{
    index.text = list.text;
    index.lowered = list.asciiLowered;
    const QStringView text = index.text;
    const qsizetype size = text.size();
    qsizetype i = 0;
    while (i < size) {
        if (isSpace(text[i].unicode())) {
            ++i;
            continue;
        }
        qsizetype end = i;
        while (end < size && !isSpace(text[end].unicode()))
            ++end;
        for (qsizetype p = i; p < end; ++p) {
            const char16_t u = text[p].unicode();
            if (u == 0x017F || u == 0x212A)
                index.usable = false;
            if (isAsciiLetter(u) && (p == 0 || !isWordChar(text[p - 1].unicode())))
                index.starts.push_back({static_cast<int>(p), static_cast<int>(end - p)});
        }
        i = end;
    }
}

StartIndex &startIndex(char letter)
{
    static std::array<std::once_flag, 26> once;
    static std::array<StartIndex, 26> indexes;
    const int i = letter - 'A';
    std::call_once(once[i], [&] {
        buildStartIndex(indexes[i], DictionaryIndex::instance().plainList(letter));
    });
    return indexes[i];
}

// The characters a bracket class built from search-word characters admits, without regard to
// case: bit 0..25 a-z, 26 "'", 27 "’".
using CharSet = quint32;

int charBit(char16_t lowered)
{
    if (lowered >= 'a' && lowered <= 'z')
        return lowered - 'a';
    if (lowered == u'\'')
        return 26;
    if (lowered == kTypographicApostrophe)
        return 27;
    return -1;
}

bool inSet(CharSet set, char16_t lowered)
{
    const int bit = charBit(lowered);
    return bit >= 0 && (set & (CharSet(1) << bit));
}

CharSet setOf(QStringView chars)
{
    CharSet set = 0;
    for (QChar c : chars) {
        const int bit = charBit(c.unicode());
        if (bit >= 0)
            set |= CharSet(1) << bit;
    }
    return set;
}

bool allIn(QStringView lowered, CharSet set)
{
    return std::all_of(lowered.begin(), lowered.end(), [set](QChar c) { return inSet(set, c.unicode()); });
}

// Does the short-word pattern match the run `t` (lowered) of length L at its start? The first
// character is checked by the caller; "(c|\S)" admits any non-blank character, then at most
// one more and an optional full stop.
bool shortPatternMatches(QStringView t, int n)
{
    const int L = static_cast<int>(t.size());
    if (L < n || L > n + 2)
        return false;
    return L < n + 2 || t[L - 1] == u'.';
}

struct LongPattern {
    int n = 0;
    int k = 0;
    char16_t last = 0;     ///< cL
    char16_t second = 0;   ///< the second character of F2
    CharSet rest = 0;      ///< the characters of R
    CharSet letters = setOf(u"abcdefghijklmnopqrstuvwxyz'\u2019");

    explicit LongPattern(const QString &w)
        : n(static_cast<int>(w.size())),
          k(n >= 7 ? n - 3 : n - 2),
          last(w.back().unicode()),
          second(w[1].unicode()),
          rest(setOf(QStringView(w).mid(1)))
    {
    }

    bool inRange(int count) const { return count >= k && count <= n; }

    // `t` is the lowered run from the start, `original` the same characters as listed.
    bool matches(QStringView t, QStringView original) const
    {
        const int L = static_cast<int>(t.size());
        // Every alternative ends with "\b" before the blank: the last character is a word
        // character.
        if (L < 2 || !isWordChar(original[L - 1].unicode()))
            return false;
        // (c1)[M\S]{k,n}(cL)\b: any non-blank middle.
        if (inRange(L - 2) && t[L - 1] == last)
            return true;
        // (c1)[R]{k,n}\w?\b
        if (inRange(L - 1) && allIn(t.mid(1), rest))
            return true;
        if (inRange(L - 2) && allIn(t.mid(1, L - 2), rest))
            return true;
        // (F2)[a-z'’]{k,n}\b
        return t[1] == second && inRange(L - 2) && allIn(t.mid(2), letters);
    }
};

} // namespace

QStringList candidatesByPattern(char letter, const QString &pattern)
{
    QStringList found;
    if (letter < 'A' || letter > 'Z' || pattern.isEmpty())
        return found;
    const QRegularExpression re(pattern, QRegularExpression::CaseInsensitiveOption);
    if (!re.isValid())
        return found;
    const QString &text = DictionaryIndex::instance().plainList(letter).text;
    QRegularExpressionMatchIterator it = re.globalMatch(text);
    while (it.hasNext()) {
        const QRegularExpressionMatch match = it.next();
        found.append(match.captured(0).chopped(1));
    }
    return found;
}

bool indexCanAnswer(const QString &w)
{
    if (w.isEmpty() || w.front().unicode() < 'a' || w.front().unicode() > 'z')
        return false;
    return std::all_of(w.begin(), w.end(), [](QChar c) { return charBit(c.unicode()) >= 0; });
}

QStringList candidates(char letter, const QString &w)
{
    if (letter < 'A' || letter > 'Z' || w.isEmpty())
        return {};
    const bool shortWord = w.size() < 4;
    const StartIndex *index = indexCanAnswer(w) ? &startIndex(letter) : nullptr;
    if (!index || !index->usable) {
        return candidatesByPattern(letter, shortWord ? Suggestions::BuildShortWordPattern(w)
                                                     : Suggestions::BuildSuggestionPattern(w));
    }

    const char16_t first = w.front().unicode();
    const int n = static_cast<int>(w.size());
    const LongPattern pattern(shortWord ? QStringLiteral("xxxx") : w);
    const int minLength = shortWord ? n : pattern.k + 1;
    const int maxLength = n + 2;

    QStringList found;
    int takenRunEnd = -1;   // a match consumes its run, so later starts in it are not tried
    for (const StartIndex::Start &start : index->starts) {
        if (start.length < minLength || start.length > maxLength
            || index->lowered[start.position] != first)
            continue;
        const int runEnd = start.position + start.length;
        if (runEnd == takenRunEnd)
            continue;
        const QStringView t = index->lowered.mid(start.position, start.length);
        // The final "\s" needs a blank behind the run.
        if (runEnd >= index->text.size())
            continue;
        const bool matched = shortWord ? shortPatternMatches(t, n)
                                       : pattern.matches(t, index->text.mid(start.position, start.length));
        if (matched) {
            found.append(index->text.mid(start.position, start.length).toString());
            takenRunEnd = runEnd;
        }
    }
    return found;
}

} // namespace kvrtb::suggestionsearch
