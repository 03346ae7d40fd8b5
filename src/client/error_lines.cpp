// SPDX-License-Identifier: Apache-2.0
#include "error_lines.h"

#include <trellant/base/printable_text.h>
#include <trellant/base/text.h>
#include <trellant/protocol/lines.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

namespace trellant {

namespace {

std::optional<AAFWorkerProtocol::Progress> progressIn(std::string_view json) {
    try {
        return decodeProgress(json);
    } catch (const JsonDecodingError&) {
        return std::nullopt;
    }
}

}  // namespace

void ErrorLines::take(std::string_view chunk) {
    if (!isValidUTF8(chunk)) {
        return;
    }
    while (!chunk.empty()) {
        const std::string_view piece = chunk.substr(0, chunk.find('\n'));
        chunk.remove_prefix(std::min(piece.size() + 1, chunk.size()));
        if (!piece.empty()) {
            takePiece(piece);
        }
    }
}

void ErrorLines::takePiece(std::string_view piece) {
    if (piece.starts_with(progressMarker)) {
        if (auto progress = progressIn(piece.substr(progressMarker.size()))) {
            progress_.add(std::move(*progress));
        }
        return;
    }
    if (lines_.size() == keptLines) {
        lines_.pop_front();
    }
    lines_.emplace_back(piece);
}

std::vector<std::string> ErrorLines::taken() {
    std::vector<std::string> taken(std::make_move_iterator(lines_.begin()),
                                   std::make_move_iterator(lines_.end()));
    lines_.clear();
    return taken;
}

std::string ErrorLines::lastLines(std::size_t count) const {
    std::string joined;
    for (std::size_t at = lines_.size() - std::min(count, lines_.size()); at < lines_.size();
         ++at) {
        if (!joined.empty()) {
            joined += '\n';
        }
        joined += lines_[at];
    }
    return joined;
}

}  // namespace trellant
