#include "surface/rtf/rtfreader_p.h"

#include <QTextCursor>
#include <QTextTable>

#include <algorithm>

namespace kvrtb::rtf::detail {

void Reader::ensureTableState()
{
    // Called before content goes into the document: enters a table for \intbl content, leaves
    // it for content outside, and starts the row after a \row.
    if (m_inNote)
        return; // a note stays where its reference's paragraph put it
    const bool inTable = top().para.intbl;
    if (!inTable) {
        if (m_table)
            leaveTable();
        return;
    }
    if (!m_table) {
        if (m_paragraphHasContent) {
            flushRun();
            insertPendingNotes();
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
    insertPendingNotes();
    ++m_tableColumn;
    m_cellMovePending = true;
    m_paragraphHasContent = false;
    m_lastWasPar = false;
}

void Reader::endRow()
{
    flushText();
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

} // namespace kvrtb::rtf::detail
