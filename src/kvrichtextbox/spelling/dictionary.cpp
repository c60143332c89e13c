#include "spelling/dictionary.h"

#include "spelling/dictionaryindex_p.h"
#include "spelling/windows1252.h"

#include <QFile>

namespace kvrtb {

namespace {

const QString kResourcePrefix = QStringLiteral(":/usdictionary/");

// A word that holds one of these could match across the frame of a list entry, so the index
// cannot answer for it and the plain substring search does.
bool holdsFrameCharacter(QStringView word)
{
    for (QChar c : word) {
        const char16_t u = c.unicode();
        if (u == u'$' || u == u'<' || u == u'\r' || u == u'\n')
            return true;
    }
    return false;
}

// Words up to this length are lower-cased on the stack when they are plain ASCII.
constexpr qsizetype kShortWord = 64;

// Answers "does '$' + entry + '<' occur in the list's text" from the index when it can.
bool framedListHolds(const DictionaryIndex::FramedList &list, QStringView entry)
{
    if (list.framed && !holdsFrameCharacter(entry))
        return list.entries.contains(entry);
    return list.text.contains(u'$' + entry.toString() + u'<');
}

} // namespace

QString Dictionary::LoadDictionaryText(const QString &name, bool list101)
{
    QString key = list101 ? QStringLiteral("101") : name;
    if (key.isEmpty() || key.contains(u'/') || key.contains(u'\\') || key.contains(u':'))
        return QString();
    for (QChar &c : key) {
        if (c.unicode() >= 'a' && c.unicode() <= 'z')
            c = QChar(c.unicode() - ('a' - 'A'));
    }
    QFile file(kResourcePrefix + key);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    return Windows1252::decode(file.readAll());
}

char Dictionary::letterOf(QStringView word)
{
    if (word.isEmpty())
        return 0;
    const char16_t upper = word.front().toUpper().unicode();
    return (upper >= 'A' && upper <= 'Z') ? static_cast<char>(upper) : 0;
}

QString Dictionary::LoadLetterDictionary(const QString &word)
{
    const char letter = letterOf(word);
    if (!letter)
        return QString();
    return LoadDictionaryText(QString(QChar(letter)) + u'$');
}

bool Dictionary::IsWordInDictionary(QStringView word)
{
    DictionaryIndex &index = DictionaryIndex::instance();
    if (const char letter = letterOf(word)) {
        char16_t buffer[kShortWord];
        QStringView lowered;
        QString loweredLong;
        bool ascii = word.size() <= kShortWord;
        for (qsizetype i = 0; ascii && i < word.size(); ++i) {
            const char16_t u = word[i].unicode();
            if (u >= 0x80)
                ascii = false;
            else
                buffer[i] = (u >= 'A' && u <= 'Z') ? char16_t(u + ('a' - 'A')) : u;
        }
        if (ascii) {
            lowered = QStringView(buffer, word.size());
        } else {
            loweredLong = word.toString().toLower();
            lowered = loweredLong;
        }
        if (framedListHolds(index.lookupList(letter), lowered))
            return true;
    }
    return framedListHolds(index.capitalList(), word);
}

bool Dictionary::LookUpSynonyms(QStringView word, QStringList &synonyms)
{
    if (word.isEmpty())
        return false;
    // The list's name is the upper-cased initial + "SYN"; only letters name a list.
    const char letter = letterOf(word);
    if (!letter)
        return false;
    const DictionaryIndex::SynonymList &list = DictionaryIndex::instance().synonymList(letter);
    bool indexed = list.framed;
    for (QChar c : word)
        indexed = indexed && c.unicode() < 0x80 && c != u'$' && c != u'<' && c != u'\r' && c != u'\n';
    if (!indexed)
        return DictionaryIndex::searchSynonyms(list.text, word, synonyms);

    QString key = word.toString();
    for (QChar &c : key) {
        if (c.unicode() >= 'A' && c.unicode() <= 'Z')
            c = QChar(c.unicode() + ('a' - 'A'));
    }
    const auto it = list.byHead.constFind(key);
    if (it == list.byHead.constEnd() || !it->found)
        return false;
    synonyms = it->synonyms;
    return true;
}

bool Dictionary::IsInArray(const QString &word, const QStringList &array)
{
    // Searched in the joined text rather than element by element: an empty word is then found
    // in an empty array, and elements that hold NUL themselves behave as the definition says.
    const QChar nul(u'\0');
    const QString joined = nul + array.join(nul) + nul;
    return joined.contains(nul + word + nul, Qt::CaseSensitive);
}

bool Dictionary::IsInArray(const QString &word, const QVariant &value)
{
    const int type = value.typeId();
    if (type == QMetaType::QStringList)
        return IsInArray(word, value.toStringList());
    if (type != QMetaType::QVariantList)
        return false;
    QStringList strings;
    for (const QVariant &element : value.toList()) {
        if (!element.canConvert<QString>())
            return false;
        strings.append(element.toString());
    }
    return IsInArray(word, strings);
}

QString Dictionary::FillerText(int length)
{
    if (length <= 0)
        return QString();
    static const QString filler = LoadDictionaryText(QStringLiteral("ZERO"));
    return filler.left(length);
}

bool Dictionary::Prepare()
{
    DictionaryIndex &index = DictionaryIndex::instance();
    bool complete = !index.capitalList().text.isEmpty();
    for (char letter = 'A'; letter <= 'Z'; ++letter) {
        complete = !index.lookupList(letter).text.isEmpty() && complete;
        complete = !index.plainList(letter).text.isEmpty() && complete;
        index.synonymList(letter);
    }
    FillerText(1);
    return complete;
}

} // namespace kvrtb
