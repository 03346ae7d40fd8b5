// SPDX-License-Identifier: Apache-2.0
#include "dump_contents.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <tuple>

namespace trellant::cli {

namespace {

constexpr std::size_t nameBytes = 512;
/// All names of one kind together: many objects may point at the same long text.
constexpr std::size_t allNamesBytes = 67'108'864;
constexpr std::size_t classBytes = 16;
constexpr std::size_t fewPieces = 16;

}  // namespace

bool leavesFile(const BentoPackedItem& item, std::uint64_t fileSize) noexcept {
    return item.kind == BentoPackedItem::Kind::range &&
           (item.offset > fileSize || item.length > fileSize - item.offset);
}

DumpContents::DumpContents(const std::string& path) : file_(path), footer_(lookAtFooter(file_)) {
    readItems();
    buildIndex();
    propertyNames_ = readNames(bentoPropertyNameProperty);
    indexPropertyNames();
    typeNames_ = readNames(bentoTypeNameProperty);
    settleModel();
    settleHeader();
}

void DumpContents::readItems() {
    if (!footer_.footer) {
        return;
    }
    valueOrder_ = footer_.footer->byteOrder;
    tocFault_ = readToc(file_, *footer_.footer, [this](const BentoPackedItem& item) {
        isCut_ = items_.size() == itemLimit;
        if (!isCut_) {
            items_.push_back(item);
        }
        return !isCut_;
    });
}

void DumpContents::buildIndex() {
    order_.resize(items_.size());
    std::iota(order_.begin(), order_.end(), 0U);
    const auto key = [this](std::uint32_t place) {
        return std::tuple(items_[place].object, items_[place].property, place);
    };
    std::sort(order_.begin(), order_.end(),
              [&](std::uint32_t left, std::uint32_t right) { return key(left) < key(right); });
    for (std::size_t place = 0; place < order_.size(); ++place) {
        const std::uint32_t object = items_[order_[place]].object;
        if (objects_.empty() || objects_.back() != object) {
            objects_.push_back(object);
            firstPlaces_.push_back(place);
        }
    }
    firstPlaces_.push_back(order_.size());
}

std::span<const std::uint32_t> DumpContents::placesOf(std::uint32_t object) const {
    const auto found = std::lower_bound(objects_.begin(), objects_.end(), object);
    if (found == objects_.end() || *found != object) {
        return {};
    }
    const auto rank = static_cast<std::size_t>(found - objects_.begin());
    return std::span(order_).subspan(firstPlaces_[rank],
                                     firstPlaces_[rank + 1] - firstPlaces_[rank]);
}

bool DumpContents::has(std::uint32_t object) const noexcept {
    return std::binary_search(objects_.begin(), objects_.end(), object);
}

std::span<const std::uint32_t> DumpContents::placesOf(std::uint32_t object,
                                                      std::uint32_t property) const {
    const auto places = placesOf(object);
    const auto first = std::partition_point(places.begin(), places.end(), [&](std::uint32_t place) {
        return items_[place].property < property;
    });
    const auto last = std::partition_point(first, places.end(), [&](std::uint32_t place) {
        return items_[place].property == property;
    });
    return {first, last};
}

std::vector<std::uint32_t> DumpContents::propertiesOf(std::uint32_t object) const {
    // The first item of each property stands first among its own.
    std::vector<std::uint32_t> firsts;
    for (const std::uint32_t place : placesOf(object)) {
        if (firsts.empty() || items_[firsts.back()].property != items_[place].property) {
            firsts.push_back(place);
        }
    }
    std::sort(firsts.begin(), firsts.end());
    std::vector<std::uint32_t> properties;
    properties.reserve(firsts.size());
    for (const std::uint32_t place : firsts) {
        properties.push_back(items_[place].property);
    }
    return properties;
}

std::optional<std::uint32_t> DumpContents::typeOf(std::uint32_t object,
                                                  std::uint32_t property) const {
    const auto places = placesOf(object, property);
    return places.empty() ? std::nullopt : std::optional(items_[places.front()].type);
}

DumpContents::Names DumpContents::readNames(std::uint32_t nameProperty) const {
    Names names;
    std::size_t total = 0;
    for (const std::uint32_t object : objects_) {
        const auto look =
            total > allNamesBytes ? std::nullopt : value(object, nameProperty, nameBytes);
        std::string name = look ? asciiCString(look->head) : std::string();
        if (!name.empty()) {
            total += name.size();
            names.emplace(object, std::move(name));
        }
    }
    return names;
}

std::string_view DumpContents::propertyName(std::uint32_t property) const {
    const auto found = propertyNames_.find(property);
    return found == propertyNames_.end() ? std::string_view() : found->second;
}

std::string_view DumpContents::typeName(std::uint32_t type) const {
    const auto found = typeNames_.find(type);
    return found == typeNames_.end() ? std::string_view() : found->second;
}

void DumpContents::indexPropertyNames() {
    for (const auto& [id, text] : propertyNames_) {
        const auto [smallest, isNew] = propertyIDs_.try_emplace(text, id);
        smallest->second = std::min(smallest->second, id);
    }
}

std::optional<std::uint32_t> DumpContents::propertyID(std::string_view name) const {
    const auto found = propertyIDs_.find(name);
    return found == propertyIDs_.end() ? std::nullopt : std::optional(found->second);
}

void DumpContents::settleModel() {
    classProperty_ = propertyID("OMFI:OOBJ:ObjClass");
    if (classProperty_) {
        model_ = ObjectModel::omf2;
        return;
    }
    // Before 2.0 an object named its class so, and its properties had no class in their names.
    classProperty_ = propertyID("OMFI:ObjID");
    if (classProperty_) {
        model_ = ObjectModel::omf1;
    }
}

void DumpContents::settleHeader() {
    const auto isHeader = [this](std::uint32_t object) { return classOf(object) == "HEAD"; };
    const auto found = std::find_if(objects_.begin(), objects_.end(), isHeader);
    if (found == objects_.end()) {
        return;
    }
    header_ = *found;
    const char* name = model_ == ObjectModel::omf2 ? "OMFI:HEAD:ByteOrder" : "OMFI:ByteOrder";
    const auto mark = value(*header_, name, 2);
    const std::string text = mark ? asciiCString(mark->head) : std::string();
    if (text == "MM") {
        valueOrder_ = OMFByteOrder::big;
    } else if (text == "II") {
        valueOrder_ = OMFByteOrder::little;
    }
}

std::string DumpContents::classOf(std::uint32_t object) const {
    if (!classProperty_) {
        return {};
    }
    if (const auto known = piecemealClasses_.find(object); known != piecemealClasses_.end()) {
        return known->second;
    }
    const auto look = value(object, *classProperty_, classBytes);
    std::string text = look ? asciiCString(look->head) : std::string();
    if (look && look->pieces > fewPieces) {
        piecemealClasses_.emplace(object, text);
    }
    return text;
}

void DumpContents::append(const BentoPackedItem& item, std::size_t maxBytes,
                          ValueLook& look) const {
    const std::uint64_t count = item.byteCount();
    look.byteCount += std::min(count, std::numeric_limits<std::uint64_t>::max() - look.byteCount);
    const std::size_t start = look.head.size();
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(count, maxBytes - start));
    if (item.kind == BentoPackedItem::Kind::immediate) {
        const ByteView bytes = item.immediate().first(wanted);
        look.head.insert(look.head.end(), bytes.begin(), bytes.end());
    } else if (item.kind == BentoPackedItem::Kind::range) {
        look.leavesFile = leavesFile(item, file_.size());
        look.head.resize(start + wanted);
        const std::size_t got =
            file_.readAvailable(item.offset, std::span(look.head).subspan(start));
        look.head.resize(start + got);
    }
}

std::optional<ValueLook> DumpContents::value(std::uint32_t object, std::uint32_t property,
                                             std::size_t maxBytes) const {
    ValueLook look;
    for (const std::uint32_t place : placesOf(object, property)) {
        ++look.pieces;
        // What stands behind a gap is no part of what is shown.
        const bool hadGap = look.leavesFile;
        append(items_[place], hadGap ? look.head.size() : maxBytes, look);
        look.leavesFile = look.leavesFile || hadGap;
    }
    return look.pieces == 0 ? std::nullopt : std::optional(std::move(look));
}

std::optional<ValueLook> DumpContents::value(std::uint32_t object, std::string_view propertyName,
                                             std::size_t maxBytes) const {
    const auto property = propertyID(propertyName);
    return property ? value(object, *property, maxBytes) : std::nullopt;
}

}  // namespace trellant::cli
