#include "surface/rtf/rtfreader_p.h"

#include "surface/rtf/rtfkept.h"
#include "surface/rtf/rtfnotes.h"

#include <QTextCursor>

namespace kvrtb::rtf::detail {

int Reader::currentCodePage() const
{
    if (top().dest == Dest::FontTable && m_fontEntry >= 0) {
        const int codePage = m_fonts.value(m_fontEntry).codePage;
        return codePage ? codePage : m_docCodePage;
    }
    return top().codePage;
}

void Reader::addByte(unsigned char byte)
{
    if (consumeUnicodeSkip())
        return;
    const Dest dest = top().dest;
    if (dest == Dest::LevelText) {
        m_levelBuild.text += char(byte);
        m_levelBuild.characters += QChar(char16_t(byte));
        return;
    }
    if (dest == Dest::Pict || dest == Dest::Skip || dest == Dest::Upr || dest == Dest::Ignore
        || dest == Dest::ListTable || dest == Dest::List || dest == Dest::ListLevel
        || dest == Dest::ListOverrideTable || dest == Dest::ListOverride || dest == Dest::Pn)
        return;
    const int codePage = currentCodePage();
    m_bytes += char(byte);
    if (CodePageDecoder::isDoubleByte(codePage)) {
        if (m_leadPending)
            m_leadPending = 0;
        else if (CodePageDecoder::isLeadByte(codePage, byte))
            m_leadPending = 1;
    }
}

void Reader::flushBytes()
{
    if (m_bytes.isEmpty())
        return;
    QString decoded;
    m_decoder.decode(currentCodePage(), m_bytes.constData(), int(m_bytes.size()), decoded);
    m_bytes.clear();
    m_leadPending = 0;
    addString(decoded);
}

void Reader::addAscii(const char *s, int n)
{
    while (n > 0 && m_unicodeSkip > 0) {
        --m_unicodeSkip;
        ++s;
        --n;
    }
    if (n <= 0)
        return;
    const Dest dest = top().dest;
    if (dest == Dest::LevelText) {
        m_levelBuild.text.append(s, n);
        m_levelBuild.characters += QLatin1String(s, n);
        return;
    }
    if (dest == Dest::Pict) {
        for (int i = 0; i < n; ++i) {
            const char h = s[i];
            int v = -1;
            if (h >= '0' && h <= '9')
                v = h - '0';
            else if ((h | 0x20) >= 'a' && (h | 0x20) <= 'f')
                v = (h | 0x20) - 'a' + 10;
            if (v < 0)
                continue;
            if (m_picture.hexHigh < 0) {
                m_picture.hexHigh = v;
            } else {
                m_picture.data += char(m_picture.hexHigh * 16 + v);
                m_picture.hexHigh = -1;
            }
        }
        return;
    }
    if (!m_bytes.isEmpty()) {
        // A double-byte character whose trail byte was written as a plain character.
        if (m_leadPending) {
            m_bytes += s[0];
            m_leadPending = 0;
            ++s;
            --n;
        }
        flushBytes();
        if (n <= 0)
            return;
    }
    if (dest != Dest::Text) {
        addToDestination(QString::fromLatin1(s, n));
        return;
    }
    beginText(n);
    const int base = int(m_run.size());
    m_run.resize(base + n);
    QChar *dest16 = m_run.data() + base;
    for (int i = 0; i < n; ++i)
        dest16[i] = QLatin1Char(s[i]);
}

void Reader::addString(const QString &s)
{
    if (s.isEmpty())
        return;
    flushBytes();
    const Dest dest = top().dest;
    if (dest != Dest::Text) {
        addToDestination(s);
        return;
    }
    beginText(s.size());
    m_run += s;
}

// Prepares the run for \a length characters of document text in the group's character format:
// a new format starts a new run, and text of a table row goes into its cell.
void Reader::beginText(qsizetype length)
{
    if (!m_runStateSet || m_runState != top().ch || !m_pendingBookmarks.isEmpty()) {
        flushRun();
        m_runState = top().ch;
        m_runStateSet = true;
        m_runBookmarks += m_pendingBookmarks;
        m_pendingBookmarks.clear();
        m_pendingBookmarkBytes.clear();
    }
    ensureTableState();
    m_pendingRef = 0;
    m_bodyStarted = true;
    m_textCount += length;
    m_paragraphHasContent = true;
    m_lastWasPar = false;
}

QTextCharFormat Reader::formatFor(const CharState &state)
{
    const auto cached = m_formatCache.constFind(state);
    if (cached != m_formatCache.constEnd())
        return cached.value();
    CharFormat change;
    if (state.bold)
        change.bold = true;
    if (state.italic)
        change.italic = true;
    if (state.strike)
        change.strikeThrough = true;
    if (state.protect)
        change.protectedText = true;
    if (state.color > 0 && size_t(state.color) < m_colours.size() && m_colours[size_t(state.color)] != kAutoColour)
        change.color = m_colours[size_t(state.color)];
    if (state.back > 0 && size_t(state.back) < m_colours.size() && m_colours[size_t(state.back)] != kAutoColour)
        change.backColor = m_colours[size_t(state.back)];
    const int fontNumber = state.font >= 0 ? state.font : m_defaultFont;
    const auto font = m_fonts.constFind(fontNumber);
    if (font != m_fonts.constEnd() && !font->name.isEmpty())
        change.fontName = font->name;
    change.fontSize = state.halfPoints / 2.0;
    if (state.script == int(ScriptPosition::Subscript))
        change.script = ScriptPosition::Subscript;
    else if (state.script == int(ScriptPosition::Superscript))
        change.script = ScriptPosition::Superscript;
    if (state.offset != 0)
        change.charOffset = state.offset;
    if (state.lang != 0)
        change.locale = state.lang;
    const FieldEntry *link = state.link >= 0 && size_t(state.link) < m_fields.size() ? &m_fields[size_t(state.link)] : nullptr;
    if (link)
        change.linkAddress = link->address;
    const bool object = state.object >= 0 && size_t(state.object) < m_objects.size();
    const bool linkEffect = link && !(link->flags & 1);
    QTextCharFormat qt = format::charDelta(change);
    if (link && link->address.isEmpty()) {
        // A link shown without an address: no anchor, only the effect.
        qt.clearProperty(QTextFormat::IsAnchor);
        qt.clearProperty(QTextFormat::AnchorHref);
    }
    if (linkEffect)
        qt.setProperty(format::LinkEffect, true);
    if (object)
        qt.setProperty(KeptObjectGroup, m_objects[size_t(state.object)]);
    format::setUserUnderline(qt, QTextCharFormat::UnderlineStyle(state.underline));
    if (state.noteId) {
        qt.setProperty(NoteIdProperty, state.noteId);
        if (state.noteMark)
            qt.setProperty(NoteMarkProperty, true);
        const QString author = m_noteAuthors.value(state.noteId);
        if (!author.isEmpty())
            qt.setProperty(NoteAuthorProperty, author);
    }
    addFormatProperties(qt, state);
    if (m_formatCache.size() > 4096)
        m_formatCache.clear();
    m_formatCache.insert(state, qt);
    return qt;
}

namespace {

bool isRightToLeft(QChar c)
{
    if (c.unicode() < 0x0590) // below Hebrew, every letter is left-to-right
        return false;
    const QChar::Direction direction = c.direction();
    return direction == QChar::DirR || direction == QChar::DirAL;
}

} // namespace

void Reader::flushRun()
{
    if (m_run.isEmpty())
        return;
    const CharState &state = m_runState;
    if (!m_runBookmarks.isEmpty()) {
        // Bookmarks start at the run's first character: Qt's anchor names.
        QTextCharFormat first = formatFor(state);
        first.setAnchorNames(m_runBookmarks);
        m_cursor.insertText(m_run.left(1), first);
        m_run.remove(0, 1);
        m_runBookmarks.clear();
        if (m_run.isEmpty())
            return;
    }
    if (state.aBold < 0 && state.aItalic < 0 && state.aFont < 0 && state.aHalfPoints == 0) {
        m_cursor.insertText(m_run, formatFor(state));
        m_run.clear();
        return;
    }
    // Right-to-left letters take the complex-script properties; the characters without a
    // direction of their own (spaces, digits, punctuation) go with the letters before them.
    CharState complex = state;
    if (state.aBold >= 0)
        complex.bold = state.aBold;
    if (state.aItalic >= 0)
        complex.italic = state.aItalic;
    if (state.aFont >= 0)
        complex.font = state.aFont;
    if (state.aHalfPoints > 0)
        complex.halfPoints = state.aHalfPoints;
    const QTextCharFormat plain = formatFor(state);
    const QTextCharFormat rtl = formatFor(complex);
    qsizetype start = 0;
    bool inRtl = false;
    for (qsizetype i = 0; i <= m_run.size(); ++i) {
        const bool end = i == m_run.size();
        const QChar c = end ? QChar() : m_run.at(i);
        const bool strongRtl = !end && isRightToLeft(c);
        const bool strongLtr = !end && (c.direction() == QChar::DirL);
        if (end || (strongRtl && !inRtl) || (strongLtr && inRtl)) {
            if (i > start)
                m_cursor.insertText(m_run.mid(start, i - start), inRtl ? rtl : plain);
            start = i;
            inRtl = strongRtl || (!strongLtr && inRtl);
        }
    }
    m_run.clear();
}

QTextCharFormat Reader::blockCharFormat()
{
    return formatFor(top().ch);
}

} // namespace kvrtb::rtf::detail
