#pragma once

#include "core/colour.h"

#include <QFont>
#include <QList>
#include <QMargins>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <QString>

#include <functional>
#include <optional>

class QPagedPaintDevice;
class QPainter;
class QWidget;

namespace kvrtb {

/// Screen twips per pixel: positions and indents cross the interface in twips, the surface
/// lays out in pixels at 96 dots per inch.
inline constexpr int kTwipsPerPixel = 15;

/// The character locale that marks text as a link made by the control.
inline constexpr int kLinkMarkerLocale = 357;

enum class ScriptPosition { Normal = 0, Subscript = 1, Superscript = 2 };

/// \brief Character attributes of a range.
///
/// Read from a selection, an empty optional means "mixed": the characters of the selection
/// differ in that attribute. Given to `setSelectionCharFormat`, an empty optional means "leave
/// as it is", so a record with one field set changes only that attribute.
struct CharFormat {
    std::optional<bool> bold;
    std::optional<bool> italic;
    std::optional<bool> underline;      ///< the user's underline; the link effect is not reported here
    std::optional<bool> strikeThrough;
    std::optional<bool> protectedText;
    std::optional<bool> linkEffect;     ///< shown as a link: an underline of its own style, colour kept
    std::optional<Colour> color;        ///< text colour, 0x00BBGGRR; `kAutoColour` = the default colour
    std::optional<Colour> backColor;    ///< highlight; `kAutoColour` = automatic background (none)
    std::optional<QString> fontName;
    std::optional<double> fontSize;     ///< points
    std::optional<int> charOffset;      ///< twips above (positive) or below the baseline
    std::optional<ScriptPosition> script;
    std::optional<int> locale;          ///< character locale id; `kLinkMarkerLocale` marks links
    std::optional<QString> linkAddress; ///< address of the link, written to RTF as a HYPERLINK field

    /// True when the locale is the link marker (false when mixed or absent).
    bool hasLinkMarker() const { return locale && *locale == kLinkMarkerLocale; }
};

enum class ParaAlignment { Left = 0, Right = 1, Center = 2, Justify = 3 };

/// Paragraph numbering; the values are those of `ListNN`.
enum class Numbering {
    None = 0,
    Bullet = 1,
    Arabic = 2,
    LowerLetter = 3,
    UpperLetter = 4,
    LowerRoman = 5,
    UpperRoman = 6
};

/// What follows or surrounds the number; the values are the platform's numbering styles.
enum class NumberingStyle { RightParen = 0x000, Parens = 0x100, Period = 0x200, Plain = 0x300, NoNumber = 0x400 };

/// Line-spacing rules; the values are the platform's rule numbers (`LineSpc`, plus "at least").
enum class LineSpacingRule { Single = 0, OneAndHalf = 1, Double = 2, AtLeast = 3, Exactly = 4, Multiple = 5 };

/// \brief Paragraph attributes; empty optionals mean mixed (read) or unchanged (write).
///
/// Indents are in twips: `leftIndent` is where the first line starts, `hangingIndent` is how far
/// the following lines start to the right of the first one, `rightIndent` is from the right edge.
struct ParaFormat {
    std::optional<ParaAlignment> alignment;
    std::optional<Numbering> numbering;
    std::optional<int> numberingStart;
    std::optional<NumberingStyle> numberingStyle;
    std::optional<LineSpacingRule> lineSpacingRule;
    std::optional<int> lineSpacing;     ///< twips for AtLeast/Exactly, twentieths of a line for Multiple
    std::optional<int> leftIndent;
    std::optional<int> rightIndent;
    std::optional<int> hangingIndent;
    std::optional<int> spaceBefore;     ///< twips
    std::optional<int> spaceAfter;      ///< twips
    std::optional<QList<int>> tabStops; ///< twips from the left edge, ascending
    std::optional<int> bulletIndent;    ///< twips between a bullet or number and the text
};

/// Options of `find`; the values of `WholeWord` and `MatchCase` are those of `FindOptionsQ`.
enum FindFlag { FindWholeWord = 2, FindMatchCase = 4, FindBackward = 0x100 };

enum class WrapMode {
    Window,    ///< wrap at the editor's width
    Width,     ///< wrap at a fixed line width (twips)
    None       ///< no wrapping: a line is a paragraph (or a part of it ended by a line break)
};

/// Mouse pointers, with the values of the host's pointer constants.
enum class MousePointer { Default = 0, Arrow = 1, Cross = 2, IBeam = 3, SizeAll = 5, SizeNESW = 6,
                          SizeNS = 7, SizeNWSE = 8, SizeWE = 9, UpArrow = 10, Hourglass = 11,
                          NoDrop = 12, ArrowHourglass = 13, ArrowQuestion = 14, Hand = 99 };

/// \brief One printed page as `renderPages` hands it to the caller's decoration. Rectangles are
/// in the device's pixels, from the paper's top-left corner.
struct PageFrame {
    int page = 1;       ///< 1-based number of the page within the printed text
    int pageCount = 1;  ///< pages the printed text has in all
    QRectF paper;       ///< the whole sheet
    QRectF body;        ///< where the text goes: the paper less the margins
};

/// \brief How `renderPages` lays the document out on pages.
struct PageRenderRequest {
    QMargins marginsTwips;   ///< left, top, right, bottom: from the paper's edges to the text
    bool selectionOnly = false; ///< only the selected text (the whole document when nothing is)
    int fromPage = 0;        ///< first page to render (1-based); 0 = from the first
    int toPage = 0;          ///< last page to render; 0 = to the last
    /// Called for each page after its text is drawn, with the painter in paper coordinates:
    /// draws headings, page numbers and the like in the margins. May be empty.
    std::function<void(QPainter &painter, const PageFrame &frame)> decorate;
};

/// \brief The page a document brought with it (an RTF file's page setup), in twips. A size or
/// margin the document did not give is 0.
struct DocumentPage {
    QSize paperTwips;      ///< width and height as the paper is used (wider than high in landscape)
    QMargins marginsTwips; ///< left, top, right, bottom
    bool landscape = false;
    bool hasPaper() const { return paperTwips.width() > 0 && paperTwips.height() > 0; }
    bool hasMargins() const { return !marginsTwips.isNull(); }
};

/// Kinds of document file the surface reads and writes itself.
enum class SurfaceFileType { Rtf = 0, Text = 1 };

/// \brief Receives what happens on the surface, in the terms of the control's events.
///
/// Key codes are the platform's virtual-key codes (A = 65, Enter = 13, Delete = 46, ...), shift
/// states are 1 Shift, 2 Ctrl, 4 Alt. Arguments are references: setting a key code (and shift)
/// to 0 in `keyDown` swallows the key, so the editor does not act on it; setting `keyAscii` to 0
/// in `keyPress` drops the character. Mouse coordinates are pixels in the editor's viewport;
/// buttons are 1 left, 2 right, 4 middle.
class SurfaceListener {
public:
    virtual ~SurfaceListener() = default;
    virtual void click() {}
    virtual void dblClick() {}
    virtual void selChange() {}
    virtual void change() {}
    virtual void keyDown(int &keyCode, int &shift) { Q_UNUSED(keyCode) Q_UNUSED(shift) }
    virtual void keyPress(int &keyAscii) { Q_UNUSED(keyAscii) }
    virtual void keyUp(int &keyCode, int &shift) { Q_UNUSED(keyCode) Q_UNUSED(shift) }
    virtual void mouseDown(int &button, int &shift, float &x, float &y) { Q_UNUSED(button) Q_UNUSED(shift) Q_UNUSED(x) Q_UNUSED(y) }
    virtual void mouseMove(int &button, int &shift, float &x, float &y) { Q_UNUSED(button) Q_UNUSED(shift) Q_UNUSED(x) Q_UNUSED(y) }
    virtual void mouseUp(int &button, int &shift, float &x, float &y) { Q_UNUSED(button) Q_UNUSED(shift) Q_UNUSED(x) Q_UNUSED(y) }
    /// The user asked for the context menu (right button or the menu key) at a global position.
    virtual void contextMenu(const QPoint &globalPos) { Q_UNUSED(globalPos) }
};

/// \brief The rich-edit surface that every area of the control works on.
///
/// Positions are 0-based UTF-16 code units into `text()`, where a paragraph break is one "\n".
/// Positions out of range are clamped, never an error. Lines are display lines: a wrapped
/// paragraph has several; with wrapping off a line is a paragraph (a manual line break also
/// starts a line). An empty document has one line. The Qt implementation is `QtEditorSurface`;
/// the surface owns no control logic.
class EditorSurface {
public:
    virtual ~EditorSurface() = default;

    // --- Text -------------------------------------------------------------------------------
    /// The whole plain text, paragraphs separated by "\n".
    virtual QString text() const = 0;
    /// Replaces the whole document with plain text; CR LF, CR and LF all become paragraph
    /// breaks. Empties the undo buffer and sets the modified flag.
    virtual void setText(const QString &text) = 0;
    /// Number of positions in the document (the length of `text()`).
    virtual int textLength() const = 0;
    /// The plain text of [start, start + length), clamped.
    virtual QString textRange(int start, int length) const = 0;

    // --- RTF --------------------------------------------------------------------------------
    /// The whole document as RTF. Each char of the string is one byte of the RTF text.
    virtual QString rtf() const = 0;
    /// Replaces the whole document with RTF. Returns false (document unchanged) with a reason
    /// in \a error when the text cannot be read as RTF at all.
    virtual bool setRtf(const QString &rtf, QString *error = nullptr) = 0;
    /// The selection as RTF.
    virtual QString selectedRtf() const = 0;
    /// Replaces the selection with RTF (plain text when \a rtf is not RTF).
    virtual bool replaceSelectionRtf(const QString &rtf, QString *error = nullptr) = 0;
    /// Loads a whole file into the document; on failure the document is unchanged and \a error
    /// says why (the file's name and the operating system's reason).
    virtual bool loadFile(const QString &path, SurfaceFileType type, QString *error = nullptr) = 0;
    /// Saves the whole document to a file as RTF or plain text (UTF-8, "\r\n" line ends).
    virtual bool saveFile(const QString &path, SurfaceFileType type, QString *error = nullptr) const = 0;

    // --- Selection --------------------------------------------------------------------------
    virtual int selStart() const = 0;
    virtual int selLength() const = 0;
    /// Selects [start, start + length); length -1 means "to the end", so (0, -1) selects all.
    /// The caret is at the end of the selection.
    virtual void setSelection(int start, int length) = 0;
    virtual void setSelStart(int start) = 0;     ///< moves the caret, collapsing the selection
    virtual void setSelLength(int length) = 0;   ///< keeps the start, -1 = to the end
    virtual QString selectedText() const = 0;
    /// Replaces the selection with text ("\n" = paragraph break); one undo step; the caret ends
    /// after the new text. The inserted text takes the format at the selection's start.
    virtual void replaceSelection(const QString &text) = 0;

    // --- Character format -------------------------------------------------------------------
    /// The format of the selection (mixed attributes are empty); for an empty selection, the
    /// format at the caret (what typing would insert).
    virtual CharFormat selectionCharFormat() const = 0;
    /// Applies the set fields of \a format to the selection (to the typing format when empty).
    virtual void setSelectionCharFormat(const CharFormat &format) = 0;
    /// Applies \a format to [start, start + length) without moving the selection.
    virtual void setRangeCharFormat(int start, int length, const CharFormat &format) = 0;
    /// Applies \a format to the whole document.
    virtual void setDocumentCharFormat(const CharFormat &format) = 0;
    /// \brief A batch of format changes applied as one edit: one undo step, one relayout.
    struct FormatSpan {
        int start = 0;
        int length = 0;
        CharFormat format;
    };
    virtual void applyCharFormats(const QList<FormatSpan> &spans) = 0;
    /// \brief A run of characters that takes one text colour (0x00BBGGRR or a system colour).
    struct ColourRun {
        int start = 0;
        int length = 0;
        Colour colour = 0;
    };
    /// Recolours a range in one edit (one undo step, one relayout): the set fields of \a base go
    /// over [start, start + length) (length -1 = to the end), then each run sets its colour, in
    /// list order (a later run wins where runs overlap). The result is that of `applyCharFormats`
    /// with \a base as the first span and one colour-only span per run, but much cheaper for tens
    /// of thousands of runs: it is how a whole source file is coloured at once. The selection
    /// does not move.
    virtual void applyColourRuns(int start, int length, const CharFormat &base, const QList<ColourRun> &runs) = 0;
    /// \brief A same-length rewrite: the characters from `start` become those of `text`.
    struct TextRewrite {
        int start = 0;
        QString text;
    };
    /// Replaces characters one for one (a case change, say), each new character keeping the
    /// format of the one it replaces; paragraph breaks inside a range stay as they are. The
    /// whole list is one edit, like `applyCharFormats`; the selection does not move.
    virtual void rewriteCharacters(const QList<TextRewrite> &rewrites) = 0;
    /// \brief One replacement of a batch: [start, start + length) becomes `text`.
    struct TextReplacement {
        int start = 0;
        int length = 0;
        QString text;
    };
    /// Replaces the ranges (ascending, not overlapping, positions in the text as it stands) in
    /// one edit: one undo step, one relayout. Each new text ("\n" = paragraph break) takes the
    /// format of its range's first character, with the set fields of \a format (when given) on top.
    virtual void replaceRanges(const QList<TextReplacement> &replacements, const CharFormat *format = nullptr) = 0;
    /// The format of [start, start + length) with mixed attributes empty.
    virtual CharFormat rangeCharFormat(int start, int length) const = 0;

    // --- Paragraph format -------------------------------------------------------------------
    /// The format of the paragraphs the selection touches (mixed attributes empty).
    virtual ParaFormat selectionParaFormat() const = 0;
    /// The format of the one paragraph that holds \a position (clamped); nothing is mixed.
    virtual ParaFormat paraFormatAt(int position) const = 0;
    virtual void setSelectionParaFormat(const ParaFormat &format) = 0;

    // --- Find -------------------------------------------------------------------------------
    /// Finds \a what in [start, end) (end -1 = to the end of the document) with `FindFlag`s;
    /// FindBackward searches from end towards start. Returns the position or -1.
    virtual int find(const QString &what, int start, int end, int flags) const = 0;

    // --- Lines ------------------------------------------------------------------------------
    virtual int lineCount() const = 0;
    /// First position of a line; -1 = the caret's line; a line past the end gives -1.
    virtual int lineIndex(int line) const = 0;
    /// Length of the line holding \a position, without its break; -1 = the caret's line.
    virtual int lineLength(int position) const = 0;
    /// The line holding \a position; -1 = the line of the selection's start.
    virtual int lineFromChar(int position) const = 0;
    /// First line visible in the view (0-based).
    virtual int firstVisibleLine() const = 0;
    /// Scrolls the view by a number of lines (negative = up) and columns (characters).
    virtual void scrollLines(int lines, int columns = 0) = 0;
    /// The formatting rectangle in viewport pixels (left, top, right, bottom).
    virtual QRect formattingRect() const = 0;
    /// Where a paragraph without indent starts, in pixels from the left edge of `widget()`
    /// (its frame, the text margin and horizontal scrolling accounted for).
    virtual int textOriginX() const = 0;
    /// The position nearest to a viewport pixel point.
    virtual int charFromPoint(const QPoint &point) const = 0;
    /// Scrolls so that the display line holding \a position is the first one visible (as far
    /// as the view can scroll). Lays the document out only down to that line, so it stays quick
    /// right after a change of the whole document's format.
    virtual void scrollToPosition(int position) = 0;
    /// Vertical scroll offset in pixels, and setting it back.
    virtual int scrollOffset() const = 0;
    virtual void setScrollOffset(int pixels) = 0;

    // --- Span and UpTo ----------------------------------------------------------------------
    /// Extends the selection over the run of characters in \a set (or, with \a negate, not in
    /// it): forward from the selection's end, or backward from its start.
    virtual void span(const QString &set, bool forward = true, bool negate = false) = 0;
    /// Moves the caret up to the first character in \a set (or, with \a negate, not in it):
    /// forward from the selection's end, or backward from its start. Without one, the caret goes
    /// to the end (or the start) of the document.
    virtual void upTo(const QString &set, bool forward = true, bool negate = false) = 0;

    // --- Case -------------------------------------------------------------------------------
    /// Case change of the selection: 0 lower, 1 upper, 2 title, 4 sentence, 5 toggle.
    virtual void changeCase(int kind) = 0;

    // --- Modified flag and the one-step undo ------------------------------------------------
    virtual bool isModified() const = 0;
    /// A number that changes whenever what `rtf()` writes may have changed (text, formats,
    /// the default font); moving the selection leaves it alone. Equal numbers mean an unchanged
    /// document, so callers may keep what they derived from it. While the surface is frozen,
    /// every call gives a new number.
    virtual quint64 revision() const = 0;
    virtual void setModified(bool modified) = 0;
    /// A number that grows with every change of the document by at least as many characters
    /// as the change may have added to `rtf()`: between two readings, `rtf()` cannot have
    /// grown by more than their difference, so a caller that measured the RTF once can bound
    /// its length later without writing it again. Changes it cannot bound (pictures, long
    /// insertions, the default font, anything while frozen) add `kUnboundedRtfGrowth`.
    virtual quint64 rtfGrowthAllowance() const = 0;
    static constexpr quint64 kUnboundedRtfGrowth = quint64(1) << 40;
    /// True when `undo` would change the document.
    virtual bool canUndo() const = 0;
    /// Undoes the last edit; called again right after, it redoes it (one toggling step).
    virtual void undo() = 0;
    virtual void emptyUndoBuffer() = 0;

    // --- History point: an earlier state kept without copying it ----------------------------
    /// \brief Records the current state of the document as a point in the surface's own edit
    /// history, so that it can be read or gone back to later without having been copied.
    ///
    /// A surface holds at most one point; marking forgets the earlier one (its \a beforeLost is
    /// not called). While a point is held, `emptyUndoBuffer` ends only the one-step undo and
    /// keeps the history the point needs. Before anything that would lose that history (a new
    /// document through `setRtf` or `setText`, an undo stepping below the point, the surface
    /// going away) the surface calls \a beforeLost once, while the point can still be read, and
    /// then forgets the point. The edit history has no size limit, so nothing else loses it.
    /// \return false when the surface keeps no history; the caller must then copy the state.
    virtual bool markHistoryPoint(std::function<void()> beforeLost) = 0;
    /// Like `markHistoryPoint`, but for the state that `undo` would go back to, without going
    /// there: possible when the last edit was one step of the history that only inserted text
    /// (typing). \a undoneCaret receives where `undo` would leave the caret (with nothing
    /// selected). \return false, changing nothing (an earlier point stays), when the surface
    /// cannot tell that state without undoing.
    virtual bool markHistoryPointBeforeLastEdit(std::function<void()> beforeLost, int *undoneCaret) = 0;
    /// True while a point is held (even one whose history turned out not to lead back).
    virtual bool hasHistoryPoint() const = 0;
    /// Takes the document back to the point, calls \a read (which may only read the surface)
    /// and brings the document forward again. Afterwards the document, the selection, the
    /// scroll position, `revision` and the modified flag are as before, and neither the
    /// listener nor the contents observers heard of the round trip.
    /// \return false, without calling \a read, when no point is held or the history no longer
    /// leads back to it exactly.
    virtual bool readAtHistoryPoint(const std::function<void()> &read) = 0;
    /// Takes the document back to the point for good, as `setRtf` of the point's RTF would: the
    /// edit history is emptied, the caret goes to the start, the modified flag is set. The point
    /// is forgotten. \return false, changing nothing, when `readAtHistoryPoint` would fail.
    virtual bool restoreHistoryPoint() = 0;
    /// Drops the point without calling its \a beforeLost.
    virtual void forgetHistoryPoint() = 0;

    // --- Clipboard --------------------------------------------------------------------------
    virtual void cut() = 0;
    virtual void copy() const = 0;
    virtual void paste() = 0;
    /// Deletes the selection without touching the clipboard.
    virtual void clear() = 0;
    virtual bool canPaste() const = 0;

    // --- Wrapping ---------------------------------------------------------------------------
    virtual void setWrap(WrapMode mode, int widthTwips = 0) = 0;
    virtual WrapMode wrapMode() const = 0;

    // --- Freeze -----------------------------------------------------------------------------
    /// Stops repainting; nests with a counter.
    virtual void freeze() = 0;
    /// Ends one freeze; the display catches up when the count returns to zero.
    virtual void unfreeze() = 0;
    virtual int freezeCount() const = 0;

    // --- The box --------------------------------------------------------------------------
    virtual bool isReadOnly() const = 0;
    virtual void setReadOnly(bool readOnly) = 0;
    /// Most characters the user may type or paste; 0 = no limit.
    virtual int maxLength() const = 0;
    virtual void setMaxLength(int length) = 0;
    virtual QFont font() const = 0;
    virtual void setFont(const QFont &font) = 0;
    virtual Colour backColor() const = 0;
    virtual void setBackColor(Colour colour) = 0;
    virtual bool isEnabled() const = 0;
    virtual void setEnabled(bool enabled) = 0;
    /// Right margin in twips: with it set, lines wrap at that width (0 = none).
    virtual int rightMargin() const = 0;
    virtual void setRightMargin(int twips) = 0;
    virtual MousePointer mousePointer() const = 0;
    virtual void setMousePointer(MousePointer pointer) = 0;
    /// Flat (0) or three-dimensional (1) look, and no border (0) or a single line (1).
    virtual void setAppearance(int appearance) = 0;
    virtual void setBorderStyle(int borderStyle) = 0;
    virtual void setToolTip(const QString &tip) = 0;
    virtual void setFocus() = 0;
    virtual void refresh() = 0;
    /// The native window id of the editor, 0 while it has none. Reading it never creates one
    /// (child widgets are drawn in their top-level window until something asks for a native
    /// window of their own, e.g. `QWidget::winId()` called by the host).
    virtual quintptr windowHandle() const = 0;
    /// The editor widget, for placing it in the control's layout.
    virtual QWidget *widget() const = 0;
    /// Renders the document onto a paged device (printing and print preview).
    virtual void print(QPagedPaintDevice *device) const = 0;
    /// \brief Lays the document (or the selection) out on the pages of \a device and draws them.
    ///
    /// The device is switched to full-page mode with no margins of its own; the request's
    /// margins place the text. Fonts, colours, indents, tab stops, lists, tables and pictures
    /// print as the editor shows them, scaled to the device's resolution. Returns the number of
    /// pages drawn, or -1 with a reason in \a error when the device cannot be painted on (an
    /// output file that cannot be written, margins that leave no room for text).
    virtual int renderPages(QPagedPaintDevice *device, const PageRenderRequest &request,
                            QString *error = nullptr) const = 0;
    /// The paper and margins the document came with (loaded RTF's page setup, written back when
    /// it is saved as RTF), or nothing when it has none: printing uses them when given.
    virtual std::optional<DocumentPage> documentPage() const = 0;

    // --- Decorations -------------------------------------------------------------------------
    /// \brief What a decoration marks; each layer is replaced on its own.
    enum class DecorationLayer { Misspelling, FindMatch, FindCurrent };
    /// A stretch of text, [start, start + length).
    struct TextSpan {
        int start = 0;
        int length = 0;
        int end() const { return start + length; }
        bool operator==(const TextSpan &other) const { return start == other.start && length == other.length; }
    };
    /// Draws \a spans of \a layer over the text (misspellings: a wavy underline; find matches:
    /// a tint of the palette's highlight), replacing what that layer drew before. A decoration
    /// is paint only: it is never part of the document, its RTF, its undo or any character
    /// format the control reports, and its colours follow the widget's palette. Spans move with
    /// later edits (a span an edit touches is dropped) until the layer is replaced; \a spans are
    /// sorted by start and do not overlap; spans out of range are clipped. Only the spans in view
    /// are painted, so a layer may hold many.
    virtual void setDecorations(DecorationLayer layer, const QList<TextSpan> &spans) = 0;
    /// The spans of \a layer as drawn now (moved by the edits since they were set).
    virtual QList<TextSpan> decorations(DecorationLayer layer) const = 0;
    /// The paragraph holding \a position, without its paragraph mark.
    virtual TextSpan paragraphAt(int position) const = 0;
    /// The position nearest to a point in global screen coordinates.
    virtual int charAtGlobalPoint(const QPoint &globalPoint) const = 0;
    /// Told of every change of the text: where, how many characters went and how many came.
    using ContentsObserver = std::function<void(int position, int removed, int added)>;
    /// Adds an observer of text changes, called after the change; kept for the surface's life.
    virtual void addContentsObserver(ContentsObserver observer) = 0;

    // --- Accessibility ----------------------------------------------------------------------
    /// Sets the editor's accessible description (empty: none), as assistive technology reads
    /// it; a change raises the accessibility event for a changed description.
    virtual void setAccessibleDescription(const QString &description) = 0;

    // --- Events -----------------------------------------------------------------------------
    /// The listener that receives the surface's events; not owned; nullptr for none.
    virtual void setListener(SurfaceListener *listener) = 0;
};

/// \brief Freezes a surface for the lifetime of the guard.
class SurfaceFreeze {
public:
    explicit SurfaceFreeze(EditorSurface &surface) : m_surface(surface) { m_surface.freeze(); }
    ~SurfaceFreeze() { m_surface.unfreeze(); }
    SurfaceFreeze(const SurfaceFreeze &) = delete;
    SurfaceFreeze &operator=(const SurfaceFreeze &) = delete;

private:
    EditorSurface &m_surface;
};

} // namespace kvrtb
