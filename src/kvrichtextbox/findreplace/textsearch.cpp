#include "findreplace/textsearch.h"

#include "core/kvrtbtypes.h"

namespace kvrtb {

TextSearch::TextSearch(const QString &what, int options)
    : m_what(what),
      m_case((options & MatchCase) ? Qt::CaseSensitive : Qt::CaseInsensitive),
      m_wholeWord((options & WholeWord) != 0),
      m_matcher(what, m_case)
{
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
    qsizetype position = qMax<qsizetype>(from, 0);
    while (position + m_what.size() <= limit) {
        position = m_matcher.indexIn(text, position);
        if (position < 0 || position + m_what.size() > limit)
            return -1;
        if (!m_wholeWord || isWholeWordAt(text, position, m_what.size()))
            return position;
        ++position;
    }
    return -1;
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
