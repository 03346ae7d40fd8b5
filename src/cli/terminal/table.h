// SPDX-License-Identifier: Apache-2.0
// Rows and columns for people.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace trellant::cli {

enum class Align { left, right };

struct TableColumn {
    std::string title;
    Align align = Align::left;
    /// The cells may be cut (with "…") when the line is too narrow; the widest such column first.
    bool mayShrink = false;
    /// Columns that have to fit by leaving others out: 0 stays always, of the others the lowest
    /// come first, and those of one rank only together.
    std::size_t rank = 0;
};

struct Table {
    std::vector<TableColumn> columns;
    /// Each row has a cell for each column. Texts are UTF-8, from strangers.
    std::vector<std::vector<std::string>> rows;
};

/// Cells that the text takes on a terminal: wide characters two, combining ones none.
[[nodiscard]] std::size_t displayWidth(std::string_view text);

/// Aligned columns, two blanks between them, titles first, no blanks at the ends of lines; control
/// characters replaced. `columns` cells to a line at most when the shrinkable columns allow it;
/// Console::unlimitedColumns: nothing is cut but cells of more than 200.
[[nodiscard]] std::string aligned(Table table, std::size_t columns, bool colour);

struct FittedTable {
    std::string text;
    /// Titles of the columns that did not fit.
    std::vector<std::string> leftOut;
};

/// The same, but columns of a rank are left out before names are cut to less than a reader can
/// make use of.
[[nodiscard]] FittedTable fitted(Table table, std::size_t columns, bool colour);

}  // namespace trellant::cli
