#include "surface/rtf/rtfreader_p.h"

#include "surface/rtf/rtftables.h"

#include <QTextCursor>
#include <QTextDocumentFragment>
#include <QTextTable>

#include <algorithm>

// The layout of a table read from RTF, built when the table ends. Each row's cells were put in
// the first columns of the table, one column per cell; here the table gets one column between
// every two cell boundaries of any row, each cell moves to the column where its left boundary
// is and spans the columns up to its right boundary, and the space a shorter row does not cover
// becomes a filler cell (rtftables.h).

namespace kvrtb::rtf::detail {

namespace {

// Grids larger than this keep the cells as they were placed (one column per cell).
constexpr size_t kMaxGridColumns = 256;
constexpr size_t kMaxGridCells = 200000;
// The width of a cell the row definition does not give, and of a border given without one.
constexpr int kDefaultCellTwips = 1440;
constexpr int kDefaultBorderTwips = 15;

// The cell boundaries of one row in twips (left edge first), rising, one more than its cells.
std::vector<int> boundariesOf(const RowDef &def, int cells)
{
    std::vector<int> edges;
    const int count = std::max(cells, int(def.cells.size()));
    edges.reserve(size_t(count) + 1);
    edges.push_back(def.left);
    // Cells past the definition are as wide as its last cell.
    int extra = kDefaultCellTwips;
    if (!def.cells.empty())
        extra = def.cells.back().right - (def.cells.size() > 1 ? def.cells[def.cells.size() - 2].right : def.left);
    for (int i = 0; i < count; ++i) {
        const int previous = edges.back();
        int right = i < int(def.cells.size()) ? def.cells[size_t(i)].right : previous + std::max(1, extra);
        edges.push_back(std::max(right, previous + 1));
    }
    return edges;
}

// Moves the text of one cell into another (empty) cell of the same row, formats and all.
void moveCellContent(QTextTable *table, int row, int from, int to)
{
    const QTextTableCell source = table->cellAt(row, from);
    QTextCursor selection = source.firstCursorPosition();
    const QTextBlockFormat firstBlock = selection.blockFormat();
    const QTextCharFormat firstChars = selection.blockCharFormat();
    selection.setPosition(source.lastPosition(), QTextCursor::KeepAnchor);
    const bool empty = !selection.hasSelection();
    const QTextDocumentFragment fragment = selection.selection();
    selection.removeSelectedText();
    selection.setBlockFormat(QTextBlockFormat());
    QTextCursor target = table->cellAt(row, to).firstCursorPosition();
    target.setBlockFormat(firstBlock);
    target.setBlockCharFormat(firstChars);
    if (!empty)
        target.insertFragment(fragment);
}

// Two cell formats with the same properties. (QTextFormat's own comparison can tell equal
// brushes apart.)
bool sameProperties(const QTextFormat &a, const QTextFormat &b)
{
    const QMap<int, QVariant> left = a.properties();
    const QMap<int, QVariant> right = b.properties();
    if (left.size() != right.size())
        return false;
    for (auto it = left.cbegin(); it != left.cend(); ++it) {
        const auto other = right.constFind(it.key());
        if (other == right.cend())
            return false;
        const bool brush = it->metaType().id() == QMetaType::QBrush;
        if (brush ? it->value<QBrush>() != other->value<QBrush>() : *it != *other)
            return false;
    }
    return true;
}

// True when the cell format gives the same border on its four sides and nothing else.
bool isUniformBorder(const QTextTableCellFormat &f)
{
    QTextTableCellFormat same;
    same.setBorder(f.topBorder());
    same.setBorderStyle(f.topBorderStyle());
    same.setBorderBrush(f.topBorderBrush());
    return f.topBorder() > 0 && f.topBorderStyle() != QTextFrameFormat::BorderStyle_None && sameProperties(f, same);
}

QTextFrameFormat::BorderStyle styleOf(const CellBorder &border)
{
    return QTextFrameFormat::BorderStyle(std::clamp<int>(border.style, 0, QTextFrameFormat::BorderStyle_Outset));
}

} // namespace

void Reader::applyTableLayout(TableBuild &build)
{
    QTextTable *table = build.table;
    const int rows = table->rows();
    if (rows == 0 || build.rowDefs.size() < size_t(rows))
        return;
    const bool anyDefinition = std::any_of(build.rowDefs.begin(), build.rowDefs.end(),
                                           [](const RowDef &def) { return !def.cells.empty(); });
    if (!anyDefinition)
        return;

    // The grid: every boundary of every row.
    std::vector<std::vector<int>> rowEdges(static_cast<size_t>(rows));
    std::vector<int> grid;
    for (int r = 0; r < rows; ++r) {
        rowEdges[size_t(r)] = boundariesOf(build.rowDefs[size_t(r)], build.rowCells[size_t(r)]);
        grid.insert(grid.end(), rowEdges[size_t(r)].begin(), rowEdges[size_t(r)].end());
    }
    std::sort(grid.begin(), grid.end());
    grid.erase(std::unique(grid.begin(), grid.end()), grid.end());
    const int columns = int(grid.size()) - 1;
    if (size_t(columns) > kMaxGridColumns || size_t(columns) * size_t(rows) > kMaxGridCells)
        return;
    if (table->columns() > columns) // made for a row definition wider than any row: empty
        table->removeColumns(columns, table->columns() - columns);
    else if (table->columns() < columns)
        table->appendColumns(columns - table->columns());
    auto columnOf = [&](int edge) { return int(std::lower_bound(grid.begin(), grid.end(), edge) - grid.begin()); };

    // Each cell to the column of its left boundary; the rightmost first, so that the columns
    // it moves into are already empty.
    for (int r = 0; r < rows; ++r) {
        const std::vector<int> &edges = rowEdges[size_t(r)];
        for (int i = int(edges.size()) - 2; i >= 0; --i) {
            const int target = columnOf(edges[size_t(i)]);
            if (target != i && i < table->columns())
                moveCellContent(table, r, i, target);
        }
    }

    QTextTableFormat tableFormat = table->format();
    QList<QTextLength> widths;
    for (int c = 0; c < columns; ++c)
        widths.append(QTextLength(QTextLength::FixedLength, format::twipsToPixels(grid[size_t(c) + 1] - grid[size_t(c)])));
    tableFormat.setColumnWidthConstraints(widths);
    const RowDef &first = build.rowDefs.front();
    if (first.gap >= 0)
        tableFormat.setCellPadding(format::twipsToPixels(first.gap));
    if (grid.front() > 0)
        tableFormat.setLeftMargin(format::twipsToPixels(grid.front()));
    tableFormat.setAlignment(first.align == 1 ? Qt::AlignHCenter : first.align == 2 ? Qt::AlignRight : Qt::AlignLeft);
    table->setFormat(tableFormat);

    auto colourOf = [&](int index, QColor fallback) {
        if (index > 0 && size_t(index) < m_colours.size() && m_colours[size_t(index)] != kAutoColour)
            return toQColor(m_colours[size_t(index)]);
        return fallback;
    };
    auto cellFormat = [&](const RowDef &def, const CellDef &cell, int r, int i, int cellCount, int down) {
        QTextTableCellFormat qt;
        const bool sides[4] = {r == 0, i == 0, r + down >= rows, i + 1 >= cellCount};
        for (int side = 0; side < 4; ++side) {
            CellBorder border = cell.borders[side];
            if (border.style < 0) {
                const int rowSide = sides[side] ? side : (side == SideTop || side == SideBottom ? SideInsideH : SideInsideV);
                border = def.borders[rowSide];
            }
            if (border.style < 0)
                continue;
            const bool none = border.style == QTextFrameFormat::BorderStyle_None;
            const qreal width = none ? 0 : format::twipsToPixels(border.width > 0 ? border.width : kDefaultBorderTwips);
            const QBrush brush(colourOf(border.colour, Qt::black));
            switch (side) {
            case SideTop: qt.setTopBorder(width); qt.setTopBorderStyle(styleOf(border)); qt.setTopBorderBrush(brush); break;
            case SideLeft: qt.setLeftBorder(width); qt.setLeftBorderStyle(styleOf(border)); qt.setLeftBorderBrush(brush); break;
            case SideBottom: qt.setBottomBorder(width); qt.setBottomBorderStyle(styleOf(border)); qt.setBottomBorderBrush(brush); break;
            default: qt.setRightBorder(width); qt.setRightBorderStyle(styleOf(border)); qt.setRightBorderBrush(brush); break;
            }
        }
        if (cell.shading >= 0 && (cell.pattern > 0 || cell.shading > 0)) {
            // A shading percentage mixes the pattern colour (black by default) into the
            // background (white by default).
            const QColor fore = colourOf(cell.pattern, Qt::black);
            const QColor back = colourOf(cell.background, Qt::white);
            const double share = cell.shading / 10000.0;
            qt.setBackground(QColor::fromRgbF(float(fore.redF() * share + back.redF() * (1 - share)),
                                              float(fore.greenF() * share + back.greenF() * (1 - share)),
                                              float(fore.blueF() * share + back.blueF() * (1 - share))));
        } else if (cell.background > 0) {
            const QColor back = colourOf(cell.background, QColor());
            if (back.isValid())
                qt.setBackground(back);
        }
        for (int side = 0; side < 4; ++side) {
            const int twips = cell.padding[side] >= 0 ? cell.padding[side] : def.padding[side];
            if (twips < 0)
                continue;
            const qreal px = format::twipsToPixels(twips);
            switch (side) {
            case SideTop: qt.setTopPadding(px); break;
            case SideLeft: qt.setLeftPadding(px); break;
            case SideBottom: qt.setBottomPadding(px); break;
            default: qt.setRightPadding(px); break;
            }
        }
        if (cell.vAlign == 1)
            qt.setVerticalAlignment(QTextCharFormat::AlignMiddle);
        else if (cell.vAlign == 2)
            qt.setVerticalAlignment(QTextCharFormat::AlignBottom);
        return qt;
    };

    // The cell of each row that starts at a grid column, for merging down.
    auto cellStartingAt = [&](int r, int column) -> int {
        const std::vector<int> &edges = rowEdges[size_t(r)];
        const auto it = std::lower_bound(edges.begin(), edges.end() - 1, grid[size_t(column)]);
        return it != edges.end() - 1 && *it == grid[size_t(column)] ? int(it - edges.begin()) : -1;
    };
    auto mergeOf = [&](int r, int i) -> int {
        const RowDef &def = build.rowDefs[size_t(r)];
        return size_t(i) < def.cells.size() ? def.cells[size_t(i)].merge : 0;
    };
    // The last cell of the cells merged across from the row's cell i (\clmgf, \clmrg).
    auto lastOfSpan = [&](int r, int i) {
        const int count = int(rowEdges[size_t(r)].size()) - 1;
        while (i + 1 < count && (mergeOf(r, i + 1) & MergeContinue))
            ++i;
        return i;
    };
    // Filler cells draw no border, not even one the table gives its cells.
    QTextTableCellFormat filler;
    filler.setProperty(TableFillerCell, true);
    filler.setBorder(0);
    filler.setBorderStyle(QTextFrameFormat::BorderStyle_None);
    std::vector<std::pair<QTextTableCell, QTextTableCellFormat>> formats;
    for (int r = 0; r < rows; ++r) {
        const RowDef &def = build.rowDefs[size_t(r)];
        const std::vector<int> &edges = rowEdges[size_t(r)];
        const int cellCount = int(edges.size()) - 1;
        const int firstColumn = columnOf(edges.front());
        const int endColumn = columnOf(edges.back());
        if (firstColumn > 0) {
            table->mergeCells(r, 0, 1, firstColumn);
            table->cellAt(r, 0).setFormat(filler);
        }
        if (endColumn < columns) {
            table->mergeCells(r, endColumn, 1, columns - endColumn);
            table->cellAt(r, endColumn).setFormat(filler);
        }
        for (int i = 0; i < cellCount; ++i) {
            const int merge = mergeOf(r, i);
            const int last = lastOfSpan(r, i);
            const int column = columnOf(edges[size_t(i)]);
            const int across = columnOf(edges[size_t(last) + 1]) - column;
            int down = 1;
            if (merge & MergeDownFirst) {
                // The cells below that continue it, where they have the same extent.
                while (r + down < rows) {
                    const int below = cellStartingAt(r + down, column);
                    if (below < 0 || !(mergeOf(r + down, below) & MergeDownContinue)
                        || rowEdges[size_t(r + down)][size_t(lastOfSpan(r + down, below)) + 1] != edges[size_t(last) + 1])
                        break;
                    ++down;
                }
            }
            QTextTableCell cell = table->cellAt(r, column);
            if (cell.row() != r || cell.column() != column)
                continue; // covered by a cell on its left or above
            if ((across > 1 || down > 1) && cell.rowSpan() == 1 && cell.columnSpan() == 1)
                table->mergeCells(r, column, down, across);
            // Cells past the definition have the properties of its last cell.
            const CellDef properties = def.cells.empty() ? CellDef() : def.cells[std::min(size_t(i), def.cells.size() - 1)];
            formats.emplace_back(table->cellAt(r, column), cellFormat(def, properties, r, i, cellCount, down));
        }
    }
    // Cells that all have the same border on every side and nothing else: the table draws it
    // for them (one change to the document rather than one a cell).
    const QTextTableCellFormat *shared = formats.empty() ? nullptr : &formats.front().second;
    if (shared && !isUniformBorder(*shared))
        shared = nullptr;
    for (size_t i = 1; shared && i < formats.size(); ++i) {
        if (!sameProperties(formats[i].second, *shared))
            shared = nullptr;
    }
    if (shared) {
        tableFormat.setBorder(shared->topBorder());
        tableFormat.setBorderStyle(shared->topBorderStyle());
        tableFormat.setBorderBrush(shared->topBorderBrush());
        table->setFormat(tableFormat);
        return;
    }
    for (auto &[cell, qt] : formats) {
        if (!qt.properties().isEmpty())
            cell.setFormat(qt);
    }
}

} // namespace kvrtb::rtf::detail
