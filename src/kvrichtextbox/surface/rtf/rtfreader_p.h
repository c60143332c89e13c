#pragma once

// Internal types of the RTF reader, shared by its source files: the control words, the state each
// group carries, the tables read from the header (fonts, colours, lists) and the Reader itself.
// rtfreader.cpp holds the entry points; the Reader's parts live in rtfreader_tokenizer.cpp (bytes
// to control words and text), rtfreader_groups.cpp (the group stack and the property words),
// rtfreader_text.cpp (decoding and text runs), rtfreader_paragraphs.cpp (paragraph formats and
// lists), rtfreader_destinations.cpp (font and colour tables, fields, pictures, list tables) and
// rtfreader_tables.cpp (tables).

#include "surface/formatmapping.h"
#include "surface/rtf/codepage.h"
#include "surface/rtf/rtfformats.h"

#include <QByteArray>
#include <QHash>
#include <QPointer>
#include <QList>
#include <QString>
#include <QStringList>
#include <QTextBlockFormat>
#include <QTextCharFormat>

#include <algorithm>
#include <cstring>
#include <string_view>
#include <vector>

class QTextCursor;
class QTextDocument;
class QTextList;
class QTextTable;

namespace kvrtb::rtf::detail {

// Groups deeper than this are skipped whole: real documents stay below it (mail programs that
// wrap HTML in RTF reach a few thousand), and a hostile file cannot make the stack grow without
// bound.
constexpr int kMaxDepth = 10000;
constexpr int kMaxUnicodeSkip = 16;
// Tables nested deeper than this are read as part of the deepest one allowed.
constexpr int kMaxTableDepth = 32;

enum class Dest : quint8 {
    Text,         // document text
    Skip,         // ignored with everything inside
    FontTable,
    ColorTable,
    FieldInst,
    Pict,
    Pn,           // legacy paragraph numbering
    PnTextBefore,
    PnTextAfter,
    ListTable,
    List,
    ListLevel,
    LevelText,
    ListOverrideTable,
    ListOverride,
    Upr,          // the ANSI half of \upr: text ignored until \ud
    AtnId,        // an annotation's author initials
    AtnAuthor,    // an annotation's author name
    ShapeName,    // the name of a shape property (\sn)
    Ignore,       // text ignored, control words still read (\field, \object shells)
    StyleSheet,   // the stylesheet: each group in it defines a style
    Style,        // one style's definition: its formats are read as a group's state
    Bookmark,     // the name of a bookmark's start or end
};

enum class Word : quint16 {
    Unknown,
    // destinations
    Rtf, FontTbl, ColorTbl, Field, FldInst, FldRslt, Pict, ShpPict, NonShpPict, Object, Result,
    PnText, ListText, PnDest, PnTxtA, PnTxtB, ListTable, ListDest, ListLevel, LevelText,
    ListOverrideTable, ListOverride, Upr, Ud, NestTableProps, Footnote, Annotation, AtnId, AtnAuthor,
    ShpInst, ShpTxt, ShpRslt, Sp, Sn, Sv, StyleSheet, BkmkStart, BkmkEnd, SkipDest,
    // document
    Ansi, Mac, Pc, Pca, AnsiCpg, Deff, Uc, U, Bin,
    // font table
    F, FCharset, Cpg,
    // colours
    Red, Green, Blue,
    // characters
    Plain, B, I, Ul, UlD, UlDash, UlDashD, UlDashDD, UlWave, UlNone, Strike, StrikeD, Cf, Cb,
    Highlight, ChCbPat, Fs, Super, Sub, NoSuperSub, Up, Dn, Protect, Lang, V, KvOffset,
    Ab, Ai, Af, Afs, RtlCh, LtrCh, HiCh, DbCh, LoCh, RtlPar, LtrPar,
    Caps, Scaps, Outl, Shad, Expnd, ExpndTw, S, Cs,
    // tab kinds and leaders, paragraph borders and shading
    Tqr, Tqc, Tqdec, TlDot, TlMdot, TlHyph, TlUl, TlTh, TlEq, BrdrT, BrdrB, BrdrL, BrdrR, Box, BrdrBtw,
    BrdrOther, BrdrStyle, BrdrW, BrdrCf, BrSp, Shading, CfPat, CbPat,
    // page setup
    PaperW, PaperH, MargL, MargR, MargT, MargB, Landscape, PgWSxn, PgHSxn, MargLSxn, MargRSxn,
    MargTSxn, MargBSxn, LndscpSxn,
    // paragraphs
    Pard, TrowD, CellX, TrLeft, TrRh, ClMgf, ClMrg, ClVmgf, ClVmrg, Ql, Qc, Qr, Qj, Li, Ri, Fi, Sb, Sa, Sl, SlMult, Tx, Intbl, Ls, Ilvl, KvLineRule,
    KvBulletIndent,
    // table rows and cells: borders, shading, padding, alignment, nesting
    Itap, TrGaph, TrPaddL, TrPaddT, TrPaddB, TrPaddR, TrPaddFL, TrPaddFT, TrPaddFB, TrPaddFR, TrQl, TrQc, TrQr,
    ClPadL, ClPadT, ClPadB, ClPadR, ClPadFL, ClPadFT, ClPadFB, ClPadFR, ClVertAlT, ClVertAlC, ClVertAlB,
    ClCbPat, ClCfPat, ClShdng, ClBrdrT, ClBrdrL, ClBrdrB, ClBrdrR, TrBrdrT, TrBrdrL, TrBrdrB, TrBrdrR,
    TrBrdrH, TrBrdrV, ClDiagonal,
    // legacy numbering
    PnLvlBlt, PnLvlBody, PnLvlCont, PnLvl, PnDec, PnUcLtr, PnLcLtr, PnUcRm, PnLcRm, PnStart,
    PnIndent,
    // list table
    ListId, LevelNfc, LevelNfcN, LevelStartAt,
    // special characters and breaks
    Par, Line, Tab, Cell, NestCell, Row, NestRow, Page, Sect, Column, PageBb, SbkNone, EmDash, EnDash, LQuote, RQuote,
    ChFtn, ChAtn, FtnAlt, LDblQuote, RDblQuote, Bullet, EmSpace, EnSpace, QmSpace, Zwj, Zwnj, LtrMark, RtlMark,
    // fields
    KvLink,
    // picture
    PngBlip, JpegBlip, PictKind, PicW, PicH, PicWGoal, PicHGoal, PicScaleX, PicScaleY, PictParam,
};

// Character properties; plain ints so that a state hashes and compares as bytes.
struct CharState {
    qint32 bold = 0;
    qint32 italic = 0;
    qint32 underline = 0; // QTextCharFormat::UnderlineStyle
    qint32 strike = 0;
    qint32 protect = 0;
    qint32 font = -1;
    qint32 halfPoints = 24;
    qint32 color = 0;      // colour table index, 0 = automatic
    qint32 back = 0;
    qint32 script = 0;     // ScriptPosition
    qint32 offset = 0;     // twips
    qint32 lang = 0;
    qint32 link = -1;      // index of the hyperlink field the text belongs to
    qint32 object = -1;    // index of the embedded object whose result the text is
    qint32 noteId = 0;     // the note this reference or note mark belongs to
    qint32 noteMark = 0;   // an automatically numbered note reference or mark
    // Properties of right-to-left and complex-script text (\ab, \ai, \af, \afs), -1 or 0
    // when not given; they apply to the right-to-left letters of the text.
    qint32 aBold = -1;
    qint32 aItalic = -1;
    qint32 aFont = -1;
    qint32 aHalfPoints = 0;
    qint32 afForRanges = 0; // \af follows \hich, \dbch or \loch: a font of a character range
    qint32 caps = 0;
    qint32 smallCaps = 0;
    qint32 outline = 0;
    qint32 shadow = 0;
    qint32 expand = 0;     // letter spacing, twips
    qint32 field = -1;     // index of the field (other than a link) whose result the text is

    bool operator==(const CharState &o) const { return std::memcmp(this, &o, sizeof(CharState)) == 0; }
    bool operator!=(const CharState &o) const { return !(*this == o); }
};

inline size_t qHash(const CharState &state, size_t seed = 0)
{
    return qHashBits(&state, sizeof(CharState), seed);
}

struct PnState {
    qint32 numbering = 0; // Numbering, 0 = none
    qint32 start = 1;
    qint32 style = int(NumberingStyle::Plain);
    qint32 level = 0;
    qint32 indent = 0; // \pnindent, the paragraph's bullet indent
    bool operator==(const PnState &o) const
    {
        return numbering == o.numbering && start == o.start && style == o.style && level == o.level;
    }
};

// One side of a paragraph's border as read: style is an index of borderStyleWords() (-1 none).
struct BorderState {
    qint32 style = -1;
    qint32 width = 0;
    qint32 colour = 0; // colour table index, 0 = automatic
    qint32 space = 0;
};

// Paragraph properties as read. (A new field must be compared in sameAs too: the reader reuses
// the last paragraph's format when the properties are the same.)
struct ParaState {
    qint32 align = 0; // ParaAlignment
    qint32 li = 0;
    qint32 ri = 0;
    qint32 fi = 0;
    qint32 sb = 0;
    qint32 sa = 0;
    qint32 sl = 0;
    qint32 slMult = 0;
    qint32 ruleOverride = -1;
    qint32 bulletIndent = 0;
    bool intbl = false;
    qint32 itap = -1;             // \itap: the table nesting depth, -1 when not given
    bool pageBreakBefore = false; // \pagebb
    bool rtl = false;             // \rtlpar
    qint32 ls = 0;
    qint32 ilvl = 0;
    PnState pn;
    QList<int> tabs;
    QList<int> tabKinds;   // per tab stop: QTextOption::TabType | TabLeader << 8
    qint32 nextTabKind = 0; // the kind and leader words given before the next \tx
    BorderState borders[5]; // BorderSide order
    qint32 borderSide = -1; // the side the border words describe: BorderSide, 5 = all four, -1 none
    qint32 shading = 0;     // hundredths of a percent
    qint32 patternColour = -1;
    qint32 fillColour = -1;
    qint32 style = -1;      // the paragraph style applied (\s), -1 none

    bool sameAs(const ParaState &o) const
    {
        const auto sameBorder = [](const BorderState &a, const BorderState &b) {
            return a.style == b.style && a.width == b.width && a.colour == b.colour && a.space == b.space;
        };
        return align == o.align && li == o.li && ri == o.ri && fi == o.fi && sb == o.sb && sa == o.sa && sl == o.sl
               && slMult == o.slMult && ruleOverride == o.ruleOverride && bulletIndent == o.bulletIndent
               && intbl == o.intbl && itap == o.itap && pageBreakBefore == o.pageBreakBefore && rtl == o.rtl
               && ls == o.ls && ilvl == o.ilvl && pn == o.pn && pn.indent == o.pn.indent && tabs == o.tabs
               && tabKinds == o.tabKinds && nextTabKind == o.nextTabKind
               && std::equal(borders, borders + 5, o.borders, sameBorder) && borderSide == o.borderSide
               && shading == o.shading && patternColour == o.patternColour && fillColour == o.fillColour
               && style == o.style;
    }
};

struct GroupState {
    CharState ch;
    ParaState para;
    Dest dest = Dest::Text;
    quint8 uc = 1;
    bool destRoot = false; // this group opened its destination
    bool star = false;     // "\*" seen at the group's start
    bool opensField = false; // this group is a \field
    bool opensObject = false; // this group is an \object
    bool nestedTableProps = false; // inside \nesttableprops: row definitions of a nested table
    int codePage = 1252;   // code page of the current font
    bool keep = false;     // a skipped group kept to be written back (rtfkept.h)
    const char *start = nullptr; // the group's "{"
};

// A style of the stylesheet: the formats it gives.
struct StyleDef {
    CharState ch;
    ParaState para;
};

struct FontEntry {
    QString name;
    int codePage = 0; // 0 = the document's
};

struct FieldEntry {
    QString instruction;
    QString address;
    bool hyperlink = false;
    int flags = 0; // \kvlink: 1 = shown without the link effect, 2 = no address
    // What the field shows when it has no result: the character of a SYMBOL field, the prompt
    // of a MACROBUTTON field.
    QString fallback;
    qint64 textMark = 0;
};

struct ListLevelDef {
    int nfc = 0;
    int start = 1;
    QByteArray text;
    QString characters; // the level text as characters (\u and \'hh decoded), for its bullet
    QString bullet;     // what a bulleted level shows, from its characters and font
};

struct ListDef {
    int id = 0;
    std::vector<ListLevelDef> levels;
};

// A row definition (\trowd ... \cellx): the right edge of each cell in twips and how it is
// merged with its neighbours.
enum CellMerge : quint8 {
    MergeFirst = 1,         // \clmgf: first of cells merged across
    MergeContinue = 2,      // \clmrg: covered by the cell on its left
    MergeDownFirst = 4,     // \clvmgf: first of cells merged down
    MergeDownContinue = 8,  // \clvmrg: covered by the cell above
};

// A border of a cell or row: its width in twips and its style (a QTextFrameFormat::BorderStyle;
// BorderStyle_None for none), with the colour table index of its colour (0 = automatic).
struct CellBorder {
    qint16 width = 0;
    qint8 style = -1; // -1: not given
    qint32 colour = 0;
};

enum CellSide : quint8 { SideTop, SideLeft, SideBottom, SideRight, SideInsideH, SideInsideV };

struct CellDef {
    int right = 0;
    quint8 merge = 0;
    quint8 vAlign = 0;     // 0 top, 1 centre, 2 bottom
    qint32 background = 0; // \clcbpat colour index, 0 = none
    qint32 pattern = 0;    // \clcfpat colour index of the shading's foreground
    qint32 shading = -1;   // \clshdng in hundredths of a percent, -1 = none
    qint16 padding[4] = {-1, -1, -1, -1}; // twips by CellSide, -1 = not given
    CellBorder borders[4];
};

struct RowDef {
    int left = 0;
    bool leftGiven = false;
    int height = 0;        // \trrh: twips, positive at least, negative exactly, 0 automatic
    int gap = -1;          // \trgaph: half the space between cells, twips
    quint8 align = 0;      // 0 left, 1 centre, 2 right
    qint16 padding[4] = {-1, -1, -1, -1};
    CellBorder borders[6];  // by CellSide
    std::vector<CellDef> cells;
    CellDef pending;       // properties seen before the cell's \cellx
    qint8 borderTarget = -1; // the border the \brdr words describe: 0..3 the pending cell's, 4..9 the row's
};

// A table being read: the QTextTable, where the next cell goes, and the definition of each row.
struct TableBuild {
    QTextTable *table = nullptr;
    int row = 0;
    int column = 0;
    int columns = 0; // the table's columns (the table counts them only after re-indexing its cells)
    int rowsCreated = 1; // the table's rows: the one being read is followed by empty ones
    int cursorColumn = 0; // the cell the row's text ended in, once the row has ended
    bool rowEnded = false;
    bool cellMovePending = false;
    std::vector<RowDef> rowDefs;   // the definition of each row, set when the row ends
    std::vector<int> rowCells;     // the number of cells each row was given
};

// A footnote, endnote or annotation met in a paragraph: its RTF is read when the paragraph ends,
// into paragraphs of its own after it.
struct PendingNote {
    const char *begin = nullptr; // the group's content, after its destination word
    const char *end = nullptr;
    int id = 0;
    int kind = 0;   // NoteKind
    int number = 0; // the number its automatic marks show
    CharState ch;   // the character format at the reference
};

struct PictureBuild {
    QByteArray header;
    QByteArray data;
    bool image = false;
    int picW = 0, picH = 0, goalW = 0, goalH = 0, scaleX = 100, scaleY = 100;
    int hexHigh = -1;
};

// The reader walks the bytes once with an explicit group stack (no recursion, so nesting depth
// only costs memory up to a cap) and builds the document through one QTextCursor, inserting
// each run of equally formatted text in one call. Paragraph properties are applied when the
// paragraph ends, since RTF lets them change anywhere before its \par.
class Reader {
public:
    Reader(QTextDocument &document, QTextCursor &cursor, bool endsDocument)
        : m_doc(document), m_cursor(cursor), m_endsDocument(endsDocument)
    {
    }

    void run(const QByteArray &bytes);

private:
    // Reads the bytes from m_p to m_end.
    void parse();
    // bytes, groups and control words (rtfreader_tokenizer.cpp, rtfreader_groups.cpp)
    void skipGroup();
    void openGroup();
    void closeGroup();
    void controlWord(Word word, std::string_view name, bool hasParam, int param);
    // True when the character at hand is one of the fallback characters after a \u, which are
    // dropped.
    bool consumeUnicodeSkip()
    {
        if (m_unicodeSkip > 0) {
            --m_unicodeSkip;
            return true;
        }
        return false;
    }

    // text (rtfreader_text.cpp)
    void addAscii(const char *s, int n);
    void addByte(unsigned char byte);
    void addChar(char16_t c) { addString(QString(QChar(c))); }
    void addString(const QString &s);
    void beginText(qsizetype length);
    void flushBytes();
    void flushRun();
    // Decodes the bytes gathered so far, then inserts the pending run of text.
    void flushText()
    {
        flushBytes();
        flushRun();
    }
    int currentCodePage() const;
    QTextCharFormat formatFor(const CharState &state);
    QTextCharFormat blockCharFormat();

    // paragraphs and lists (rtfreader_paragraphs.cpp)
    void endParagraph(bool insertBreak);
    void applyParagraph(const ParaState &para);
    // The block format of a paragraph with these properties (m_keptParagraph goes into it).
    // (A note's paragraphs add the note's own properties to it.)
    QTextBlockFormat paragraphFormat(const ParaState &para, bool pageBreak, bool listParagraph, bool ownIndents);
    void addNoteProperties(QTextBlockFormat &qt) const;

    // destinations: font and colour tables, fields, pictures, list tables
    // (rtfreader_destinations.cpp)
    void handleDestinationWord(Word word);
    void finishDestination(const GroupState &closing);
    void addToDestination(const QString &s);
    void insertPicture(const PictureBuild &picture);
    void keepObjectOfPictureFrame();

    // notes (rtfreader_notes.cpp)
    void addNoteMark(bool annotation);
    void beginNote(int kind);
    void insertPendingNotes();

    // formats, styles, bookmarks and page setup (rtfreader_formats.cpp)
    void formatWord(Word word, std::string_view name, bool hasParam, int param);
    void openFormatDestination(Word word);
    void finishFormatDestination(const GroupState &closing);
    void addFormatProperties(QTextCharFormat &qt, const CharState &state) const;
    void applyParagraphFormats(QTextBlockFormat &qt, const ParaState &para) const;
    void applyStyle(const StyleDef &style, bool paragraph);
    // At \pard: the character formats the paragraph's style gave end with it.
    void leaveParagraphStyle();
    void keepGroupBytes(const GroupState &closing);
    void attachToPreviousCharacter(int property, const QString &name);
    // Bookmark starts not yet placed at the run's first character, at the end of the paragraph.
    void placeParagraphEndBookmarks();
    void storePageSetup();
    Colour colourAt(int index) const;

    // tables (rtfreader_tables.cpp, rtfreader_tablelayout.cpp)
    // The table depth of the paragraph being read (\intbl, \itap).
    int paragraphTableDepth() const;
    void ensureTableState();
    void enterTableDepth(int depth);
    // Puts the cursor in the build's current cell, whose marker is expected at \a marker.
    void moveToCell(const TableBuild &build, int marker);
    void startTable();
    void endCell(bool nested);
    void endRow(bool nested);
    void leaveTable();
    void tableWord(Word word, std::string_view name, bool hasParam, int param);
    CellBorder *borderTarget(RowDef &def);
    // Builds the table's grid from its rows' cell boundaries and gives it its widths, spans,
    // borders, shading, padding and alignment.
    void applyTableLayout(TableBuild &build);

    GroupState &top() { return m_stack.back(); }
    const GroupState &top() const { return m_stack.back(); }

    QTextDocument &m_doc;
    QTextCursor &m_cursor;
    const bool m_endsDocument;
    const char *m_p = nullptr;
    const char *m_end = nullptr;

    std::vector<GroupState> m_stack;
    bool m_started = false;
    bool m_finished = false;

    int m_docCodePage = 1252;
    int m_defaultFont = 0;
    QHash<int, FontEntry> m_fonts;
    int m_fontEntry = -1;
    QString m_fontName;
    int m_fontCharsetCodePage = 0;
    std::vector<Colour> m_colours;
    int m_red = -1, m_green = -1, m_blue = -1;

    std::vector<FieldEntry> m_fields;
    std::vector<QByteArray> m_objects; // embedded objects' groups up to their results (rtfkept.h)
    bool m_objectShown = false;        // the \object being read has a result
    std::vector<int> m_fieldOfGroup; // field index of each open \field group (stack)

    PnState m_pnBuild;
    QString m_pnBefore, m_pnAfter;
    QString m_pnBullet; // the bullet of the last bulleted paragraph numbering read (\pntxtb)

    std::vector<ListDef> m_lists;
    ListLevelDef m_levelBuild;
    QHash<int, int> m_overrideToList; // \ls -> \listid
    int m_overrideLs = 0, m_overrideListId = 0;

    PictureBuild m_picture;

    CodePageDecoder m_decoder;
    QByteArray m_bytes;
    int m_leadPending = 0;
    int m_unicodeSkip = 0;

    QString m_run;
    qint64 m_textCount = 0; // characters added to the document so far
    int m_footnoteNumber = 0;
    CharState m_runState;
    bool m_runStateSet = false;
    QHash<CharState, QTextCharFormat> m_formatCache;
    QString m_destText;

    // notes
    std::vector<PendingNote> m_pendingNotes;
    int m_noteCount = 0;       // notes met so far (their ids)
    int m_annotationNumber = 0;
    int m_pendingRef = 0;      // the note id of a reference mark just read, until other text
    int m_pendingRefNumber = 0;
    bool m_inNote = false;     // reading a note's paragraphs
    int m_noteId = 0;
    int m_noteKind = 0;
    int m_noteNumber = 0;
    size_t m_noteBase = 0;     // the group depth a note's reading starts at
    QString m_atnId, m_atnAuthor;
    QHash<int, QString> m_noteAuthors;

    QString m_shapeProperty; // the name of the shape property being read
    bool m_shapePicture = false; // the shape being read is a picture frame
    int m_shapePictureAt = -1;   // where the picture of that frame goes in

    // stylesheet
    QHash<int, StyleDef> m_paragraphStyles;
    QHash<int, StyleDef> m_characterStyles;
    int m_styleNumber = 0;
    bool m_styleIsCharacter = false;
    // bookmarks: starts waiting for the character they come before, with their groups' bytes
    QStringList m_pendingBookmarks;
    QList<QByteArray> m_pendingBookmarkBytes; // each start's group, for the paragraph's kept groups
    bool m_bookmarkIsEnd = false;       // the bookmark group being read is an end
    QStringList m_runBookmarks; // starts placed at the first character of the pending run
    // page setup as read from the document (PageSetupField order) and from its first section
    int m_pageSetup[PageSetupFields] = {};
    int m_sectionPageSetup[PageSetupFields] = {};
    bool m_pastFirstSection = false;

    // groups kept to be written back (rtfkept.h)
    QByteArray m_keptDocument;
    QByteArray m_keptParagraph;
    bool m_bodyStarted = false; // a \pard, text or paragraph end seen: the header is over
    void skipAndKeep(GroupState &state);

    // paragraphs and lists
    bool m_paragraphHasContent = false;
    int m_parCount = 0;
    bool m_lastWasPar = false;
    ParaState m_documentPara; // the paragraph properties in effect when the document's group closed
    // The last paragraph formats built, and what each was built from (lists alternate between
    // a few levels, so a few are kept).
    struct BuiltParagraph {
        ParaState para;
        bool pageBreak = false;
        bool inNote = false;
        QTextBlockFormat format;
    };
    std::vector<BuiltParagraph> m_builtParagraphs;
    size_t m_nextBuiltParagraph = 0; // the entry the next new format replaces
    bool m_pageBreakPending = false; // the paragraph being read starts a new page
    void pageBreak(bool page);
    // Guarded: Qt deletes a list when its last paragraph leaves it, which happens when a
    // paragraph's properties are applied again.
    QHash<int, QPointer<QTextList>> m_lsLists;
    QPointer<QTextList> m_lastPnList;
    PnState m_lastPn;

    // tables: the open tables, outermost first
    std::vector<TableBuild> m_tables;
    RowDef m_rowDef;     // the row definition in effect for the outermost table
    RowDef m_nestedDef;  // the one last read in \nesttableprops, for nested tables
};

} // namespace kvrtb::rtf::detail
