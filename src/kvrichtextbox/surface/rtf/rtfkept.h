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
//
// An embedded object (\object) shows its result (a picture or text) as the document's own
// content; the rest of its group (its class, size and data) goes with the characters of that
// result and is written back around them. Deleting the result deletes the object; an object
// without a result is kept like the other groups.

#include <QTextFormat>

namespace kvrtb::rtf {

enum KeptProperty {
    /// QByteArray, on a paragraph: the groups that belong to it.
    KeptParagraphGroups = QTextFormat::UserProperty + 45,
    /// QByteArray, on the document's root frame: the groups of the document's header.
    KeptDocumentGroups = QTextFormat::UserProperty + 46,
    /// QByteArray, on the characters an embedded object shows (its \result): the object's
    /// group up to its result ("{\object...{\*\objdata ...}"), written back around them.
    KeptObjectGroup = QTextFormat::UserProperty + 62,
};

} // namespace kvrtb::rtf
