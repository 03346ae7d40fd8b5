// SPDX-License-Identifier: Apache-2.0
// A table of the document. A short one stands there as it is. A long one stands in a noscript
// element: a browser without script shows it, and one with script takes it for one text, which its
// script shows piece by piece. A hundred thousand rows would otherwise take it many seconds.
//
// The script reads the lines of a long table: the caption, the titles behind `<th scope="col">`,
// then a row a line, its cells behind `<td>`.
#pragma once

#include "markup.h"

#include <cstddef>
#include <initializer_list>
#include <string_view>

namespace trellant::page {

class Table {
  public:
    /// Rows that a browser gets as elements at once.
    static constexpr std::size_t mostShownRows = 1'000;

    struct Shape {
        /// Of the section, and of its place in a link; a plain word.
        std::string_view id;
        /// Names of texts (say.h).
        std::string_view title;
        std::initializer_list<std::string_view> columns;
        std::size_t rows = 0;
    };

    Table(Markup& markup, const Shape& shape);
    /// Ends the table.
    ~Table();
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;
    Table(Table&&) = delete;
    Table& operator=(Table&&) = delete;

    /// Begins a row; as many as the shape says.
    Table& row();
    /// A text of our own.
    Table& cell(std::string_view text = {});
    /// A text of a stranger.
    Table& nameCell(std::string_view text);
    Table& numberCell(std::size_t number);

  private:
    Markup& markup_;
    std::size_t rows_;
};

}  // namespace trellant::page
