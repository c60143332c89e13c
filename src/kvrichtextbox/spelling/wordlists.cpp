#include "spelling/wordlists.h"

#include "spelling/dictionary.h"
#include "spelling/dictionaryindex_p.h"

#include <QRegularExpression>

#include <algorithm>
#include <chrono>
#include <random>

namespace kvrtb {

namespace {

// The index answers for prefixes of printable ASCII without digits: in the pattern their
// letters compare without regard to case and everything else is an escaped literal. A digit
// would turn into a back reference, and other characters have case rules of their own, so
// those prefixes are searched with the pattern itself.
bool indexCanAnswer(const QString &prefix)
{
    return std::all_of(prefix.begin(), prefix.end(), [](QChar c) {
        const char16_t u = c.unicode();
        return u >= 0x20 && u < 0x7F && !(u >= '0' && u <= '9');
    });
}

QString asciiLower(const QString &text)
{
    QString out = text;
    for (QChar &c : out) {
        if (c.unicode() >= 'A' && c.unicode() <= 'Z')
            c = QChar(c.unicode() + ('a' - 'A'));
    }
    return out;
}

// The matches of "(\b" + prefix + ".*)" in list order, each up to (not including) its LF.
std::vector<QStringView> indexedMatches(const DictionaryIndex::PlainList &list, const QString &prefix)
{
    const QString key = asciiLower(prefix);
    const QStringView lowered(list.asciiLowered);
    auto restOfLine = [lowered](int p) {
        qsizetype end = lowered.indexOf(u'\n', p);
        return lowered.mid(p, (end < 0 ? lowered.size() : end) - p);
    };
    const auto first = std::lower_bound(list.wordStarts.begin(), list.wordStarts.end(), key,
                                        [&](int p, const QString &k) { return restOfLine(p) < k; });
    std::vector<int> hits;
    for (auto it = first; it != list.wordStarts.end() && restOfLine(*it).startsWith(key); ++it)
        hits.push_back(*it);
    std::sort(hits.begin(), hits.end());

    std::vector<QStringView> matches;
    const QStringView text(list.text);
    qsizetype lineEnd = -1;
    for (int p : hits) {
        if (p < lineEnd)
            continue;   // the line's leftmost match was taken already
        lineEnd = text.indexOf(u'\n', p);
        if (lineEnd < 0)
            lineEnd = text.size();
        matches.push_back(text.mid(p, lineEnd - p));
    }
    return matches;
}

std::vector<QStringView> patternMatches(const DictionaryIndex::PlainList &list, const QString &escaped)
{
    std::vector<QStringView> matches;
    const QRegularExpression pattern(QStringLiteral("(\\b") + escaped + QStringLiteral(".*)"),
                                     QRegularExpression::CaseInsensitiveOption);
    if (!pattern.isValid())
        return matches;
    QRegularExpressionMatchIterator it = pattern.globalMatch(list.text);
    while (it.hasNext()) {
        const QRegularExpressionMatch match = it.next();
        matches.push_back(QStringView(list.text).mid(match.capturedStart(0), match.capturedLength(0)));
    }
    return matches;
}

double clockSeededRandom(std::mt19937_64 &generator)
{
    return std::generate_canonical<double, 53>(generator);
}

} // namespace

QString WordLists::escapePrefix(const QString &prefix)
{
    if (!Dictionary::letterOf(prefix))
        return QString();
    QString escaped;
    escaped.reserve(prefix.size() * 2);
    for (QChar c : prefix) {
        const char16_t upper = c.toUpper().unicode();
        if (!(upper >= 'A' && upper <= 'Z'))
            escaped += u'\\';
        escaped += c;
    }
    return escaped;
}

bool WordLists::GetWordsThatStartWith(QString &MyStartingLetters, QStringList &MyReturnArray,
                                      int ReturnLimit, const CompletionHooks *hooks)
{
    const QString prefix = MyStartingLetters;
    const char letter = Dictionary::letterOf(prefix);
    if (!letter)
        return false;
    const QString escaped = escapePrefix(prefix);
    MyStartingLetters = escaped;

    const DictionaryIndex::PlainList &list = DictionaryIndex::instance().plainList(letter);
    const std::vector<QStringView> matches = indexCanAnswer(prefix)
                                                 ? indexedMatches(list, prefix)
                                                 : patternMatches(list, escaped);
    if (matches.empty())
        return false;

    QStringList stored;
    for (QStringView match : matches) {
        if (hooks && hooks->hasPendingInput && hooks->hasPendingInput())
            continue;
        if (match.contains(u'\u2019'))
            continue;
        stored.append(match.chopped(1).toString());   // drop the line's CR
        if (hooks && hooks->yieldToEventLoop)
            hooks->yieldToEventLoop();
        if (ReturnLimit > 0 && stored.size() == ReturnLimit)
            break;
    }
    if (!stored.isEmpty())
        MyReturnArray = stored;
    return true;
}

QString WordLists::GetRandomWord()
{
    const auto seed = std::chrono::high_resolution_clock::now().time_since_epoch().count();
    std::mt19937_64 generator(static_cast<std::mt19937_64::result_type>(seed));
    return GetRandomWord([&generator] { return clockSeededRandom(generator); });
}

QString WordLists::GetRandomWord(const RandomSource &random)
{
    DictionaryIndex &index = DictionaryIndex::instance();
    bool anyCandidate = false;
    for (char letter = 'A'; letter < 'Z'; ++letter)
        anyCandidate = index.plainList(letter).anyRandomCandidate || anyCandidate;
    if (!anyCandidate || !random)
        return QString();

    // A broken random source must not hang the caller.
    for (int attempt = 0; attempt < 10'000'000; ++attempt) {
        const int offset = std::clamp(static_cast<int>(random() * 25), 0, 24);
        const char letter = static_cast<char>('A' + offset);
        const QStringList &pieces = index.plainList(letter).pieces;
        const int pick = std::clamp(static_cast<int>(random() * pieces.size()), 0,
                                    static_cast<int>(pieces.size()) - 1);
        if (DictionaryIndex::isRandomCandidate(pieces[pick]))
            return properCase(pieces[pick]);
    }
    return QString();
}

QString WordLists::properCase(const QString &text)
{
    QString out = text;
    bool wordStart = true;
    for (QChar &c : out) {
        const char16_t u = c.unicode();
        const bool separator = u == u' ' || u == u'\t' || u == u'\r' || u == u'\n' || u == u'\v'
                               || u == u'\f' || u == 0;
        if (separator) {
            wordStart = true;
            continue;
        }
        c = wordStart ? c.toUpper() : c.toLower();
        wordStart = false;
    }
    return out;
}

} // namespace kvrtb
