#include "spelling/misspellingscanner.h"

#include "core/threadstate.h"
#include "hyperlinks/addresspatterns.h"
#include "spelling/dictionary.h"

#include <algorithm>

namespace kvrtb {

namespace {

constexpr char16_t kRightQuote = u'\u2019';

struct CompiledPatterns {
    QRegularExpression token{MisspellingScanner::tokenPatternText(), QRegularExpression::CaseInsensitiveOption};
    QRegularExpression abbreviation{Dictionary::LoadDictionaryText(QStringLiteral("DOTS")).trimmed()
                                    + QStringLiteral("\\b")};
};

CompiledPatterns &compiled()
{
    return perThread<CompiledPatterns>();
}

/// Every non-empty match of \a pattern in \a text as [start, end) pairs, in text order.
template <typename Visit>
void forEachMatch(const QRegularExpression &pattern, QStringView text, Visit visit)
{
    if (!pattern.isValid() || text.isEmpty())
        return;
    QRegularExpressionMatchIterator it = pattern.globalMatch(text);
    while (it.hasNext()) {
        const QRegularExpressionMatch match = it.next();
        if (!match.hasMatch())
            break;
        if (match.capturedLength() > 0)
            visit(int(match.capturedStart()), int(match.capturedEnd()));
    }
}

/// \a text without the matches of \a pattern (each replaced by the empty string).
QString removeMatches(const QRegularExpression &pattern, const QString &text)
{
    QString kept;
    int from = 0;
    forEachMatch(pattern, text, [&](int start, int end) {
        if (kept.isNull())
            kept.reserve(text.size());
        kept += QStringView(text).mid(from, start - from);
        from = end;
    });
    if (from == 0)
        return text;
    kept += QStringView(text).mid(from);
    return kept;
}

} // namespace

QString MisspellingScanner::tokenPatternText()
{
    // One pattern, as the control has always written it: each accented letter and the right
    // single quotation mark escaped by a backslash (a literal before a non-ASCII letter).
    return QStringLiteral(
        uR"re([\à\á\â\ã\ä\è\é\ê\ë\ì\í\î\ï\ñ\ò\ó\ô\õ\ö\ù\ú\û\ü\ý\ÿ\'\’]?(\b[a-z\'\’\à\á\â\ã\ä\è\é\ê\ë\ì\í\î\ï\ñ\ò\ó\ô\õ\ö\ù\ú\û\ü\ý\ÿ]{2,}\b|\b([a-z]{1}[\.]){1,}[a-z]{1,}\b\.?)[\à\á\â\ã\ä\è\é\ê\ë\ì\í\î\ï\ñ\ò\ó\ô\õ\ö\ù\ú\û\ü\ý\ÿ\'\’]?(?!(:|#)))re");
}

const QRegularExpression &MisspellingScanner::tokenPattern()
{
    return compiled().token;
}

const QRegularExpression &MisspellingScanner::abbreviationPattern()
{
    return compiled().abbreviation;
}

QString MisspellingScanner::removeNonWords(const QString &text)
{
    const QString withoutAddresses =
        AddressPatterns::quickReject(text) ? text : removeMatches(AddressPatterns::link(), text);
    return removeMatches(abbreviationPattern(), withoutAddresses);
}

QList<QStringView> MisspellingScanner::candidates(QStringView stripped)
{
    QList<QStringView> words;
    forEachMatch(tokenPattern(), stripped,
                 [&](int start, int end) { words.append(stripped.mid(start, end - start)); });
    return words;
}

bool MisspellingScanner::hasOuterApostrophe(QStringView word)
{
    if (word.isEmpty())
        return false;
    auto isApostrophe = [](QChar c) { return c == QLatin1Char('\'') || c == QChar(kRightQuote); };
    return isApostrophe(word.front()) || isApostrophe(word.back());
}

bool MisspellingScanner::scan(const QString &text, QStringList &found, const Hooks &hooks, Progress *progress)
{
    Progress local;
    Progress &counters = progress ? *progress : local;
    counters = Progress();

    const QString stripped = removeNonWords(text);
    const QList<QStringView> words = candidates(stripped);
    counters.total = int(words.size());
    counters.counter = 0;

    bool result = false;
    int sinceYield = kYieldInterval - 1; // the first yield comes after the first candidate
    for (const QStringView word : words) {
        const bool skip = hooks.hasPendingInput && hooks.hasPendingInput();
        if (!skip && !hasOuterApostrophe(word) && !Dictionary::IsWordInDictionary(word)) {
            found.append(word.toString());
            result = true;
        }
        if (++sinceYield >= kYieldInterval) {
            sinceYield = 0;
            if (hooks.yieldToEventLoop)
                hooks.yieldToEventLoop();
            if (hooks.progress)
                hooks.progress(counters.counter + 1, counters.total);
        }
        ++counters.counter;
        if (hooks.isCancelled && hooks.isCancelled()) {
            found.clear();
            counters.counter = 0;
            counters.cancelled = true;
            break;
        }
    }
    if (hooks.progress)
        hooks.progress(counters.counter, counters.total);
    return result;
}

QList<MisspellingScanner::Zone> MisspellingScanner::nonWordZones(const QString &text)
{
    QList<Zone> zones;
    auto add = [&zones](int start, int end) { zones.append({start, end - start}); };
    if (!AddressPatterns::quickReject(text))
        forEachMatch(AddressPatterns::link(), text, add);
    forEachMatch(abbreviationPattern(), text, add);
    std::sort(zones.begin(), zones.end(), [](const Zone &a, const Zone &b) { return a.start < b.start; });
    return zones;
}

} // namespace kvrtb
