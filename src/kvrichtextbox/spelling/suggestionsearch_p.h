#pragma once

// Private to the spelling area: the candidate search behind Suggestions.

#include <QString>
#include <QStringList>

namespace kvrtb::suggestionsearch {

/// The candidates of a suggestion pattern over the plain word list of `letter` ('A'..'Z'),
/// found by matching the pattern itself, case-insensitively and globally: every match without
/// its last character (the white space behind the word), in list order. An invalid pattern
/// gives none.
QStringList candidatesByPattern(char letter, const QString &pattern);

/// True when `candidates` can answer for the search word `w` from the index: `w` starts with a
/// letter a-z and holds only a-z, "'" and "’".
bool indexCanAnswer(const QString &w);

/// The candidates for the search word `w` (lower-cased, without full stops) over the plain
/// list of `letter`: the same list that `candidatesByPattern` gives for the word's pattern
/// (`BuildSuggestionPattern` or `BuildShortWordPattern`), answered from an index built once
/// per letter when `indexCanAnswer(w)`, by the pattern otherwise.
QStringList candidates(char letter, const QString &w);

} // namespace kvrtb::suggestionsearch
