#pragma once

#include <QString>
#include <QStringList>

namespace kvrtb {

/// \brief The user's own words, which the spelling dialog accepts besides the dictionary.
///
/// Kept in one file per user, shared by every host program: `defaultPath()`, in the user's
/// configuration folder. The file is UTF-8 text, one word a line (CR LF or LF), blank lines
/// ignored. A word is at most `kMaxWordLength` characters with no white space or control
/// character in it.
///
/// A file that is not such a list (not UTF-8, a line that is no word, larger than
/// `kMaxFileSize`) is corrupt: `load` says why and leaves it untouched, and the list is empty.
/// The first `add` after that moves the corrupt file aside (its name with ".bad" added) so that
/// nothing the user had is lost, and starts a new list. A missing file is an empty list.
///
/// Matching: a word in lower case matches in any capitalisation ("kubernetes" accepts
/// "Kubernetes"), a word with capitals only as it is written ("McAllister").
class UserWordList {
public:
    static constexpr int kMaxWordLength = 100;
    static constexpr qint64 kMaxFileSize = 4 * 1024 * 1024;

    /// "<user configuration folder>/KvRichTextBox/words.txt".
    static QString defaultPath();

    explicit UserWordList(const QString &path = defaultPath());

    QString path() const { return m_path; }

    /// Reads the file. Returns false with the reason in \a error when it is corrupt or cannot
    /// be read (the list is then empty); a missing file gives an empty list and true.
    bool load(QString *error = nullptr);

    bool contains(const QString &word) const;
    QStringList words() const { return m_words; }

    /// Adds \a word and writes the file at once (atomically). Returns false with the reason in
    /// \a error when the word is not a word or the file cannot be written; the word is then
    /// still accepted for the rest of this session. Adding a word already listed succeeds and
    /// writes nothing.
    bool add(const QString &word, QString *error = nullptr);

    /// True when \a word may be listed (not empty, short enough, no blank or control character).
    static bool isValidWord(const QString &word);

private:
    bool save(QString *error);

    QString m_path;
    QStringList m_words;
    bool m_corrupt = false;
};

} // namespace kvrtb
