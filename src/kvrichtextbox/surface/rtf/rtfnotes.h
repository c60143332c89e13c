#pragma once

// How footnotes, endnotes and annotations read from RTF are kept in the document. A note's
// paragraphs follow the paragraph that refers to it, each marked with the note's kind and
// number (block properties) and shown on a tinted background; the reference in the text and the
// note's own mark are characters carrying the same note number (and, when RTF numbered them
// automatically, the NoteMark flag). The writer puts each note's paragraphs back inside its
// reference as a footnote, endnote or annotation group.
//
// Editing: a note paragraph is ordinary text, so the user edits or deletes it like any other.
// When its reference is deleted, the note paragraphs stay where they are and are written as
// ordinary paragraphs (their text is never dropped); when all of a note's paragraphs are
// deleted, its reference is written as plain text.

#include <QColor>
#include <QTextFormat>

namespace kvrtb::rtf {

enum class NoteKind { Footnote = 1, Endnote = 2, Annotation = 3 };

enum NoteProperty {
    /// int, on a note's paragraphs: its NoteKind.
    NoteKindProperty = QTextFormat::UserProperty + 41,
    /// int, on a note's paragraphs and on its reference and mark characters: the note's number
    /// in the document (1, 2, ...; not the number shown).
    NoteIdProperty = QTextFormat::UserProperty + 42,
    /// bool, on reference and mark characters that RTF numbers automatically.
    NoteMarkProperty = QTextFormat::UserProperty + 43,
    /// QString, on an annotation's reference: the author's initials and name, "initials\nname".
    NoteAuthorProperty = QTextFormat::UserProperty + 44,
};

/// The background of note paragraphs.
inline QColor noteBackground() { return QColor(0xEE, 0xF2, 0xF7); }

} // namespace kvrtb::rtf
