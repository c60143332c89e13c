#pragma once

// Groups of an RTF document that the control does not show (page headers and footers, document
// information, the stylesheet, bookmarks, groups of other programs marked "\*") are kept with
// the document as their original bytes and written back unchanged, so that loading and saving
// a document does not strip what other programs put there.
//
// Groups met before the document's first text are kept with the whole document (a property of
// the root frame) and written after the font and colour tables. Groups met later belong to the
// paragraph they are in (a property of the paragraph) and are written at the start of it.
// Editing treats them as part of their paragraph: deleting the paragraph deletes them, joining
// two paragraphs keeps those of the first, and splitting a paragraph gives both halves the
// same groups, which are written once (the writer never writes the same group twice).

#include <QTextFormat>

namespace kvrtb::rtf {

enum KeptProperty {
    /// QByteArray, on a paragraph: the groups that belong to it.
    KeptParagraphGroups = QTextFormat::UserProperty + 45,
    /// QByteArray, on the document's root frame: the groups of the document's header.
    KeptDocumentGroups = QTextFormat::UserProperty + 46,
};

} // namespace kvrtb::rtf
