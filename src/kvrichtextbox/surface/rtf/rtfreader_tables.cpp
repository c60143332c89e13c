#include "surface/rtf/rtfreader_p.h"

#include "surface/rtf/rtftables.h"

#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextTable>

#include <algorithm>

// Reading tables: which table a paragraph belongs to (\intbl for the outermost table, \itap for
// the depth of nested ones), where each cell's text goes, and the row definitions (\trowd with
// its \cellx cells and their properties). A nested table's row definition is given in
// \nesttableprops, usually after the row's cells; an outermost row's, before its cells or
// again before its \row. Each row's definition is taken as the one in effect when the row ends;
// the grid, spans and cell formats are built when the table ends (rtfreader_tablelayout.cpp).

namespace kvrtb::rtf::detail {

namespace {

// The position where the cell or frame holding the block starts, and the frame itself: two
// blocks are in the same cell when both agree.
std::pair<QTextFrame *, int> containerOf(const QTextBlock &block)
{
    QTextCursor cursor(block);
    if (QTextTable *table = cursor.currentTable())
        return {table, table->cellAt(block.position()).firstPosition()};
    QTextFrame *frame = cursor.currentFrame();
    return {frame, frame->firstPosition()};
}

// The character that starts each cell (and frame) in a QTextDocument.
constexpr char16_t kCellMarker = 0xfdd0;

constexpr CellSide kPaddingSides[4] = {SideLeft, SideTop, SideBottom, SideRight};

qint8 borderStyleOf(std::string_view name)
{
    // Styles Qt cannot draw (wavy, triple, thick-thin) are drawn as single lines.
    if (name == "brdrdb")
        return qint8(QTextFrameFormat::BorderStyle_Double);
    if (name == "brdrdot")
        return qint8(QTextFrameFormat::BorderStyle_Dotted);
    if (name == "brdrdash" || name == "brdrdashsm")
        return qint8(QTextFrameFormat::BorderStyle_Dashed);
    if (name == "brdrdashd")
        return qint8(QTextFrameFormat::BorderStyle_DotDash);
    if (name == "brdrdashdd")
        return qint8(QTextFrameFormat::BorderStyle_DotDotDash);
    if (name == "brdrengrave")
        return qint8(QTextFrameFormat::BorderStyle_Groove);
    if (name == "brdremboss")
        return qint8(QTextFrameFormat::BorderStyle_Ridge);
    if (name == "brdrinset")
        return qint8(QTextFrameFormat::BorderStyle_Inset);
    if (name == "brdroutset")
        return qint8(QTextFrameFormat::BorderStyle_Outset);
    if (name == "brdrsh")
        return -1; // a shadow, not a style
    if (name == "brdrnone" || name == "brdrnil" || name == "brdrtbl")
        return qint8(QTextFrameFormat::BorderStyle_None);
    return qint8(QTextFrameFormat::BorderStyle_Solid);
}

} // namespace

int Reader::paragraphTableDepth() const
{
    const ParaState &para = top().para;
    if (para.itap >= 0)
        return std::min<int>(para.itap, kMaxTableDepth);
    return para.intbl ? 1 : 0;
}

void Reader::ensureTableState()
{
    // Called before content goes into the document: enters the tables the paragraph is in,
    // leaves those it is not in, and starts the row or cell after a \row or \cell.
    if (m_inNote)
        return; // a note stays where its reference's paragraph put it
    enterTableDepth(paragraphTableDepth());
}

void Reader::enterTableDepth(int depth)
{
    while (int(m_tables.size()) > depth)
        leaveTable();
    if (!m_tables.empty()) {
        TableBuild &build = m_tables.back();
        // While the table is read it is a plain grid filled in document order, so the next
        // cell starts right after the marker that follows the text read so far: the cursor
        // goes there without asking the table, which would re-index all its cells after each
        // new row.
        if (build.rowEnded) {
            // The cells the row did not use are empty: one marker each. (Taken before rows
            // are added: the cursor moves with the markers inserted where it is.)
            const int marker = m_cursor.position() + build.columns - 1 - build.cursorColumn;
            // Qt re-indexes every cell of a table before each change to its rows, so a long
            // table gets its rows in growing batches; those left over go when it ends.
            if (build.row + 1 >= build.rowsCreated) {
                const int batch = build.rowsCreated < 16 ? 1 : std::min(build.rowsCreated / 4, 128);
                build.table->appendRows(batch);
                build.rowsCreated += batch;
            }
            ++build.row;
            build.column = 0;
            build.rowEnded = false;
            build.cellMovePending = false;
            moveToCell(build, marker);
            m_paragraphHasContent = false;
        }
        if (build.cellMovePending) {
            build.cellMovePending = false;
            if (build.column >= build.columns) {
                build.table->appendColumns(1);
                ++build.columns;
                m_cursor = build.table->cellAt(build.row, build.column).firstCursorPosition();
            } else {
                moveToCell(build, m_cursor.position());
            }
            m_paragraphHasContent = false;
        }
    }
    while (int(m_tables.size()) < depth)
        startTable();
}

void Reader::moveToCell(const TableBuild &build, int marker)
{
    if (m_doc.characterAt(marker) == QChar(kCellMarker))
        m_cursor.setPosition(marker + 1);
    else
        m_cursor = build.table->cellAt(build.row, build.column).firstCursorPosition();
}

void Reader::startTable()
{
    const bool outermost = m_tables.empty();
    if (m_paragraphHasContent) {
        flushRun();
        insertPendingNotes();
        // The outermost table starts on a paragraph of its own; a nested one follows the text
        // of its cell.
        if (outermost)
            m_cursor.insertBlock(QTextBlockFormat(), blockCharFormat());
    } else if (m_lastWasPar && m_parCount > 0) {
        // Qt keeps a paragraph before every table: the one that the \par before the table
        // ended serves, rather than the empty one the \par started. When that is the empty
        // paragraph Qt keeps at the start of the document or cell anyway, it is marked as one
        // the source wrote.
        const QTextBlock current = m_cursor.block();
        const QTextBlock previous = current.previous();
        if (previous.isValid() && containerOf(previous) == containerOf(current)) {
            const bool previousStartsContainer = previous.length() == 1 && containerOf(previous).second == previous.position();
            m_cursor.deletePreviousChar();
            if (previousStartsContainer) {
                QTextBlockFormat written = m_cursor.blockFormat();
                written.setProperty(EmptyParagraphBeforeTable, true);
                m_cursor.setBlockFormat(written);
            }
        }
    }
    // No padding unless the row gives one (\trgaph, \trpadd), as other readers show it.
    QTextTableFormat tableFormat;
    tableFormat.setCellPadding(0);
    tableFormat.setBorder(0);
    tableFormat.setBorderCollapse(true);
    tableFormat.setCellSpacing(0);
    TableBuild build;
    // As many columns as the row definition in effect gives (adding columns later costs a
    // change to every row); columns that no row uses are removed when the table ends.
    const int columns = outermost ? std::clamp(int(m_rowDef.cells.size()), 1, 64) : 1;
    build.table = m_cursor.insertTable(1, columns, tableFormat);
    build.columns = columns;
    m_tables.push_back(build);
    m_paragraphHasContent = false;
    m_lastWasPar = false;
}

void Reader::endCell(bool nested)
{
    flushBytes();
    // \cell ends a cell of the outermost table; \nestcell one of the table at the paragraph's
    // depth (at least the first nested one).
    ParaState &para = top().para;
    if (nested) {
        if (para.itap < 2)
            para.itap = std::max(2, int(m_tables.size()));
    } else {
        para.intbl = true;
        para.itap = 1;
    }
    flushRun();
    ensureTableState();
    applyParagraph(para);
    insertPendingNotes();
    TableBuild &build = m_tables.back();
    ++build.column;
    build.cellMovePending = true;
    m_paragraphHasContent = false;
    m_lastWasPar = false;
}

void Reader::endRow(bool nested)
{
    flushText();
    const int depth = nested ? std::max(2, paragraphTableDepth()) : 1;
    if (int(m_tables.size()) < depth)
        return;
    while (int(m_tables.size()) > depth)
        leaveTable();
    TableBuild &build = m_tables.back();
    // Writers put the row definition before the row's cells, after them, or both: at the end
    // of the row the definition in effect is this row's.
    if (build.rowDefs.size() <= size_t(build.row)) {
        build.rowDefs.resize(size_t(build.row) + 1);
        build.rowCells.resize(size_t(build.row) + 1);
    }
    build.rowDefs[size_t(build.row)] = nested ? m_nestedDef : m_rowDef;
    // A row that ends without \cell after its last text keeps that text in a cell of its own.
    build.rowCells[size_t(build.row)] = build.column + (build.cellMovePending ? 0 : 1);
    build.cursorColumn = build.cellMovePending ? build.column - 1 : build.column;
    build.rowEnded = true;
    build.cellMovePending = false;
}

void Reader::leaveTable()
{
    flushRun();
    TableBuild build = std::move(m_tables.back());
    m_tables.pop_back();
    if (build.rowsCreated > build.row + 1)
        build.table->removeRows(build.row + 1, build.rowsCreated - build.row - 1);
    if (build.rowCells.size() <= size_t(build.row)) {
        // The last row was not ended by \row: its definition is the one in effect.
        build.rowDefs.resize(size_t(build.row) + 1, m_tables.empty() ? m_rowDef : m_nestedDef);
        build.rowCells.resize(size_t(build.row) + 1, build.column + (build.cellMovePending ? 0 : 1));
    }
    applyTableLayout(build);
    m_cursor.setPosition(build.table->lastPosition() + 1);
    m_paragraphHasContent = false;
    m_lastWasPar = false;
}

CellBorder *Reader::borderTarget(RowDef &def)
{
    if (def.borderTarget < 0)
        return nullptr;
    if (def.borderTarget < 4)
        return &def.pending.borders[def.borderTarget];
    return &def.borders[def.borderTarget - 4];
}

void Reader::tableWord(Word word, std::string_view name, bool hasParam, int param)
{
    GroupState &state = top();
    if (word == Word::Itap) {
        state.para.itap = std::clamp(hasParam ? param : 1, 0, kMaxTableDepth);
        return;
    }
    RowDef &def = state.nestedTableProps ? m_nestedDef : m_rowDef;
    CellDef &cell = def.pending;
    const int twips = std::clamp(param, -31680, 31680);
    switch (word) {
    case Word::TrowD: def = RowDef(); break;
    case Word::CellX:
        if (def.cells.size() < 4096) {
            cell.right = twips;
            def.cells.push_back(cell);
        }
        cell = CellDef();
        def.borderTarget = -1;
        break;
    case Word::TrLeft:
        def.left = twips;
        def.leftGiven = true;
        break;
    case Word::TrRh: def.height = twips; break;
    case Word::ClMgf: cell.merge |= MergeFirst; break;
    case Word::ClMrg: cell.merge |= MergeContinue; break;
    case Word::ClVmgf: cell.merge |= MergeDownFirst; break;
    case Word::ClVmrg: cell.merge |= MergeDownContinue; break;
    case Word::TrGaph: def.gap = std::max(0, twips); break;
    // Padding, in the words' order left, top, bottom, right; the unit words say 3 for twips,
    // and anything else makes the padding not count.
    case Word::TrPaddL: case Word::TrPaddT: case Word::TrPaddB: case Word::TrPaddR:
        def.padding[kPaddingSides[int(word) - int(Word::TrPaddL)]] = qint16(std::max(0, twips));
        break;
    case Word::TrPaddFL: case Word::TrPaddFT: case Word::TrPaddFB: case Word::TrPaddFR:
        if (param != 3)
            def.padding[kPaddingSides[int(word) - int(Word::TrPaddFL)]] = -1;
        break;
    case Word::TrQl: def.align = 0; break;
    case Word::TrQc: def.align = 1; break;
    case Word::TrQr: def.align = 2; break;
    case Word::ClPadL: case Word::ClPadT: case Word::ClPadB: case Word::ClPadR:
        cell.padding[kPaddingSides[int(word) - int(Word::ClPadL)]] = qint16(std::max(0, twips));
        break;
    case Word::ClPadFL: case Word::ClPadFT: case Word::ClPadFB: case Word::ClPadFR:
        if (param != 3)
            cell.padding[kPaddingSides[int(word) - int(Word::ClPadFL)]] = -1;
        break;
    case Word::ClVertAlT: cell.vAlign = 0; break;
    case Word::ClVertAlC: cell.vAlign = 1; break;
    case Word::ClVertAlB: cell.vAlign = 2; break;
    case Word::ClCbPat: cell.background = std::max(0, param); break;
    case Word::ClCfPat: cell.pattern = std::max(0, param); break;
    case Word::ClShdng: cell.shading = std::clamp(param, 0, 10000); break;
    case Word::ClBrdrT: def.borderTarget = SideTop; break;
    case Word::ClBrdrL: def.borderTarget = SideLeft; break;
    case Word::ClBrdrB: def.borderTarget = SideBottom; break;
    case Word::ClBrdrR: def.borderTarget = SideRight; break;
    case Word::TrBrdrT: def.borderTarget = 4 + SideTop; break;
    case Word::TrBrdrL: def.borderTarget = 4 + SideLeft; break;
    case Word::TrBrdrB: def.borderTarget = 4 + SideBottom; break;
    case Word::TrBrdrR: def.borderTarget = 4 + SideRight; break;
    case Word::TrBrdrH: def.borderTarget = 4 + SideInsideH; break;
    case Word::TrBrdrV: def.borderTarget = 4 + SideInsideV; break;
    case Word::ClDiagonal:
        def.borderTarget = -1; // a diagonal line, which Qt cannot draw: its border words are dropped
        break;
    case Word::BrdrW:
        if (CellBorder *border = borderTarget(def))
            border->width = qint16(std::clamp(param, 0, 1000));
        break;
    case Word::BrdrCf:
        if (CellBorder *border = borderTarget(def))
            border->colour = std::max(0, param);
        break;
    case Word::BrdrStyle:
        if (CellBorder *border = borderTarget(def)) {
            const qint8 style = borderStyleOf(name);
            if (style >= 0)
                border->style = style;
        }
        break;
    default:
        break;
    }
}

} // namespace kvrtb::rtf::detail
