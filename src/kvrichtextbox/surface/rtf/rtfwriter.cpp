#include "surface/rtf/rtfwriter.h"
#include "surface/rtf/rtfwriter_p.h"

// The writer emits one line per paragraph ("\pard<paragraph>...<runs>\par"), character
// properties as differences from the run before, and only what is set: a plain document uses
// no control word that tells of formatting (no colour table, no bold or underline words), so
// that a reader of the RTF can tell plain text from formatted text by its control words.
// Backslashes in the text are written as \'5c for the same reason.

namespace kvrtb::rtf {

namespace detail {

void Writer::word(const char *control)
{
    m_out += '\\';
    m_out += control;
    m_needSpace = true;
}

void Writer::word(const char *control, int value)
{
    m_out += '\\';
    m_out += control;
    m_out += QByteArray::number(value);
    m_needSpace = true;
}

int Writer::fontIndex(const QString &name)
{
    const int found = int(m_fonts.indexOf(name));
    if (found >= 0)
        return found;
    m_fonts.append(name);
    return int(m_fonts.size()) - 1;
}

int Writer::colourIndex(Colour colour)
{
    for (size_t i = 0; i < m_colours.size(); ++i) {
        if (m_colours[i] == colour)
            return int(i) + 1;
    }
    m_colours.push_back(colour);
    return int(m_colours.size());
}

void Writer::escaped(const QString &value, QByteArray &out)
{
    for (const QChar qc : value) {
        const char16_t c = qc.unicode();
        if (c == '\\') {
            out += "\\'5c";
        } else if (c == '{' || c == '}') {
            out += '\\';
            out += char(c);
        } else if (c >= 0x20 && c < 0x7F) {
            out += char(c);
        } else {
            const int byte = c >= 0x80 ? CodePageDecoder::windows1252Byte(c) : -1;
            if (byte >= 0) {
                static const char hex[] = "0123456789abcdef";
                out += "\\'";
                out += hex[byte >> 4];
                out += hex[byte & 15];
            } else {
                out += "\\u";
                out += QByteArray::number(int(qint16(c)));
                out += '?';
            }
        }
    }
}

void Writer::text(char16_t c)
{
    static const char hex[] = "0123456789abcdef";
    if (c >= 0x20 && c < 0x7F && c != '\\' && c != '{' && c != '}') {
        if (m_needSpace) {
            m_out += ' ';
            m_needSpace = false;
        }
        m_out += char(c);
        return;
    }
    switch (c) {
    case '\\': m_out += "\\'5c"; m_needSpace = false; return;
    case '{': m_out += "\\{"; m_needSpace = false; return;
    case '}': m_out += "\\}"; m_needSpace = false; return;
    case '\t': word("tab"); return;
    case 0x2028: word("line"); return;
    case 0x00A0: m_out += "\\~"; m_needSpace = false; return;
    default: break;
    }
    const int byte = c >= 0x80 ? CodePageDecoder::windows1252Byte(c) : -1;
    if (byte >= 0) {
        m_out += "\\'";
        m_out += hex[byte >> 4];
        m_out += hex[byte & 15];
        m_needSpace = false;
        return;
    }
    m_out += "\\u";
    m_out += QByteArray::number(int(qint16(c)));
    m_out += '?';
    m_needSpace = false;
}

void Writer::writeFragmentText(const QString &value)
{
    // Runs of printable ASCII, most of any text, are copied in one piece.
    const char16_t *c = reinterpret_cast<const char16_t *>(value.constData());
    const char16_t *const end = c + value.size();
    while (c < end) {
        const char16_t *plain = c;
        while (plain < end && *plain >= 0x20 && *plain < 0x7F && *plain != '\\' && *plain != '{' && *plain != '}')
            ++plain;
        if (plain > c) {
            if (m_needSpace) {
                m_out += ' ';
                m_needSpace = false;
            }
            const qsizetype at = m_out.size();
            m_out.resize(at + (plain - c));
            char *out = m_out.data() + at;
            while (c < plain)
                *out++ = char(*c++);
        }
        if (c < end)
            text(*c++);
    }
}

void Writer::writeFrame(const QTextFrame *frame)
{
    for (auto it = frame->begin(); !it.atEnd(); ++it) {
        if (const QTextFrame *child = it.currentFrame()) {
            if (!intersects(child->firstPosition(), child->lastPosition() + 1))
                continue;
            if (const auto *table = qobject_cast<const QTextTable *>(child)) {
                if (!writeWithinCell(table))
                    writeTable(table);
            }
            else
                writeFrame(child);
            continue;
        }
        const QTextBlock block = it.currentBlock();
        if (!intersects(block.position(), block.position() + block.length()) || isAttachedNote(block))
            continue;
        if (m_start == 0 && frame == m_doc.rootFrame() && block.position() == 0) {
            auto next = it;
            ++next;
            if (isPlaceholderBeforeTable(block, !next.atEnd() && qobject_cast<QTextTable *>(next.currentFrame())))
                continue;
        }
        writeBlock(block, "par");
    }
}

QByteArray Writer::run()
{
    m_out.reserve(m_doc.characterCount() * 2 + 256);
    collectNotes();
    writeFrame(m_doc.rootFrame());
    const QByteArray body = m_out;

    QByteArray head = "{\\rtf1\\ansi\\ansicpg1252\\deff0\\uc1{\\fonttbl";
    for (int i = 0; i < m_fonts.size(); ++i) {
        head += "{\\f" + QByteArray::number(i) + "\\fnil\\fcharset0 ";
        escaped(m_fonts[i], head);
        head += ";}";
    }
    head += "}\n";
    if (!m_colours.empty()) {
        head += "{\\colortbl ;";
        for (Colour colour : m_colours) {
            head += "\\red" + QByteArray::number(colour & 0xFF) + "\\green" + QByteArray::number((colour >> 8) & 0xFF)
                    + "\\blue" + QByteArray::number((colour >> 16) & 0xFF) + ';';
        }
        head += "}\n";
    }
    head += m_listTable.tables();
    const QByteArray kept = m_doc.rootFrame()->frameFormat().property(KeptDocumentGroups).toByteArray();
    if (!kept.isEmpty() && m_start == 0)
        head += kept + '\n';
    head += pageSetup();
    return head + body + "}\n";
}

} // namespace detail

QByteArray writeRtf(const QTextDocument &document, int start, int end)
{
    const int length = document.characterCount();
    start = std::clamp(start, 0, length);
    end = std::clamp(end, start, length);
    detail::Writer writer(document, start, end);
    return writer.run();
}

QByteArray writeRtf(const QTextDocument &document)
{
    return writeRtf(document, 0, document.characterCount());
}

} // namespace kvrtb::rtf
