// Rows and columns, for people and for sheets.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace trellant::cli {

enum class Align { left, right };

struct Column {
    std::string title;
    Align align = Align::left;
    /// The cells may be cut (with "…") when the line is too narrow; the widest such column first.
    bool mayShrink = false;
};

struct Table {
    std::vector<Column> columns;
    /// Each row has a cell for each column. Texts are UTF-8, from strangers.
    std::vector<std::vector<std::string>> rows;
};

/// Cells that the text takes on a terminal: wide characters two, combining ones none.
[[nodiscard]] std::size_t displayWidth(std::string_view text);

/// Aligned columns, two blanks between them, titles first, no blanks at the ends of lines; control
/// characters replaced. `columns` cells to a line at most when the shrinkable columns allow it;
/// Console::unlimitedColumns: nothing is cut.
[[nodiscard]] std::string aligned(const Table& table, std::size_t columns, bool colour);

/// RFC 4180: CRLF after each record, titles first, quotes where needed. A cell that a sheet would
/// take for a formula (it begins with = + - @, a tab or a carriage return) gets an apostrophe in
/// front, except for a plain number.
[[nodiscard]] std::string csv(const Table& table);

}  // namespace trellant::cli
