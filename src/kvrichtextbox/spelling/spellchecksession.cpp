#include "spelling/spellchecksession.h"

#include "core/controlcore.h"
#include "findreplace/findreplace.h"
#include "spelling/spellingcorrections.h"
#include "spelling/suggestions.h"

namespace kvrtb {

namespace {

// How far the context of a word reaches on either side at most.
constexpr int kContextReach = 100;

bool endsSentence(const QString &text, qsizetype i)
{
    const QChar c = text[i];
    if (c == u'\n')
        return true;
    return (c == u'.' || c == u'!' || c == u'?') && (i + 1 >= text.size() || text[i + 1].isSpace());
}

} // namespace

SpellCheckSession::SpellCheckSession(ControlCore &core, UserWordList &userWords)
    : m_core(core), m_userWords(userWords)
{
}

SpellCheckSession::State SpellCheckSession::start(const Misspellings::Observer &observer)
{
    m_state = State::Checking;
    m_entries.clear();
    m_ignored.clear();
    m_entry = -1;
    m_searchFrom = 0;
    bool cancelled = false;
    Misspellings::Observer watching = observer;
    watching.cancelled = [&cancelled, &observer] {
        cancelled = true;
        if (observer.cancelled)
            observer.cancelled();
    };
    QStringList words;
    m_core.misspellings().DetectMisspellings(words, &watching);
    if (cancelled) {
        m_state = State::Cancelled;
        return m_state;
    }
    m_entries = words;
    return advance();
}

bool SpellCheckSession::passedOver(const QString &word) const
{
    return m_ignored.contains(word.toLower()) || m_userWords.contains(word);
}

SpellCheckSession::State SpellCheckSession::advance()
{
    EditorSurface &surface = m_core.surface();
    while (++m_entry < m_entries.size()) {
        const QString &word = m_entries.at(m_entry);
        if (passedOver(word))
            continue;
        surface.setSelStart(m_searchFrom);
        const int position = m_core.findReplace().Find2(word, FindNext, WholeWord_MatchCase, true);
        if (position < 0)
            continue;   // no longer in the text after the last word (corrected meanwhile)
        m_wordStart = position;
        m_wordLength = surface.selLength();
        m_state = State::Word;
        return m_state;
    }
    surface.setSelStart(m_searchFrom);
    m_state = State::Done;
    return m_state;
}

QString SpellCheckSession::currentWord() const
{
    return m_state == State::Word ? m_entries.at(m_entry) : QString();
}

QString SpellCheckSession::context(int *wordOffset) const
{
    if (wordOffset)
        *wordOffset = 0;
    if (m_state != State::Word)
        return QString();
    const QString text = m_core.surface().text();
    qsizetype from = m_wordStart;
    while (from > 0 && m_wordStart - from < kContextReach && !endsSentence(text, from - 1))
        --from;
    qsizetype to = m_wordStart + m_wordLength;
    while (to < text.size() && to - m_wordStart < kContextReach && !endsSentence(text, to))
        ++to;
    if (to < text.size() && text[to] != u'\n')
        ++to;   // the sentence's own full stop
    while (from < m_wordStart && text[from].isSpace())
        ++from;
    if (wordOffset)
        *wordOffset = static_cast<int>(m_wordStart - from);
    QString sentence = text.mid(from, to - from);
    sentence.replace(u'\n', u' ');
    return sentence;
}

QStringList SpellCheckSession::suggestions(qint16 accuracy) const
{
    if (m_state != State::Word)
        return {};
    SPELL_CHECK_TYPE data;
    data.IncorrectWord = currentWord();
    data.QAccuracy = accuracy;
    Suggestions::GetRankedSpellingCorrections(data);
    return data.Suggestions;
}

SpellCheckSession::State SpellCheckSession::change(const QString &replacement)
{
    if (m_state != State::Word || replacement.isEmpty())
        return m_state;
    m_core.surface().setSelection(m_wordStart, m_wordLength);
    const int end = m_core.spellingCorrections().FixSpelling(replacement);
    m_searchFrom = end >= 0 ? end : m_wordStart + m_wordLength;
    return advance();
}

SpellCheckSession::State SpellCheckSession::changeAll(const QString &replacement)
{
    if (m_state != State::Word || replacement.isEmpty())
        return m_state;
    m_core.surface().setSelection(m_wordStart, m_wordLength);
    m_core.spellingCorrections().FixSpelling2(replacement);
    m_searchFrom = m_core.surface().selStart();
    m_ignored.insert(currentWord().toLower());
    return advance();
}

SpellCheckSession::State SpellCheckSession::ignore()
{
    if (m_state != State::Word)
        return m_state;
    m_searchFrom = m_wordStart + m_wordLength;
    return advance();
}

SpellCheckSession::State SpellCheckSession::ignoreAll()
{
    if (m_state != State::Word)
        return m_state;
    m_ignored.insert(currentWord().toLower());
    return ignore();
}

SpellCheckSession::State SpellCheckSession::addToDictionary(QString *error)
{
    if (m_state != State::Word)
        return m_state;
    const QString word = currentWord();
    if (!m_userWords.add(word, error))
        m_ignored.insert(word.toLower());
    return ignore();
}

} // namespace kvrtb
