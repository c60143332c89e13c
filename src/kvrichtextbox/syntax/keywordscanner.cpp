#include "syntax/keywordscanner.h"

#include <QHash>
#include <QRegularExpression>

#include <algorithm>

namespace kvrtb {

namespace {

constexpr int kLetters = 26;

/// A word character of the pattern engine (its default, ASCII-only character classes).
bool isWordChar(char16_t c)
{
    return c < 128 && ((c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') || c == u'_');
}

bool isAsciiLetter(char16_t c)
{
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}

char16_t asciiLower(char16_t c)
{
    return c >= u'A' && c <= u'Z' ? char16_t(c + (u'a' - u'A')) : c;
}

} // namespace

std::optional<KeywordScanner> KeywordScanner::fromPattern(const QString &pattern)
{
    static const QLatin1String open("\\b("), close(")\\b"), notParenthesis("(?!\\()");
    if (!pattern.startsWith(open) || !pattern.endsWith(close) || pattern.size() <= open.size() + close.size())
        return std::nullopt;
    static const QRegularExpression oneWord(QStringLiteral("^[A-Za-z]+$"));
    static const QRegularExpression severalWords(QStringLiteral("^([A-Za-z]+)( [A-Za-z]+)+$"));

    KeywordScanner scanner;
    QHash<QString, bool> words; // lower case -> only ever written with the parenthesis test
    const QString inner = pattern.mid(open.size(), pattern.size() - open.size() - close.size());
    for (QString alternative : inner.split(QLatin1Char('|'))) {
        const bool beforeParenthesisStops = alternative.endsWith(notParenthesis);
        if (beforeParenthesisStops)
            alternative.chop(notParenthesis.size());
        if (oneWord.match(alternative).hasMatch()) {
            const QString lower = alternative.toLower();
            const auto known = words.constFind(lower);
            words.insert(lower, beforeParenthesisStops && (known == words.constEnd() || *known));
            continue;
        }
        // Several words never match when their first word stands earlier on its own.
        const QRegularExpressionMatch several = severalWords.match(alternative);
        if (beforeParenthesisStops || !several.hasMatch() || !words.contains(several.captured(1).toLower()))
            return std::nullopt;
    }
    for (auto it = words.constBegin(); it != words.constEnd(); ++it)
        scanner.m_longest = std::max(scanner.m_longest, int(it.key().size()));
    scanner.m_buckets.resize(size_t((scanner.m_longest + 1) * kLetters));
    for (auto it = words.constBegin(); it != words.constEnd(); ++it) {
        const QString &word = it.key();
        scanner.m_buckets[size_t(word.size() * kLetters + (word.at(0).unicode() - u'a'))].push_back(
            {word.toLatin1(), it.value()});
    }
    return scanner;
}

bool KeywordScanner::canScan(QStringView text)
{
    const qsizetype size = text.size();
    for (qsizetype i = 0; i < size; ++i) {
        const QChar c = text.at(i);
        if (c.unicode() < 128)
            continue;
        if (c.isHighSurrogate() && i + 1 < size && text.at(i + 1).isLowSurrogate()) {
            ++i; // no character beyond the first plane has an ASCII case variant
            continue;
        }
        if (c.isSurrogate())
            return false; // a broken pair: leave it to the pattern engine
        if (c.toLower().unicode() < 128 || c.toUpper().unicode() < 128 || c.toTitleCase().unicode() < 128
            || c.toCaseFolded().unicode() < 128)
            return false;
    }
    return true;
}

QList<KeywordScanner::Match> KeywordScanner::matches(QStringView text) const
{
    QList<Match> found;
    const char16_t *chars = text.utf16();
    const int size = int(text.size());
    int i = 0;
    while (i < size) {
        if (!isWordChar(chars[i])) {
            ++i;
            continue;
        }
        const int start = i;
        bool letters = true;
        for (; i < size && isWordChar(chars[i]); ++i)
            letters = letters && isAsciiLetter(chars[i]);
        const int length = i - start;
        if (!letters || length > m_longest)
            continue;
        for (const Word &word : m_buckets[size_t(length * kLetters + (asciiLower(chars[start]) - u'a'))]) {
            int k = 1;
            while (k < length && asciiLower(chars[start + k]) == char16_t(word.lower.at(k)))
                ++k;
            if (k < length)
                continue;
            if (!word.notBeforeParenthesis || i >= size || chars[i] != u'(')
                found.append({start, length});
            break;
        }
    }
    return found;
}

} // namespace kvrtb
