// SPDX-License-Identifier: Apache-2.0
#include "wrapped_text.h"

#include "shown_text.h"
#include "table.h"

#include <trellant/base/printable_text.h>
#include <trellant/base/utf8.h>

#include <algorithm>

namespace trellant::cli {

namespace {

/// Below this a paragraph cannot be read, and the line grows instead.
constexpr std::size_t narrowestRoom = 8;

/// Gathers words into lines of `room` cells.
class Lines {
  public:
    Lines(const Paragraph& paragraph, std::size_t room, std::optional<Paint> paint)
        : paragraph_(paragraph), room_(room), paint_(paint) {}

    void addWord(std::string_view word) {
        const std::size_t cells = displayWidth(word);
        if (!line_.empty() && used_ + 1 + cells > room_) {
            endLine();
        }
        if (!line_.empty()) {
            line_ += ' ';
            ++used_;
        }
        if (cells <= room_) {
            line_ += word;
            used_ += cells;
        } else {
            addLongWord(word);
        }
    }

    std::string text() {
        if (!line_.empty() || text_.empty()) {
            endLine();
        }
        return std::move(text_);
    }

  private:
    void addLongWord(std::string_view word) {
        while (!word.empty()) {
            const std::string_view head =
                word.substr(0, std::max<std::size_t>(utf8SequenceLength(word), 1));
            const std::size_t cells = displayWidth(head);
            if (used_ + cells > room_) {
                endLine();
            }
            line_ += head;
            used_ += cells;
            word.remove_prefix(head.size());
        }
    }

    void endLine() {
        text_.append(paragraph_.indent, ' ');
        text_ += paint_ ? painted(line_, *paint_, paragraph_.hasColour) : line_;
        text_ += '\n';
        line_.clear();
        used_ = 0;
    }

    Paragraph paragraph_;
    std::size_t room_;
    std::optional<Paint> paint_;
    std::string text_;
    std::string line_;
    std::size_t used_ = 0;
};

}  // namespace

std::string wrapped(std::string_view text, const Paragraph& paragraph, std::optional<Paint> paint) {
    const std::string shown = shownText(text);
    const bool isUnlimited = paragraph.columns == Console::unlimitedColumns;
    const std::size_t left =
        paragraph.columns > paragraph.indent ? paragraph.columns - paragraph.indent : 0;
    Lines lines(paragraph, isUnlimited ? std::string::npos : std::max(left, narrowestRoom), paint);
    if (isUnlimited) {
        lines.addWord(shown);
        return lines.text();
    }
    std::string_view rest = shown;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(' '), rest.size());
        if (end > 0) {
            lines.addWord(rest.substr(0, end));
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return lines.text();
}

}  // namespace trellant::cli
