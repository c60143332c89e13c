#pragma once

// Paragraph and character formats of RTF documents that Qt's text formats cannot hold (or not
// exactly), kept as user properties so that the writer gives them back: tab leaders, paragraph
// borders and shading, outlined and shadowed letters, bookmarks, fields and the page setup.
//
// What the editor shows of them: tab alignments (right, centre, decimal) and paragraph shading
// are shown by Qt; capitals and small capitals are shown as such while the text keeps the
// letters as typed; outlined letters are drawn with an outline; letter spacing is shown. Tab
// leaders, paragraph borders and shadowed letters are drawn by the surface (drawnformats.h).

#include "core/colour.h"

#include <QColor>
#include <QTextFormat>

namespace kvrtb::rtf {

enum FormatProperty {
    /// QList<int>, on a paragraph: pairs of (tab stop position in twips, TabLeader) for the tab
    /// stops that have a leader. A pair whose position is no longer a tab stop is ignored.
    TabLeaders = QTextFormat::UserProperty + 60,
    /// QList<int>, on a paragraph: five ints per bordered side (BorderSide, border style as an
    /// index of `borderStyleWords()`, width in twips, colour as a Colour, space in twips).
    ParagraphBorders = QTextFormat::UserProperty + 61,
    /// QList<int>, on a paragraph: the shading as read (hundredths of a percent, pattern colour,
    /// fill colour; colours as Colour, kAutoColour when not given). The block's background shows
    /// the mix.
    ParagraphShading = QTextFormat::UserProperty + 62,
    /// bool, on characters: outlined letters (also shown with QTextCharFormat::textOutline).
    CharOutline = QTextFormat::UserProperty + 63,
    /// bool, on characters: shadowed letters.
    CharShadow = QTextFormat::UserProperty + 64,
    /// QStringList, on characters: bookmarks that end after the last character of the run that
    /// carries it. Bookmark starts are Qt's anchor names on the first character they cover.
    BookmarkEnds = QTextFormat::UserProperty + 65,
    /// QStringList, on characters: bookmarks that start after the run that carries it (at the
    /// end of a paragraph, or bookmarks that cover no text); written before its BookmarkEnds.
    BookmarkStartsAfter = QTextFormat::UserProperty + 69,
    /// QString, on characters: the instruction of the field whose last result they show.
    FieldInstruction = QTextFormat::UserProperty + 66,
    /// int, on characters: tells two neighbouring fields with the same instruction apart.
    FieldId = QTextFormat::UserProperty + 67,
    /// QList<int>, on the document's root frame: the page setup (PageSetupField order), twips.
    PageSetupProperty = QTextFormat::UserProperty + 68,
};

/// What fills the space before a tab stop.
enum class TabLeader { None = 0, Dot, MiddleDot, Hyphen, Underline, Thick, Equal };

/// Sides of a paragraph's border; Between is the line between paragraphs of the same border.
enum class BorderSide { Top = 0, Bottom, Left, Right, Between };
inline constexpr int kBorderSides = 5;

/// The fields of PageSetupProperty; 0 = not given.
enum PageSetupField { PaperWidth = 0, PaperHeight, MarginLeft, MarginRight, MarginTop, MarginBottom, Landscape,
                      PageSetupFields };

/// The RTF words of the border styles, in the order their indexes give ("brdrs", "brdrdb", ...).
const char *const *borderStyleWords();
/// How many border style words there are.
int borderStyleCount();

/// The colour a paragraph's shading shows: \a hundredthsPercent of the pattern colour (black
/// when automatic) over the fill colour (white when automatic); an invalid colour for no shading.
QColor shadingColour(int hundredthsPercent, Colour pattern, Colour fill);

} // namespace kvrtb::rtf
