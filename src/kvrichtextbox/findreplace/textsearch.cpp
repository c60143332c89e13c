#include "findreplace/textsearch.h"

#include "core/kvrtbtypes.h"

#include <algorithm>
#include <limits>

namespace kvrtb {

TextSearch::TextSearch(const QString &what, int options)
    : m_what(what),
      m_case((options & MatchCase) ? Qt::CaseSensitive : Qt::CaseInsensitive),
      m_wholeWord((options & WholeWord) != 0),
      m_matcher(what, m_case)
{
    if (what.isEmpty())
        return;
    const QChar first = what.front();
    if (m_case == Qt::CaseSensitive) {
        m_firstForms = first;
    } else if (first.unicode() < 128) {
        const QChar lower = first.toLower();
        if (lower != QLatin1Char('k') && lower != QLatin1Char('s')) {
            m_firstForms = lower;
            if (first.toUpper() != lower)
                m_firstForms += first.toUpper();
        }
    }
}

qsizetype TextSearch::occurrenceFrom(QStringView text, qsizetype from, qsizetype lastStart) const
{
    const qsizetype length = m_what.size();
    if (m_firstForms.isEmpty()) {
        for (qsizetype position = from; position <= lastStart; ++position) {
            position = m_matcher.indexIn(text, position);
            if (position < 0 || position > lastStart)
                return -1;
            if (!m_wholeWord || isWholeWordAt(text, position, length))
                return position;
        }
        return -1;
    }
    // Where each form of the first character occurs next; a form is looked for again only
    // once the candidates have passed it.
    constexpr qsizetype kNone = std::numeric_limits<qsizetype>::max();
    qsizetype next[2] = {-1, m_firstForms.size() > 1 ? qsizetype(-1) : kNone};
    qsizetype position = from;
    while (position <= lastStart) {
        for (int form = 0; form < 2; ++form) {
            if (next[form] != kNone && next[form] < position) {
                next[form] = text.indexOf(m_firstForms.at(form), position);
                if (next[form] < 0)
                    next[form] = kNone;
            }
        }
        const qsizetype candidate = std::min(next[0], next[1]);
        if (candidate > lastStart)
            return -1;
        if (text.mid(candidate, length).compare(m_what, m_case) == 0
            && (!m_wholeWord || isWholeWordAt(text, candidate, length)))
            return candidate;
        position = candidate + 1;
    }
    return -1;
}

bool TextSearch::isWholeWordAt(QStringView text, qsizetype position, qsizetype length)
{
    const qsizetype end = position + length;
    return (position == 0 || !text.at(position - 1).isLetterOrNumber())
        && (end >= text.size() || !text.at(end).isLetterOrNumber());
}

qsizetype TextSearch::indexIn(QStringView text, qsizetype from, qsizetype to) const
{
    if (m_what.isEmpty())
        return -1;
    const qsizetype limit = to < 0 ? text.size() : qMin(to, text.size());
    return occurrenceFrom(text, qMax<qsizetype>(from, 0), limit - m_what.size());
}

qsizetype TextSearch::lastIndexIn(QStringView text, qsizetype end) const
{
    if (m_what.isEmpty())
        return -1;
    qsizetype start = qMin(end, text.size()) - m_what.size();
    while (start >= 0) {
        start = text.lastIndexOf(m_what, start, m_case);
        if (start < 0)
            return -1;
        if (!m_wholeWord || isWholeWordAt(text, start, m_what.size()))
            return start;
        --start;
    }
    return -1;
}

bool TextSearch::matchesAt(QStringView text, qsizetype position) const
{
    if (m_what.isEmpty() || position < 0 || position + m_what.size() > text.size())
        return false;
    if (text.mid(position, m_what.size()).compare(m_what, m_case) != 0)
        return false;
    return !m_wholeWord || isWholeWordAt(text, position, m_what.size());
}

QList<qsizetype> TextSearch::allIn(QStringView text) const
{
    QList<qsizetype> hits;
    qsizetype position = indexIn(text, 0);
    while (position >= 0) {
        hits.append(position);
        position = indexIn(text, position + m_what.size());
    }
    return hits;
}

} // namespace kvrtb
