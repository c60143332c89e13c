#pragma once

#include "spelling/wordlists.h"

#include <QString>
#include <QStringList>

namespace kvrtb {

/// \brief A random dictionary word with its synonyms, as the random-word dialog shows it.
struct RandomWordEntry {
    QString word;           ///< proper case, without the carriage return of its list line
    QStringList synonyms;   ///< empty when the word has none
    QString message;        ///< "No synonyms found." when it has none, else empty

    /// Picks a word. Words with synonyms are preferred: up to \a tries words are drawn and the
    /// first with synonyms is taken, else the last one drawn. The word is empty only when the
    /// dictionary has none.
    static RandomWordEntry pick(const WordLists::RandomSource &random = WordLists::RandomSource(), int tries = 12);
};

} // namespace kvrtb
