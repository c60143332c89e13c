#include "spelling/spellingcorrections.h"

#include "core/controlcore.h"
#include "editing/displayfreeze.h"

#include <algorithm>

namespace kvrtb {

namespace {

bool isApostrophe(QChar c)
{
    return c == u'\'' || c == u'\u2019';
}

bool isLetterLike(QChar c)
{
    return c.isLetterOrNumber() || c == u'_' || c.isMark();
}

// A character of a word: a letter, digit or "_", or an apostrophe between two of those.
bool isInsideWord(const QString &text, qsizetype i)
{
    if (i < 0 || i >= text.size())
        return false;
    if (isLetterLike(text[i]))
        return true;
    return isApostrophe(text[i]) && i > 0 && i + 1 < text.size() && isLetterLike(text[i - 1])
           && isLetterLike(text[i + 1]);
}

bool isAllLower(const QString &text)
{
    return std::none_of(text.begin(), text.end(), [](QChar c) { return c.isUpper(); });
}

bool isAllUpper(const QString &text)
{
    bool letters = false;
    for (QChar c : text) {
        if (c.isLower())
            return false;
        letters = letters || c.isUpper();
    }
    return letters;
}

} // namespace

SpellingCorrections::SpellingCorrections(ControlCore &core) : m_core(core) {}

QString SpellingCorrections::matchCapitalisation(const QString &original, const QString &replacement)
{
    if (replacement.isEmpty() || original.isEmpty() || !isAllLower(replacement))
        return replacement;
    const qsizetype letters = std::count_if(original.begin(), original.end(), [](QChar c) { return c.isLetter(); });
    if (letters > 1 && isAllUpper(original))
        return replacement.toUpper();
    const auto firstLetter = std::find_if(original.begin(), original.end(), [](QChar c) { return c.isLetter(); });
    if (firstLetter != original.end() && firstLetter->isUpper()) {
        QString capitalised = replacement;
        const auto at = std::find_if(capitalised.begin(), capitalised.end(), [](QChar c) { return c.isLetter(); });
        if (at != capitalised.end())
            *at = at->toUpper();
        return capitalised;
    }
    return replacement;
}

QList<int> SpellingCorrections::wholeWordOccurrences(const QString &text, const QString &word)
{
    QList<int> found;
    if (word.isEmpty())
        return found;
    qsizetype from = 0;
    while (true) {
        const qsizetype hit = text.indexOf(word, from, Qt::CaseInsensitive);
        if (hit < 0)
            break;
        const qsizetype end = hit + word.size();
        if (!isInsideWord(text, hit - 1) && !isInsideWord(text, end)) {
            found.append(static_cast<int>(hit));
            from = end;
        } else {
            from = hit + 1;
        }
    }
    return found;
}

bool SpellingCorrections::misspeltRange(int &start, int &length) const
{
    const EditorSurface &surface = m_core.surface();
    if (surface.selLength() > 0) {
        start = surface.selStart();
        length = surface.selLength();
        return true;
    }
    const QString text = surface.text();
    const qsizetype caret = surface.selStart();
    qsizetype from = caret;
    qsizetype to = caret;
    while (from > 0 && isInsideWord(text, from - 1))
        --from;
    while (to < text.size() && isInsideWord(text, to))
        ++to;
    if (from == to)
        return false;
    start = static_cast<int>(from);
    length = static_cast<int>(to - from);
    return true;
}

bool SpellingCorrections::editable(const QString &correction) const
{
    return !correction.isEmpty() && !m_core.surface().isReadOnly();
}

void SpellingCorrections::apply(QList<Change> &changes, std::optional<Colour> highlight)
{
    EditorSurface &surface = m_core.surface();
    QuietSelection quiet(m_core);
    // While the display is frozen every change goes into one edit of the document, so a single
    // undo takes the whole correction back.
    DisplayFreeze freeze(m_core);
    int shift = 0;
    for (Change &change : changes) {
        change.start += shift;
        const int length = static_cast<int>(change.original.size());
        if (highlight) {
            change.highlighted = true;
            change.formerBackColour = surface.rangeCharFormat(change.start, length).backColor.value_or(kAutoColour);
        }
        surface.setSelection(change.start, length);
        surface.replaceSelection(change.replacement);
        // A highlighting correction colours the new word; taking it back restores the colour.
        if (change.highlighted) {
            CharFormat format;
            format.backColor = highlight ? translateColour(*highlight) : change.formerBackColour;
            surface.setRangeCharFormat(change.start, static_cast<int>(change.replacement.size()), format);
        }
        shift += static_cast<int>(change.replacement.size()) - length;
    }
}

int SpellingCorrections::FixSpelling(const QString &CorrectSpelling, bool HighlightFixes, Colour HighLightColor)
{
    int start = 0;
    int length = 0;
    if (!editable(CorrectSpelling) || !misspeltRange(start, length))
        return -1;
    EditorSurface &surface = m_core.surface();
    Change change;
    change.start = start;
    change.original = surface.textRange(start, length);
    change.replacement = matchCapitalisation(change.original, CorrectSpelling);
    QList<Change> changes{change};
    apply(changes, HighlightFixes ? std::optional<Colour>(HighLightColor) : std::nullopt);
    m_lastCorrection = changes;
    const int end = start + static_cast<int>(m_lastCorrection.front().replacement.size());
    surface.setSelection(end, 0);
    m_core.events().finish();
    m_core.events().ready();
    return end;
}

int SpellingCorrections::FixSpelling2(const QString &CorrectSpelling)
{
    int start = 0;
    int length = 0;
    if (!editable(CorrectSpelling) || !misspeltRange(start, length))
        return 0;
    EditorSurface &surface = m_core.surface();
    const QString text = surface.text();
    const QString word = text.mid(start, length);
    QList<Change> changes;
    int selectedIndex = -1;
    for (int at : wholeWordOccurrences(text, word)) {
        const CharFormat format = surface.rangeCharFormat(at, length);
        if (format.hasLinkMarker() || format.linkEffect.value_or(false))
            continue;
        if (at == start)
            selectedIndex = static_cast<int>(changes.size());
        Change change;
        change.start = at;
        change.original = text.mid(at, length);
        change.replacement = matchCapitalisation(change.original, CorrectSpelling);
        changes.append(change);
    }
    if (changes.isEmpty())
        return 0;
    m_core.events().begin();
    apply(changes, std::nullopt);
    m_lastCorrection = changes;
    const Change &caretAt = m_lastCorrection[selectedIndex >= 0 ? selectedIndex : m_lastCorrection.size() - 1];
    surface.setSelection(caretAt.start + static_cast<int>(caretAt.replacement.size()), 0);
    m_core.events().finish();
    m_core.events().ready();
    return static_cast<int>(m_lastCorrection.size());
}

int SpellingCorrections::UndoSpellCorrection()
{
    if (m_lastCorrection.isEmpty() || m_core.surface().isReadOnly())
        return -1;
    EditorSurface &surface = m_core.surface();
    for (const Change &change : std::as_const(m_lastCorrection)) {
        if (surface.textRange(change.start, static_cast<int>(change.replacement.size())) != change.replacement)
            return -1;
    }
    QList<Change> back;
    for (const Change &change : std::as_const(m_lastCorrection)) {
        Change reverse = change;
        std::swap(reverse.original, reverse.replacement);
        back.append(reverse);
    }
    // The recorded starts are where the corrected words are now, so they are the starts to
    // give: taking them back in order shifts the later ones as the lengths change back.
    apply(back, std::nullopt);
    m_lastCorrection.clear();
    const Change &first = back.front();
    surface.setSelection(first.start, static_cast<int>(first.replacement.size()));
    m_core.events().finish();
    m_core.events().ready();
    return first.start;
}

} // namespace kvrtb
