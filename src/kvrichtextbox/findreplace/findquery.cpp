#include "findreplace/findquery.h"

#include "core/kvrtbtypes.h"

#include <algorithm>

namespace kvrtb {

namespace {

/// Characters that are letters or digits end no word: a whole-word match has none on either side.
const QString kNotAfterWordChar = QStringLiteral("(?<![\\p{L}\\p{N}])(?:");
const QString kNotBeforeWordChar = QStringLiteral(")(?![\\p{L}\\p{N}])");

QRegularExpression::PatternOptions patternOptions(bool matchCase)
{
    QRegularExpression::PatternOptions options =
        QRegularExpression::MultilineOption | QRegularExpression::UseUnicodePropertiesOption;
    if (!matchCase)
        options |= QRegularExpression::CaseInsensitiveOption;
    return options;
}

} // namespace

FindQuery::FindQuery(const Settings &settings) : m_settings(settings)
{
    if (settings.pattern.isEmpty()) {
        m_errorMessage = QStringLiteral("Type the text to find.");
        return;
    }
    if (!settings.regex) {
        m_literal.emplace(settings.pattern, (settings.wholeWord ? WholeWord : 0) | (settings.matchCase ? MatchCase : 0));
        return;
    }
    // The user's pattern is checked on its own, so that an error's offset is one in what the
    // user typed; the whole-word guards are put around it afterwards.
    const QRegularExpression::PatternOptions options = patternOptions(settings.matchCase);
    QRegularExpression plain(settings.pattern, options);
    if (!plain.isValid()) {
        m_errorMessage = QStringLiteral("Invalid regular expression: %1 at offset %2.")
                             .arg(plain.errorString())
                             .arg(plain.patternErrorOffset());
        return;
    }
    if (settings.wholeWord) {
        m_regex = QRegularExpression(kNotAfterWordChar + settings.pattern + kNotBeforeWordChar, options);
        if (!m_regex.isValid()) {
            // Only a pattern that ends inside a comment of its own gets here.
            m_errorMessage = QStringLiteral("Invalid regular expression: the whole-word option cannot enclose it.");
            return;
        }
    } else {
        m_regex = plain;
    }
    m_regex.optimize();
}

QString FindQuery::searchable(const QString &text)
{
    if (QStringView(text).isValidUtf16())
        return text;
    QString fixed = text;
    QChar *data = fixed.data();
    const qsizetype size = fixed.size();
    for (qsizetype i = 0; i < size; ++i) {
        if (data[i].isHighSurrogate() && i + 1 < size && data[i + 1].isLowSurrogate())
            ++i;
        else if (data[i].isSurrogate())
            data[i] = QChar::ReplacementCharacter;
    }
    return fixed;
}

FindQuery::Match FindQuery::literalAt(qsizetype position) const
{
    Match match;
    if (position >= 0) {
        match.status = Status::Found;
        match.start = int(position);
        match.length = int(m_literal->length());
    }
    return match;
}

FindQuery::Match FindQuery::fromRegex(const QRegularExpressionMatch &found) const
{
    Match match;
    if (!found.isValid()) {
        // The engine stopped at its step limit (catastrophic backtracking).
        match.status = Status::TooComplex;
        return match;
    }
    if (!found.hasMatch())
        return match;
    match.status = Status::Found;
    match.start = int(found.capturedStart());
    match.length = int(found.capturedLength());
    const int groups = std::min(found.lastCapturedIndex(), 9);
    for (int i = 0; i <= groups; ++i)
        match.groups << found.captured(i);
    return match;
}

FindQuery::Match FindQuery::next(QStringView text, int from, int to) const
{
    Match match;
    if (!isValid())
        return match;
    to = std::clamp(to, 0, int(text.size()));
    from = std::max(from, 0);
    if (from > to)
        return match;
    if (m_literal)
        return literalAt(m_literal->indexIn(text, from, to));
    return fromRegex(
        m_regex.match(text.left(to), from, QRegularExpression::NormalMatch, QRegularExpression::DontCheckSubjectStringMatchOption));
}

FindQuery::Match FindQuery::previous(QStringView text, int from, int before) const
{
    Match last;
    if (!isValid())
        return last;
    before = std::clamp(before, 0, int(text.size()));
    from = std::max(from, 0);
    if (m_literal) {
        const qsizetype hit = m_literal->lastIndexIn(text, before);
        return literalAt(hit >= from ? hit : -1);
    }
    // A regular expression cannot run backwards: the matches are walked from the start of the
    // range and the last one before the end kept.
    int position = from;
    while (position <= before) {
        const Match match = next(text, position, before);
        if (match.status == Status::TooComplex)
            return match;
        if (!match.found() || (match.length == 0 && match.start >= before))
            break;
        last = match;
        position = match.length > 0 ? match.end() : match.start + 1;
    }
    return last;
}

FindQuery::Match FindQuery::exactlyAt(QStringView text, int start, int length, int to) const
{
    Match match;
    to = std::clamp(to, 0, int(text.size()));
    if (!isValid() || start < 0 || length < 0 || start + length > to)
        return match;
    if (m_literal)
        return literalAt(length == m_literal->length() && m_literal->matchesAt(text, start) ? start : -1);
    match = fromRegex(m_regex.match(text.left(to), start, QRegularExpression::NormalMatch,
                                    QRegularExpression::AnchorAtOffsetMatchOption
                                        | QRegularExpression::DontCheckSubjectStringMatchOption));
    if (match.found() && match.length != length)
        return Match();
    return match;
}

QString FindQuery::replacementFor(const Match &match, const QString &replacement) const
{
    if (!m_settings.regex)
        return replacement;
    QString result;
    result.reserve(replacement.size());
    for (qsizetype i = 0; i < replacement.size(); ++i) {
        const QChar c = replacement.at(i);
        const QChar following = i + 1 < replacement.size() ? replacement.at(i + 1) : QChar();
        if ((c == QLatin1Char('\\') || c == QLatin1Char('$')) && following.isDigit() && following.unicode() < 128) {
            const int group = following.unicode() - '0';
            result += match.groups.value(group);
            ++i;
        } else if (c == QLatin1Char('\\') && following == QLatin1Char('\\')) {
            result += c;
            ++i;
        } else if (c == QLatin1Char('$') && following == QLatin1Char('$')) {
            result += c;
            ++i;
        } else if (c == QLatin1Char('\\') && following == QLatin1Char('n')) {
            result += QLatin1Char('\n');
            ++i;
        } else if (c == QLatin1Char('\\') && following == QLatin1Char('t')) {
            result += QLatin1Char('\t');
            ++i;
        } else {
            result += c;
        }
    }
    return result;
}

} // namespace kvrtb
