// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <functional>
#include <trellant_testing/file_image.h>

namespace trellant::testing {

namespace {

constexpr auto beyondTheEnd = static_cast<std::byte>(0xFF);

}  // namespace

void MemoryImage::read(std::uint64_t offset, std::span<std::byte> into) const {
    std::fill(into.begin(), into.end(), beyondTheEnd);
    if (offset < bytes_.size()) {
        const auto start = static_cast<std::size_t>(offset);
        std::copy_n(bytes_.data() + start, std::min(into.size(), bytes_.size() - start),
                    into.begin());
    }
}

void SparseImage::append(ByteView bytes) {
    const std::less_equal<> notAfter;
    const bool ofPattern = notAfter(pattern_.data(), bytes.data()) &&
                           notAfter(bytes.data() + bytes.size(), pattern_.data() + pattern_.size());
    std::size_t place = held_.size();
    if (ofPattern) {
        place = static_cast<std::size_t>(bytes.data() - pattern_.data());
    } else {
        held_.insert(held_.end(), bytes.begin(), bytes.end());
    }
    pieces_.push_back(
        {.offset = size_, .length = bytes.size(), .ofPattern = ofPattern, .place = place});
    size_ += bytes.size();
}

void SparseImage::read(std::uint64_t offset, std::span<std::byte> into) const {
    std::fill(into.begin(), into.end(), beyondTheEnd);
    auto piece = std::upper_bound(
        pieces_.begin(), pieces_.end(), offset,
        [](std::uint64_t wanted, const Piece& one) { return wanted < one.offset + one.length; });
    while (!into.empty() && piece != pieces_.end()) {
        const auto within = static_cast<std::size_t>(offset - piece->offset);
        const std::size_t count = std::min(into.size(), piece->length - within);
        const ByteView source = piece->ofPattern ? pattern_ : ByteView(held_);
        const ByteView part = source.subspan(piece->place + within, count);
        std::copy(part.begin(), part.end(), into.begin());
        into = into.subspan(count);
        offset += count;
        ++piece;
    }
}

}  // namespace trellant::testing
