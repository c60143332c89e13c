#include "spelling/suggestions.h"

#include "spelling/dictionary.h"
#include "spelling/suggestionsearch_p.h"

#include <algorithm>
#include <vector>

namespace kvrtb {

namespace {

const QChar kTypographicApostrophe(u'\u2019');

// The "DOTS2" list lower-cased, read once: the abbreviation checks search it, and the listed
// form is cut from the original at the same place (the list is ASCII, so positions agree).
struct AbbreviationList {
    QString text;
    QString lowered;
};

const AbbreviationList &abbreviations()
{
    static const AbbreviationList list = [] {
        AbbreviationList l;
        l.text = Dictionary::LoadDictionaryText(QStringLiteral("DOTS2"));
        l.lowered = l.text.toLower();
        if (l.lowered.size() != l.text.size())
            l.lowered = l.text;
        return l;
    }();
    return list;
}

// The abbreviation suggested for `w`, or a null string when it is not listed.
QString abbreviationFor(const QString &w)
{
    const AbbreviationList &list = abbreviations();
    const qsizetype hit = list.lowered.indexOf(u'$' + w + QStringLiteral(".<"));
    if (hit < 0)
        return QString();
    return list.text.mid(hit + 1, w.size() + 1);
}

bool isListedAbbreviation(const QString &word)
{
    return !word.isEmpty() && abbreviations().lowered.contains(u'$' + word.toLower() + u'<');
}

// The candidates that reach the accuracy, in list order.
QStringList keptCandidates(const SPELL_CHECK_TYPE &SCData, bool *abbreviation)
{
    *abbreviation = false;
    const QString w = Suggestions::searchWord(SCData.IncorrectWord);
    const char letter = Dictionary::letterOf(w);
    if (!letter || isListedAbbreviation(SCData.IncorrectWord))
        return {};
    const QString listed = abbreviationFor(w);
    if (!listed.isNull()) {
        *abbreviation = true;
        return {listed};
    }
    QStringList kept;
    for (const QString &candidate : suggestionsearch::candidates(letter, w)) {
        if (candidate.contains(kTypographicApostrophe))
            continue;
        if (Suggestions::ScoreCandidate(w, candidate) >= SCData.QAccuracy)
            kept.append(candidate);
    }
    return kept;
}

} // namespace

QString Suggestions::searchWord(const QString &IncorrectWord)
{
    QString w = IncorrectWord;
    w.remove(u'.');
    return w.toLower();
}

void Suggestions::GetPossibleSpellingCorrections(SPELL_CHECK_TYPE &SCData)
{
    bool abbreviation = false;
    SCData.Suggestions = keptCandidates(SCData, &abbreviation);
    SCData.SuggestionsFound = !SCData.Suggestions.isEmpty();
}

void Suggestions::GetRankedSpellingCorrections(SPELL_CHECK_TYPE &SCData)
{
    bool abbreviation = false;
    const QStringList kept = keptCandidates(SCData, &abbreviation);
    SCData.Suggestions = abbreviation ? kept : rankCandidates(SCData.IncorrectWord, kept);
    SCData.SuggestionsFound = !SCData.Suggestions.isEmpty();
}

QString Suggestions::BuildSuggestionPattern(const QString &w)
{
    const qsizetype n = w.size();
    if (n < 4)
        return QString();
    const qsizetype k = n >= 7 ? n - 3 : n - 2;
    const QString q = u'{' + QString::number(k) + u',' + QString::number(n) + u'}';
    const QString c1 = w.left(1);
    const QString cL = w.right(1);
    const QString f2 = w.left(2);
    const QString m = w.mid(1, n - 2);
    const QString r = w.mid(1);
    return QStringLiteral("(\\b(") + c1 + QStringLiteral(")") + QStringLiteral("[") + m + QStringLiteral("\\S]") + q
           + QStringLiteral("(") + cL + QStringLiteral(")\\b|\\b(") + c1 + QStringLiteral(")[") + r + QStringLiteral("]") + q
           + QStringLiteral("\\w?\\b|\\b(") + f2 + QStringLiteral(")[a-z\\'\\\u2019]") + q + QStringLiteral("\\b)\\s");
}

QString Suggestions::BuildShortWordPattern(const QString &w)
{
    if (w.isEmpty() || w.size() >= 4)
        return QString();
    QString pattern = QStringLiteral("\\b") + w.front();
    for (qsizetype i = 1; i < w.size(); ++i)
        pattern += u'(' + w[i] + QStringLiteral("|\\S)");
    return pattern + QStringLiteral("\\S?\\.?\\s");
}

qint16 Suggestions::ScoreCandidate(const QString &misspelt, const QString &candidate)
{
    const int s = CommonSubsequencePercent(misspelt, candidate);
    const int d = LetterDistance(misspelt, candidate, s);
    const int sound = SoundexCode(misspelt) == SoundexCode(candidate) ? 10 : -10;
    return static_cast<qint16>(s + sound - d);
}

qint16 Suggestions::CommonSubsequencePercent(const QString &a, const QString &b)
{
    if (a.isEmpty() || b.isEmpty())
        return 0;
    // Two rows of the table are enough: row i only reads row i - 1.
    std::vector<int> previous(static_cast<size_t>(b.size()) + 1, 0);
    std::vector<int> current(previous.size(), 0);
    for (qsizetype i = 1; i <= a.size(); ++i) {
        for (qsizetype j = 1; j <= b.size(); ++j) {
            current[j] = a[i - 1] == b[j - 1] ? previous[j - 1] + 1 : std::max(previous[j], current[j - 1]);
        }
        std::swap(previous, current);
    }
    const double percent = static_cast<double>(previous[b.size()]) * 100.0 / static_cast<double>(b.size());
    return static_cast<qint16>(percent);
}

QString Suggestions::SoundexCode(const QString &word)
{
    static const char digits[] = "01230120022455012623010202";
    const QString upper = word.toUpper();
    if (upper.isEmpty())
        return QString();
    auto digitOf = [](QChar c) -> QChar {
        const char16_t u = c.unicode();
        return (u >= 'A' && u <= 'Z') ? QChar(digits[u - 'A']) : QChar();
    };
    QString code(upper.front());
    QChar previous = digitOf(upper.front());
    for (qsizetype i = 1; i < upper.size() && code.size() < 4; ++i) {
        const QChar digit = digitOf(upper[i]);
        if (digit.isNull())
            continue;
        if (digit != u'0' && digit != previous)
            code += digit;
        previous = digit;
    }
    return code;
}

int Suggestions::LetterDistance(const QString &a, const QString &b, int bound)
{
    if (bound <= 0)
        return 0;
    const qsizetype la = a.size();
    const qsizetype lb = b.size();
    if (std::abs(la - lb) >= bound)
        return bound;
    // The fewest steps, found for all prefixes at once (three rows: a swap looks two back).
    std::vector<int> before(static_cast<size_t>(lb) + 1, 0);
    std::vector<int> previous(before.size(), 0);
    std::vector<int> current(before.size(), 0);
    for (qsizetype j = 0; j <= lb; ++j)
        previous[j] = static_cast<int>(j);
    for (qsizetype i = 1; i <= la; ++i) {
        current[0] = static_cast<int>(i);
        int rowBest = current[0];
        for (qsizetype j = 1; j <= lb; ++j) {
            int best = std::min(previous[j], current[j - 1]) + 1;
            if (a[i - 1] == b[j - 1])
                best = std::min(best, previous[j - 1]);
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                best = std::min(best, before[j - 2] + 1);
            current[j] = best;
            rowBest = std::min(rowBest, best);
        }
        // Every later row is at least this row's best: once it reaches the bound, so does the
        // result.
        if (rowBest >= bound)
            return bound;
        std::swap(before, previous);
        std::swap(previous, current);
    }
    return std::min(previous[lb], bound);
}

} // namespace kvrtb
