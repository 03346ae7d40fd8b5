// SPDX-License-Identifier: Apache-2.0
// Running text on lines of a terminal.
#pragma once

#include "console.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace trellant::cli {

struct Paragraph {
    /// Blanks before each line.
    std::size_t indent = 0;
    /// Cells of a line with its blanks; Console::unlimitedColumns: one line.
    std::size_t columns = Console::unlimitedColumns;
    bool hasColour = false;
};

/// A stranger's text made harmless, broken at blanks (within a word only where it fills more than
/// a line), each line followed by a line feed. At least one line.
[[nodiscard]] std::string wrapped(std::string_view text, const Paragraph& paragraph,
                                  std::optional<Paint> paint);

}  // namespace trellant::cli
