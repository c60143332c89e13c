#include "surface/rtf/rtfwriter_p.h"

namespace kvrtb::rtf::detail {

void Writer::collectNotes()
{
    // Most documents have none: their formats tell at once.
    const QList<QTextFormat> formats = m_doc.allFormats();
    if (std::none_of(formats.cbegin(), formats.cend(), [](const QTextFormat &f) { return f.hasProperty(NoteKindProperty); }))
        return;
    // Notes follow their references' paragraphs: those of the range, and those just after it.
    QHash<int, std::vector<QTextBlock>> notes;
    const QTextBlock first = m_doc.findBlock(m_start);
    for (QTextBlock block = first; block.isValid(); block = block.next()) {
        const QTextBlockFormat format = block.blockFormat();
        const bool note = format.hasProperty(NoteIdProperty) && format.hasProperty(NoteKindProperty);
        if (!note && block.position() >= m_end)
            break;
        if (note)
            notes[format.intProperty(NoteIdProperty)].push_back(block);
    }
    if (notes.isEmpty())
        return;
    // A note goes inside its reference only when the reference is written too.
    for (QTextBlock block = first; block.isValid() && block.position() < m_end; block = block.next()) {
        if (block.blockFormat().hasProperty(NoteKindProperty))
            continue;
        int fragmentStart = block.position();
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextFragment fragment = it.fragment();
            const int from = fragmentStart;
            fragmentStart += fragment.length();
            const int id = fragment.charFormat().intProperty(NoteIdProperty);
            if (id && notes.contains(id) && intersects(from, fragmentStart))
                m_notes.insert(id, notes.take(id));
        }
    }
}

bool Writer::isAttachedNote(const QTextBlock &block) const
{
    return !m_notes.isEmpty() && m_notes.contains(block.blockFormat().intProperty(NoteIdProperty))
           && block.blockFormat().hasProperty(NoteKindProperty);
}

void Writer::writeNoteMark(int noteId, const QTextCharFormat &format)
{
    const auto kind = NoteKind(m_notes.value(noteId).front().blockFormat().intProperty(NoteKindProperty));
    if (kind != NoteKind::Annotation) {
        word("chftn");
        return;
    }
    const QString author = format.stringProperty(NoteAuthorProperty);
    if (!m_inNote && !author.isEmpty()) {
        m_out += "{\\*\\atnid ";
        escaped(author.section(QLatin1Char('\n'), 0, 0), m_out);
        m_out += "}{\\*\\atnauthor ";
        escaped(author.section(QLatin1Char('\n'), 1), m_out);
        m_out += '}';
        m_needSpace = false;
    }
    word("chatn");
}

void Writer::writeNote(int noteId)
{
    m_notesWritten.insert(noteId);
    const std::vector<QTextBlock> &blocks = m_notes[noteId];
    const auto kind = NoteKind(blocks.front().blockFormat().intProperty(NoteKindProperty));
    const RunProps outside = m_props;
    if (kind == NoteKind::Annotation) {
        m_out += "{\\*\\annotation";
    } else {
        m_out += "{\\footnote";
        if (kind == NoteKind::Endnote)
            m_out += "\\ftnalt";
    }
    m_needSpace = true;
    m_inNote = true;
    for (size_t i = 0; i < blocks.size(); ++i)
        writeBlock(blocks[i], i + 1 < blocks.size() ? "par" : nullptr);
    m_inNote = false;
    m_out += '}';
    m_needSpace = false;
    m_props = outside;
}

} // namespace kvrtb::rtf::detail
