// SPDX-License-Identifier: Apache-2.0
// What a worker writes to its standard error: progress for the host, the rest kept for the case
// that the worker fails.
#pragma once

#include "progress_delivery.h"

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace trellant {

class ErrorLines {
  public:
    /// Lines kept; the oldest go first.
    static constexpr std::size_t keptLines = 60;

    /// `progress` must outlive this.
    explicit ErrorLines(ProgressDelivery& progress) : progress_(progress) {}

    /// What one read gave. A chunk that is not UTF-8 is dropped whole, and a line that two chunks
    /// share counts as two: workers write each line at once.
    void take(std::string_view chunk);

    /// All that are kept; nothing is left.
    [[nodiscard]] std::vector<std::string> taken();
    /// The last lines, at most `count`, joined by line feeds.
    [[nodiscard]] std::string lastLines(std::size_t count) const;

  private:
    void takePiece(std::string_view piece);

    ProgressDelivery& progress_;
    std::deque<std::string> lines_;
};

}  // namespace trellant
