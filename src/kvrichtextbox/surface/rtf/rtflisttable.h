#pragma once

#include "core/editorsurface.h"

#include <QByteArray>
#include <QHash>

#include <vector>

class QTextList;

namespace kvrtb::rtf {

/// \brief Gathers the lists of the paragraphs the writer writes and gives the RTF list table
/// and list override table that describe them.
///
/// Each list of the document becomes one RTF list (and one override, its \ls number) whose
/// level at the list's depth has the list's numbering, start number and punctuation, so that
/// word processors keep the levels, letter and roman styles, bullets and start numbers.
class ListTableBuilder {
public:
    /// The \ls number of \a list, which is numbered as given and sits at \a level (0 to 8).
    int overrideOf(const QTextList *list, Numbering numbering, int start, NumberingStyle style, int level);

    /// The "{\*\listtable ...}{\*\listoverridetable ...}" groups, or nothing when no list was
    /// asked for.
    QByteArray tables() const;

    /// The text of a level's number with its punctuation ("(%1)" for Parens): the leveltext.
    static QByteArray levelText(Numbering numbering, NumberingStyle style, int level);

private:
    struct Entry {
        Numbering numbering;
        int start;
        NumberingStyle style;
        int level;
    };
    QHash<const QTextList *, int> m_index; // list -> position in m_entries
    std::vector<Entry> m_entries;
};

} // namespace kvrtb::rtf
