#pragma once

#include <QString>
#include <QStringList>

namespace kvrtb {

/// \brief Synonyms from the built-in dictionary, as the control's `GetSynonyms` and
/// `CanGetSynonym` members give them.
///
/// Pure logic with no widget: `KvRTB` forwards its members here, passing its selected text
/// where one is needed. Thread-safe; nothing throws.
///
/// \code
/// QStringList synonyms;
/// QString message = kvrtb::Thesaurus::GetSynonyms(QStringLiteral("aback"), synonyms);
/// // message is empty, synonyms is {"confused", "surprised"}
/// \endcode
class Thesaurus
{
public:
    /// The message `GetSynonyms` returns when a word has no synonyms.
    static QString noSynonymsMessage() { return QStringLiteral("No synonyms found."); }

    /// Looks `MYWORD1` up without regard to case. When it has synonyms, `ASynArray` becomes
    /// exactly those synonyms, in their listed order, and the result is the empty string.
    /// Otherwise `ASynArray` is left as it is and the result is "No synonyms found.".
    static QString GetSynonyms(const QString &MYWORD1, QStringList &ASynArray);

    /// Whether a synonym look-up is offered for the selected text: it is not empty and is
    /// shorter than 38 characters.
    static bool CanGetSynonym(const QString &selectedText);

    /// The word of a selection as the synonym menu looks it up: the selected text with the
    /// blanks, white space and punctuation around it trimmed (inner characters are kept).
    static QString wordOfSelection(const QString &selectedText);
};

} // namespace kvrtb
