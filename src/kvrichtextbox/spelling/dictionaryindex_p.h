#pragma once

// Private to the spelling area: the indexes behind Dictionary, WordLists and Thesaurus.

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <array>
#include <mutex>
#include <vector>

namespace kvrtb {

/// \brief Indexes over the dictionary resources, built once per process on first use.
///
/// Each list is read and indexed at most once (std::call_once), so the indexes may be used from
/// any thread. Every index keeps the decoded text it was built from, so that a question the
/// index cannot answer exactly (a word holding "$", "<", CR or LF, or a list whose lines are
/// not all in the expected frame) falls back to the plain substring search over that text.
class DictionaryIndex
{
public:
    /// A list of "$entry<" lines ("A$".."Z$", list 101).
    struct FramedList {
        QString text;
        /// True when every line is "$" + entry + "<" with no "$", "<", CR or LF inside the
        /// entry; only then does `entries` answer for a substring search of "$x<".
        bool framed = false;
        QSet<QStringView> entries;   ///< views into `text`
    };

    /// A synonym list ("ASYN".."ZSYN").
    struct SynonymList {
        QString text;
        /// True when every line starts with its only "$" and has a "<" after its head word.
        bool framed = false;
        struct Entry {
            bool found = false;      ///< false when no ">" closes the entry
            QStringList synonyms;
        };
        /// The first line whose head word equals the key without regard to ASCII case; keys
        /// are the ASCII lower case of all-ASCII head words.
        QHash<QString, Entry> byHead;
    };

    /// A plain word list ("A".."Z").
    struct PlainList {
        QString text;
        QString asciiLowered;          ///< `text` with A-Z lowered, for prefix comparisons
        /// Positions where a word may start for a "\b" + letter pattern: an ASCII letter at the
        /// start of the text or behind a character that is not [A-Za-z0-9_]; sorted by the
        /// lowered rest of their line.
        std::vector<int> wordStarts;
        QStringList pieces;            ///< `text` split at LF, each piece keeping its CR
        bool anyRandomCandidate = false;
    };

    static DictionaryIndex &instance();

    /// A piece of a plain list that may be given as a random word: no "'", no "’", no "." and
    /// at least four characters, its CR included.
    static bool isRandomCandidate(QStringView piece);

    /// `letter` is 'A'..'Z'.
    const FramedList &lookupList(char letter);
    const FramedList &capitalList();
    const SynonymList &synonymList(char letter);
    const PlainList &plainList(char letter);

    /// Finds "$" + word + "<" case-insensitively in a synonym text and extracts the synonyms
    /// behind it (trimmed, CR LF pairs removed, split at blanks). False when not found or when
    /// no ">" closes the entry.
    static bool searchSynonyms(const QString &text, QStringView word, QStringList &synonyms);

    /// Extracts the synonyms of the entry whose "$" is at `hit` and whose head word has
    /// `headLength` characters.
    static bool extractSynonyms(const QString &text, qsizetype hit, qsizetype headLength,
                                QStringList &synonyms);

private:
    DictionaryIndex() = default;

    std::array<std::once_flag, 26> m_lookupOnce;
    std::array<FramedList, 26> m_lookup;
    std::once_flag m_capitalOnce;
    FramedList m_capital;
    std::array<std::once_flag, 26> m_synonymOnce;
    std::array<SynonymList, 26> m_synonyms;
    std::array<std::once_flag, 26> m_plainOnce;
    std::array<PlainList, 26> m_plain;
};

} // namespace kvrtb
