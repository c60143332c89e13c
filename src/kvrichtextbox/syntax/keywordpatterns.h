#pragma once

#include <QString>

namespace kvrtb {

/// \brief The built-in patterns and keyword lists of the VB6 and VB.NET colouring.
///
/// The patterns are given to the regular-expression engine exactly as they stand here (case
/// insensitive, every match of the text). The canonical lists come from the library's string
/// table (entries 102 and 103, compiled in as resources): the keywords written
/// "|AddressOf|Alias|...|Xor|" in the capitalisation that colouring restores.
class KeywordPatterns {
public:
    /// An apostrophe or the word Rem, to the end of the line.
    static QString comment();
    /// A double-quoted run that does not cross a line end.
    static QString string();
    /// The VB6 keywords inside word boundaries. Len and String are no keywords when an opening
    /// parenthesis follows; the multi-word entries stand after their first word, so they never
    /// match (the first word alone wins).
    static QString vb6Keywords();
    /// The VB.NET keywords inside word boundaries.
    static QString vbNetKeywords();

    /// Entry \a id of the string table (102 the VB6 list, 103 the VB.NET list); empty for an
    /// entry the library does not carry.
    static QString stringTableEntry(int id);
    static QString vb6KeywordList() { return stringTableEntry(102); }
    static QString vbNetKeywordList() { return stringTableEntry(103); }

    /// The first letter of every word upper case and the rest lower case, same length. Words are
    /// separated by spaces, tabs, line and page breaks and NUL only, so "don't" stays one word
    /// and "x(y" is one word too.
    static QString properCase(const QString &text);
};

} // namespace kvrtb
