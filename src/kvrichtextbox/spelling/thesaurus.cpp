#include "spelling/thesaurus.h"

#include "spelling/dictionary.h"

namespace kvrtb {

QString Thesaurus::GetSynonyms(const QString &MYWORD1, QStringList &ASynArray)
{
    QStringList synonyms;
    if (!Dictionary::LookUpSynonyms(MYWORD1, synonyms))
        return noSynonymsMessage();
    ASynArray = synonyms;
    return QString();
}

bool Thesaurus::CanGetSynonym(const QString &selectedText)
{
    return !selectedText.isEmpty() && selectedText.size() < 38;
}

QString Thesaurus::wordOfSelection(const QString &selectedText)
{
    auto surrounding = [](QChar c) { return c.isSpace() || c.isPunct() || c.isSymbol(); };
    qsizetype first = 0;
    qsizetype last = selectedText.size();
    while (first < last && surrounding(selectedText[first]))
        ++first;
    while (last > first && surrounding(selectedText[last - 1]))
        --last;
    return selectedText.mid(first, last - first);
}

} // namespace kvrtb
