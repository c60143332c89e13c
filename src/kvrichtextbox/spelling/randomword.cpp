#include "spelling/randomword.h"

#include "spelling/thesaurus.h"

namespace kvrtb {

RandomWordEntry RandomWordEntry::pick(const WordLists::RandomSource &random, int tries)
{
    RandomWordEntry entry;
    for (int attempt = 0; attempt < qMax(1, tries); ++attempt) {
        QString word = random ? WordLists::GetRandomWord(random) : WordLists::GetRandomWord();
        if (word.endsWith(QLatin1Char('\r')))
            word.chop(1);
        if (word.isEmpty())
            break;
        QStringList synonyms;
        const QString message = Thesaurus::GetSynonyms(word, synonyms);
        entry = {word, synonyms, message};
        if (message.isEmpty())
            break;
    }
    return entry;
}

} // namespace kvrtb
