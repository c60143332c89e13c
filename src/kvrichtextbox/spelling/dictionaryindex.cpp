#include "spelling/dictionaryindex_p.h"

#include "spelling/dictionary.h"

#include <algorithm>

namespace kvrtb {

namespace {

bool isAsciiWordChar(QChar c)
{
    const char16_t u = c.unicode();
    return (u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z') || (u >= '0' && u <= '9') || u == '_';
}

bool isAsciiLetter(QChar c)
{
    const char16_t u = c.unicode();
    return (u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z');
}

QString asciiLower(QStringView text)
{
    QString out = text.toString();
    for (QChar &c : out) {
        if (c.unicode() >= 'A' && c.unicode() <= 'Z')
            c = QChar(c.unicode() + ('a' - 'A'));
    }
    return out;
}

bool isAscii(QStringView text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
}

// Splits at CR LF; each line must be framed as "$" entry "<" (the text may end with CR LF).
void buildFramedList(DictionaryIndex::FramedList &list, const QString &text)
{
    list.text = text;
    const QStringView all(list.text);
    bool framed = true;
    qsizetype start = 0;
    while (start < all.size()) {
        qsizetype end = all.indexOf(QLatin1String("\r\n"), start);
        if (end < 0)
            end = all.size();
        const QStringView line = all.mid(start, end - start);
        const QStringView entry = line.size() >= 2 ? line.mid(1, line.size() - 2) : QStringView();
        if (line.size() < 2 || line.front() != u'$' || line.back() != u'<'
            || entry.contains(u'$') || entry.contains(u'<') || entry.contains(u'\r')
            || entry.contains(u'\n')) {
            framed = false;
            break;
        }
        list.entries.insert(entry);
        start = end + 2;
    }
    list.framed = framed;
    if (!framed)
        list.entries.clear();
}

void buildSynonymList(DictionaryIndex::SynonymList &list, const QString &text)
{
    list.text = text;
    const QStringView all(list.text);
    bool framed = true;
    QHash<QString, DictionaryIndex::SynonymList::Entry> byHead;
    qsizetype start = 0;
    while (start < all.size()) {
        qsizetype end = all.indexOf(QLatin1String("\r\n"), start);
        if (end < 0)
            end = all.size();
        const QStringView line = all.mid(start, end - start);
        const qsizetype close = line.indexOf(u'<');
        if (line.isEmpty() || line.front() != u'$' || line.lastIndexOf(u'$') != 0 || close < 0
            || line.left(close).contains(u'\r') || line.left(close).contains(u'\n')) {
            framed = false;
            break;
        }
        const QStringView head = line.mid(1, close - 1);
        if (isAscii(head)) {
            const QString key = asciiLower(head);
            if (!byHead.contains(key)) {
                // The same extraction the plain search performs from this hit, so both give
                // the same synonyms (or the same failure, stored as a missing key).
                DictionaryIndex::SynonymList::Entry entry;
                entry.found = DictionaryIndex::extractSynonyms(list.text, start, head.size(),
                                                               entry.synonyms);
                byHead.insert(key, entry);
            }
        }
        start = end + 2;
    }
    list.framed = framed;
    if (framed)
        list.byHead = std::move(byHead);
}

void buildPlainList(DictionaryIndex::PlainList &list, const QString &text)
{
    list.text = text;
    list.asciiLowered = asciiLower(text);
    const QStringView all(list.text);
    for (qsizetype i = 0; i < all.size(); ++i) {
        if (isAsciiLetter(all[i]) && (i == 0 || !isAsciiWordChar(all[i - 1])))
            list.wordStarts.push_back(static_cast<int>(i));
    }
    const QStringView lowered(list.asciiLowered);
    auto restOfLine = [lowered](int p) {
        qsizetype end = lowered.indexOf(u'\n', p);
        if (end < 0)
            end = lowered.size();
        return lowered.mid(p, end - p);
    };
    std::stable_sort(list.wordStarts.begin(), list.wordStarts.end(),
                     [&](int a, int b) { return restOfLine(a) < restOfLine(b); });
    list.pieces = list.text.split(u'\n');
    list.anyRandomCandidate = std::any_of(list.pieces.cbegin(), list.pieces.cend(),
                                          [](const QString &p) { return DictionaryIndex::isRandomCandidate(p); });
}

} // namespace

DictionaryIndex &DictionaryIndex::instance()
{
    static DictionaryIndex index;
    return index;
}

bool DictionaryIndex::isRandomCandidate(QStringView piece)
{
    return piece.size() >= 4 && !piece.contains(u'\'') && !piece.contains(u'\u2019')
           && !piece.contains(u'.');
}

const DictionaryIndex::FramedList &DictionaryIndex::lookupList(char letter)
{
    const int i = letter - 'A';
    std::call_once(m_lookupOnce[i], [&] {
        buildFramedList(m_lookup[i], Dictionary::LoadDictionaryText(QString(QChar(letter)) + u'$'));
    });
    return m_lookup[i];
}

const DictionaryIndex::FramedList &DictionaryIndex::capitalList()
{
    std::call_once(m_capitalOnce, [&] {
        buildFramedList(m_capital, Dictionary::LoadDictionaryText(QString(), true));
    });
    return m_capital;
}

const DictionaryIndex::SynonymList &DictionaryIndex::synonymList(char letter)
{
    const int i = letter - 'A';
    std::call_once(m_synonymOnce[i], [&] {
        buildSynonymList(m_synonyms[i],
                         Dictionary::LoadDictionaryText(QString(QChar(letter)) + QStringLiteral("SYN")));
    });
    return m_synonyms[i];
}

const DictionaryIndex::PlainList &DictionaryIndex::plainList(char letter)
{
    const int i = letter - 'A';
    std::call_once(m_plainOnce[i], [&] {
        buildPlainList(m_plain[i], Dictionary::LoadDictionaryText(QString(QChar(letter))));
    });
    return m_plain[i];
}

bool DictionaryIndex::searchSynonyms(const QString &text, QStringView word, QStringList &synonyms)
{
    const QString needle = u'$' + word.toString() + u'<';
    const qsizetype hit = text.indexOf(needle, 0, Qt::CaseInsensitive);
    if (hit < 0)
        return false;
    return extractSynonyms(text, hit, word.size(), synonyms);
}

bool DictionaryIndex::extractSynonyms(const QString &text, qsizetype hit, qsizetype headLength,
                                      QStringList &synonyms)
{
    const qsizetype close = text.indexOf(u'>', hit);
    const qsizetype from = hit + headLength + 2;
    if (close < 0 || close < from)
        return false;
    QString inner = text.mid(from, close - from);
    // Only blanks are trimmed, not other white space.
    qsizetype first = 0;
    qsizetype last = inner.size();
    while (first < last && inner[first] == u' ')
        ++first;
    while (last > first && inner[last - 1] == u' ')
        --last;
    inner = inner.mid(first, last - first);
    inner.remove(QLatin1String("\r\n"));
    synonyms = inner.isEmpty() ? QStringList() : inner.split(u' ');
    return true;
}

} // namespace kvrtb
