#include "surface/rtf/rtfwriter_p.h"

namespace kvrtb::rtf::detail {

void Writer::writeTable(const QTextTable *table)
{
    const int rows = table->rows();
    const int columns = table->columns();
    // Right edges of the columns in twips: fixed and percentage widths as set, the others an
    // equal share of a 6.25 inch line.
    constexpr int kLineTwips = 9000;
    const QList<QTextLength> constraints = table->format().columnWidthConstraints();
    std::vector<int> rights;
    rights.reserve(size_t(columns));
    int right = 0;
    for (int c = 0; c < columns; ++c) {
        int width = kLineTwips / std::max(1, columns);
        if (c < constraints.size()) {
            const QTextLength length = constraints.at(c);
            if (length.type() == QTextLength::FixedLength)
                width = format::pixelsToTwips(length.rawValue());
            else if (length.type() == QTextLength::PercentageLength)
                width = int(std::lround(kLineTwips * length.rawValue() / 100.0));
        }
        right += std::max(1, width);
        rights.push_back(right);
    }
    for (int r = 0; r < rows; ++r) {
        // Rows outside the range are left out of a part of the document.
        bool rowInRange = false;
        for (int c = 0; c < columns && !rowInRange; ++c) {
            const QTextTableCell cell = table->cellAt(r, c);
            rowInRange = intersects(cell.firstPosition(), cell.lastPosition() + 1);
        }
        if (!rowInRange)
            continue;
        word("trowd");
        for (int c = 0; c < columns; ++c) {
            // Merged cells: every grid cell is written, the covered ones marked as such.
            const QTextTableCell cell = table->cellAt(r, c);
            if (cell.rowSpan() > 1)
                word(cell.row() == r ? "clvmgf" : "clvmrg");
            if (cell.columnSpan() > 1)
                word(cell.column() == c ? "clmgf" : "clmrg");
            word("cellx", rights[size_t(c)]);
        }
        m_out += '\n';
        m_needSpace = false;
        for (int c = 0; c < columns; ++c) {
            const QTextTableCell cell = table->cellAt(r, c);
            if (cell.row() != r || cell.column() != c) {
                // Covered by a merged cell: an empty cell keeps the grid.
                word("pard");
                word("intbl");
                word("cell");
                m_out += '\n';
                m_needSpace = false;
                continue;
            }
            // The cell's paragraphs, without the notes that go inside their references.
            std::vector<QTextBlock> blocks;
            const QTextBlock last = m_doc.findBlock(cell.lastPosition());
            for (QTextBlock block = m_doc.findBlock(cell.firstPosition()); block.isValid(); block = block.next()) {
                if (!isAttachedNote(block) || blocks.empty())
                    blocks.push_back(block);
                if (block == last)
                    break;
            }
            for (size_t i = 0; i < blocks.size(); ++i) {
                const bool isLast = i + 1 == blocks.size();
                writeBlock(blocks[i], isLast ? nullptr : "par");
                if (isLast) {
                    m_out.chop(1);
                    word("cell");
                    m_out += '\n';
                    m_needSpace = false;
                }
            }
        }
        word("row");
        m_out += '\n';
        m_needSpace = false;
    }
}

bool Writer::writeWithinCell(const QTextTable *table)
{
    // A range inside one cell is text copied from the cell, not a table.
    const QTextTableCell cell = table->cellAt(m_start);
    if (!cell.isValid() || m_start < cell.firstPosition() || m_end > cell.lastPosition())
        return false;
    m_flattenCell = true;
    const QTextBlock last = m_doc.findBlock(cell.lastPosition());
    for (QTextBlock block = m_doc.findBlock(cell.firstPosition()); block.isValid(); block = block.next()) {
        if (intersects(block.position(), block.position() + block.length()) && !isAttachedNote(block))
            writeBlock(block, "par");
        if (block == last)
            break;
    }
    m_flattenCell = false;
    return true;
}

} // namespace kvrtb::rtf::detail
