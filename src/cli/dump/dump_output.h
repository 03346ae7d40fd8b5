// SPDX-License-Identifier: Apache-2.0
// Standard output of a dump: lines gathered into pieces, and whether anything was left out.
#pragma once

#include "terminal/console.h"
#include "terminal/shown_text.h"

#include <string>
#include <string_view>
#include <utility>

namespace trellant::cli {

class DumpOutput {
  public:
    explicit DumpOutput(Console& console) : console_(console) {}

    [[nodiscard]] Console& console() noexcept { return console_; }

    /// Writes `text`, which ends its lines itself.
    void write(std::string_view text) {
        gathered_ += text;
        if (gathered_.size() >= pieceBytes) {
            flush();
        }
    }
    void line(std::string_view text) {
        gathered_ += text;
        write("\n");
    }
    /// A line above others.
    void heading(std::string_view text) {
        line(painted(text, Paint::bold, console_.outHasColour()));
    }
    /// Nothing is written by the destructor: it must not throw.
    void flush() {
        std::string piece = std::exchange(gathered_, {});
        if (!piece.empty()) {
            console_.out(shownLines(std::move(piece)));
        }
    }

    /// To be called for each thing that was left out for a bound.
    void cut() noexcept { isCut_ = true; }
    [[nodiscard]] bool isCut() const noexcept { return isCut_; }

  private:
    static constexpr std::size_t pieceBytes = 65'536;

    Console& console_;
    std::string gathered_;
    bool isCut_ = false;
};

}  // namespace trellant::cli
