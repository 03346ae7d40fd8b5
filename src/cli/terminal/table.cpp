// SPDX-License-Identifier: Apache-2.0
// Aligned columns. A row costs what its cells are long, whatever strangers put in them.
#include "table.h"

#include "console.h"
#include "shown_text.h"

#include <trellant/base/precondition.h>
#include <trellant/base/utf8.h>

#include <algorithm>
#include <numeric>
#include <utility>

namespace trellant::cli {

namespace {

constexpr std::size_t gap = 2;
/// A column is not cut below this: less of a name tells nothing.
constexpr std::size_t narrowestCut = 4;
/// Columns are left out before others become narrower than this.
constexpr std::size_t readableCut = 8;

/// Cells of a column at most, on a page of any width: one long name in a list of many rows would be
/// a page of blanks.
constexpr std::size_t widestCell = 200;

struct Cell {
    std::string text;
    std::size_t cells = 0;
};
using Row = std::vector<Cell>;

Cell shownCell(std::string text) {
    if (text.size() <= widestCell && printablePrefixLength(text) == text.size()) {
        const std::size_t cells = text.size();
        return {std::move(text), cells};
    }
    std::string shown = cutToCells(shownText(text), widestCell);
    const std::size_t cells = displayWidth(shown);
    return {std::move(shown), cells};
}

Row shownRow(std::vector<std::string> texts) {
    Row row;
    row.reserve(texts.size());
    for (std::string& text : texts) {
        row.push_back(shownCell(std::move(text)));
    }
    return row;
}

/// Takes the rows of the table one by one, so that the texts are there once.
std::vector<Row> shownRows(Table& table) {
    std::vector<std::string> titles;
    for (const TableColumn& column : table.columns) {
        titles.push_back(column.title);
    }
    std::vector<Row> rows;
    rows.reserve(table.rows.size() + 1);
    rows.push_back(shownRow(std::move(titles)));
    for (auto& row : table.rows) {
        precondition(row.size() == table.columns.size(), "a row has a cell for each column");
        rows.push_back(shownRow(std::move(row)));
    }
    return rows;
}

std::vector<std::size_t> fullWidths(const std::vector<Row>& rows) {
    std::vector<std::size_t> widths(rows.front().size());
    for (const Row& row : rows) {
        for (std::size_t i = 0; i < widths.size(); ++i) {
            widths[i] = std::max(widths[i], row[i].cells);
        }
    }
    return widths;
}

/// Takes from the widest shrinkable column, cell by cell, until the line fits or nothing gives.
void shrink(std::vector<std::size_t>& widths, const std::vector<TableColumn>& columns,
            std::size_t lineCells) {
    const std::size_t gaps = gap * (widths.size() - 1);
    const std::size_t room = lineCells > gaps ? lineCells - gaps : 0;
    for (std::size_t i = 0; i < widths.size(); ++i) {
        if (columns[i].mayShrink && widths[i] > narrowestCut) {
            widths[i] = std::min(widths[i], std::max(room, narrowestCut));
        }
    }
    std::size_t total = std::accumulate(widths.begin(), widths.end(), std::size_t{0});
    while (total > room) {
        std::size_t widest = widths.size();
        for (std::size_t i = 0; i < widths.size(); ++i) {
            const bool gives = columns[i].mayShrink && widths[i] > narrowestCut;
            if (gives && (widest == widths.size() || widths[i] > widths[widest])) {
                widest = i;
            }
        }
        if (widest == widths.size()) {
            return;
        }
        --widths[widest];
        --total;
    }
}

Cell cutCell(const Cell& cell, std::size_t width) {
    std::string text = cutToCells(cell.text, width);
    const std::size_t cells = displayWidth(text);
    return {std::move(text), cells};
}

void appendCell(std::string& line, const Cell& cell, Align align, std::size_t width) {
    const std::size_t padding = width - cell.cells;
    line.append(align == Align::right ? padding : 0, ' ');
    line += cell.text;
    line.append(align == Align::left ? padding : 0, ' ');
}

/// Without blanks at its end.
void appendLine(std::string& text, const Row& row, const std::vector<TableColumn>& columns,
                const std::vector<std::size_t>& widths) {
    for (std::size_t i = 0; i < row.size(); ++i) {
        text.append(i == 0 ? 0 : gap, ' ');
        if (row[i].cells <= widths[i]) {
            appendCell(text, row[i], columns[i].align, widths[i]);
        } else {
            appendCell(text, cutCell(row[i], widths[i]), columns[i].align, widths[i]);
        }
    }
    while (text.ends_with(' ')) {
        text.pop_back();
    }
}

/// Which columns stay: as many as fit at the width they can be read in, in order of rank up to the
/// first that does not, so that nothing stands there in the place of something of more weight.
std::vector<bool> fittingColumns(const std::vector<std::size_t>& widths,
                                 const std::vector<TableColumn>& columns, std::size_t lineCells) {
    std::vector<std::size_t> order(columns.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&columns](std::size_t left, std::size_t right) {
        return columns[left].rank < columns[right].rank;
    });
    std::vector<bool> stays(columns.size(), false);
    std::size_t used = 0;
    for (auto first = order.begin(); first != order.end();) {
        const std::size_t rank = columns[*first].rank;
        const auto last = std::find_if(first, order.end(),
                                       [&](std::size_t i) { return columns[i].rank != rank; });
        for (auto i = first; i != last; ++i) {
            used += columns[*i].mayShrink ? std::min(widths[*i], readableCut) : widths[*i];
            used += i == order.begin() ? 0 : gap;
        }
        if (rank != 0 && used > lineCells) {
            break;
        }
        std::for_each(first, last, [&stays](std::size_t i) { stays[i] = true; });
        first = last;
    }
    return stays;
}

template <class T>
std::vector<T> kept(std::vector<T> all, const std::vector<bool>& stays) {
    std::vector<T> chosen;
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (stays[i]) {
            chosen.push_back(std::move(all[i]));
        }
    }
    return chosen;
}

std::string textOf(const std::vector<Row>& rows, const std::vector<TableColumn>& columns,
                   std::vector<std::size_t> widths, std::size_t lineCells, bool colour) {
    if (lineCells != Console::unlimitedColumns) {
        shrink(widths, columns, lineCells);
    }
    std::string titles;
    appendLine(titles, rows.front(), columns, widths);
    std::string text = painted(titles, Paint::bold, colour);
    text += '\n';
    for (auto row = rows.begin() + 1; row != rows.end(); ++row) {
        appendLine(text, *row, columns, widths);
        text += '\n';
    }
    return text;
}

}  // namespace

std::string aligned(Table table, std::size_t columns, bool colour) {
    if (table.columns.empty()) {
        return {};
    }
    const std::vector<Row> rows = shownRows(table);
    return textOf(rows, table.columns, fullWidths(rows), columns, colour);
}

FittedTable fitted(Table table, std::size_t columns, bool colour) {
    if (columns == Console::unlimitedColumns || table.columns.empty()) {
        return {aligned(std::move(table), columns, colour), {}};
    }
    std::vector<Row> rows = shownRows(table);
    const std::vector<std::size_t> widths = fullWidths(rows);
    const std::vector<bool> stays = fittingColumns(widths, table.columns, columns);
    FittedTable result;
    for (std::size_t i = 0; i < stays.size(); ++i) {
        if (!stays[i]) {
            result.leftOut.push_back(table.columns[i].title);
        }
    }
    for (Row& row : rows) {
        row = kept(std::move(row), stays);
    }
    result.text = textOf(rows, kept(table.columns, stays), kept(widths, stays), columns, colour);
    return result;
}

}  // namespace trellant::cli
