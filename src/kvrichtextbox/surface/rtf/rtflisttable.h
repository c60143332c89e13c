#pragma once

#include "core/editorsurface.h"

#include <QByteArray>
#include <QHash>
#include <QString>

#include <vector>

class QTextList;

namespace kvrtb::rtf {

/// \brief The bullet a bulleted list level shows, from its level text as characters (the
/// length character first) and the name of the level's font. Symbol and Wingdings characters
/// (also as their private-use code points U+F0xx) become the Unicode characters they look like
/// ("•", "▪", "➢", "✓"); other characters ("o", "-", "•") stay as they are; "•" when the
/// level text has none.
QString bulletOfLevel(const QString &characters, const QString &fontName);

/// \brief Gathers the lists of the paragraphs the writer writes and gives the RTF list table
/// and list override table that describe them.
///
/// The lists of one nested list (a list and the lists at other depths whose paragraphs follow
/// its paragraphs) become one RTF list with one override (its \ls number); each level has the
/// numbering, start number and punctuation of the list at that depth, so that word processors
/// keep the levels, letter and roman styles, bullets and start numbers.
class ListTableBuilder {
public:
    /// The \ls number of \a list, which is numbered as given and sits at \a level (0 to 8);
    /// \a followsList tells that the paragraph before was a list paragraph, whose nested list
    /// this list joins when that one has no list at this level yet; \a bullet is what a
    /// bulleted list shows ("•" when empty).
    int overrideOf(const QTextList *list, Numbering numbering, int start, NumberingStyle style, int level,
                   bool followsList, const QString &bullet = QString());

    /// The "{\*\listtable ...}{\*\listoverridetable ...}" groups, or nothing when no list was
    /// asked for.
    QByteArray tables() const;

    /// The text of a level's number with its punctuation ("(%1)" for Parens): the leveltext.
    static QByteArray levelText(Numbering numbering, NumberingStyle style, int level,
                                const QString &bullet = QString());

private:
    struct Level {
        bool set = false;
        Numbering numbering = Numbering::Arabic;
        int start = 1;
        NumberingStyle style = NumberingStyle::Period;
        QString bullet;
    };
    struct Entry {
        Level levels[9];
    };
    QHash<const QTextList *, int> m_index; // list -> position in m_entries
    std::vector<Entry> m_entries;
    int m_last = -1; // the entry of the last list asked for
};

} // namespace kvrtb::rtf
