// SPDX-License-Identifier: Apache-2.0
// Texts from strangers on a terminal: made harmless, measured in cells and cut to fit.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace trellant::cli {

/// `text` as one harmless line: whatever could move the cursor, end the line or turn the direction
/// of what follows, and each byte that is not UTF-8, is replaced by U+FFFD.
[[nodiscard]] std::string shownText(std::string_view text);

/// The same for text of several lines that is ready to be shown: line feeds and the colours of
/// painted() stay. Whatever goes to people passes here last, so that no other place can forget it.
[[nodiscard]] std::string shownLines(std::string text);

/// Whether a terminal would do something else with `text` than show it.
[[nodiscard]] bool isHarmfulText(std::string_view text);

/// A shown text within `cells` cells, cut with "…" between two visible characters. Nothing for no
/// cells.
[[nodiscard]] std::string cutToCells(std::string_view shown, std::size_t cells);

}  // namespace trellant::cli
