// SPDX-License-Identifier: Apache-2.0
#include "container_stream.h"

#include <algorithm>
#include <limits>

namespace trellant::bench {

namespace {

constexpr ObjectID propertyNameProperty = 24;
constexpr ObjectID nameType = 21;
constexpr ObjectID referencePairsProperty = 31;
constexpr ObjectID referencePairsType = 32;
/// Followed by the names, as everywhere.
constexpr ObjectID headObject = 1;
constexpr ObjectID firstName = 65'536;
constexpr ObjectID firstObject = firstName + propertyNames.size();
constexpr std::size_t immediateLimit = 4;
/// A list of more references has no count before them.
constexpr std::size_t countedLimit = std::numeric_limits<std::uint16_t>::max();
constexpr std::size_t countSize = 2;
constexpr std::size_t referenceSize = 4;
constexpr std::size_t pairSize = 8;

/// Of at most `immediateLimit` bytes.
BentoImmediate immediateOf(std::string_view bytes) {
    BentoImmediate value;
    for (const char byte : bytes.substr(0, immediateLimit)) {
        value.bytes[value.count++] = static_cast<std::uint8_t>(byte);
    }
    return value;
}

}  // namespace

void ContainerStream::write(const std::string& path, const ContainerOptions& options,
                            const Description& description) {
    OutputFile file(path);
    ContainerStream stream(file, options);
    description(stream);
    stream.finishValues();
    stream.startTable();
    description(stream);
    stream.endObject();
    stream.table_->footer();
    file.finish();
}

ObjectID ContainerStream::idOf(Property property) const {
    // The order in which workstations number properties is not that in which objects set them.
    const auto index = static_cast<ObjectID>(property);
    return isReal() ? firstObject - 1 - index : firstName + index;
}

ObjectID ContainerStream::object(std::string_view classID) {
    endObject();
    if (current_ == headObject) {
        if (writesTable()) {
            nameItems();
        }
        next_ = firstObject;
    }
    current_ = next_++;
    value(Property::objClass, classID);
    return current_;
}

std::uint64_t ContainerStream::place(std::string_view bytes) {
    const std::uint64_t position = dataEnd_;
    if (!writesTable()) {
        file_.append(bytes);
    }
    dataEnd_ += bytes.size();
    return position;
}

void ContainerStream::item(ObjectID object, ObjectID property, ObjectID type,
                           const BentoStorage& storage, bool continued) {
    if (writesTable()) {
        table_->item({.object = object,
                      .property = property,
                      .type = type,
                      .generation = 0,
                      .segment = {storage, continued}});
    }
}

void ContainerStream::value(Property property, std::string_view bytes) {
    if (bytes.size() <= immediateLimit) {
        item(current_, idOf(property), 0, immediateOf(bytes));
    } else {
        item(current_, idOf(property), 0, BentoRange{place(bytes), bytes.size()});
    }
}

void ContainerStream::number(Property property, std::uint64_t value, std::size_t width) {
    this->value(property, bytesOf(value, width));
}

void ContainerStream::words(Property property, const std::vector<std::uint32_t>& words) {
    std::string bytes;
    for (const std::uint32_t word : words) {
        bytes += bytesOf(word, 4);
    }
    value(property, bytes);
}

void ContainerStream::reference(Property property, ObjectID target) {
    const std::string bytes = bytesOf(target, referenceSize);
    if (isReal()) {
        const ObjectID list = next_++;
        item(current_, idOf(property), 0, BentoReferenceList{list});
        pending_.push_back({list, std::nullopt, place(bytes + bytes)});
    }
    item(current_, idOf(property), 0, immediateOf(bytes));
}

ContainerStream::List ContainerStream::list(Property property) {
    const List list = nextList_++;
    if (!writesTable()) {
        lists_.emplace_back();
    }
    if (isReal()) {
        const ObjectID object = next_++;
        if (writesTable() && !lists_[list].entries.empty()) {
            item(current_, idOf(property), 0, BentoReferenceList{object});
        }
        pending_.push_back({object, list, 0});
    }
    if (writesTable()) {
        listItems(property, lists_[list]);
    }
    return list;
}

void ContainerStream::append(List list, ObjectID target) {
    auto& entries = lists_[list].entries;
    const std::string reference = bytesOf(target, referenceSize);
    if (!isReal()) {
        if (!writesTable()) {
            entries.push_back(target);
        }
        return;
    }
    // The first entry stands behind the count, which the end of the first run fills in.
    const std::uint64_t start = dataEnd_;
    const bool isFirst = writesTable() ? entries.front() == start + countSize : entries.empty();
    const std::uint64_t entry = isFirst ? place(bytesOf(1, countSize) + reference) + countSize
                                        : place(reference + reference + reference) + pairSize;
    if (isFirst) {
        place(reference + reference);
    }
    if (!writesTable()) {
        entries.push_back(entry);
    }
}

void ContainerStream::listItems(Property property, const ListRecord& record) {
    const auto& entries = record.entries;
    if (entries.empty()) {
        return;
    }
    if (!isReal()) {
        item(current_, idOf(property), 0, BentoRange{entries[0], entries[1]});
        return;
    }
    const std::uint64_t count = entries.size() <= countedLimit ? countSize : 0;
    for (std::size_t index = 0; index < entries.size(); ++index) {
        const std::uint64_t before = index == 0 ? count : 0;
        item(current_, idOf(property), 0,
             BentoRange{entries[index] - before, referenceSize + before},
             index + 1 < entries.size());
    }
}

void ContainerStream::pairItems(const PendingList& pending) {
    const auto pair = [&](std::uint64_t place, bool continued) {
        item(pending.object, referencePairsProperty, referencePairsType,
             BentoRange{place, pairSize}, continued);
    };
    if (!pending.list) {
        pair(pending.pair, false);
        return;
    }
    const auto& entries = lists_[*pending.list].entries;
    for (std::size_t index = 0; index < entries.size(); ++index) {
        pair(index == 0 ? entries[index] + referenceSize : entries[index] - pairSize,
             index + 1 < entries.size());
    }
}

void ContainerStream::endObject() {
    if (writesTable()) {
        for (const PendingList& pending : pending_) {
            pairItems(pending);
        }
    }
    pending_.clear();
}

void ContainerStream::longValue(Property property, const LongValue& value) {
    while (dataEnd_ % value.alignment != value.remainder) {
        place(std::string_view("\0", 1));
    }
    std::uint64_t offset = 0;
    const std::uint64_t start = dataEnd_;
    while (offset < value.byteCount) {
        std::string piece = value.piece(offset);
        piece.resize(static_cast<std::size_t>(
            std::min<std::uint64_t>(piece.size(), value.byteCount - offset)));
        const std::uint64_t where = place(piece);
        offset += piece.size();
        if (value.scattered) {
            item(current_, idOf(property), 0, BentoRange{where, piece.size()},
                 offset < value.byteCount);
            place("-");
        }
    }
    if (!value.scattered) {
        item(current_, idOf(property), 0, BentoRange{start, value.byteCount});
    }
}

void ContainerStream::writeNames() {
    namesPlace_ = dataEnd_;
    for (const std::string_view name : propertyNames) {
        place(std::string(name) + '\0');
    }
}

void ContainerStream::nameItems() {
    // By number; the texts stand in the order of the properties.
    std::vector<std::uint64_t> places;
    std::uint64_t next = namesPlace_;
    for (const std::string_view name : propertyNames) {
        places.push_back(next);
        next += name.size() + 1;
    }
    for (std::size_t number = 0; number < propertyNames.size(); ++number) {
        const std::size_t index = isReal() ? propertyNames.size() - 1 - number : number;
        item(firstName + static_cast<ObjectID>(number), propertyNameProperty, nameType,
             BentoRange{places[index], propertyNames[index].size() + 1});
    }
}

void ContainerStream::finishValues() {
    for (ListRecord& record : lists_) {
        auto& entries = record.entries;
        if (entries.empty()) {
            continue;
        }
        const std::string count =
            entries.size() <= countedLimit ? bytesOf(entries.size(), countSize) : std::string();
        if (!isReal()) {
            const std::uint64_t start = place(count);
            for (const std::uint64_t target : entries) {
                place(bytesOf(target, referenceSize));
            }
            entries = {start, dataEnd_ - start};
        } else if (entries.size() > 1 && !count.empty()) {
            file_.replace(entries.front() - countSize, count);
        }
    }
    endObject();
    writeNames();
}

void ContainerStream::startTable() {
    dataEnd_ = 0;
    current_ = 0;
    next_ = headObject;
    nextList_ = 0;
    table_.emplace(file_, options_.table, options_.byteOrder);
}

}  // namespace trellant::bench
