#include "surface/rtf/rtfreader.h"

#include "surface/formatmapping.h"
#include "surface/rtf/codepage.h"
#include "surface/rtf/rtfpicture.h"

#include <QCryptographicHash>
#include <QHash>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextDocumentFragment>
#include <QTextList>
#include <QTextTable>
#include <QUrl>

#include <algorithm>
#include <cstring>
#include <string_view>
#include <unordered_map>
#include <vector>

// The reader walks the bytes once with an explicit group stack (no recursion, so nesting depth
// only costs memory up to a cap) and builds the document through one QTextCursor, inserting
// each run of equally formatted text in one call. Paragraph properties are applied when the
// paragraph ends, since RTF lets them change anywhere before its \par.

namespace kvrtb::rtf {

namespace {

// Groups deeper than this are skipped whole: real documents stay below it (mail programs that
// wrap HTML in RTF reach a few thousand), and a hostile file cannot make the stack grow without
// bound.
constexpr int kMaxDepth = 10000;
constexpr int kMaxUnicodeSkip = 16;

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
    Ignore,       // text ignored, control words still read (\field, \object shells)
};

enum class Word : quint16 {
    Unknown,
    // destinations
    Rtf, FontTbl, ColorTbl, Field, FldInst, FldRslt, Pict, ShpPict, NonShpPict, Object, Result,
    PnText, ListText, PnDest, PnTxtA, PnTxtB, ListTable, ListDest, ListLevel, LevelText,
    ListOverrideTable, ListOverride, Upr, Ud, NestTableProps, SkipDest,
    // document
    Ansi, Mac, Pc, Pca, AnsiCpg, Deff, Uc, U, Bin,
    // font table
    F, FCharset, Cpg,
    // colours
    Red, Green, Blue,
    // characters
    Plain, B, I, Ul, UlD, UlDash, UlDashD, UlDashDD, UlWave, UlNone, Strike, StrikeD, Cf, Cb,
    Highlight, ChCbPat, Fs, Super, Sub, NoSuperSub, Up, Dn, Protect, Lang, V, KvOffset,
    // paragraphs
    Pard, TrowD, CellX, TrLeft, ClMgf, ClMrg, ClVmgf, ClVmrg, Ql, Qc, Qr, Qj, Li, Ri, Fi, Sb, Sa, Sl, SlMult, Tx, Intbl, Ls, Ilvl, KvLineRule,
    KvBulletIndent,
    // legacy numbering
    PnLvlBlt, PnLvlBody, PnLvlCont, PnLvl, PnDec, PnUcLtr, PnLcLtr, PnUcRm, PnLcRm, PnStart,
    PnIndent,
    // list table
    ListId, LevelNfc, LevelNfcN, LevelStartAt,
    // special characters and breaks
    Par, Line, Tab, Cell, NestCell, Row, NestRow, Page, Sect, EmDash, EnDash, LQuote, RQuote,
    ChFtn, LDblQuote, RDblQuote, Bullet, EmSpace, EnSpace, QmSpace, Zwj, Zwnj, LtrMark, RtlMark,
    // fields
    KvLink,
    // picture
    PngBlip, JpegBlip, PictKind, PicW, PicH, PicWGoal, PicHGoal, PicScaleX, PicScaleY, PictParam,
};

const std::unordered_map<std::string_view, Word> &wordTable()
{
    static const std::unordered_map<std::string_view, Word> table = {
        {"rtf", Word::Rtf}, {"fonttbl", Word::FontTbl}, {"colortbl", Word::ColorTbl},
        {"field", Word::Field}, {"fldinst", Word::FldInst}, {"fldrslt", Word::FldRslt},
        {"pict", Word::Pict}, {"shppict", Word::ShpPict}, {"nonshppict", Word::NonShpPict},
        {"object", Word::Object}, {"result", Word::Result}, {"pntext", Word::PnText},
        {"listtext", Word::ListText}, {"pn", Word::PnDest}, {"pntxta", Word::PnTxtA},
        {"pntxtb", Word::PnTxtB}, {"listtable", Word::ListTable}, {"list", Word::ListDest},
        {"listlevel", Word::ListLevel}, {"leveltext", Word::LevelText},
        {"listoverridetable", Word::ListOverrideTable}, {"listoverride", Word::ListOverride},
        {"upr", Word::Upr}, {"ud", Word::Ud}, {"nesttableprops", Word::NestTableProps},
        // Destinations whose content is not document text.
        {"stylesheet", Word::SkipDest}, {"info", Word::SkipDest}, {"header", Word::SkipDest},
        {"headerl", Word::SkipDest}, {"headerr", Word::SkipDest}, {"headerf", Word::SkipDest},
        {"footer", Word::SkipDest}, {"footerl", Word::SkipDest}, {"footerr", Word::SkipDest},
        {"footerf", Word::SkipDest}, {"footnote", Word::SkipDest}, {"annotation", Word::SkipDest},
        {"revtbl", Word::SkipDest}, {"filetbl", Word::SkipDest}, {"objdata", Word::SkipDest},
        {"xe", Word::SkipDest}, {"tc", Word::SkipDest}, {"txe", Word::SkipDest},
        {"rxe", Word::SkipDest}, {"private", Word::SkipDest}, {"template", Word::SkipDest},
        {"pgdsctbl", Word::SkipDest}, {"bkmkstart", Word::SkipDest}, {"bkmkend", Word::SkipDest},
        {"author", Word::SkipDest}, {"operator", Word::SkipDest}, {"title", Word::SkipDest},
        {"subject", Word::SkipDest}, {"comment", Word::SkipDest}, {"doccomm", Word::SkipDest},
        {"keywords", Word::SkipDest}, {"buptim", Word::SkipDest}, {"creatim", Word::SkipDest},
        {"revtim", Word::SkipDest}, {"printim", Word::SkipDest}, {"objclass", Word::SkipDest},
        {"objname", Word::SkipDest}, {"pnseclvl", Word::SkipDest}, {"fldtype", Word::SkipDest},
        {"falt", Word::SkipDest}, {"panose", Word::SkipDest}, {"shpinst", Word::SkipDest},
        {"sp", Word::SkipDest}, {"sn", Word::SkipDest}, {"sv", Word::SkipDest},
        {"atnid", Word::SkipDest}, {"atnauthor", Word::SkipDest}, {"atndate", Word::SkipDest},
        {"atnref", Word::SkipDest}, {"atntime", Word::SkipDest}, {"atrfstart", Word::SkipDest},
        {"atrfend", Word::SkipDest}, {"ftnsep", Word::SkipDest}, {"ftnsepc", Word::SkipDest},
        {"ftncn", Word::SkipDest}, {"aftnsep", Word::SkipDest}, {"aftnsepc", Word::SkipDest},
        {"aftncn", Word::SkipDest}, {"listpicture", Word::SkipDest}, {"themedata", Word::SkipDest},
        {"colorschememapping", Word::SkipDest}, {"latentstyles", Word::SkipDest},
        {"datastore", Word::SkipDest}, {"xmlnstbl", Word::SkipDest}, {"rsidtbl", Word::SkipDest},
        {"generator", Word::SkipDest}, {"mmathPr", Word::SkipDest}, {"blipuid", Word::SkipDest},
        {"picprop", Word::SkipDest}, {"do", Word::SkipDest}, {"macpict", Word::PictKind},
        // document
        {"ansi", Word::Ansi}, {"mac", Word::Mac}, {"pc", Word::Pc}, {"pca", Word::Pca},
        {"ansicpg", Word::AnsiCpg}, {"deff", Word::Deff}, {"uc", Word::Uc}, {"u", Word::U},
        {"bin", Word::Bin}, {"f", Word::F}, {"fcharset", Word::FCharset}, {"cpg", Word::Cpg},
        {"red", Word::Red}, {"green", Word::Green}, {"blue", Word::Blue},
        // characters
        {"plain", Word::Plain}, {"b", Word::B}, {"i", Word::I}, {"ul", Word::Ul},
        {"uld", Word::UlD}, {"uldash", Word::UlDash}, {"uldashd", Word::UlDashD},
        {"uldashdd", Word::UlDashDD}, {"ulwave", Word::UlWave}, {"ulhwave", Word::UlWave},
        {"ululdbwave", Word::UlWave}, {"uldb", Word::Ul}, {"ulw", Word::Ul}, {"ulth", Word::Ul},
        {"ulthd", Word::UlD}, {"ulthdash", Word::UlDash}, {"ulldash", Word::UlDash},
        {"ulthldash", Word::UlDash}, {"ulthdashd", Word::UlDashD}, {"ulthdashdd", Word::UlDashDD},
        {"ulnone", Word::UlNone}, {"strike", Word::Strike}, {"striked", Word::StrikeD},
        {"cf", Word::Cf}, {"cb", Word::Cb}, {"highlight", Word::Highlight}, {"chcbpat", Word::ChCbPat},
        {"fs", Word::Fs}, {"super", Word::Super}, {"sub", Word::Sub}, {"nosupersub", Word::NoSuperSub},
        {"up", Word::Up}, {"dn", Word::Dn}, {"protect", Word::Protect}, {"lang", Word::Lang},
        {"v", Word::V}, {"kvoffset", Word::KvOffset},
        // paragraphs
        {"pard", Word::Pard}, {"trowd", Word::TrowD}, {"cellx", Word::CellX}, {"trleft", Word::TrLeft},
        {"clmgf", Word::ClMgf}, {"clmrg", Word::ClMrg}, {"clvmgf", Word::ClVmgf}, {"clvmrg", Word::ClVmrg}, {"ql", Word::Ql}, {"qc", Word::Qc}, {"qr", Word::Qr}, {"qj", Word::Qj},
        {"li", Word::Li}, {"ri", Word::Ri}, {"fi", Word::Fi}, {"sb", Word::Sb}, {"sa", Word::Sa},
        {"sl", Word::Sl}, {"slmult", Word::SlMult}, {"tx", Word::Tx}, {"intbl", Word::Intbl},
        {"ls", Word::Ls}, {"ilvl", Word::Ilvl}, {"kvlinerule", Word::KvLineRule},
        {"kvbulletindent", Word::KvBulletIndent},
        {"pnlvlblt", Word::PnLvlBlt}, {"pnlvlbody", Word::PnLvlBody}, {"pnlvlcont", Word::PnLvlCont},
        {"pnlvl", Word::PnLvl}, {"pndec", Word::PnDec}, {"pnucltr", Word::PnUcLtr},
        {"pnlcltr", Word::PnLcLtr}, {"pnucrm", Word::PnUcRm}, {"pnlcrm", Word::PnLcRm},
        {"pnstart", Word::PnStart}, {"pnindent", Word::PnIndent},
        {"listid", Word::ListId}, {"levelnfc", Word::LevelNfc}, {"levelnfcn", Word::LevelNfcN},
        {"levelstartat", Word::LevelStartAt},
        {"par", Word::Par}, {"line", Word::Line}, {"tab", Word::Tab}, {"cell", Word::Cell},
        {"nestcell", Word::NestCell}, {"row", Word::Row}, {"nestrow", Word::NestRow},
        {"page", Word::Page}, {"sect", Word::Sect}, {"column", Word::Page},
        {"chftn", Word::ChFtn}, {"emdash", Word::EmDash}, {"endash", Word::EnDash}, {"lquote", Word::LQuote},
        {"rquote", Word::RQuote}, {"ldblquote", Word::LDblQuote}, {"rdblquote", Word::RDblQuote},
        {"bullet", Word::Bullet}, {"emspace", Word::EmSpace}, {"enspace", Word::EnSpace},
        {"qmspace", Word::QmSpace}, {"zwj", Word::Zwj}, {"zwnj", Word::Zwnj},
        {"ltrmark", Word::LtrMark}, {"rtlmark", Word::RtlMark}, {"kvlink", Word::KvLink},
        {"pngblip", Word::PngBlip}, {"jpegblip", Word::JpegBlip}, {"emfblip", Word::PictKind},
        {"wmetafile", Word::PictKind}, {"dibitmap", Word::PictKind}, {"wbitmap", Word::PictKind},
        {"pmmetafile", Word::PictKind}, {"picw", Word::PicW}, {"pich", Word::PicH},
        {"picwgoal", Word::PicWGoal}, {"pichgoal", Word::PicHGoal}, {"picscalex", Word::PicScaleX},
        {"picscaley", Word::PicScaleY}, {"wbmbitspixel", Word::PictParam},
        {"wbmplanes", Word::PictParam}, {"wbmwidthbytes", Word::PictParam}, {"picbmp", Word::PictParam},
        {"picbpp", Word::PictParam},
    };
    return table;
}

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

    bool operator==(const CharState &o) const { return std::memcmp(this, &o, sizeof(CharState)) == 0; }
    bool operator!=(const CharState &o) const { return !(*this == o); }
};

size_t qHash(const CharState &state, size_t seed = 0)
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
    qint32 ls = 0;
    qint32 ilvl = 0;
    PnState pn;
    QList<int> tabs;
};

struct GroupState {
    CharState ch;
    ParaState para;
    Dest dest = Dest::Text;
    quint8 uc = 1;
    bool destRoot = false; // this group opened its destination
    bool star = false;     // "\*" seen at the group's start
    bool opensField = false; // this group is a \field
    bool nestedTableProps = false; // inside \nesttableprops: row definitions of a nested table
    int codePage = 1252;   // code page of the current font
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
    int symbol = 0; // SYMBOL field: the character it shows when it has no result
    qint64 textMark = 0;
};

struct ListLevelDef {
    int nfc = 0;
    int start = 1;
    QByteArray text;
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

struct CellDef {
    int right = 0;
    quint8 merge = 0;
};

struct RowDef {
    int left = 0;
    std::vector<CellDef> cells;
    quint8 pendingMerge = 0; // merge words seen before the cell's \cellx
};

struct PictureBuild {
    QByteArray header;
    QByteArray data;
    bool image = false;
    int picW = 0, picH = 0, goalW = 0, goalH = 0, scaleX = 100, scaleY = 100;
    int hexHigh = -1;
};

Numbering numberingOfNfc(int nfc)
{
    switch (nfc) {
    case 0: return Numbering::Arabic;
    case 1: return Numbering::UpperRoman;
    case 2: return Numbering::LowerRoman;
    case 3: return Numbering::UpperLetter;
    case 4: return Numbering::LowerLetter;
    case 23:
    case 255: return Numbering::Bullet;
    default: return Numbering::Arabic;
    }
}

// What follows or surrounds the number, from a level text such as "\'02\'00." (length byte,
// placeholder bytes below 10, literal text).
NumberingStyle styleOfLevelText(const QByteArray &text)
{
    bool before = false;
    bool seenNumber = false;
    QByteArray after;
    for (int i = 1; i < text.size(); ++i) {
        const unsigned char c = static_cast<unsigned char>(text[i]);
        if (c < 10) {
            seenNumber = true;
            after.clear();
        } else if (!seenNumber) {
            before = before || c == '(';
        } else {
            after += char(c);
        }
    }
    if (after.contains(')'))
        return before ? NumberingStyle::Parens : NumberingStyle::RightParen;
    if (after.contains('.'))
        return NumberingStyle::Period;
    return NumberingStyle::Plain;
}

// The address of a HYPERLINK field instruction ("HYPERLINK "url" \o "tip"", "HYPERLINK \l
// "place""), or an empty optional when the field is of another kind.
std::optional<QString> hyperlinkAddress(const QString &instruction)
{
    const QString text = instruction.trimmed();
    if (!text.startsWith(QLatin1String("HYPERLINK"), Qt::CaseInsensitive))
        return std::nullopt;
    QString address;
    QString fragment;
    int i = 9;
    const int n = int(text.size());
    bool local = false;
    while (i < n) {
        const QChar c = text[i];
        if (c.isSpace()) {
            ++i;
            continue;
        }
        if (c == QLatin1Char('\\')) {
            // A switch: \l takes the next argument as the place in the document; others
            // (\o tip, \t target, \m, \n) are skipped with their argument.
            const QChar sw = i + 1 < n ? text[i + 1] : QChar();
            i += 2;
            local = sw == QLatin1Char('l');
            const bool takesArgument = sw == QLatin1Char('l') || sw == QLatin1Char('o') || sw == QLatin1Char('t');
            if (!takesArgument)
                continue;
            while (i < n && text[i].isSpace())
                ++i;
        }
        QString argument;
        if (i < n && text[i] == QLatin1Char('"')) {
            ++i;
            while (i < n && text[i] != QLatin1Char('"')) {
                if (text[i] == QLatin1Char('\\') && i + 1 < n
                    && (text[i + 1] == QLatin1Char('\\') || text[i + 1] == QLatin1Char('"')))
                    ++i;
                argument += text[i++];
            }
            ++i;
        } else {
            while (i < n && !text[i].isSpace())
                argument += text[i++];
        }
        if (local) {
            fragment = argument;
            local = false;
        } else if (address.isEmpty() && !argument.startsWith(QLatin1Char('\\'))) {
            address = argument;
        }
    }
    if (!fragment.isEmpty())
        address += QLatin1Char('#') + fragment;
    return address;
}

class Reader {
public:
    Reader(QTextDocument &document, QTextCursor &cursor, bool endsDocument)
        : m_doc(document), m_cursor(cursor), m_endsDocument(endsDocument)
    {
    }

    void run(const QByteArray &bytes);

private:
    // input
    void controlWord(Word word, std::string_view name, bool hasParam, int param);
    void handleDestinationWord(Word word);
    void skipGroup();
    void openGroup();
    void closeGroup();
    void finishDestination(const GroupState &closing);

    // text
    void addAscii(const char *s, int n);
    void addByte(unsigned char byte);
    void addChar(char16_t c);
    void addString(const QString &s);
    void flushBytes();
    void flushRun();
    int currentCodePage() const;
    void addToDestination(const QString &s);
    bool consumeUnicodeSkip();

    // document building
    QTextCharFormat formatFor(const CharState &state);
    QTextCharFormat blockCharFormat();
    void endParagraph(bool insertBreak);
    void applyParagraph(const ParaState &para);
    void ensureTableState();
    void endCell();
    void endRow();
    void leaveTable();
    void applyTableLayout(QTextTable *table);
    void insertPicture(const PictureBuild &picture);

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
    std::vector<int> m_fieldOfGroup; // field index of each open \field group (stack)

    PnState m_pnBuild;
    QString m_pnBefore, m_pnAfter;

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

    // paragraphs and lists
    bool m_paragraphHasContent = false;
    int m_parCount = 0;
    bool m_lastWasPar = false;
    QHash<int, QTextList *> m_lsLists;
    QTextList *m_lastPnList = nullptr;
    PnState m_lastPn;

    // tables
    QTextTable *m_table = nullptr;
    int m_tableRow = 0;
    int m_tableColumn = 0;
    bool m_rowEnded = false;
    bool m_cellMovePending = false;
    int m_rowCellCount = 0;
    RowDef m_rowDef;                  // the row definition in effect
    std::vector<RowDef> m_tableRowDefs; // the definition of each row of the table being read
};

void Reader::run(const QByteArray &bytes)
{
    m_p = bytes.constData();
    m_end = m_p + bytes.size();
    m_stack.reserve(64);
    m_stack.emplace_back();
    m_stack.back().dest = Dest::Skip; // text before the outer group is not part of the document

    while (m_p < m_end && !m_finished) {
        const char c = *m_p;
        if (top().dest == Dest::Skip && m_started) {
            skipGroup();
            continue;
        }
        switch (c) {
        case '{':
            ++m_p;
            openGroup();
            break;
        case '}':
            ++m_p;
            closeGroup();
            break;
        case '\\': {
            ++m_p;
            if (m_p >= m_end)
                break;
            const char d = *m_p;
            if ((d >= 'a' && d <= 'z') || (d >= 'A' && d <= 'Z')) {
                const char *nameStart = m_p;
                while (m_p < m_end && m_p - nameStart < 32
                       && ((*m_p >= 'a' && *m_p <= 'z') || (*m_p >= 'A' && *m_p <= 'Z')))
                    ++m_p;
                const std::string_view name(nameStart, size_t(m_p - nameStart));
                bool hasParam = false;
                bool negative = false;
                long long value = 0;
                if (m_p < m_end && *m_p == '-' && m_p + 1 < m_end && m_p[1] >= '0' && m_p[1] <= '9') {
                    negative = true;
                    ++m_p;
                }
                int digits = 0;
                while (m_p < m_end && *m_p >= '0' && *m_p <= '9') {
                    if (digits < 10)
                        value = value * 10 + (*m_p - '0');
                    ++digits;
                    hasParam = true;
                    ++m_p;
                }
                if (m_p < m_end && *m_p == ' ')
                    ++m_p;
                value = std::clamp(value, 0LL, 2147483647LL);
                const int param = negative ? -int(value) : int(value);
                const auto found = wordTable().find(name);
                const Word word = found == wordTable().end() ? Word::Unknown : found->second;
                if (!m_started) {
                    if (word == Word::Rtf && m_stack.size() == 2) {
                        m_started = true;
                        top().dest = Dest::Text;
                    }
                    break;
                }
                controlWord(word, name, hasParam, param);
            } else {
                ++m_p;
                if (!m_started)
                    break;
                switch (d) {
                case '\'': {
                    int value = 0;
                    int count = 0;
                    while (count < 2 && m_p < m_end && std::isxdigit(static_cast<unsigned char>(*m_p))) {
                        const char h = *m_p;
                        value = value * 16 + (h <= '9' ? h - '0' : (h | 0x20) - 'a' + 10);
                        ++m_p;
                        ++count;
                    }
                    if (count > 0)
                        addByte(static_cast<unsigned char>(value));
                    break;
                }
                case '\\':
                case '{':
                case '}': {
                    const char s = d;
                    addAscii(&s, 1);
                    break;
                }
                case '~': if (!consumeUnicodeSkip()) addChar(0x00A0); break;
                case '-': if (!consumeUnicodeSkip()) addChar(0x00AD); break;
                case '_': if (!consumeUnicodeSkip()) addChar(0x2011); break;
                case '*': top().star = true; break;
                case '\r':
                case '\n': controlWord(Word::Par, "par", false, 0); break;
                case '\t': controlWord(Word::Tab, "tab", false, 0); break;
                default: consumeUnicodeSkip(); break;
                }
            }
            break;
        }
        case '\r':
        case '\n':
            ++m_p;
            break;
        default: {
            const char *start = m_p;
            while (m_p < m_end && *m_p != '{' && *m_p != '}' && *m_p != '\\' && *m_p != '\r' && *m_p != '\n'
                   && static_cast<unsigned char>(*m_p) < 0x80)
                ++m_p;
            if (m_p == start) {
                if (static_cast<unsigned char>(*m_p) >= 0x80) {
                    if (m_started)
                        addByte(static_cast<unsigned char>(*m_p));
                    ++m_p;
                }
            } else if (m_started) {
                addAscii(start, int(m_p - start));
            }
            break;
        }
        }
    }
    // A file that ends inside groups is read as if they were closed.
    flushBytes();
    flushRun();
    while (m_stack.size() > 1 && m_started) {
        const GroupState closing = m_stack.back();
        m_stack.pop_back();
        finishDestination(closing);
    }
    if (m_table)
        leaveTable();
    // The last paragraph keeps its properties; a final \par with nothing after it ends the
    // document's last paragraph rather than starting an empty one.
    if (m_endsDocument && !m_paragraphHasContent && m_lastWasPar && m_parCount > 0) {
        m_cursor.deletePreviousChar();
    } else {
        applyParagraph(top().para);
    }
}

void Reader::skipGroup()
{
    // Skips the rest of the current group, nested groups included, without building state.
    int depth = 1;
    while (m_p < m_end) {
        const char c = *m_p++;
        if (c == '{') {
            ++depth;
        } else if (c == '}') {
            if (--depth == 0) {
                if (m_stack.size() > 1) {
                    const GroupState closing = m_stack.back();
                    m_stack.pop_back();
                    finishDestination(closing);
                }
                return;
            }
        } else if (c == '\\' && m_p < m_end) {
            if (*m_p == 'b' && m_end - m_p >= 3 && m_p[1] == 'i' && m_p[2] == 'n'
                && (m_end - m_p == 3 || !std::isalpha(static_cast<unsigned char>(m_p[3])))) {
                m_p += 3;
                long long length = 0;
                while (m_p < m_end && *m_p >= '0' && *m_p <= '9') {
                    if (length < (1LL << 40))
                        length = length * 10 + (*m_p - '0');
                    ++m_p;
                }
                if (m_p < m_end && *m_p == ' ')
                    ++m_p;
                m_p += std::min<long long>(length, m_end - m_p);
            } else {
                ++m_p;
            }
        }
    }
}

void Reader::openGroup()
{
    flushBytes();
    m_unicodeSkip = 0;
    if (int(m_stack.size()) >= kMaxDepth) {
        m_stack.push_back(top());
        m_stack.back().dest = Dest::Skip;
        m_stack.back().destRoot = false;
        return;
    }
    GroupState next = top();
    next.destRoot = false;
    next.star = false;
    next.opensField = false;
    if (next.dest == Dest::Upr)
        next.dest = Dest::Ignore;
    m_stack.push_back(std::move(next));
}

void Reader::closeGroup()
{
    flushBytes();
    m_unicodeSkip = 0;
    if (m_stack.size() <= 1)
        return;
    const GroupState closing = m_stack.back();
    m_stack.pop_back();
    finishDestination(closing);
    if (m_started && m_stack.size() == 1)
        m_finished = true;
}

void Reader::finishDestination(const GroupState &closing)
{
    if (closing.opensField && !m_fieldOfGroup.empty()) {
        const FieldEntry field = m_fields[size_t(m_fieldOfGroup.back())];
        m_fieldOfGroup.pop_back();
        if (field.symbol > 0 && field.symbol < 0xFFFF && field.textMark == m_textCount && top().dest == Dest::Text)
            addChar(char16_t(field.symbol));
    }
    if (!closing.destRoot)
        return;
    const Dest parentDest = top().dest;
    switch (closing.dest) {
    case Dest::FontTable:
        if (m_fontEntry >= 0) {
            // An entry whose name had no closing ";".
            FontEntry &font = m_fonts[m_fontEntry];
            if (font.name.isEmpty())
                font.name = m_fontName.trimmed();
            m_fontEntry = -1;
        }
        break;
    case Dest::ColorTable:
        break;
    case Dest::FieldInst:
        if (!m_fieldOfGroup.empty()) {
            FieldEntry &field = m_fields[size_t(m_fieldOfGroup.back())];
            field.instruction += m_destText;
            if (const auto address = hyperlinkAddress(field.instruction)) {
                field.hyperlink = true;
                field.address = *address;
            }
            if (field.flags & 2)
                field.address.clear();
            const QString instruction = field.instruction.trimmed();
            if (instruction.startsWith(QLatin1String("SYMBOL"), Qt::CaseInsensitive))
                field.symbol = instruction.mid(6).trimmed().section(QLatin1Char(' '), 0, 0).toInt();
        }
        m_destText.clear();
        break;
    case Dest::Pict:
        if (parentDest == Dest::Text || parentDest == Dest::Ignore)
            insertPicture(m_picture);
        m_picture = PictureBuild();
        break;
    case Dest::Pn:
        top().para.pn = m_pnBuild;
        top().para.bulletIndent = m_pnBuild.indent;
        if (m_pnBuild.numbering != int(Numbering::Bullet) && m_pnBuild.style != int(NumberingStyle::NoNumber)) {
            const bool close = m_pnAfter.contains(QLatin1Char(')'));
            if (close && m_pnBefore.contains(QLatin1Char('(')))
                top().para.pn.style = int(NumberingStyle::Parens);
            else if (close)
                top().para.pn.style = int(NumberingStyle::RightParen);
            else if (m_pnAfter.contains(QLatin1Char('.')))
                top().para.pn.style = int(NumberingStyle::Period);
            else
                top().para.pn.style = int(NumberingStyle::Plain);
        } else if (m_pnBuild.numbering == int(Numbering::Bullet) && m_pnBuild.style != int(NumberingStyle::NoNumber)) {
            const bool close = m_pnAfter.contains(QLatin1Char(')'));
            if (close)
                top().para.pn.style = int(m_pnBefore.contains(QLatin1Char('(')) ? NumberingStyle::Parens : NumberingStyle::RightParen);
            else if (m_pnAfter.contains(QLatin1Char(' ')))
                top().para.pn.style = int(NumberingStyle::Plain);
            else
                top().para.pn.style = int(NumberingStyle::Period);
        }
        break;
    case Dest::PnTextBefore:
        m_pnBefore += m_destText;
        m_destText.clear();
        break;
    case Dest::PnTextAfter:
        m_pnAfter += m_destText;
        m_destText.clear();
        break;
    case Dest::ListLevel:
        if (!m_lists.empty())
            m_lists.back().levels.push_back(m_levelBuild);
        m_levelBuild = ListLevelDef();
        break;
    case Dest::ListOverride:
        if (m_overrideLs > 0)
            m_overrideToList.insert(m_overrideLs, m_overrideListId);
        m_overrideLs = 0;
        m_overrideListId = 0;
        break;
    default:
        break;
    }
}

bool Reader::consumeUnicodeSkip()
{
    if (m_unicodeSkip > 0) {
        --m_unicodeSkip;
        return true;
    }
    return false;
}

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
    if (!m_runStateSet || m_runState != top().ch) {
        flushRun();
        m_runState = top().ch;
        m_runStateSet = true;
    }
    ensureTableState();
    m_textCount += n;
    const int base = int(m_run.size());
    m_run.resize(base + n);
    QChar *dest16 = m_run.data() + base;
    for (int i = 0; i < n; ++i)
        dest16[i] = QLatin1Char(s[i]);
    m_paragraphHasContent = true;
    m_lastWasPar = false;
}

void Reader::addChar(char16_t c)
{
    addString(QString(QChar(c)));
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
    if (!m_runStateSet || m_runState != top().ch) {
        flushRun();
        m_runState = top().ch;
        m_runStateSet = true;
    }
    ensureTableState();
    m_textCount += s.size();
    m_run += s;
    m_paragraphHasContent = true;
    m_lastWasPar = false;
}

void Reader::addToDestination(const QString &s)
{
    switch (top().dest) {
    case Dest::FontTable: {
        for (const QChar c : s) {
            if (c == QLatin1Char(';')) {
                if (m_fontEntry >= 0) {
                    m_fonts[m_fontEntry].name = m_fontName.trimmed();
                    m_fontEntry = -1;
                }
                m_fontName.clear();
            } else {
                m_fontName += c;
            }
        }
        break;
    }
    case Dest::ColorTable:
        for (const QChar c : s) {
            if (c != QLatin1Char(';'))
                continue;
            if (m_red < 0 && m_green < 0 && m_blue < 0)
                m_colours.push_back(kAutoColour);
            else
                m_colours.push_back(Colour(std::clamp(m_red, 0, 255) | (std::clamp(m_green, 0, 255) << 8)
                                           | (std::clamp(m_blue, 0, 255) << 16)));
            m_red = m_green = m_blue = -1;
        }
        break;
    case Dest::FieldInst:
    case Dest::PnTextBefore:
    case Dest::PnTextAfter:
        m_destText += s;
        break;
    default:
        break;
    }
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
    bool linkEffect = false;
    if (state.link >= 0 && size_t(state.link) < m_fields.size()) {
        const FieldEntry &field = m_fields[size_t(state.link)];
        change.linkAddress = field.address;
        linkEffect = !(field.flags & 1);
    }
    QTextCharFormat qt = format::charDelta(change);
    if (state.link >= 0 && size_t(state.link) < m_fields.size() && m_fields[size_t(state.link)].address.isEmpty()) {
        // A link shown without an address: no anchor, only the effect.
        qt.clearProperty(QTextFormat::IsAnchor);
        qt.clearProperty(QTextFormat::AnchorHref);
    }
    if (linkEffect)
        qt.setProperty(format::LinkEffect, true);
    format::setUserUnderline(qt, QTextCharFormat::UnderlineStyle(state.underline));
    if (m_formatCache.size() > 4096)
        m_formatCache.clear();
    m_formatCache.insert(state, qt);
    return qt;
}

void Reader::flushRun()
{
    if (m_run.isEmpty())
        return;
    m_cursor.insertText(m_run, formatFor(m_runState));
    m_run.clear();
}

QTextCharFormat Reader::blockCharFormat()
{
    return formatFor(top().ch);
}

void Reader::applyParagraph(const ParaState &para)
{
    // An empty paragraph keeps the character format in effect at its end (what typing there
    // would insert), so that writing it again gives the same properties.
    if (!m_paragraphHasContent)
        m_cursor.setBlockCharFormat(formatFor(top().ch));
    QTextBlockFormat qt;
    ParaFormat fields;
    fields.alignment = ParaAlignment(std::clamp(para.align, 0, 3));
    fields.leftIndent = para.li + para.fi;
    fields.hangingIndent = -para.fi;
    fields.rightIndent = para.ri;
    fields.spaceBefore = para.sb;
    fields.spaceAfter = para.sa;
    if (!para.tabs.isEmpty())
        fields.tabStops = para.tabs;
    if (para.bulletIndent != 0)
        fields.bulletIndent = para.bulletIndent;
    if (para.ruleOverride >= 0 && para.ruleOverride <= 5) {
        fields.lineSpacingRule = LineSpacingRule(para.ruleOverride);
        fields.lineSpacing = para.slMult ? para.sl / 12 : std::abs(para.sl);
        if (fields.lineSpacingRule != LineSpacingRule::Multiple && fields.lineSpacingRule != LineSpacingRule::AtLeast
            && fields.lineSpacingRule != LineSpacingRule::Exactly)
            fields.lineSpacing = 0;
    } else if (para.sl != 0) {
        if (para.slMult) {
            if (para.sl == 360) {
                fields.lineSpacingRule = LineSpacingRule::OneAndHalf;
                fields.lineSpacing = 0;
            } else if (para.sl == 480) {
                fields.lineSpacingRule = LineSpacingRule::Double;
                fields.lineSpacing = 0;
            } else if (para.sl > 0) {
                fields.lineSpacingRule = LineSpacingRule::Multiple;
                fields.lineSpacing = para.sl / 12;
            }
        } else if (para.sl > 0) {
            fields.lineSpacingRule = LineSpacingRule::AtLeast;
            fields.lineSpacing = para.sl;
        } else {
            fields.lineSpacingRule = LineSpacingRule::Exactly;
            fields.lineSpacing = -para.sl;
        }
    }
    format::applyParaFields(qt, fields);
    m_cursor.setBlockFormat(qt);

    // Lists: \ls paragraphs join the list of their override and level wherever they are;
    // legacy \pn paragraphs join the list of the paragraph before when it is numbered alike.
    QTextBlock block = m_cursor.block();
    if (QTextList *current = block.textList())
        current->remove(block);
    if (para.ls > 0 && !m_table) {
        const int level = std::clamp(para.ilvl, 0, 8);
        const int key = para.ls * 16 + level;
        QTextList *list = m_lsLists.value(key);
        if (list) {
            list->add(block);
        } else {
            Numbering numbering = Numbering::Bullet;
            int start = 1;
            NumberingStyle style = NumberingStyle::Period;
            const int listId = m_overrideToList.value(para.ls, -1);
            for (const ListDef &def : m_lists) {
                if (def.id != listId || def.levels.empty())
                    continue;
                const ListLevelDef &lvl = def.levels[size_t(std::min<int>(level, int(def.levels.size()) - 1))];
                numbering = numberingOfNfc(lvl.nfc);
                start = lvl.start;
                style = numbering == Numbering::Bullet ? NumberingStyle::Period : styleOfLevelText(lvl.text);
                break;
            }
            QTextListFormat listFormat = format::listFormatFor(numbering, start, style);
            listFormat.setIndent(level + 1);
            list = m_cursor.createList(listFormat);
            m_lsLists.insert(key, list);
        }
        m_lastPnList = nullptr;
    } else if (para.pn.numbering != 0 && !m_table) {
        if (m_lastPnList && m_lastPn == para.pn && block.previous().isValid()
            && block.previous().textList() == m_lastPnList) {
            m_lastPnList->add(block);
        } else {
            QTextListFormat listFormat = format::listFormatFor(Numbering(para.pn.numbering), para.pn.start,
                                                               NumberingStyle(para.pn.style));
            if (para.pn.level > 1)
                listFormat.setIndent(para.pn.level);
            m_lastPnList = m_cursor.createList(listFormat);
            m_lastPn = para.pn;
        }
    } else {
        m_lastPnList = nullptr;
    }
}

void Reader::endParagraph(bool insertBreak)
{
    flushBytes();
    flushRun();
    ensureTableState();
    applyParagraph(top().para);
    if (insertBreak) {
        m_cursor.insertBlock(QTextBlockFormat(), blockCharFormat());
        ++m_parCount;
        m_paragraphHasContent = false;
        m_lastWasPar = true;
    }
}

void Reader::ensureTableState()
{
    // Called before content goes into the document: enters a table for \intbl content, leaves
    // it for content outside, and starts the row after a \row.
    const bool inTable = top().para.intbl;
    if (!inTable) {
        if (m_table)
            leaveTable();
        return;
    }
    if (!m_table) {
        if (m_paragraphHasContent) {
            flushRun();
            m_cursor.insertBlock(QTextBlockFormat(), blockCharFormat());
        } else if (m_lastWasPar && m_parCount > 0) {
            // Qt keeps a paragraph before every table: the one that the \par before the table
            // ended serves, rather than the empty one the \par started.
            m_cursor.deletePreviousChar();
        }
        QTextTableFormat tableFormat;
        tableFormat.setCellPadding(2);
        tableFormat.setBorder(1);
        tableFormat.setCellSpacing(0);
        m_table = m_cursor.insertTable(1, std::max(1, m_rowCellCount), tableFormat);
        m_tableRow = 0;
        m_tableColumn = 0;
        m_rowEnded = false;
        m_paragraphHasContent = false;
        m_lastWasPar = false;
        return;
    }
    if (m_rowEnded) {
        m_table->appendRows(1);
        ++m_tableRow;
        m_tableColumn = 0;
        m_rowEnded = false;
        m_cursor = m_table->cellAt(m_tableRow, 0).firstCursorPosition();
        m_paragraphHasContent = false;
        m_cellMovePending = false;
    }
    if (m_cellMovePending) {
        m_cellMovePending = false;
        if (m_tableColumn >= m_table->columns())
            m_table->appendColumns(1);
        m_cursor = m_table->cellAt(m_tableRow, m_tableColumn).firstCursorPosition();
        m_paragraphHasContent = false;
    }
}

void Reader::endCell()
{
    flushBytes();
    top().para.intbl = true;
    flushRun();
    ensureTableState();
    applyParagraph(top().para);
    ++m_tableColumn;
    m_cellMovePending = true;
    m_paragraphHasContent = false;
    m_lastWasPar = false;
}

void Reader::endRow()
{
    flushBytes();
    flushRun();
    if (!m_table)
        return;
    // Writers put the row definition before the row's cells, after them, or both: at \row the
    // definition in effect is this row's.
    if (m_tableRowDefs.size() <= size_t(m_tableRow))
        m_tableRowDefs.resize(size_t(m_tableRow) + 1);
    m_tableRowDefs[size_t(m_tableRow)] = m_rowDef;
    m_rowEnded = true;
    m_cellMovePending = false;
}

void Reader::leaveTable()
{
    flushRun();
    QTextTable *table = m_table;
    m_table = nullptr;
    applyTableLayout(table);
    m_tableRowDefs.clear();
    // A row whose last cell was ended by \cell has one empty cell too many when no further
    // cell follows in that row; such trailing empty columns are left as they are.
    m_cursor.setPosition(table->lastPosition() + 1);
    m_paragraphHasContent = false;
    m_lastWasPar = false;
    m_rowEnded = false;
    m_cellMovePending = false;
}

void Reader::applyTableLayout(QTextTable *table)
{
    const int rows = table->rows();
    const int columns = table->columns();
    // Column widths: from the first row that defines one cell per column with rising edges.
    for (const RowDef &def : m_tableRowDefs) {
        if (int(def.cells.size()) != columns)
            continue;
        QList<QTextLength> widths;
        int left = def.left;
        for (const CellDef &cell : def.cells) {
            if (cell.right <= left)
                break;
            widths.append(QTextLength(QTextLength::FixedLength, format::twipsToPixels(cell.right - left)));
            left = cell.right;
        }
        if (widths.size() == columns) {
            QTextTableFormat tableFormat = table->format();
            tableFormat.setColumnWidthConstraints(widths);
            table->setFormat(tableFormat);
        }
        break;
    }
    // Merged cells: a first cell spans the continuing cells to its right and below it.
    auto mergeOf = [&](int r, int c) -> int {
        if (size_t(r) >= m_tableRowDefs.size() || size_t(c) >= m_tableRowDefs[size_t(r)].cells.size())
            return 0;
        return m_tableRowDefs[size_t(r)].cells[size_t(c)].merge;
    };
    for (int r = 0; r < rows && size_t(r) < m_tableRowDefs.size(); ++r) {
        for (int c = 0; c < columns; ++c) {
            const int merge = mergeOf(r, c);
            if (!(merge & (MergeFirst | MergeDownFirst)) || (merge & (MergeContinue | MergeDownContinue)))
                continue;
            int across = 1;
            if (merge & MergeFirst) {
                while (c + across < columns && (mergeOf(r, c + across) & MergeContinue))
                    ++across;
            }
            int down = 1;
            if (merge & MergeDownFirst) {
                while (r + down < rows && (mergeOf(r + down, c) & MergeDownContinue))
                    ++down;
            }
            const QTextTableCell cell = table->cellAt(r, c);
            if ((across > 1 || down > 1) && cell.row() == r && cell.column() == c)
                table->mergeCells(r, c, down, across);
        }
    }
}

void Reader::insertPicture(const PictureBuild &picture)
{
    if (picture.data.isEmpty())
        return;
    flushBytes();
    flushRun();
    ensureTableState();
    const QByteArray hash = QCryptographicHash::hash(picture.data, QCryptographicHash::Sha1).toHex();
    const QString name = QLatin1String(kPictureResourcePrefix) + QString::fromLatin1(hash);
    m_doc.addResource(QTextDocument::ImageResource, QUrl(name), QVariant(picture.data));
    QTextImageFormat image;
    image.merge(formatFor(top().ch));
    image.setObjectType(QTextFormat::ImageObject);
    image.setName(name);
    image.setProperty(PictureHeader, picture.header);
    double width = 0;
    double height = 0;
    if (picture.goalW > 0 && picture.goalH > 0) {
        width = picture.goalW / 15.0;
        height = picture.goalH / 15.0;
    } else if (picture.image) {
        width = picture.picW;
        height = picture.picH;
    } else {
        // Metafile sizes are in hundredths of a millimetre.
        width = picture.picW * 96.0 / 2540.0;
        height = picture.picH * 96.0 / 2540.0;
    }
    width = width * std::clamp(picture.scaleX, 1, 1000) / 100.0;
    height = height * std::clamp(picture.scaleY, 1, 1000) / 100.0;
    if (width > 0 && height > 0) {
        image.setWidth(width);
        image.setHeight(height);
    }
    m_cursor.insertText(QString(QChar::ObjectReplacementCharacter), image);
    m_paragraphHasContent = true;
    m_lastWasPar = false;
}

void Reader::handleDestinationWord(Word word)
{
    GroupState &state = top();
    auto open = [&](Dest dest) {
        flushBytes();
        flushRun();
        state.dest = dest;
        state.destRoot = true;
        m_destText.clear();
    };
    switch (word) {
    case Word::FontTbl: open(Dest::FontTable); m_fontEntry = -1; m_fontName.clear(); break;
    case Word::ColorTbl: open(Dest::ColorTable); m_colours.clear(); m_red = m_green = m_blue = -1; break;
    case Word::Field:
        flushBytes();
        flushRun();
        m_fields.push_back(FieldEntry());
        m_fields.back().textMark = m_textCount;
        m_fieldOfGroup.push_back(int(m_fields.size()) - 1);
        state.opensField = true;
        state.dest = Dest::Ignore;
        break;
    case Word::FldInst: open(Dest::FieldInst); break;
    case Word::FldRslt: {
        state.dest = Dest::Text;
        int link = -1;
        if (!m_fieldOfGroup.empty()) {
            const FieldEntry &field = m_fields[size_t(m_fieldOfGroup.back())];
            if (field.hyperlink)
                link = m_fieldOfGroup.back();
        }
        // The result of another kind of field keeps the enclosing link, if any.
        if (link >= 0)
            state.ch.link = link;
        break;
    }
    case Word::Pict:
        open(Dest::Pict);
        m_picture = PictureBuild();
        break;
    case Word::NestTableProps:
        // Some writers close it only after the nested row's text, which is document text.
        state.nestedTableProps = true;
        [[fallthrough]];
    case Word::ShpPict:
    case Word::Ud:
    case Word::Result:
        if (state.dest == Dest::Ignore || state.dest == Dest::Upr)
            state.dest = Dest::Text;
        break;
    case Word::Object:
        flushRun();
        state.dest = Dest::Ignore;
        break;
    case Word::PnDest:
        open(Dest::Pn);
        m_pnBuild = PnState();
        m_pnBuild.numbering = int(Numbering::Arabic);
        m_pnBuild.style = int(NumberingStyle::Plain);
        m_pnBefore.clear();
        m_pnAfter.clear();
        break;
    case Word::PnTxtA: open(Dest::PnTextAfter); break;
    case Word::PnTxtB: open(Dest::PnTextBefore); break;
    case Word::ListTable: open(Dest::ListTable); break;
    case Word::ListDest:
        open(Dest::List);
        m_lists.push_back(ListDef());
        break;
    case Word::ListLevel: open(Dest::ListLevel); m_levelBuild = ListLevelDef(); break;
    case Word::LevelText: open(Dest::LevelText); m_levelBuild.text.clear(); break;
    case Word::ListOverrideTable: open(Dest::ListOverrideTable); break;
    case Word::ListOverride: open(Dest::ListOverride); break;
    case Word::Upr: flushRun(); state.dest = Dest::Upr; break;
    case Word::NonShpPict:
    case Word::PnText:
    case Word::ListText:
    case Word::SkipDest:
        flushBytes();
        flushRun();
        state.dest = Dest::Skip;
        break;
    default:
        break;
    }
}

void Reader::controlWord(Word word, std::string_view name, bool hasParam, int param)
{
    GroupState &state = top();
    if (state.star) {
        state.star = false;
        const bool knownDestination = word == Word::FldInst || word == Word::Pict || word == Word::ShpPict
                                      || word == Word::PnDest || word == Word::ListTable
                                      || word == Word::ListOverrideTable || word == Word::Ud
                                      || word == Word::ListDest || word == Word::ListLevel
                                      || word == Word::KvLink || word == Word::NestTableProps;
        if (!knownDestination) {
            flushBytes();
            flushRun();
            state.dest = Dest::Skip;
            return;
        }
    }
    if (m_unicodeSkip > 0 && word != Word::Bin) {
        --m_unicodeSkip;
        return;
    }
    if (word == Word::Unknown) {
        // Picture description words we do not interpret are kept with the picture.
        if (state.dest == Dest::Pict && name.size() > 3 && name.substr(0, 3) == "pic")
            return;
        return;
    }
    if (word <= Word::SkipDest) {
        if (word == Word::Rtf)
            return;
        if (state.dest == Dest::Skip)
            return;
        handleDestinationWord(word);
        return;
    }
    const Dest dest = state.dest;
    // Words that change which code page decodes the next bytes end the bytes gathered so far.
    if (!m_bytes.isEmpty())
        flushBytes();
    const int value = hasParam ? param : 1;
    CharState &ch = state.ch;
    ParaState &para = state.para;
    switch (word) {
    case Word::Ansi: m_docCodePage = 1252; state.codePage = 1252; break;
    case Word::Mac: m_docCodePage = 10000; state.codePage = 10000; break;
    case Word::Pc: m_docCodePage = 437; state.codePage = 437; break;
    case Word::Pca: m_docCodePage = 850; state.codePage = 850; break;
    case Word::AnsiCpg:
        if (hasParam && param > 0) {
            m_docCodePage = param;
            state.codePage = param;
        }
        break;
    case Word::Deff: m_defaultFont = param; break;
    case Word::Uc: state.uc = quint8(std::clamp(param, 0, kMaxUnicodeSkip)); break;
    case Word::U: {
        const char16_t unit = char16_t(param < 0 ? param + 65536 : param);
        if (dest == Dest::LevelText) {
            m_levelBuild.text += '?';
        } else {
            addChar(unit);
        }
        m_unicodeSkip = state.uc;
        break;
    }
    case Word::Bin: {
        const long long length = std::min<long long>(std::max(0, param), m_end - m_p);
        if (dest == Dest::Pict)
            m_picture.data.append(m_p, qsizetype(length));
        m_p += length;
        break;
    }
    case Word::F:
        if (dest == Dest::FontTable) {
            if (m_fontEntry >= 0 && m_fonts[m_fontEntry].name.isEmpty())
                m_fonts[m_fontEntry].name = m_fontName.trimmed();
            m_fontEntry = param;
            m_fonts[param] = FontEntry();
            m_fontName.clear();
        } else {
            ch.font = param;
            const auto font = m_fonts.constFind(param);
            state.codePage = font != m_fonts.constEnd() && font->codePage ? font->codePage : m_docCodePage;
        }
        break;
    case Word::FCharset:
        if (dest == Dest::FontTable && m_fontEntry >= 0 && m_fonts[m_fontEntry].codePage == 0)
            m_fonts[m_fontEntry].codePage = CodePageDecoder::codePageOfCharset(param);
        break;
    case Word::Cpg:
        if (dest == Dest::FontTable && m_fontEntry >= 0 && param > 0)
            m_fonts[m_fontEntry].codePage = param;
        break;
    case Word::Red: m_red = param; break;
    case Word::Green: m_green = param; break;
    case Word::Blue: m_blue = param; break;
    case Word::Plain: {
        const int link = ch.link;
        ch = CharState();
        ch.link = link;
        state.codePage = m_docCodePage;
        if (const auto font = m_fonts.constFind(m_defaultFont); font != m_fonts.constEnd() && font->codePage)
            state.codePage = font->codePage;
        break;
    }
    case Word::B: ch.bold = value != 0; break;
    case Word::I: ch.italic = value != 0; break;
    case Word::Ul: ch.underline = value ? QTextCharFormat::SingleUnderline : QTextCharFormat::NoUnderline; break;
    case Word::UlD: ch.underline = value ? QTextCharFormat::DotLine : QTextCharFormat::NoUnderline; break;
    case Word::UlDash: ch.underline = value ? QTextCharFormat::DashUnderline : QTextCharFormat::NoUnderline; break;
    case Word::UlDashD: ch.underline = value ? QTextCharFormat::DashDotLine : QTextCharFormat::NoUnderline; break;
    case Word::UlDashDD: ch.underline = value ? QTextCharFormat::DashDotDotLine : QTextCharFormat::NoUnderline; break;
    case Word::UlWave: ch.underline = value ? QTextCharFormat::WaveUnderline : QTextCharFormat::NoUnderline; break;
    case Word::UlNone: ch.underline = QTextCharFormat::NoUnderline; break;
    case Word::Strike:
    case Word::StrikeD: ch.strike = value != 0; break;
    case Word::Cf: ch.color = std::max(0, param); break;
    case Word::Cb:
    case Word::Highlight:
    case Word::ChCbPat: ch.back = std::max(0, param); break;
    case Word::Fs: ch.halfPoints = hasParam && param > 0 ? std::min(param, 3276) : 24; break;
    case Word::Super: ch.script = value ? int(ScriptPosition::Superscript) : 0; break;
    case Word::Sub: ch.script = value ? int(ScriptPosition::Subscript) : 0; break;
    case Word::NoSuperSub: ch.script = 0; break;
    case Word::Up: ch.offset = (hasParam ? std::clamp(param, -32000, 32000) : 6) * 10; break;
    case Word::Dn: ch.offset = -(hasParam ? std::clamp(param, -32000, 32000) : 6) * 10; break;
    case Word::KvOffset: ch.offset = std::clamp(param, -320000, 320000); break;
    case Word::Protect: ch.protect = value != 0; break;
    case Word::Lang: ch.lang = std::max(0, param); break;
    case Word::V: break; // hidden text is kept as text, as other readers show it in their text

    case Word::Pard: para = ParaState(); break;
    case Word::TrowD:
        if (!state.nestedTableProps) {
            m_rowCellCount = 0;
            m_rowDef = RowDef();
        }
        break;
    case Word::CellX:
        if (!state.nestedTableProps) {
            ++m_rowCellCount;
            if (m_rowDef.cells.size() < 4096)
                m_rowDef.cells.push_back(CellDef{param, m_rowDef.pendingMerge});
            m_rowDef.pendingMerge = 0;
        }
        break;
    case Word::TrLeft: if (!state.nestedTableProps) m_rowDef.left = param; break;
    case Word::ClMgf: if (!state.nestedTableProps) m_rowDef.pendingMerge |= MergeFirst; break;
    case Word::ClMrg: if (!state.nestedTableProps) m_rowDef.pendingMerge |= MergeContinue; break;
    case Word::ClVmgf: if (!state.nestedTableProps) m_rowDef.pendingMerge |= MergeDownFirst; break;
    case Word::ClVmrg: if (!state.nestedTableProps) m_rowDef.pendingMerge |= MergeDownContinue; break;
    case Word::Ql: para.align = int(ParaAlignment::Left); break;
    case Word::Qc: para.align = int(ParaAlignment::Center); break;
    case Word::Qr: para.align = int(ParaAlignment::Right); break;
    case Word::Qj: para.align = int(ParaAlignment::Justify); break;
    case Word::Li: para.li = param; break;
    case Word::Ri: para.ri = param; break;
    case Word::Fi: para.fi = param; break;
    case Word::Sb: para.sb = param; break;
    case Word::Sa: para.sa = param; break;
    case Word::Sl: para.sl = param; break;
    case Word::SlMult: para.slMult = value; break;
    case Word::KvLineRule: para.ruleOverride = param; break;
    case Word::KvBulletIndent: para.bulletIndent = param; break;
    case Word::Tx:
        if (para.tabs.size() < 64 && param >= 0) {
            para.tabs.append(param);
            std::sort(para.tabs.begin(), para.tabs.end());
        }
        break;
    case Word::Intbl: para.intbl = true; break;
    case Word::Ls:
        if (dest == Dest::ListOverride)
            m_overrideLs = param;
        else
            para.ls = std::max(0, param);
        break;
    case Word::Ilvl: para.ilvl = std::max(0, param); break;

    case Word::PnLvlBlt: m_pnBuild.numbering = int(Numbering::Bullet); break;
    case Word::PnLvlBody: break;
    case Word::PnLvlCont: m_pnBuild.style = int(NumberingStyle::NoNumber); break;
    case Word::PnLvl: m_pnBuild.level = std::clamp(param, 0, 9); break;
    case Word::PnDec: if (m_pnBuild.numbering != int(Numbering::Bullet)) m_pnBuild.numbering = int(Numbering::Arabic); break;
    case Word::PnUcLtr: m_pnBuild.numbering = int(Numbering::UpperLetter); break;
    case Word::PnLcLtr: m_pnBuild.numbering = int(Numbering::LowerLetter); break;
    case Word::PnUcRm: m_pnBuild.numbering = int(Numbering::UpperRoman); break;
    case Word::PnLcRm: m_pnBuild.numbering = int(Numbering::LowerRoman); break;
    case Word::PnStart: m_pnBuild.start = param; break;
    case Word::PnIndent:
        m_pnBuild.indent = param;
        break;

    case Word::ListId:
        if (dest == Dest::List && !m_lists.empty())
            m_lists.back().id = param;
        else if (dest == Dest::ListOverride)
            m_overrideListId = param;
        break;
    case Word::LevelNfc:
    case Word::LevelNfcN: m_levelBuild.nfc = param; break;
    case Word::LevelStartAt: m_levelBuild.start = param; break;

    case Word::Par:
    case Word::Page:
    case Word::Sect:
        if (dest == Dest::Text)
            endParagraph(true);
        break;
    case Word::NestCell:
    case Word::NestRow:
        if (dest == Dest::Text && m_table)
            endParagraph(true);
        break;
    case Word::Line: if (dest == Dest::Text) addChar(QChar::LineSeparator); break;
    case Word::Tab: addChar('\t'); break;
    case Word::Cell:
        if (dest == Dest::Text)
            endCell();
        break;
    case Word::Row:
        if (dest == Dest::Text)
            endRow();
        break;
    case Word::ChFtn:
        // The automatic number of a footnote reference; the footnote's own text is skipped.
        if (dest == Dest::Text)
            addString(QString::number(++m_footnoteNumber));
        break;
    case Word::EmDash: addChar(0x2014); break;
    case Word::EnDash: addChar(0x2013); break;
    case Word::LQuote: addChar(0x2018); break;
    case Word::RQuote: addChar(0x2019); break;
    case Word::LDblQuote: addChar(0x201C); break;
    case Word::RDblQuote: addChar(0x201D); break;
    case Word::Bullet: addChar(0x2022); break;
    case Word::EmSpace: addChar(0x2003); break;
    case Word::EnSpace: addChar(0x2002); break;
    case Word::QmSpace: addChar(0x2005); break;
    case Word::Zwj: addChar(0x200D); break;
    case Word::Zwnj: addChar(0x200C); break;
    case Word::LtrMark: addChar(0x200E); break;
    case Word::RtlMark: addChar(0x200F); break;

    case Word::KvLink:
        if (!m_fieldOfGroup.empty())
            m_fields[size_t(m_fieldOfGroup.back())].flags = param;
        state.dest = Dest::Skip;
        break;

    case Word::PngBlip:
    case Word::JpegBlip:
        if (dest == Dest::Pict) {
            m_picture.image = true;
            m_picture.header += '\\';
            m_picture.header += QByteArray(name.data(), qsizetype(name.size()));
        }
        break;
    case Word::PictKind:
    case Word::PictParam:
    case Word::PicW:
    case Word::PicH:
        if (dest == Dest::Pict) {
            m_picture.header += '\\';
            m_picture.header += QByteArray(name.data(), qsizetype(name.size()));
            if (hasParam)
                m_picture.header += QByteArray::number(param);
            if (word == Word::PicW)
                m_picture.picW = std::max(0, param);
            else if (word == Word::PicH)
                m_picture.picH = std::max(0, param);
        }
        break;
    case Word::PicWGoal: if (dest == Dest::Pict) m_picture.goalW = std::max(0, param); break;
    case Word::PicHGoal: if (dest == Dest::Pict) m_picture.goalH = std::max(0, param); break;
    case Word::PicScaleX: if (dest == Dest::Pict) m_picture.scaleX = param; break;
    case Word::PicScaleY: if (dest == Dest::Pict) m_picture.scaleY = param; break;
    default:
        break;
    }
}

// Common part of reading into a fresh document.
void readInto(QTextDocument &document, const QByteArray &rtf, bool endsDocument)
{
    QTextCursor cursor(&document);
    QTextCursor editBlock(&document);
    editBlock.beginEditBlock(); // one layout pass at the end, as setHtml does
    Reader reader(document, cursor, endsDocument);
    reader.run(rtf);
    editBlock.endEditBlock();
}

} // namespace

bool looksLikeRtf(const QByteArray &bytes)
{
    int i = 0;
    while (i < bytes.size() && (bytes[i] == ' ' || bytes[i] == '\t' || bytes[i] == '\r' || bytes[i] == '\n'))
        ++i;
    return bytes.mid(i, 5) == "{\\rtf";
}

ReadResult readRtf(QTextDocument &document, const QByteArray &rtf)
{
    if (!looksLikeRtf(rtf))
        return {false, QStringLiteral("The text is not RTF: it does not start with \"{\\rtf\".")};
    const bool undo = document.isUndoRedoEnabled();
    // Like setHtml, a whole new document starts a fresh undo history.
    document.setUndoRedoEnabled(false);
    document.clear();
    readInto(document, rtf, true);
    document.setUndoRedoEnabled(undo);
    return {true, QString()};
}

ReadResult insertRtf(QTextCursor &cursor, const QByteArray &rtf)
{
    if (!looksLikeRtf(rtf))
        return {false, QStringLiteral("The text is not RTF: it does not start with \"{\\rtf\".")};
    QTextDocument scratch;
    scratch.setUndoRedoEnabled(false);
    readInto(scratch, rtf, false);
    QTextDocument *target = cursor.document();
    // Pictures live in the document's resources: carry them over with the text.
    for (QTextBlock block = scratch.begin(); block.isValid(); block = block.next()) {
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextCharFormat format = it.fragment().charFormat();
            if (!format.isImageFormat())
                continue;
            const QString name = format.toImageFormat().name();
            const QVariant data = scratch.resource(QTextDocument::ImageResource, QUrl(name));
            if (data.isValid())
                target->addResource(QTextDocument::ImageResource, QUrl(name), data);
        }
    }
    cursor.beginEditBlock();
    cursor.removeSelectedText();
    const int at = cursor.position();
    const int blocksBefore = target->blockCount();
    cursor.insertFragment(QTextDocumentFragment(&scratch));
    // A fragment that starts with a list paragraph is put in a paragraph of its own, one break
    // more than the RTF has: the paragraph where it went in takes the pasted paragraph's
    // format and list instead, as for any other pasted paragraph.
    if (target->blockCount() - blocksBefore == scratch.blockCount()
        && target->characterAt(at) == QChar::ParagraphSeparator) {
        const QTextBlock host = target->findBlock(at);
        const QTextBlock pasted = host.next();
        if (pasted.isValid() && pasted.textList() && host.position() + host.length() - 1 == at) {
            QTextCursor join(host);
            join.setBlockFormat(pasted.blockFormat());
            if (host.textList() != pasted.textList())
                pasted.textList()->add(host);
            join.setPosition(at);
            join.deleteChar();
        }
    }
    cursor.endEditBlock();
    return {true, QString()};
}

} // namespace kvrtb::rtf
