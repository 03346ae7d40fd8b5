// SPDX-License-Identifier: Apache-2.0
#include "presented_table.h"

#include <trellant/base/byte_load.h>
#include <trellant/io/errors.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <limits>
#include <utility>

namespace trellant {

namespace {

/// Properties are numbered as OMFProperty counts them, from 1.
constexpr std::uint32_t numberOf(OMFProperty property) {
    return static_cast<std::uint32_t>(property) + 1;
}

template <typename Unsigned>
std::array<std::byte, sizeof(Unsigned)> stored(Unsigned value, OMFByteOrder order) {
    const bool isNative =
        (order == OMFByteOrder::little) == (std::endian::native == std::endian::little);
    return std::bit_cast<std::array<std::byte, sizeof(Unsigned)>>(isNative ? value
                                                                           : byteSwapped(value));
}

}  // namespace

OMFObject PresentedTable::newObject() {
    if (lastObject_ == std::numeric_limits<std::uint32_t>::max()) {
        throw OMFIOError::unsupported("no object numbers left for what OMF 1.x has no objects of");
    }
    return OMFObject{++lastObject_};
}

void PresentedTable::piece(OMFObject object, OMFProperty property, ByteView bytes) {
    BentoPackedItem item;
    item.object = number(object);
    item.property = numberOf(property);
    item.setImmediate(bytes.data(), bytes.size());
    items_.push_back(item);
}

void PresentedTable::classID(OMFObject object, std::string_view text) {
    this->text(object, OMFProperty::objClass, text);
}

void PresentedTable::text(OMFObject object, OMFProperty property, std::string_view text) {
    const ByteView bytes = std::as_bytes(std::span(text));
    for (std::size_t at = 0; at < bytes.size(); at += BentoPackedItem::immediateLimit) {
        piece(object, property,
              bytes.subspan(at, std::min(bytes.size() - at, BentoPackedItem::immediateLimit)));
    }
}

void PresentedTable::number16(OMFObject object, OMFProperty property, std::uint16_t value) {
    piece(object, property, stored(value, order_));
}

void PresentedTable::number32(OMFObject object, OMFProperty property, std::uint32_t value) {
    piece(object, property, stored(value, order_));
}

void PresentedTable::number64(OMFObject object, OMFProperty property, std::int64_t value) {
    const auto bytes = stored(static_cast<std::uint64_t>(value), order_);
    piece(object, property, ByteView(bytes).first(4));
    piece(object, property, ByteView(bytes).last(4));
}

void PresentedTable::rational(OMFObject object, OMFProperty property, OMFRationalValue value) {
    number32(object, property, static_cast<std::uint32_t>(value.numerator));
    number32(object, property, static_cast<std::uint32_t>(value.denominator));
}

void PresentedTable::uid(OMFObject object, OMFProperty property, const OMFUID& value) {
    for (const std::uint32_t word : {value.a, value.b, value.c}) {
        number32(object, property, word);
    }
}

void PresentedTable::references(OMFObject object, OMFProperty property,
                                std::span<const OMFObject> targets) {
    // Without a count: a list of OMF 2.x needs none.
    for (const OMFObject target : targets) {
        if (target != OMFObject::none) {
            reference(object, property, target);
        }
    }
}

void PresentedTable::copy(OMFObject object, OMFProperty property,
                          std::span<const BentoPackedItem> pieces) {
    for (BentoPackedItem item : pieces) {
        item.object = number(object);
        item.property = numberOf(property);
        items_.push_back(item);
    }
}

BentoContainer PresentedTable::over(BentoContainer container) const {
    std::vector<BentoContainer::NamedProperty> properties;
    properties.reserve(omfPropertyCount);
    for (std::size_t i = 0; i < omfPropertyCount; ++i) {
        const auto property = static_cast<OMFProperty>(i);
        properties.push_back({numberOf(property), nameOf(property)});
    }
    return {std::move(container), items_, properties};
}

}  // namespace trellant
