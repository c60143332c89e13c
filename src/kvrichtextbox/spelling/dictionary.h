#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>
#include <QVariant>

namespace kvrtb {

/// \brief The built-in US-English dictionary: its resources and its lookups.
///
/// The dictionary is a set of read-only resources compiled into the library (Qt resource
/// prefix ":/usdictionary/"), each a Windows-1252 byte stream with CR LF line ends:
///
/// | name | one line |
/// |---|---|
/// | "A".."Z" | a bare word; capitalised words and acronyms first, then lower-case words |
/// | "A$".."Z$" | "$" + lower-case word + "<" |
/// | "ASYN".."ZSYN" | "$" + word + "< " + up to six synonyms separated by blanks + " >" |
/// | 101 | "$" + capitalised word or acronym + "<", all initials together |
/// | "DOTS" | one regular-expression alternation of the abbreviations that end in a full stop |
/// | "DOTS2" | "$" + abbreviation + "<" |
/// | "ZERO" | no lines: 8,370 bytes 0xD8, neutral filler |
///
/// Possessives (and other entries with an apostrophe) are listed with both "'" and "’".
///
/// `LoadDictionaryText` and `LoadLetterDictionary` read a resource anew on every call. The
/// lookups `IsWordInDictionary` and `LookUpSynonyms` answer exactly what a substring search over
/// those texts answers, but from indexes built once per process on first use (thread-safe), so
/// a lookup costs a hash probe instead of a resource load and a linear search.
///
/// Every member is static, reentrant and thread-safe; none throws. A missing resource reads as
/// the empty text, so lookups then report "not found".
///
/// \code
/// kvrtb::Dictionary::IsWordInDictionary(QStringLiteral("AARDVARK"));  // true
/// kvrtb::Dictionary::IsWordInDictionary(QStringLiteral("zulu"));      // false: "Zulu" only
/// QStringList synonyms;
/// kvrtb::Dictionary::LookUpSynonyms(QStringLiteral("ABACK"), synonyms); // confused, surprised
/// \endcode
class Dictionary
{
public:
    /// Number of characters in the "ZERO" filler.
    static constexpr int kFillerLength = 8370;

    /// The text of the resource `name` (found without regard to ASCII case: "a$" finds "A$"),
    /// decoded from Windows-1252. With `list101` true the numeric resource 101 is read whatever
    /// `name` says. An unknown name gives the empty string.
    static QString LoadDictionaryText(const QString &name, bool list101 = false);

    /// The lookup list ("A$".."Z$") for the initial of `word`: the first character is
    /// upper-cased; when it is not "A".."Z" (or `word` is empty) the result is the empty string.
    static QString LoadLetterDictionary(const QString &word);

    /// The letter ("A".."Z") whose lists hold words beginning like `word`, or 0 when the
    /// upper-cased first character is not "A".."Z" or `word` is empty.
    static char letterOf(QStringView word);

    /// True when `word` is known: "$" + lower-case(word) + "<" occurs in the lookup list of its
    /// initial, or "$" + word + "<" (exact case) occurs in list 101. Ordinary words are thus
    /// known in any capitalisation, proper names and acronyms only as listed, and a word whose
    /// initial is not a letter only through list 101.
    static bool IsWordInDictionary(QStringView word);

    /// Looks `word` up (without regard to case) in the synonym list of its initial. On success
    /// `synonyms` is replaced by the synonyms in listed order and the result is true; otherwise
    /// `synonyms` is left alone and the result is false (also for an empty word or a non-letter
    /// initial).
    static bool LookUpSynonyms(QStringView word, QStringList &synonyms);

    /// True when `value` is an array (a QStringList, or a QVariantList whose elements convert
    /// to strings) that holds `word`: the elements joined with NUL between them and one NUL at
    /// each end contain NUL + word + NUL. So elements compare exactly, case included, and the
    /// empty word is found in an empty array. Any other value gives false.
    static bool IsInArray(const QString &word, const QVariant &value);
    static bool IsInArray(const QString &word, const QStringList &array);

    /// The first `length` characters of the "ZERO" filler ("Ø" repeated), at most
    /// kFillerLength; a negative length gives the empty string.
    static QString FillerText(int length);

    /// Builds every index now instead of on first use (the dictionary part of PrepareKvRTB).
    /// Returns false when the dictionary resources are missing from the library.
    static bool Prepare();
};

} // namespace kvrtb
