#include "surface/rtf/rtfreader_p.h"

#include "surface/rtf/rtftables.h"

#include <QTextCursor>
#include <QTextDocument>
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

QTextFrameFormat::BorderStyle styleOf(const CellBorder &border)
{
    return QTextFrameFormat::BorderStyle(std::clamp<int>(border.style, 0, QTextFrameFormat::BorderStyle_Outset));
}

// What a cell shows, with the row's defaults and the colour table already applied: cells with
// equal looks get equal formats, so each distinct look is turned into a format once.
struct CellLook {
    struct Side {
        qint8 style = -1;  // -1: no border given
        int width = 0;     // twips; 0 for a border of style none
        QColor colour;
        bool operator==(const Side &o) const { return style == o.style && width == o.width && colour == o.colour; }
    };
    Side sides[4];      // by CellSide
    QColor background;  // invalid: none
    qint16 padding[4] = {-1, -1, -1, -1};
    quint8 vAlign = 0;
    int rowHeight = 0;  // twips (TableRowHeight), 0: none

    bool operator==(const CellLook &o) const
    {
        return std::equal(sides, sides + 4, o.sides) && background == o.background
               && std::equal(padding, padding + 4, o.padding) && vAlign == o.vAlign && rowHeight == o.rowHeight;
    }
    // The same border on all four sides and nothing else: the table can draw it instead. (Qt
    // draws no table border thinner than a pixel when borders collapse: cells draw those.)
    bool uniformBorder() const
    {
        return sides[0].style > 0 && sides[0].width >= kTwipsPerPixel && sides[1] == sides[0] && sides[2] == sides[0]
               && sides[3] == sides[0] && !background.isValid() && vAlign == 0 && rowHeight == 0
               && std::all_of(padding, padding + 4, [](qint16 p) { return p < 0; });
    }
    QTextTableCellFormat toFormat() const
    {
        QTextTableCellFormat qt;
        for (int side = 0; side < 4; ++side) {
            const Side &border = sides[side];
            if (border.style < 0)
                continue;
            const qreal width = format::twipsToPixels(border.width);
            const auto style = QTextFrameFormat::BorderStyle(border.style);
            switch (side) {
            case SideTop: qt.setTopBorder(width); qt.setTopBorderStyle(style); break;
            case SideLeft: qt.setLeftBorder(width); qt.setLeftBorderStyle(style); break;
            case SideBottom: qt.setBottomBorder(width); qt.setBottomBorderStyle(style); break;
            default: qt.setRightBorder(width); qt.setRightBorderStyle(style); break;
            }
            // A cell's border without a brush is drawn black: black ones go without (each
            // property of a cell's format costs time in every cell that has it).
            if (border.colour == QColor(Qt::black))
                continue;
            const QBrush brush(border.colour);
            switch (side) {
            case SideTop: qt.setTopBorderBrush(brush); break;
            case SideLeft: qt.setLeftBorderBrush(brush); break;
            case SideBottom: qt.setBottomBorderBrush(brush); break;
            default: qt.setRightBorderBrush(brush); break;
            }
        }
        if (background.isValid())
            qt.setBackground(background);
        for (int side = 0; side < 4; ++side) {
            if (padding[side] < 0)
                continue;
            const qreal px = format::twipsToPixels(padding[side]);
            switch (side) {
            case SideTop: qt.setTopPadding(px); break;
            case SideLeft: qt.setLeftPadding(px); break;
            case SideBottom: qt.setBottomPadding(px); break;
            default: qt.setRightPadding(px); break;
            }
        }
        if (vAlign == 1)
            qt.setVerticalAlignment(QTextCharFormat::AlignMiddle);
        else if (vAlign == 2)
            qt.setVerticalAlignment(QTextCharFormat::AlignBottom);
        if (rowHeight != 0)
            qt.setProperty(TableRowHeight, rowHeight);
        return qt;
    }
};

size_t qHash(const CellLook &look, size_t seed = 0)
{
    QtPrivate::QHashCombine hash;
    for (const CellLook::Side &side : look.sides)
        seed = hash(hash(hash(seed, side.style), side.width), side.colour.rgba());
    for (qint16 p : look.padding)
        seed = hash(seed, p);
    seed = hash(hash(seed, look.vAlign), look.rowHeight);
    return hash(seed, look.background.isValid() ? look.background.rgba() : 0u);
}

// True when the cell's format says only that it is a cell of its table, and how far it spans.
bool isBareCellFormat(const QTextCharFormat &format)
{
    int own = 0;
    for (const int property : {int(QTextFormat::ObjectIndex), int(QTextFormat::ObjectType),
                               int(QTextFormat::TableCellRowSpan), int(QTextFormat::TableCellColumnSpan)})
        own += format.hasProperty(property);
    return format.propertyCount() == own;
}

// A merge of cells the layout asks of the table, and the look a cell gets (-1: the filler's).
struct CellPlan {
    int row = 0;
    int column = 0;
    int down = 1;
    int across = 1;
    int look = -1;
};

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
    if (grid.front() > 0) {
        tableFormat.setLeftMargin(format::twipsToPixels(grid.front()));
    } else if (grid.front() < 0) {
        // Drawn into the document's margin, as far as there is room (the view shows nothing
        // left of it); the edge itself is kept to be written back.
        tableFormat.setProperty(TableLeftEdge, grid.front());
        tableFormat.setLeftMargin(std::max(format::twipsToPixels(grid.front()), -m_doc.documentMargin()));
    }
    tableFormat.setAlignment(first.align == 1 ? Qt::AlignHCenter : first.align == 2 ? Qt::AlignRight : Qt::AlignLeft);
    table->setFormat(tableFormat);

    auto colourOf = [&](int index, QColor fallback) {
        if (index > 0 && size_t(index) < m_colours.size() && m_colours[size_t(index)] != kAutoColour)
            return toQColor(m_colours[size_t(index)]);
        return fallback;
    };
    // The look of the row's cell i, whose properties are cell, spanning down rows.
    auto lookOf = [&](const RowDef &def, const CellDef &cell, int r, int i, int cellCount, int down) {
        CellLook look;
        const bool outer[4] = {r == 0, i == 0, r + down >= rows, i + 1 >= cellCount};
        for (int side = 0; side < 4; ++side) {
            CellBorder border = cell.borders[side];
            if (border.style < 0) {
                const int rowSide = outer[side] ? side : (side == SideTop || side == SideBottom ? SideInsideH : SideInsideV);
                border = def.borders[rowSide];
            }
            if (border.style < 0)
                continue;
            CellLook::Side &to = look.sides[side];
            to.style = qint8(styleOf(border));
            const bool none = border.style == QTextFrameFormat::BorderStyle_None;
            to.width = none ? 0 : border.width > 0 ? border.width : kDefaultBorderTwips;
            to.colour = colourOf(border.colour, Qt::black);
        }
        if (cell.shading >= 0 && (cell.pattern > 0 || cell.shading > 0)) {
            // A shading percentage mixes the pattern colour (black by default) into the
            // background (white by default).
            const QColor fore = colourOf(cell.pattern, Qt::black);
            const QColor back = colourOf(cell.background, Qt::white);
            const double share = cell.shading / 10000.0;
            look.background = QColor::fromRgbF(float(fore.redF() * share + back.redF() * (1 - share)),
                                               float(fore.greenF() * share + back.greenF() * (1 - share)),
                                               float(fore.blueF() * share + back.blueF() * (1 - share)));
        } else if (cell.background > 0) {
            look.background = colourOf(cell.background, QColor());
        }
        for (int side = 0; side < 4; ++side)
            look.padding[side] = cell.padding[side] >= 0 ? cell.padding[side] : def.padding[side];
        look.vAlign = cell.vAlign;
        look.rowHeight = def.height;
        return look;
    };
    std::vector<CellLook> looks;
    QHash<CellLook, int> lookIndex;

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

    // The plan, worked out from the rows alone: which cells merge and the look of each cell.
    // The merges never cut one another (a cell covers only whole cells of the rows below that
    // continue it, and cells of a row never overlap), so the grid cells a merge covers can be
    // kept here rather than asked of the table after every merge.
    std::vector<char> covered(size_t(rows) * size_t(columns), 0);
    auto cover = [&](const CellPlan &plan) {
        for (int r = plan.row; r < plan.row + plan.down; ++r)
            std::fill_n(covered.begin() + ptrdiff_t(size_t(r) * size_t(columns) + size_t(plan.column)), plan.across, 1);
    };
    std::vector<CellPlan> fillers;
    std::vector<CellPlan> cells;
    std::vector<CellPlan> merges; // in the order they are made
    for (int r = 0; r < rows; ++r) {
        const RowDef &def = build.rowDefs[size_t(r)];
        const std::vector<int> &edges = rowEdges[size_t(r)];
        const int cellCount = int(edges.size()) - 1;
        const int firstColumn = columnOf(edges.front());
        const int endColumn = columnOf(edges.back());
        for (const CellPlan filler : {CellPlan{r, 0, 1, firstColumn, -1}, CellPlan{r, endColumn, 1, columns - endColumn, -1}}) {
            if (filler.across <= 0)
                continue;
            fillers.push_back(filler);
            if (filler.across > 1)
                merges.push_back(filler);
            cover(filler);
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
            if (covered[size_t(r) * size_t(columns) + size_t(column)])
                continue; // covered by a cell on its left or above
            CellPlan plan{r, column, down, across, 0};
            if (across > 1 || down > 1)
                merges.push_back(plan);
            cover(plan);
            // Cells past the definition have the properties of its last cell.
            const CellDef properties = def.cells.empty() ? CellDef() : def.cells[std::min(size_t(i), def.cells.size() - 1)];
            const CellLook look = lookOf(def, properties, r, i, cellCount, down);
            // Neighbouring cells mostly look alike: the last cell's look is tried first.
            if (!cells.empty() && looks[size_t(cells.back().look)] == look) {
                plan.look = cells.back().look;
            } else if (const auto known = lookIndex.constFind(look); known != lookIndex.cend()) {
                plan.look = *known;
            } else {
                plan.look = int(looks.size());
                lookIndex.insert(look, plan.look);
                looks.push_back(look);
            }
            cells.push_back(plan);
        }
    }

    for (const CellPlan &merge : merges)
        table->mergeCells(merge.row, merge.column, merge.down, merge.across);
    // Filler cells draw no border, not even one the table gives its cells.
    QTextTableCellFormat filler;
    filler.setProperty(TableFillerCell, true);
    filler.setBorder(0);
    filler.setBorderStyle(QTextFrameFormat::BorderStyle_None);
    for (const CellPlan &plan : fillers)
        table->cellAt(plan.row, plan.column).setFormat(filler);
    // Cells that all have the same border on every side and nothing else: the table draws it
    // for them (one change to the document rather than one a cell).
    if (looks.size() == 1 && looks.front().uniformBorder()) {
        const CellLook::Side &border = looks.front().sides[SideTop];
        tableFormat.setBorder(format::twipsToPixels(border.width));
        tableFormat.setBorderStyle(QTextFrameFormat::BorderStyle(border.style));
        tableFormat.setBorderBrush(border.colour);
        table->setFormat(tableFormat);
        return;
    }
    std::vector<QTextTableCellFormat> formats;
    formats.reserve(looks.size());
    for (const CellLook &look : looks)
        formats.push_back(look.toFormat());
    // A cell's format also replaces the character format its first paragraph had while the
    // cell was read (Qt keeps both in one place); a cell whose look gives nothing and whose
    // format holds nothing else keeps the one it has.
    const CellLook plain;
    for (const CellPlan &plan : cells) {
        QTextTableCell cell = table->cellAt(plan.row, plan.column);
        if (looks[size_t(plan.look)] == plain && isBareCellFormat(cell.format()))
            continue;
        cell.setFormat(formats[size_t(plan.look)]);
    }
}

} // namespace kvrtb::rtf::detail
