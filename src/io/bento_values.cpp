// SPDX-License-Identifier: Apache-2.0
// The value of a property: the bytes of all its items, in table order.
#include "bento_contents.h"

#include <trellant/io/bento_container.h>
#include <trellant/io/errors.h>

#include <algorithm>
#include <limits>

namespace trellant {

namespace {

std::uint64_t saturatingSum(std::uint64_t left, std::uint64_t right) {
    const std::uint64_t room = std::numeric_limits<std::uint64_t>::max() - left;
    return left + std::min(right, room);
}

void append(Bytes& bytes, ByteView more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

}  // namespace

void BentoContainer::Contents::appendRange(Bytes& bytes, std::uint64_t offset,
                                           std::uint64_t length) const {
    if (offset > file.size() || length > file.size() - offset) {
        throw OMFIOError(OMFIOError::OutOfBounds{offset, length, file.size()});
    }
    const std::size_t start = bytes.size();
    bytes.resize(start + length);
    const std::span<std::byte> into = std::span(bytes).subspan(start);
    if (length > BentoBlockCache::readLimit || !cache.read(offset, into)) {
        file.read(offset, into);
    }
}

bool BentoContainer::Contents::readSmall(std::uint64_t offset,
                                         std::span<std::byte> into) const noexcept {
    if (into.size() <= BentoBlockCache::readLimit && cache.read(offset, into)) {
        return true;
    }
    return offset <= file.size() && file.readAvailable(offset, into) == into.size();
}

Bytes BentoContainer::Contents::value(BentoItemIndex::Run run, std::int64_t maxBytes) const {
    std::uint64_t total = 0;
    for (const BentoPackedItem& item : run) {
        total = saturatingSum(total, item.byteCount());
    }
    countRead(0, run.size());
    if (maxBytes < 0 || total > static_cast<std::uint64_t>(maxBytes)) {
        throw OMFIOError::unsupported("property value larger than in-memory limit");
    }
    Bytes bytes;
    // More than the file is long only where ranges overlap, and their bounds are not checked yet.
    bytes.reserve(std::min(total, file.size()));
    for (const BentoPackedItem& item : run) {
        if (item.kind == BentoPackedItem::Kind::range) {
            appendRange(bytes, item.offset, item.length);
        } else if (item.kind == BentoPackedItem::Kind::immediate) {
            append(bytes, item.immediate());
        }
    }
    countRead(bytes.size(), 0);
    return bytes;
}

std::optional<Bytes> BentoContainer::valueData(std::uint32_t object, std::uint32_t property,
                                               std::int64_t maxBytes) const {
    const BentoItemIndex::Run run = contents_->index.find(object, property);
    return run.empty() ? std::nullopt : std::optional(contents_->value(run, maxBytes));
}

std::optional<Bytes> BentoContainer::valueData(std::uint32_t object, std::string_view propertyName,
                                               std::int64_t maxBytes) const {
    const std::optional<std::uint32_t> property = propertyID(propertyName);
    return property ? valueData(object, *property, maxBytes) : std::nullopt;
}

std::optional<Bytes> BentoContainer::valuePrefix(std::uint32_t object,
                                                 std::string_view propertyName,
                                                 std::int64_t maxBytes) const {
    if (maxBytes < 0) {
        throw OMFIOError::malformed("negative prefix length");
    }
    const std::optional<std::uint32_t> property = propertyID(propertyName);
    const BentoItemIndex::Run run =
        property ? contents_->index.find(object, *property) : BentoItemIndex::Run{};
    if (run.empty()) {
        return std::nullopt;
    }
    const auto wanted = static_cast<std::uint64_t>(maxBytes);
    Bytes bytes;
    for (const BentoPackedItem& item : run) {
        if (bytes.size() >= wanted) {
            break;
        }
        const std::uint64_t count = std::min(item.byteCount(), wanted - bytes.size());
        if (item.kind == BentoPackedItem::Kind::range) {
            append(bytes, file().read(item.offset, static_cast<std::int64_t>(count)));
        } else if (item.kind == BentoPackedItem::Kind::immediate) {
            append(bytes, item.immediate().first(count));
        }
    }
    contents_->countRead(bytes.size(), run.size());
    return bytes;
}

std::uint64_t BentoContainer::longReads() const noexcept {
    return contents_->longReads.load(std::memory_order_relaxed);
}

std::vector<BentoValueSegment> BentoContainer::valueSegments(std::uint32_t object,
                                                             std::string_view propertyName) const {
    std::vector<BentoValueSegment> segments;
    for (const BentoTOCItem& item : items(object, propertyName)) {
        if (!std::holds_alternative<BentoReferenceList>(item.segment.storage)) {
            segments.push_back(item.segment);
        }
    }
    return segments;
}

bool BentoContainer::copyValue(std::uint32_t object, std::string_view propertyName,
                               const std::string& destination) const {
    const std::optional<std::uint32_t> property = propertyID(propertyName);
    if (!property) {
        return false;
    }
    // One piece at a time: a value may have millions.
    const BentoItemIndex::Run run = contents_->index.find(object, *property);
    const auto isPiece = [](const BentoPackedItem& item) {
        return item.kind != BentoPackedItem::Kind::referenceList;
    };
    auto next = std::find_if(run.begin(), run.end(), isPiece);
    if (next == run.end()) {
        return false;
    }
    file().copy(
        [&]() -> std::optional<BentoValueSegment> {
            if (next == run.end()) {
                return std::nullopt;
            }
            const BentoPackedItem& item = *next;
            next = std::find_if(next + 1, run.end(), isPiece);
            return item.segment();
        },
        destination);
    return true;
}

std::uint64_t BentoContainer::copiedBytes(std::uint32_t object,
                                          std::string_view propertyName) const {
    const std::optional<std::uint32_t> property = propertyID(propertyName);
    const BentoItemIndex::Run run =
        property ? contents_->index.find(object, *property) : BentoItemIndex::Run{};
    const std::uint64_t fileSize = file().size();
    std::uint64_t total = 0;
    for (const BentoPackedItem& item : run) {
        total = saturatingSum(total, std::min(item.byteCount(), fileSize));
    }
    return total;
}

std::optional<std::span<const std::byte>> BentoContainer::smallValue(
    std::uint32_t object, std::uint32_t property, std::span<std::byte> into) const noexcept {
    const BentoItemIndex::Run run = contents_->index.find(object, property);
    if (run.empty()) {
        return std::nullopt;
    }
    std::size_t filled = 0;
    for (const BentoPackedItem& item : run) {
        const std::uint64_t count = item.byteCount();
        if (count > into.size() - filled) {
            contents_->countRead(filled, static_cast<std::size_t>(&item - run.data()));
            return std::nullopt;
        }
        const std::span<std::byte> target = into.subspan(filled, count);
        if (item.kind == BentoPackedItem::Kind::immediate) {
            std::copy_n(item.immediate().begin(), count, target.begin());
        } else if (item.kind == BentoPackedItem::Kind::range &&
                   !contents_->readSmall(item.offset, target)) {
            return std::nullopt;
        }
        filled += count;
    }
    contents_->countRead(filled, run.size());
    return into.first(filled);
}

}  // namespace trellant
