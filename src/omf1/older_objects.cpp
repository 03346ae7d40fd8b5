// SPDX-License-Identifier: Apache-2.0
#include "older_objects.h"

#include <trellant/io/byte_readers.h>
#include <trellant/io/errors.h>
#include <trellant/omf/names.h>

#include <algorithm>
#include <limits>

namespace trellant {

namespace {

constexpr std::size_t classLimit = 16;
/// Small values stand in one piece; one in more than these is none. Each may be asked for often.
constexpr std::size_t mostPieces = 16;
constexpr std::uint64_t listLimit = 16'777'216;
constexpr std::size_t countBytes = 2;
constexpr std::size_t referenceBytes = 8;
constexpr std::size_t uidBytes = 12;

std::uint64_t allowedEntries(const BentoContainer& container) {
    constexpr auto largest = std::numeric_limits<std::uint64_t>::max();
    const std::uint64_t ofItems = OlderObjects::timesTheItems * container.itemCount();
    const std::uint64_t ofBytes = container.file().size() / OlderObjects::bytesOfEntry;
    const std::uint64_t room = largest - OlderObjects::extraEntries - ofBytes;
    return std::min(ofItems, room) + ofBytes + OlderObjects::extraEntries;
}

}  // namespace

OlderObjects::OlderObjects(const BentoContainer& container)
    : container_(container), entriesLeft_(allowedEntries(container)) {
    for (std::size_t i = 0; i < olderPropertyCount; ++i) {
        propertyIDs_.at(i) = container_.propertyID(olderPropertyNames.at(i));
    }
    byteOrder_ = container_.footer().byteOrder;
    findHeader();
}

bool OlderObjects::areIn(const BentoContainer& container) {
    return !container.propertyID(nameOf(OMFProperty::objClass)) &&
           container.propertyID(nameOf(OlderProperty::objectClass));
}

void OlderObjects::findHeader() {
    const auto ids = container_.objectIDs();
    const auto found = std::find_if(ids.begin(), ids.end(), [this](std::uint32_t id) {
        return classOf(OMFObject{id}) == "HEAD";
    });
    if (found == ids.end()) {
        return;
    }
    header_ = OMFObject{*found};
    std::array<std::byte, 2> mark{};
    if (!readExactly(header_, OlderProperty::byteOrder, mark) || mark[0] != mark[1]) {
        return;
    }
    if (mark[0] == std::byte{'M'} || mark[0] == std::byte{'I'}) {
        byteOrder_ = mark[0] == std::byte{'M'} ? OMFByteOrder::big : OMFByteOrder::little;
        saysByteOrder_ = true;
    }
}

std::span<const BentoPackedItem> OlderObjects::pieces(OMFObject object,
                                                      OlderProperty property) const noexcept {
    const auto id = propertyIDs_[static_cast<std::size_t>(property)];
    return id ? container_.packedItems(number(object), *id) : std::span<const BentoPackedItem>();
}

bool OlderObjects::has(OMFObject object, OlderProperty property) const noexcept {
    return !pieces(object, property).empty();
}

std::string OlderObjects::classOf(OMFObject object) const {
    std::array<std::byte, classLimit> buffer{};
    const auto run = pieces(object, OlderProperty::objectClass);
    if (run.empty() || run.size() > mostPieces) {
        return {};
    }
    const auto value = container_.smallValue(number(object), run.front().property, buffer);
    return value ? asciiCString(*value) : std::string();
}

bool OlderObjects::readExactly(OMFObject object, OlderProperty property,
                               std::span<std::byte> buffer) const noexcept {
    const auto run = pieces(object, property);
    if (run.empty() || run.size() > mostPieces) {
        return false;
    }
    const auto value = container_.smallValue(number(object), run.front().property, buffer);
    return value && value->size() == buffer.size();
}

std::optional<bool> OlderObjects::boolean(OMFObject object, OlderProperty property) const noexcept {
    std::array<std::byte, 1> bytes{};
    if (!readExactly(object, property, bytes) || bytes[0] > std::byte{1}) {
        return std::nullopt;
    }
    return bytes[0] == std::byte{1};
}

std::optional<std::uint16_t> OlderObjects::shortNumber(OMFObject object,
                                                       OlderProperty property) const noexcept {
    std::array<std::byte, 2> bytes{};
    if (!readExactly(object, property, bytes)) {
        return std::nullopt;
    }
    return u16(bytes, 0, byteOrder_);
}

std::optional<std::int32_t> OlderObjects::longNumber(OMFObject object,
                                                     OlderProperty property) const noexcept {
    std::array<std::byte, 4> bytes{};
    if (!readExactly(object, property, bytes)) {
        return std::nullopt;
    }
    return i32(bytes, 0, byteOrder_);
}

std::optional<OMFRationalValue> OlderObjects::rate(OMFObject object,
                                                   OlderProperty property) const noexcept {
    std::array<std::byte, 8> bytes{};
    if (!readExactly(object, property, bytes)) {
        return std::nullopt;
    }
    const OMFRationalValue value{i32(bytes, 0, byteOrder_), i32(bytes, 4, byteOrder_)};
    return value.numerator > 0 && value.denominator > 0 ? std::optional(value) : std::nullopt;
}

OMFUID OlderObjects::uidAt(ByteView bytes, std::size_t offset) const {
    const auto at = static_cast<std::int64_t>(offset);
    return {u32(bytes, at, byteOrder_), u32(bytes, at + 4, byteOrder_),
            u32(bytes, at + 8, byteOrder_)};
}

std::optional<OMFUID> OlderObjects::uid(OMFObject object, OlderProperty property) const noexcept {
    std::array<std::byte, uidBytes> bytes{};
    if (!readExactly(object, property, bytes)) {
        return std::nullopt;
    }
    return uidAt(bytes, 0);
}

std::optional<OMFObject> OlderObjects::referenceAt(ByteView bytes, std::size_t offset) const {
    const OMFByteOrder order = container_.footer().byteOrder;
    const auto at = static_cast<std::int64_t>(offset);
    const OMFObject object{u32(bytes, at, order)};
    // What the second word may say is not known.
    if (object == OMFObject::none || u32(bytes, at + 4, order) != 0) {
        return std::nullopt;
    }
    return object;
}

std::optional<OMFObject> OlderObjects::reference(OMFObject object,
                                                 OlderProperty property) const noexcept {
    std::array<std::byte, referenceBytes> bytes{};
    return readExactly(object, property, bytes) ? referenceAt(bytes, 0) : std::nullopt;
}

std::optional<Bytes> OlderObjects::list(OMFObject object, OlderProperty property,
                                        std::size_t entryBytes) {
    const auto run = pieces(object, property);
    std::uint64_t size = 0;
    count(run.size());
    for (const BentoPackedItem& item : run) {
        if (item.byteCount() > listLimit - size) {
            return std::nullopt;
        }
        size += item.byteCount();
    }
    if (size < countBytes || (size - countBytes) % entryBytes != 0) {
        return std::nullopt;
    }
    const std::uint64_t entries = (size - countBytes) / entryBytes;
    count(entries);
    try {
        auto bytes = container_.valueData(number(object), run.front().property,
                                          static_cast<std::int64_t>(listLimit));
        if (!bytes || u16(*bytes, 0, byteOrder_) != entries) {
            return std::nullopt;
        }
        bytes->erase(bytes->begin(), bytes->begin() + countBytes);
        return bytes;
    } catch (const OMFIOError&) {
        return std::nullopt;
    } catch (const FileSystemError&) {
        return std::nullopt;
    }
}

std::optional<std::vector<OMFObject>> OlderObjects::references(OMFObject object,
                                                               OlderProperty property) {
    const auto bytes = list(object, property, referenceBytes);
    if (!bytes) {
        return std::nullopt;
    }
    std::vector<OMFObject> result;
    result.reserve(bytes->size() / referenceBytes);
    for (std::size_t offset = 0; offset < bytes->size(); offset += referenceBytes) {
        result.push_back(referenceAt(*bytes, offset).value_or(OMFObject::none));
    }
    return result;
}

std::optional<std::vector<IndexedMob>> OlderObjects::mobIndex(OMFObject object,
                                                              OlderProperty property) {
    constexpr std::size_t entryBytes = uidBytes + referenceBytes;
    const auto bytes = list(object, property, entryBytes);
    if (!bytes) {
        return std::nullopt;
    }
    std::vector<IndexedMob> result;
    result.reserve(bytes->size() / entryBytes);
    for (std::size_t offset = 0; offset < bytes->size(); offset += entryBytes) {
        result.push_back({uidAt(*bytes, offset),
                          referenceAt(*bytes, offset + uidBytes).value_or(OMFObject::none)});
    }
    return result;
}

std::optional<std::string> OlderObjects::version() const {
    std::array<std::byte, 2> bytes{};
    if (!readExactly(header_, OlderProperty::version, bytes)) {
        return std::nullopt;
    }
    return std::to_string(std::to_integer<unsigned>(bytes[0])) + "." +
           std::to_string(std::to_integer<unsigned>(bytes[1]));
}

void OlderObjects::count(std::uint64_t entries) {
    if (entries > entriesLeft_) {
        throw OMFIOError::unsupported("lists and texts of OMF 1.x lie over one another");
    }
    entriesLeft_ -= entries;
}

}  // namespace trellant
