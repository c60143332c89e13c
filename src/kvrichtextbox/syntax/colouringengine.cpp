#include "syntax/colouringengine.h"

#include "syntax/keywordpatterns.h"

#include <QRegularExpression>

#include <algorithm>
#include <future>

namespace kvrtb {

ColouringEngine::ColouringEngine(const QString &subject, const Rules &rules)
    : ColouringEngine(subject, rules, collect(subject, rules))
{
}

ColouringEngine::ColouringEngine(const QString &subject, const Rules &rules, Matches matches)
    : m_original(subject),
      m_text(subject),
      m_rules(rules),
      m_matches(std::move(matches)),
      m_colour(size_t(subject.size()), 0),
      m_protected(size_t(subject.size()), false)
{
    for (int role = 0; role < kRoleCount; ++role) {
        // Colours are compared as the surface reports them: system colours as their RGB value.
        m_colours[size_t(role)] = translateColour(rules.passes[size_t(role)].colour);
        m_total += int(m_matches.byRole[size_t(role)].size());
    }
    while (m_role < kRoleCount && m_matches.byRole[size_t(m_role)].isEmpty())
        ++m_role;
    if (rules.capitalise) {
        for (const QString &entry : rules.canonicalKeywords.split(QLatin1Char('|'), Qt::SkipEmptyParts)) {
            m_canonicalExact.insert(entry);
            const QString lower = entry.toLower();
            if (!m_canonicalByLowerCase.contains(lower))
                m_canonicalByLowerCase.insert(lower, entry);
        }
    }
}

namespace {

/// The matches of one pass's pattern through the pattern engine; an invalid pattern gives none
/// and a line in \a warnings.
QList<ColouringEngine::Match> findByPattern(const QString &subject, const ColouringEngine::Pass &pass,
                                            QStringList &warnings)
{
    QList<ColouringEngine::Match> matches;
    const QRegularExpression pattern(pass.pattern, QRegularExpression::CaseInsensitiveOption);
    if (!pattern.isValid()) {
        warnings << QStringLiteral("%1 is not a valid pattern (%2 at offset %3); its pass colours nothing.")
                        .arg(pass.name, pattern.errorString())
                        .arg(pattern.patternErrorOffset());
        return matches;
    }
    // A pattern that backtracks without end stops at the engine's match limit and counts as no
    // further match.
    QRegularExpressionMatchIterator it = pattern.globalMatch(subject);
    while (it.hasNext()) {
        const QRegularExpressionMatch match = it.next();
        matches.append({int(match.capturedStart()), int(match.capturedLength())});
    }
    return matches;
}

} // namespace

ColouringEngine::Matches ColouringEngine::collect(const QString &subject, const Rules &rules)
{
    // A list of words is found by splitting the text into words, with the same result as the
    // pattern engine's and much sooner; the other patterns go through the engine.
    std::array<std::optional<KeywordScanner>, kRoleCount> scanners;
    std::optional<bool> scannable; // whether the text suits the scanner, once asked
    QList<int> byEngine;
    for (int role = 0; role < kRoleCount; ++role) {
        const Pass &pass = rules.passes[size_t(role)];
        if (pass.pattern.isEmpty())
            continue;
        scanners[size_t(role)] = KeywordScanner::fromPattern(pass.pattern);
        if (scanners[size_t(role)] && !scannable)
            scannable = KeywordScanner::canScan(subject);
        if (!scanners[size_t(role)] || !*scannable) {
            scanners[size_t(role)].reset();
            byEngine.append(role);
        }
    }
    const auto findByEngine = [&subject, &rules, &byEngine] {
        Matches found;
        for (const int role : byEngine)
            found.byRole[size_t(role)] = findByPattern(subject, rules.passes[size_t(role)], found.warnings);
        return found;
    };
    // With both kinds, the engine's share runs on another thread while the scanner works here.
    const bool both = !byEngine.isEmpty()
                      && std::any_of(scanners.begin(), scanners.end(), [](const auto &s) { return s.has_value(); });
    std::future<Matches> engineShare;
    if (both)
        engineShare = std::async(std::launch::async, findByEngine);
    Matches found = both ? Matches() : findByEngine();
    for (int role = 0; role < kRoleCount; ++role) {
        if (scanners[size_t(role)])
            found.byRole[size_t(role)] = scanners[size_t(role)]->matches(subject);
    }
    if (both) {
        Matches engine = engineShare.get();
        for (const int role : byEngine)
            found.byRole[size_t(role)] = std::move(engine.byRole[size_t(role)]);
        found.warnings = std::move(engine.warnings);
    }
    return found;
}

bool ColouringEngine::handleNext(bool skip)
{
    if (atEnd() || m_role >= kRoleCount)
        return false;
    const QList<Match> &matches = m_matches.byRole[size_t(m_role)];
    if (!skip)
        handle(m_role, matches.at(m_index));
    ++m_handled;
    if (++m_index < matches.size())
        return false;
    m_index = 0;
    ++m_role;
    while (m_role < kRoleCount && m_matches.byRole[size_t(m_role)].isEmpty())
        ++m_role;
    return true;
}

void ColouringEngine::handle(int role, const Match &match)
{
    if (match.length <= 0)
        return; // an empty match selects nothing, so it changes nothing
    const Colour comment = m_colours[CommentRole];
    switch (role) {
    case CommentRole:
        paint(match, comment);
        if (m_rules.capitalise && match.length >= 3
            && QStringView(m_text).mid(match.start, 3).compare(QLatin1String("REM"), Qt::CaseInsensitive) == 0)
            rewrite(match, KeywordPatterns::properCase(m_text.mid(match.start, match.length)));
        break;
    case StringRole:
        if (hasColour(match, comment))
            return; // a quote inside a comment stays comment-coloured
        paint(match, m_colours[StringRole]);
        std::fill(m_protected.begin() + match.start, m_protected.begin() + match.start + match.length, true);
        break;
    case KeywordRole:
        if (hasColour(match, comment) || isProtected(match))
            return; // a keyword inside a comment or a string
        paint(match, m_colours[KeywordRole]);
        if (m_rules.capitalise)
            makeCanonical(match);
        break;
    }
}

bool ColouringEngine::hasColour(const Match &match, Colour colour) const
{
    bool any = false;
    for (int i = match.start; i < match.start + match.length; ++i) {
        if (m_text.at(i) == QLatin1Char('\n'))
            continue;
        if (m_colour[size_t(i)] != colour)
            return false;
        any = true;
    }
    return any;
}

bool ColouringEngine::isProtected(const Match &match) const
{
    bool any = false;
    for (int i = match.start; i < match.start + match.length; ++i) {
        if (m_text.at(i) == QLatin1Char('\n'))
            continue;
        if (!m_protected[size_t(i)])
            return false;
        any = true;
    }
    return any;
}

void ColouringEngine::paint(const Match &match, Colour colour)
{
    m_painted.push_back(match);
    std::fill(m_colour.begin() + match.start, m_colour.begin() + match.start + match.length, colour);
}

void ColouringEngine::rewrite(const Match &match, const QString &text)
{
    m_rewritten.push_back(match);
    m_text.replace(match.start, match.length, text);
}

void ColouringEngine::makeCanonical(const Match &match)
{
    // The list is "|Word|Word|...|": a matched word is an entry when "|word|" occurs in it.
    // Looked up without a copy: almost every keyword is already written canonically.
    const QString matched = QString::fromRawData(m_original.constData() + match.start, match.length);
    if (m_canonicalExact.contains(matched))
        return;
    rewrite(match, KeywordPatterns::properCase(m_text.mid(match.start, match.length)));
    const auto canonical = m_canonicalByLowerCase.constFind(matched.toLower());
    if (canonical == m_canonicalByLowerCase.constEnd())
        return;
    // Every upper-case letter of the canonical spelling is made upper case in the text.
    for (int i = 0; i < canonical->size() && i < match.length; ++i) {
        if (canonical->at(i).isUpper())
            m_text[match.start + i] = m_text.at(match.start + i).toUpper();
    }
}

namespace {

/// \a ranges sorted, with overlapping and adjacent ones joined.
std::vector<ColouringEngine::Match> joined(std::vector<ColouringEngine::Match> ranges)
{
    std::sort(ranges.begin(), ranges.end(), [](const auto &a, const auto &b) { return a.start < b.start; });
    std::vector<ColouringEngine::Match> result;
    for (const ColouringEngine::Match &range : ranges) {
        if (!result.empty() && range.start <= result.back().start + result.back().length)
            result.back().length = std::max(result.back().length, range.start + range.length - result.back().start);
        else
            result.push_back(range);
    }
    return result;
}

} // namespace

QList<EditorSurface::ColourRun> ColouringEngine::colourRuns(int offset) const
{
    QList<EditorSurface::ColourRun> runs;
    for (const Match &range : joined(m_painted)) {
        const int size = range.start + range.length;
        int i = range.start;
        while (i < size) {
            const Colour colour = m_colour[size_t(i)];
            int end = i + 1;
            while (end < size && m_colour[size_t(end)] == colour)
                ++end;
            if (colour != 0)
                runs.append({offset + i, end - i, colour});
            i = end;
        }
    }
    return runs;
}

QList<EditorSurface::TextRewrite> ColouringEngine::rewrites(int offset) const
{
    QList<EditorSurface::TextRewrite> result;
    for (const Match &range : joined(m_rewritten)) {
        const int size = range.start + range.length;
        int i = range.start;
        while (i < size) {
            if (m_text.at(i) == m_original.at(i)) {
                ++i;
                continue;
            }
            int end = i + 1;
            while (end < size && m_text.at(end) != m_original.at(end))
                ++end;
            result.append({offset + i, m_text.mid(i, end - i)});
            i = end;
        }
    }
    return result;
}

int ColouringEngine::percentage(int count, int total)
{
    if (total <= 0)
        return 0;
    const qint64 scaled = qint64(count) * 100;
    const qint64 quotient = scaled / total;
    const qint64 twiceRemainder = (scaled % total) * 2;
    if (twiceRemainder > total || (twiceRemainder == total && quotient % 2 != 0))
        return int(quotient + 1);
    return int(quotient);
}

} // namespace kvrtb
