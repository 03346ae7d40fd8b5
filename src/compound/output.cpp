// SPDX-License-Identifier: Apache-2.0
#include "output.h"

#include "layout.h"

#include <algorithm>
#include <array>

namespace trellant::compound {

namespace {

constexpr std::size_t gatheredSize = std::size_t{64} * 1024;
constexpr std::array<std::byte, sectorSize> zeros{};
constexpr auto ones = [] {
    std::array<std::byte, sectorSize> bytes{};
    bytes.fill(static_cast<std::byte>(0xFF));
    return bytes;
}();

}  // namespace

Output::Output(const ByteSink& sink) : sink_(sink) {
    gathered_.reserve(gatheredSize);
}

void Output::number(std::uint64_t value, std::size_t width) {
    std::array<std::byte, 8> stored{};
    for (std::size_t index = 0; index < width; ++index) {
        stored[index] = static_cast<std::byte>(value >> (8 * index));
    }
    bytes(ByteView(stored).first(width));
}

void Output::bytes(ByteView bytes) {
    if (position_ < rangeLockOffset && bytes.size() > rangeLockOffset - position_) {
        const auto before = static_cast<std::size_t>(rangeLockOffset - position_);
        append(bytes.first(before));
        bytes = bytes.subspan(before);
    }
    if (position_ == rangeLockOffset && !bytes.empty()) {
        append(zeros);
    }
    append(bytes);
}

void Output::append(ByteView bytes) {
    position_ += bytes.size();
    if (bytes.size() > gatheredSize - gathered_.size()) {
        flush();
    }
    if (bytes.size() >= gatheredSize) {
        sink_(bytes);
    } else {
        gathered_.insert(gathered_.end(), bytes.begin(), bytes.end());
    }
}

void Output::fill(Padding padding, std::uint64_t count) {
    const ByteView values = padding == Padding::zeros ? zeros : ones;
    while (count > 0) {
        const std::uint64_t part = std::min<std::uint64_t>(count, values.size());
        bytes(values.first(static_cast<std::size_t>(part)));
        count -= part;
    }
}

void Output::fillUnit(Padding padding, std::uint64_t unit) {
    const std::uint64_t used = position_ % unit;
    fill(padding, used == 0 ? 0 : unit - used);
}

void Output::flush() {
    if (!gathered_.empty()) {
        sink_(gathered_);
        gathered_.clear();
    }
}

}  // namespace trellant::compound
