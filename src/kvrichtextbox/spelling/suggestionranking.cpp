// The likelihood order of suggestions: a weighted edit distance between the misspelt word and
// each candidate, in which the common slips of typing and spelling cost less than arbitrary
// changes.

#include "spelling/suggestions.h"

#include <QSet>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace kvrtb {

namespace {

bool isVowel(QChar c)
{
    switch (c.unicode()) {
    case 'a': case 'e': case 'i': case 'o': case 'u': case 'y':
        return true;
    default:
        return false;
    }
}

// Neighbouring keys on a US keyboard (letters only).
bool areNeighbourKeys(QChar a, QChar b)
{
    static const char *const rows[] = {"qwertyuiop", "asdfghjkl", "zxcvbnm"};
    auto place = [](QChar c, int &row, int &column) {
        if (c.unicode() < 'a' || c.unicode() > 'z')
            return false;
        for (int r = 0; r < 3; ++r) {
            const char *hit = std::strchr(rows[r], c.toLatin1());
            if (hit) {
                row = r;
                column = static_cast<int>(hit - rows[r]);
                return true;
            }
        }
        return false;
    };
    int ra = 0, ca = 0, rb = 0, cb = 0;
    if (!place(a, ra, ca) || !place(b, rb, cb))
        return false;
    // Rows are offset by about half a key: a key touches two keys in each row next to it.
    if (ra == rb)
        return std::abs(ca - cb) == 1;
    if (std::abs(ra - rb) != 1)
        return false;
    const int upperColumn = ra < rb ? ca : cb;
    const int lowerColumn = ra < rb ? cb : ca;
    return lowerColumn == upperColumn || lowerColumn == upperColumn - 1;
}

// Letter pairs that stand for the same sound often enough to be confused.
bool soundAlike(QChar a, QChar b)
{
    static const char *const pairs[] = {"cs", "ck", "sz", "gj", "fv", "mn", "dt", "bp", "qk", "xz"};
    for (const char *pair : pairs) {
        if ((a == QLatin1Char(pair[0]) && b == QLatin1Char(pair[1]))
            || (a == QLatin1Char(pair[1]) && b == QLatin1Char(pair[0])))
            return true;
    }
    return false;
}

double substitutionCost(QChar a, QChar b)
{
    if (a == b)
        return 0.0;
    if (isVowel(a) && isVowel(b))
        return 0.6;
    if (soundAlike(a, b))
        return 0.7;
    if (areNeighbourKeys(a, b))
        return 0.75;
    return 1.0;
}

// Cost of a character that one word has and the other lacks, at `index` in `word`: a doubled
// letter and an apostrophe are the cheapest to miss or add, a vowel next.
double gapCost(const QString &word, qsizetype index)
{
    const QChar c = word[index];
    if (c == u'\'' || c == u'-')
        return 0.35;
    if ((index > 0 && word[index - 1] == c) || (index + 1 < word.size() && word[index + 1] == c))
        return 0.45;
    if (isVowel(c))
        return 0.8;
    return 1.0;
}

// Weighted edit distance (changes, gaps, swapped neighbours) of two lower-cased words.
double slipDistance(const QString &a, const QString &b)
{
    const qsizetype la = a.size();
    const qsizetype lb = b.size();
    std::vector<std::vector<double>> d(static_cast<size_t>(la) + 1, std::vector<double>(static_cast<size_t>(lb) + 1, 0.0));
    for (qsizetype i = 1; i <= la; ++i)
        d[i][0] = d[i - 1][0] + gapCost(a, i - 1);
    for (qsizetype j = 1; j <= lb; ++j)
        d[0][j] = d[0][j - 1] + gapCost(b, j - 1);
    for (qsizetype i = 1; i <= la; ++i) {
        for (qsizetype j = 1; j <= lb; ++j) {
            double best = d[i - 1][j - 1] + substitutionCost(a[i - 1], b[j - 1]);
            best = std::min(best, d[i - 1][j] + gapCost(a, i - 1));
            best = std::min(best, d[i][j - 1] + gapCost(b, j - 1));
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1] && a[i - 1] != a[i - 2])
                best = std::min(best, d[i - 2][j - 2] + 0.6);
            d[i][j] = best;
        }
    }
    return d[la][lb];
}

bool hasUpper(const QString &word)
{
    return std::any_of(word.begin(), word.end(), [](QChar c) { return c.isUpper(); });
}

struct Ranked {
    QString word;
    double cost = 0.0;
    int listIndex = 0;
};

} // namespace

QStringList Suggestions::rankCandidates(const QString &misspelt, const QStringList &candidates)
{
    const QString w = searchWord(misspelt);
    const QString soundOfWord = SoundexCode(w);
    const bool wordHasUpper = hasUpper(misspelt);
    const bool wordHasApostrophe = w.contains(u'\'') || w.contains(u'\u2019');

    std::vector<Ranked> ranked;
    QSet<QString> seen;
    for (int i = 0; i < candidates.size(); ++i) {
        const QString &candidate = candidates[i];
        if (seen.contains(candidate))
            continue;
        seen.insert(candidate);
        const QString lowered = candidate.toLower();
        double cost = slipDistance(w, lowered);
        if (SoundexCode(lowered) == soundOfWord)
            cost -= 0.25;
        if (hasUpper(candidate) && !wordHasUpper)
            cost += 0.4;
        if (!wordHasApostrophe && (candidate.contains(u'\'') || candidate.contains(u'\u2019')))
            cost += 0.3;
        ranked.push_back({candidate, cost, i});
    }
    std::stable_sort(ranked.begin(), ranked.end(),
                     [](const Ranked &x, const Ranked &y) { return x.cost < y.cost; });
    QStringList out;
    out.reserve(static_cast<qsizetype>(ranked.size()));
    for (const Ranked &r : ranked)
        out.append(r.word);
    return out;
}

} // namespace kvrtb
