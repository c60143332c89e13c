#include "surface/rtf/rtfwriter_p.h"

// Tables are written row by row: the outermost table's rows as \trowd (the row definition),
// the cells' paragraphs ended by \cell, and \row; a nested table's cells end with \nestcell,
// and each of its rows with its definition in {\*\nesttableprops ...\nestrow}, followed by the
// {\nonesttables\par} that readers without nested tables read instead. A cell that spans
// columns is written as one cell up to its right boundary; cells merged down as \clvmgf and
// \clvmrg; filler cells (rtftables.h) not at all, a leading one as the row's left edge.

namespace kvrtb::rtf::detail {

namespace {

const char *borderStyleWord(QTextFrameFormat::BorderStyle style)
{
    switch (style) {
    case QTextFrameFormat::BorderStyle_Dotted: return "brdrdot";
    case QTextFrameFormat::BorderStyle_Dashed: return "brdrdash";
    case QTextFrameFormat::BorderStyle_Double: return "brdrdb";
    case QTextFrameFormat::BorderStyle_DotDash: return "brdrdashd";
    case QTextFrameFormat::BorderStyle_DotDotDash: return "brdrdashdd";
    case QTextFrameFormat::BorderStyle_Groove: return "brdrengrave";
    case QTextFrameFormat::BorderStyle_Ridge: return "brdremboss";
    case QTextFrameFormat::BorderStyle_Inset: return "brdrinset";
    case QTextFrameFormat::BorderStyle_Outset: return "brdroutset";
    default: return "brdrs";
    }
}

bool isFiller(const QTextTableCell &cell)
{
    return cell.format().boolProperty(TableFillerCell);
}

} // namespace

bool Writer::isPlaceholderBeforeTable(const QTextBlock &block, bool tableFollows)
{
    const QTextBlockFormat format = block.blockFormat();
    return tableFollows && block.length() == 1 && !block.textList() && !format.hasProperty(KeptParagraphGroups)
           && !format.boolProperty(EmptyParagraphBeforeTable);
}

void Writer::writeCellBorders(const QTextTableFormat &tableFormat, const QTextTableCellFormat &cell)
{
    // A side without a border of its own has the table's border, which a table made in the
    // control draws around every cell.
    struct Side {
        const char *control;
        int width, style, brush;
    };
    static const Side sides[4] = {
        {"clbrdrt", QTextFormat::TableCellTopBorder, QTextFormat::TableCellTopBorderStyle, QTextFormat::TableCellTopBorderBrush},
        {"clbrdrl", QTextFormat::TableCellLeftBorder, QTextFormat::TableCellLeftBorderStyle, QTextFormat::TableCellLeftBorderBrush},
        {"clbrdrb", QTextFormat::TableCellBottomBorder, QTextFormat::TableCellBottomBorderStyle, QTextFormat::TableCellBottomBorderBrush},
        {"clbrdrr", QTextFormat::TableCellRightBorder, QTextFormat::TableCellRightBorderStyle, QTextFormat::TableCellRightBorderBrush},
    };
    for (const Side &side : sides) {
        const bool own = cell.hasProperty(side.width);
        const qreal width = own ? cell.doubleProperty(side.width) : tableFormat.border();
        QTextFrameFormat::BorderStyle style = QTextFrameFormat::BorderStyle_Solid;
        if (cell.hasProperty(side.style))
            style = QTextFrameFormat::BorderStyle(cell.intProperty(side.style));
        else if (!own && tableFormat.hasProperty(QTextFormat::FrameBorderStyle) && tableFormat.borderCollapse())
            style = tableFormat.borderStyle();
        if (width <= 0 || style == QTextFrameFormat::BorderStyle_None)
            continue;
        QColor colour = Qt::black;
        if (cell.hasProperty(side.brush))
            colour = cell.brushProperty(side.brush).color();
        else if (!own && tableFormat.hasProperty(QTextFormat::FrameBorderBrush))
            colour = tableFormat.borderBrush().color();
        word(side.control);
        word(borderStyleWord(style));
        word("brdrw", std::clamp(format::pixelsToTwips(width), 1, 255));
        if (colour.isValid() && colour != QColor(Qt::black))
            word("brdrcf", colourIndex(fromQColor(colour)));
    }
}

void Writer::writeRowDefinition(const QTextTable *table, int r, const std::vector<int> &rights, int left)
{
    const QTextTableFormat tableFormat = table->format();
    const int columns = table->columns();
    word("trowd");
    if (tableFormat.cellPadding() > 0)
        word("trgaph", format::pixelsToTwips(tableFormat.cellPadding()));
    const QTextTableCell first = table->cellAt(r, 0);
    if (isFiller(first))
        left = rights[size_t(first.column() + first.columnSpan() - 1)];
    if (left != 0)
        word("trleft", left);
    if (tableFormat.alignment() & Qt::AlignHCenter)
        word("trqc");
    else if (tableFormat.alignment() & Qt::AlignRight)
        word("trqr");
    // The row's height is kept on the cells that start in the row.
    for (int c = 0; c < columns; ++c) {
        const QTextTableCell cell = table->cellAt(r, c);
        if (cell.row() != r || cell.column() != c || isFiller(cell))
            continue;
        if (const int height = cell.format().intProperty(TableRowHeight))
            word("trrh", height);
        break;
    }
    for (int c = 0; c < columns; ++c) {
        const QTextTableCell cell = table->cellAt(r, c);
        if (cell.column() != c || isFiller(cell))
            continue; // part of a cell on its left, or not a cell of the row
        const QTextTableCellFormat cellFormat = cell.format().toTableCellFormat();
        if (cell.rowSpan() > 1)
            word(cell.row() == r ? "clvmgf" : "clvmrg");
        if (cellFormat.verticalAlignment() == QTextCharFormat::AlignMiddle)
            word("clvertalc");
        else if (cellFormat.verticalAlignment() == QTextCharFormat::AlignBottom)
            word("clvertalb");
        writeCellBorders(tableFormat, cellFormat);
        if (cellFormat.background().style() != Qt::NoBrush)
            word("clcbpat", colourIndex(fromQColor(cellFormat.background().color())));
        static const std::pair<int, const char *> paddings[4] = {
            {QTextFormat::TableCellLeftPadding, "l"}, {QTextFormat::TableCellTopPadding, "t"},
            {QTextFormat::TableCellBottomPadding, "b"}, {QTextFormat::TableCellRightPadding, "r"}};
        for (const auto &[property, side] : paddings) {
            if (!cellFormat.hasProperty(property))
                continue;
            word((QByteArray("clpad") + side).constData(), format::pixelsToTwips(cellFormat.doubleProperty(property)));
            word((QByteArray("clpadf") + side).constData(), 3);
        }
        word("cellx", rights[size_t(c + cell.columnSpan() - 1)]);
    }
}

void Writer::writeCell(const QTextTableCell &cell)
{
    // The cell's paragraphs and nested tables, without the notes that go inside their
    // references and without Qt's empty paragraph before a table that starts the cell.
    struct Item {
        QTextBlock block;
        const QTextTable *table = nullptr;
    };
    std::vector<Item> items;
    for (auto it = cell.begin(); !it.atEnd(); ++it) {
        if (const QTextFrame *frame = it.currentFrame()) {
            if (const auto *nested = qobject_cast<const QTextTable *>(frame))
                items.push_back({QTextBlock(), nested});
            continue;
        }
        const QTextBlock block = it.currentBlock();
        if (!isAttachedNote(block) || items.empty())
            items.push_back({block, nullptr});
    }
    if (items.size() > 1 && items[0].block.isValid() && isPlaceholderBeforeTable(items[0].block, items[1].table != nullptr))
        items.erase(items.begin());
    const char *ending = m_tableDepth > 1 ? "nestcell" : "cell";
    for (size_t i = 0; i < items.size(); ++i) {
        const bool isLast = i + 1 == items.size();
        if (items[i].table) {
            writeTable(items[i].table);
            if (!isLast)
                continue;
            word("pard");
            word("intbl");
            if (m_tableDepth > 1)
                word("itap", m_tableDepth);
            word(ending);
        } else {
            writeBlock(items[i].block, isLast ? nullptr : "par");
            if (!isLast)
                continue;
            m_out.chop(1);
            word(ending);
        }
        m_out += '\n';
        m_needSpace = false;
    }
}

void Writer::writeTable(const QTextTable *table)
{
    const int rows = table->rows();
    const int columns = table->columns();
    const QTextTableFormat tableFormat = table->format();
    // Right edges of the columns in twips: fixed and percentage widths as set, the others an
    // equal share of a 6.25 inch line.
    constexpr int kLineTwips = 9000;
    const QList<QTextLength> constraints = tableFormat.columnWidthConstraints();
    const int left = tableFormat.hasProperty(TableLeftEdge) ? tableFormat.intProperty(TableLeftEdge)
                                                            : format::pixelsToTwips(tableFormat.leftMargin());
    std::vector<int> rights;
    rights.reserve(size_t(columns));
    int right = left;
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
    ++m_tableDepth;
    const bool nested = m_tableDepth > 1;
    for (int r = 0; r < rows; ++r) {
        // Rows outside the range are left out of a part of the document.
        bool rowInRange = false;
        for (int c = 0; c < columns && !rowInRange; ++c) {
            const QTextTableCell cell = table->cellAt(r, c);
            rowInRange = intersects(cell.firstPosition(), cell.lastPosition() + 1);
        }
        if (!rowInRange)
            continue;
        if (!nested) {
            writeRowDefinition(table, r, rights, left);
            m_out += '\n';
            m_needSpace = false;
        }
        for (int c = 0; c < columns; ++c) {
            const QTextTableCell cell = table->cellAt(r, c);
            if (cell.column() != c || isFiller(cell))
                continue;
            if (cell.row() != r) {
                // Covered by a cell merged down: an empty cell keeps the grid.
                word("pard");
                word("intbl");
                if (nested)
                    word("itap", m_tableDepth);
                word(nested ? "nestcell" : "cell");
                m_out += '\n';
                m_needSpace = false;
                continue;
            }
            writeCell(cell);
        }
        if (nested) {
            m_out += "{\\*\\nesttableprops";
            writeRowDefinition(table, r, rights, left);
            word("nestrow");
            m_out += "}{\\nonesttables\\par}\n";
        } else {
            word("row");
            m_out += '\n';
        }
        m_needSpace = false;
    }
    --m_tableDepth;
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
