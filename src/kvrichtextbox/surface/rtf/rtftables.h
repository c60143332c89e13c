#pragma once

// Tables of an RTF document in a QTextDocument. Rows of a table may have different cell
// boundaries: the table's grid has a column between every two boundaries of any row, and a
// cell spans the columns between its own boundaries. A row that is shorter than the grid (it
// starts further right or ends further left) gets filler cells for the space it does not
// cover: they have no borders, take no text from the source and are not written back.
//
// A table whose row definitions start left of the margin (negative \trleft) gets a negative
// left margin, and draws into the document's margin (TableLeftEdge).
//
// Borders, shading, padding and vertical alignment are kept per cell in the cell's format
// (QTextTableCellFormat); the table itself draws no border of its own (border collapse, width
// 0), so a table whose source gives no borders is shown without lines. The exception: when
// every cell has the same border of a pixel or more on all sides and nothing else, the table
// gives it to all of them. Row heights are kept on the cells (TableRowHeight) but not drawn.

#include <QTextFormat>

namespace kvrtb::rtf {

enum TableProperty {
    /// bool, on a table cell's format: the cell fills the part of the grid a shorter row does
    /// not cover.
    TableFillerCell = QTextFormat::UserProperty + 72,
    /// bool, on an empty paragraph at the start of the document or of a cell, right before a
    /// table: the source wrote this paragraph. Qt keeps an empty paragraph there in any case;
    /// without this property it is only Qt's, and is not written.
    EmptyParagraphBeforeTable = QTextFormat::UserProperty + 73,
    /// int, on the format of each cell of a row that gives one: the row's height in twips,
    /// positive for a least height, negative for an exact one. Qt's tables have no row
    /// heights, so it is kept and written back but does not change how the row is drawn.
    TableRowHeight = QTextFormat::UserProperty + 90,
    /// int, on a table's format when its rows start left of the margin (a negative \trleft):
    /// that edge in twips. The table's left margin is as near to it as the document's margin
    /// lets the table be drawn.
    TableLeftEdge = QTextFormat::UserProperty + 91,
};

} // namespace kvrtb::rtf
