#include "spelling/userwordlist.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>
#include <QStringDecoder>

#include <algorithm>

namespace kvrtb {

QString UserWordList::defaultPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
           + QStringLiteral("/KvRichTextBox/words.txt");
}

UserWordList::UserWordList(const QString &path) : m_path(path) {}

bool UserWordList::isValidWord(const QString &word)
{
    if (word.isEmpty() || word.size() > kMaxWordLength)
        return false;
    return std::none_of(word.begin(), word.end(), [](QChar c) {
        return c.isSpace() || c.category() == QChar::Other_Control || c.isNull();
    });
}

bool UserWordList::load(QString *error)
{
    m_words.clear();
    m_corrupt = false;
    auto fail = [&](const QString &reason) {
        m_words.clear();
        if (error)
            *error = reason;
        return false;
    };
    QFile file(m_path);
    if (!file.exists())
        return true;
    if (!file.open(QIODevice::ReadOnly))
        return fail(file.errorString());
    m_corrupt = true;
    if (file.size() > kMaxFileSize)
        return fail(QStringLiteral("the file is larger than %1 bytes").arg(kMaxFileSize));
    const QByteArray bytes = file.readAll();
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder.decode(bytes);
    if (decoder.hasError())
        return fail(QStringLiteral("the file is not UTF-8 text"));
    const QStringList lines = text.split(u'\n');
    for (qsizetype i = 0; i < lines.size(); ++i) {
        QString line = lines[i];
        if (line.endsWith(u'\r'))
            line.chop(1);
        if (line.isEmpty())
            continue;
        if (!isValidWord(line))
            return fail(QStringLiteral("line %1 is not a word").arg(i + 1));
        if (!m_words.contains(line))
            m_words.append(line);
    }
    m_corrupt = false;
    return true;
}

bool UserWordList::contains(const QString &word) const
{
    if (word.isEmpty())
        return false;
    const QString lowered = word.toLower();
    return std::any_of(m_words.begin(), m_words.end(), [&](const QString &listed) {
        return listed == word || (listed == lowered && listed == listed.toLower());
    });
}

bool UserWordList::add(const QString &word, QString *error)
{
    if (!isValidWord(word)) {
        if (error)
            *error = QStringLiteral("\"%1\" is not a word that can be listed").arg(word.left(kMaxWordLength));
        return false;
    }
    if (m_words.contains(word))
        return true;
    m_words.append(word);
    return save(error);
}

bool UserWordList::save(QString *error)
{
    const QFileInfo info(m_path);
    if (!QDir().mkpath(info.absolutePath())) {
        if (error)
            *error = QStringLiteral("the folder %1 cannot be created").arg(info.absolutePath());
        return false;
    }
    if (m_corrupt) {
        // Keep what the user had: the unreadable list moves aside before a new one is written.
        const QString aside = m_path + QStringLiteral(".bad");
        QFile::remove(aside);
        if (!QFile::rename(m_path, aside)) {
            if (error)
                *error = QStringLiteral("the unreadable list cannot be moved aside to %1").arg(aside);
            return false;
        }
        m_corrupt = false;
    }
    QSaveFile file(m_path);
    if (!file.open(QIODevice::WriteOnly)) {
        if (error)
            *error = file.errorString();
        return false;
    }
    QStringList sorted = m_words;
    sorted.sort();
    file.write((sorted.join(u'\n') + u'\n').toUtf8());
    if (!file.commit()) {
        if (error)
            *error = file.errorString();
        return false;
    }
    return true;
}

} // namespace kvrtb
