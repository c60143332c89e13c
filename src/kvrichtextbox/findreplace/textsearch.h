#pragma once

#include <QList>
#include <QString>
#include <QStringMatcher>
#include <QStringView>

namespace kvrtb {

/// \brief Literal text search with the options of the control's find (`FindOptionsQ`).
///
/// The searched text is always taken literally: regular-expression characters are ordinary
/// characters. Case is ignored unless the options hold match case (4); with whole word (2) an
/// occurrence counts only when neither the character before it nor the one after it is a letter
/// or a digit (the start and end of the text, blanks, punctuation and paragraph breaks all end
/// a word), which is the rule of the editor surface's own find. Options other than 2 and 4
/// bits are ignored. An empty searched text is found nowhere.
///
/// \code
/// kvrtb::TextSearch cat(QStringLiteral("cat"), kvrtb::WholeWord);
/// cat.indexIn(QStringLiteral("cats and a cat"), 0);   // 11
/// \endcode
class TextSearch {
public:
    TextSearch(const QString &what, int options);

    /// The first occurrence that starts at or after \a from and ends at or before \a to
    /// (-1: the end of the text), or -1.
    qsizetype indexIn(QStringView text, qsizetype from, qsizetype to = -1) const;
    /// The last occurrence that ends at or before \a end, or -1.
    qsizetype lastIndexIn(QStringView text, qsizetype end) const;
    /// True when an occurrence starts exactly at \a position.
    bool matchesAt(QStringView text, qsizetype position) const;
    /// Every occurrence, left to right, none overlapping the one before it.
    QList<qsizetype> allIn(QStringView text) const;

    qsizetype length() const { return m_what.size(); }
    bool wholeWord() const { return m_wholeWord; }
    Qt::CaseSensitivity caseSensitivity() const { return m_case; }

    /// True when [position, position + length) is not part of a longer word.
    static bool isWholeWordAt(QStringView text, qsizetype position, qsizetype length);

private:
    /// The first occurrence of the searched text (whole word or not) starting in
    /// [from, lastStart], or -1.
    qsizetype occurrenceFrom(QStringView text, qsizetype from, qsizetype lastStart) const;

    QString m_what;
    Qt::CaseSensitivity m_case;
    bool m_wholeWord;
    QStringMatcher m_matcher;
    /// The forms the first character of an occurrence can take (one, or the two cases of an
    /// ASCII letter), scanned for directly, which is far faster than a general matcher. Empty
    /// when the first character folds in ways two forms do not cover (e.g. "k" and "s", which
    /// the Kelvin sign and the long s also fold to): the matcher searches then.
    QString m_firstForms;
};

} // namespace kvrtb
