#include "surface/rtf/rtfreader_p.h"

#include "surface/rtf/rtfnotes.h"

#include <QTextBlock>
#include <QTextCursor>

// Footnotes, endnotes and annotations: the group is set aside when met, and read when its
// paragraph ends, into paragraphs of its own after that paragraph (see rtfnotes.h).

namespace kvrtb::rtf::detail {

void Reader::addNoteMark(bool annotation)
{
    int id = m_noteId;
    int number = m_noteNumber;
    if (!m_inNote) {
        id = ++m_noteCount;
        number = annotation ? ++m_annotationNumber : ++m_footnoteNumber;
        if (annotation) {
            m_noteAuthors.insert(id, m_atnId + QLatin1Char('\n') + m_atnAuthor);
            m_atnId.clear();
            m_atnAuthor.clear();
        }
    }
    QString text = QString::number(number);
    if (annotation)
        text = QLatin1Char('[') + m_noteAuthors.value(id).section(QLatin1Char('\n'), 0, 0) + text + QLatin1Char(']');
    const CharState saved = top().ch;
    top().ch.noteId = id;
    top().ch.noteMark = 1;
    addString(text);
    top().ch = saved;
    if (!m_inNote) {
        m_pendingRef = id;
        m_pendingRefNumber = number;
    }
}

void Reader::beginNote(int kind)
{
    flushText();
    if (m_inNote || top().dest != Dest::Text || m_stack.size() < 2) {
        // A note inside a note, or outside the text, has nowhere to go.
        top().dest = Dest::Skip;
        return;
    }
    const GroupState &outer = m_stack[m_stack.size() - 2];
    PendingNote note;
    note.kind = kind;
    note.ch = outer.ch;
    note.ch.noteId = 0;
    note.ch.noteMark = 0;
    if (m_pendingRef) {
        note.id = m_pendingRef;
        note.number = m_pendingRefNumber;
        m_pendingRef = 0;
    } else if (m_cursor.positionInBlock() > 0 && m_cursor.block().text().back() != QChar::ObjectReplacementCharacter) {
        // A reference mark of the document's own ("*"): the character before the note refers to it.
        note.id = ++m_noteCount;
        QTextCursor mark(m_cursor);
        mark.movePosition(QTextCursor::PreviousCharacter, QTextCursor::KeepAnchor);
        QTextCharFormat reference;
        reference.setProperty(NoteIdProperty, note.id);
        mark.mergeCharFormat(reference);
    } else {
        // No reference at all: an automatic one, so that the note has a place.
        GroupState &group = top();
        const Dest dest = group.dest;
        group.ch = outer.ch;
        addNoteMark(kind == int(NoteKind::Annotation));
        group.dest = dest;
        note.id = m_pendingRef;
        note.number = m_pendingRefNumber;
        m_pendingRef = 0;
        flushRun();
    }
    note.begin = m_p;
    const size_t depth = m_stack.size();
    skipGroup();
    note.end = m_stack.size() < depth ? m_p - 1 : m_end;
    m_pendingNotes.push_back(note);
}

void Reader::insertPendingNotes()
{
    if (m_pendingNotes.empty() || m_inNote)
        return;
    const std::vector<PendingNote> notes = std::move(m_pendingNotes);
    m_pendingNotes.clear();
    const char *const savedPos = m_p;
    const char *const savedEnd = m_end;
    const bool savedHasContent = m_paragraphHasContent;
    const bool savedLastWasPar = m_lastWasPar;
    const bool savedFinished = m_finished; // notes of the last paragraph are read after the end
    m_finished = false;
    flushText();
    // Notes may be read while a run of text is being started (a table after the paragraph):
    // that run keeps its own format.
    const CharState savedRunState = m_runState;
    const bool savedRunStateSet = m_runStateSet;
    for (const PendingNote &note : notes) {
        m_inNote = true;
        m_noteId = note.id;
        m_noteKind = note.kind;
        m_noteNumber = note.number;
        GroupState group = top();
        group.ch = note.ch;
        group.para = ParaState();
        group.dest = Dest::Text;
        group.destRoot = false;
        group.star = false;
        group.opensField = false;
        group.nestedTableProps = false;
        m_noteBase = m_stack.size();
        m_stack.push_back(group);
        m_cursor.insertBlock(QTextBlockFormat(), formatFor(note.ch));
        const int firstBlock = m_cursor.blockNumber();
        m_paragraphHasContent = false;
        m_lastWasPar = false;
        m_p = note.begin;
        m_end = note.end;
        parse();
        flushText();
        while (m_stack.size() > m_noteBase + 1) {
            const GroupState closing = m_stack.back();
            m_stack.pop_back();
            finishDestination(closing);
        }
        // A note that ends with \par has no empty paragraph after it.
        if (!m_paragraphHasContent && m_lastWasPar && m_cursor.blockNumber() > firstBlock)
            m_cursor.deletePreviousChar();
        else
            applyParagraph(top().para);
        m_stack.pop_back();
        m_inNote = false;
    }
    m_p = savedPos;
    m_end = savedEnd;
    m_paragraphHasContent = savedHasContent;
    m_lastWasPar = savedLastWasPar;
    m_finished = savedFinished;
    m_runState = savedRunState;
    m_runStateSet = savedRunStateSet;
}

} // namespace kvrtb::rtf::detail
