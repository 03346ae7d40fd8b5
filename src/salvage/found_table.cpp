// SPDX-License-Identifier: Apache-2.0
// A table begins with entries on object 1, the container itself: its properties 2 to 6 are of type
// 19. In the form of tokens a token 1 stands before them.
#include <trellant/base/byte_load.h>
#include <trellant/io/bento_footer.h>
#include <trellant/io/bento_toc_entries.h>
#include <trellant/io/bento_toc_tokens.h>
#include <trellant/salvage/found_table.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace trellant::salvage {

namespace {

/// The object that describes the container; what it says of the file's length is no value.
constexpr std::uint32_t containerObject = 1;
/// Shorter values hold no sound.
constexpr std::uint64_t shortestSound = 46;
/// Values and pieces that are kept; a table with more is read no further.
constexpr std::size_t mostPieces = 2'000'000;
/// Places that look like a table's begin and are tried.
constexpr int mostTries = 4;
constexpr std::size_t firstEntryBytes = 12;
/// Entries that a table without a label has at least.
constexpr std::uint64_t fewestEntries = 4;
constexpr std::uint32_t usualBlock = 1'024;

Bytes tailOf(const RandomAccessFile& file, std::uint64_t bytes) {
    const std::uint64_t count = std::min(file.size(), bytes);
    Bytes tail(count);
    tail.resize(file.readAvailable(file.size() - count, tail));
    return tail;
}

/// Whether an entry on the container may begin here in some byte order; tells most bytes apart.
bool mayBeFirstEntry(const std::byte* at) noexcept {
    std::uint32_t object = 0;
    std::memcpy(&object, at, sizeof object);
    return object == containerObject || object == byteSwapped(containerObject);
}

bool isFirstEntry(const std::byte* at, OMFByteOrder order) noexcept {
    const auto property = loadUnsigned<std::uint32_t>(at + 4, order);
    return loadUnsigned<std::uint32_t>(at, order) == containerObject && property >= 2 &&
           property <= 6 && loadUnsigned<std::uint32_t>(at + 8, order) == 19;
}

}  // namespace

struct FoundTable::Layout {
    TablePlace place = TablePlace::label;
    std::uint64_t offset = 0;
    /// Bytes that may belong to it.
    std::uint64_t bytes = 0;
    std::uint64_t claimedBytes = 0;
    OMFByteOrder order = OMFByteOrder::little;
    /// Of the form of tokens; 0 for entries of fixed size.
    std::uint32_t blockBytes = 0;
};

/// Reads entries up to the first that makes no sense.
class FoundTable::Reader {
  public:
    Reader(FoundTable& table, const RandomAccessFile& file, const Layout& layout)
        : table_(table), fileSize_(file.size()), layout_(layout) {
        bytes_.resize(std::min(layout.bytes, readBytes));
        bytes_.resize(file.readAvailable(layout.offset, bytes_));
    }

    void read() {
        if (layout_.blockBytes == 0) {
            readEntries();
        } else {
            readTokens();
        }
        endValue();
        const auto byOffset = [](const Value& left, const Value& right) {
            return left.offset < right.offset;
        };
        std::stable_sort(table_.values_.begin(), table_.values_.end(), byOffset);
    }

  private:
    void readEntries() {
        for (std::size_t at = 0; bytes_.size() - at >= BentoEntry::size; at += BentoEntry::size) {
            const BentoEntry entry(bytes_.data() + at, layout_.order);
            if (entry.isTooLong() || !take(entry.item())) {
                return;
            }
            table_.sensibleBytes_ = at + BentoEntry::size;
        }
    }

    void readTokens() {
        BentoPackedItem state;
        std::size_t at = 0;
        while (at < bytes_.size()) {
            const BentoToken token(bytes_[at]);
            if (token.isPadding()) {
                ++at;
            } else if (token.isEndOfBlock()) {
                at = std::min<std::size_t>(bytes_.size(),
                                           bentoNextBlock<std::size_t>(at, layout_.blockBytes));
            } else {
                if (token.fault(bytes_.size() - at - 1) != BentoTokenFault::none) {
                    return;
                }
                const std::byte* const payload = bytes_.data() + at + 1;
                if (token.changesState()) {
                    token.changeState(payload, layout_.order, state);
                } else {
                    BentoPackedItem item = state;
                    token.setValue(payload, layout_.order, item);
                    if (!take(item)) {
                        return;
                    }
                }
                at += 1 + token.payloadSize();
            }
            table_.sensibleBytes_ = at;
        }
    }

    /// False for an item that makes no sense.
    bool take(const BentoPackedItem& item) {
        const bool isRange = item.kind == BentoPackedItem::Kind::range;
        const bool isInside =
            !isRange || (item.offset <= fileSize_ && item.length <= fileSize_ - item.offset);
        if (item.object == 0 || item.property == 0 || table_.pieces_.size() >= mostPieces ||
            (!isInside && item.object != containerObject)) {
            return false;
        }
        ++table_.entries_;
        if (item.object != object_ || item.property != property_) {
            endValue();
            object_ = item.object;
            property_ = item.property;
        }
        if (isRange && isInside) {
            if (item.length != 0) {
                table_.pieces_.push_back({item.offset, item.length});
            }
        } else {
            isPlain_ = isPlain_ && item.byteCount() == 0;
        }
        return true;
    }

    void endValue() {
        auto& pieces = table_.pieces_;
        std::uint64_t bytes = 0;
        bool isInBounds = true;
        for (std::size_t i = firstPiece_; i < pieces.size(); ++i) {
            isInBounds = isInBounds && pieces[i].length <= fileSize_ - bytes;
            bytes += isInBounds ? pieces[i].length : 0;
        }
        const bool holdsSound = isPlain_ && isInBounds && bytes >= shortestSound &&
                                object_ != containerObject && firstPiece_ < pieces.size();
        if (holdsSound) {
            table_.values_.push_back(
                {pieces[firstPiece_].offset, firstPiece_, pieces.size() - firstPiece_});
        } else {
            pieces.resize(firstPiece_);
        }
        firstPiece_ = pieces.size();
        isPlain_ = true;
    }

    FoundTable& table_;
    std::uint64_t fileSize_;
    const Layout& layout_;
    Bytes bytes_;
    std::uint32_t object_ = 0;
    std::uint32_t property_ = 0;
    std::size_t firstPiece_ = 0;
    /// No byte of the value stands in the table itself or is unknown.
    bool isPlain_ = true;
};

namespace {

/// The places at which a table may lie by a label at byte `label` of the file.
std::vector<std::pair<TablePlace, std::uint64_t>> placesOf(const BentoFooter& footer,
                                                           std::uint64_t label, bool isAtEnd) {
    std::vector<std::pair<TablePlace, std::uint64_t>> places;
    const std::uint64_t end =
        footer.hasExtendedFooter ? label - std::min<std::uint64_t>(label, bentoFooterSize) : label;
    if (footer.tocOffset < end && footer.tocSize <= end - footer.tocOffset) {
        places.emplace_back(isAtEnd ? TablePlace::label : TablePlace::earlierLabel,
                            footer.tocOffset);
    }
    if (footer.tocSize <= end && footer.tocOffset != end - footer.tocSize) {
        places.emplace_back(TablePlace::beforeLabel, end - footer.tocSize);
    }
    return places;
}

}  // namespace

FoundTable FoundTable::read(const RandomAccessFile& file, const Layout& layout) {
    FoundTable table;
    table.place_ = layout.place;
    table.offset_ = layout.offset;
    table.claimedBytes_ = layout.claimedBytes;
    Reader(table, file, layout).read();
    return table;
}

std::optional<FoundTable> FoundTable::in(const RandomAccessFile& file) {
    const Bytes tail = tailOf(file, searchedBytes);
    const std::uint64_t tailBegin = file.size() - std::min<std::uint64_t>(file.size(), tail.size());
    std::optional<FoundTable> best;
    const auto consider = [&](const Layout& layout) {
        FoundTable table = read(file, layout);
        if (table.entries_ != 0 && (!best || table.sensibleBytes_ > best->sensibleBytes_)) {
            best = std::move(table);
        }
    };
    if (const auto label = lastBentoFooter(tail)) {
        const std::uint64_t labelAt = tailBegin + *label;
        const std::uint64_t end = labelAt + bentoFooterSize;
        const auto reading = readBentoFooter(ByteView(tail).first(*label + bentoFooterSize), end);
        if (reading.footer && reading.footer->tocSize != 0) {
            const BentoFooter& footer = *reading.footer;
            for (const auto& [place, offset] : placesOf(footer, labelAt, end == file.size())) {
                if (!best || !best->isWhole()) {
                    consider({place, offset, footer.tocSize, footer.tocSize, footer.byteOrder,
                              footer.blockSize});
                }
            }
        }
    }
    int tries = 0;
    for (std::size_t at = tail.size(); !best && at-- > 0 && tries < mostTries;) {
        if (tail.size() - at < firstEntryBytes || !mayBeFirstEntry(tail.data() + at)) {
            continue;
        }
        for (const OMFByteOrder order : {OMFByteOrder::little, OMFByteOrder::big}) {
            if (!isFirstEntry(tail.data() + at, order)) {
                continue;
            }
            ++tries;
            const std::uint64_t entry = tailBegin + at;
            if (at > 0 && tail[at - 1] == std::byte{1}) {
                const std::uint64_t begin = entry - 1;
                consider({TablePlace::byItsLook, begin, file.size() - begin, 0, order, usualBlock});
            }
            consider({TablePlace::byItsLook, entry, file.size() - entry, 0, order, 0});
            if (best && best->entries_ < fewestEntries) {
                best.reset();
            }
        }
    }
    return best;
}

std::span<const BentoRange> FoundTable::valueAt(std::uint64_t offset) const noexcept {
    const auto first = std::lower_bound(
        values_.begin(), values_.end(), offset,
        [](const Value& value, std::uint64_t wanted) { return value.offset < wanted; });
    if (first == values_.end() || first->offset != offset ||
        (first + 1 != values_.end() && (first + 1)->offset == offset)) {
        return {};
    }
    return std::span(pieces_).subspan(first->firstPiece, first->pieceCount);
}

}  // namespace trellant::salvage
