// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <deque>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/container_builder.h>
#include <tuple>
#include <utility>

namespace trellant::testing {

namespace {

constexpr ObjectID typeNameProperty = 23;
constexpr ObjectID propertyNameProperty = 24;
constexpr ObjectID nameType = 21;
/// What a reference-list object holds: pairs of a reference and the object it means.
constexpr ObjectID referencePairsProperty = 31;
constexpr ObjectID referencePairsType = 32;
/// The container's own description, in object 1 of the real layout.
constexpr ObjectID containerObject = 1;
constexpr ObjectID tocProperty = 4;
constexpr ObjectID wholeFileProperty = 5;
constexpr ObjectID containerType = 19;
constexpr std::size_t longValue = 64;
constexpr std::size_t immediateLimit = 4;

BentoImmediate immediateOf(ByteView bytes) {
    BentoImmediate value{.count = static_cast<std::uint8_t>(bytes.size())};
    std::transform(bytes.begin(), bytes.end(), value.bytes.begin(),
                   [](std::byte byte) { return std::to_integer<std::uint8_t>(byte); });
    return value;
}

}  // namespace

/// Puts the pieces of all values into the data area and makes their items.
class ContainerBuilder::Layout {
  public:
    explicit Layout(const ContainerBuilder& builder) : builder_(builder) {}

    ContainerImage image() {
        places_.reserve(builder_.values_.size());
        for (const Value& value : builder_.values_) {
            places_.emplace_back(value.pieces.size());
            placePieces(value, places_.back());
        }
        while (!waiting_.empty()) {
            placeWaiting();
        }
        const Options& options = builder_.options_;
        ContainerImage image = ContainerImage::ofForm(options.form, options.byteOrder);
        image.data = std::move(data_);
        image.footer.blockSizeKiB = options.blockSizeKiB;
        image.footer.extended = options.extendedFooter;
        image.toc = encode(items(image));
        return image;
    }

  private:
    struct Waiting {
        const Bytes* piece;
        BentoStorage* place;
    };

    [[nodiscard]] bool isReal() const { return builder_.options_.layout == FileLayout::real; }

    void placePieces(const Value& value, std::vector<BentoStorage>& storages) {
        const std::size_t dataBefore = data_.size();
        for (std::size_t index = 0; index < value.pieces.size(); ++index) {
            const Bytes& piece = value.pieces[index];
            const bool fitsTable = value.pieces.size() == 1 && piece.size() <= immediateLimit &&
                                   value.placement == Placement::automatic;
            if (fitsTable) {
                storages[index] = immediateOf(piece);
            } else if (value.scattered && index > 0) {
                waiting_.push_back({&piece, &storages[index]});
            } else {
                storages[index] = placeInData(piece);
            }
        }
        // Others wait until something lies between them and the pieces before them.
        if (data_.size() > dataBefore && !value.scattered && !waiting_.empty()) {
            placeWaiting();
        }
    }

    void placeWaiting() {
        *waiting_.front().place = placeInData(*waiting_.front().piece);
        waiting_.pop_front();
    }

    BentoRange placeInData(const Bytes& piece) {
        if (isReal() && piece.size() > longValue && data_.size() % 2 == 0) {
            data_.push_back(std::byte{0});
        }
        const BentoRange range{data_.size(), piece.size()};
        data_.insert(data_.end(), piece.begin(), piece.end());
        return range;
    }

    /// The items of all values, sorted as the layout asks.
    std::vector<BentoTOCItem> valueItems() const {
        std::vector<BentoTOCItem> items;
        for (std::size_t index = 0; index < builder_.values_.size(); ++index) {
            const Value& value = builder_.values_[index];
            BentoTOCItem item;
            item.object = value.object;
            item.property = value.property;
            item.type = value.type;
            if (value.referenceList != 0) {
                item.segment.storage = BentoReferenceList{value.referenceList};
                items.push_back(item);
            }
            for (std::size_t piece = 0; piece < places_[index].size(); ++piece) {
                item.segment.storage = places_[index][piece];
                item.segment.continued = piece + 1 < places_[index].size();
                items.push_back(item);
            }
        }
        std::stable_sort(items.begin(), items.end(), [&](const auto& left, const auto& right) {
            return isReal() ? left.object < right.object
                            : std::tie(left.object, left.property) <
                                  std::tie(right.object, right.property);
        });
        items.insert(items.end(), builder_.extraItems_.begin(), builder_.extraItems_.end());
        return items;
    }

    std::vector<BentoTOCItem> items(const ContainerImage& image) const {
        std::vector<BentoTOCItem> items = valueItems();
        if (!isReal()) {
            return items;
        }
        const auto own = [](ObjectID property, BentoRange range) {
            return BentoTOCItem{containerObject, property, containerType, 0, {range, false}};
        };
        // Only the numbers change once the sizes are known, never the table's length.
        items.insert(items.begin(),
                     {own(tocProperty, {image.data.size(), 0}), own(wholeFileProperty, {})});
        const std::size_t tocSize = encode(items).size();
        const std::size_t footers = image.footer.extended ? 48 : 24;
        items[0].segment.storage = BentoRange{image.data.size(), tocSize};
        items[1].segment.storage = BentoRange{0, image.data.size() + tocSize + footers};
        return items;
    }

    [[nodiscard]] Bytes encode(const std::vector<BentoTOCItem>& items) const {
        const Options& options = builder_.options_;
        return encodeToc(options.form, options.byteOrder, options.blockSizeKiB, items);
    }

    const ContainerBuilder& builder_;
    Bytes data_;
    /// Where each piece of each value came to lie.
    std::vector<std::vector<BentoStorage>> places_;
    std::deque<Waiting> waiting_;
};

ObjectID ContainerBuilder::nameID(std::map<std::string, ObjectID, std::less<>>& names,
                                  ObjectID nameProperty, std::string_view name) {
    const auto [entry, isNew] = names.try_emplace(std::string(name), nextName_);
    if (isNew) {
        Bytes text = bytesOf(name);
        text.push_back(std::byte{0});
        store({.object = nextName_++,
               .property = nameProperty,
               .type = nameType,
               .pieces = {std::move(text)},
               .placement = Placement::inFile});
    }
    return entry->second;
}

ObjectID ContainerBuilder::propertyID(std::string_view name) {
    return nameID(propertyIDs_, propertyNameProperty, name);
}

ObjectID ContainerBuilder::typeID(std::string_view name) {
    return nameID(typeIDs_, typeNameProperty, name);
}

ObjectID ContainerBuilder::newObject() {
    return nextObject_++;
}

void ContainerBuilder::store(Value value) {
    const auto [place, isNew] = places_.try_emplace({value.object, value.property}, values_.size());
    if (isNew) {
        values_.push_back(std::move(value));
    } else {
        values_[place->second] = std::move(value);
    }
}

ContainerBuilder& ContainerBuilder::set(ObjectID object, std::string_view property, Bytes value,
                                        std::string_view type) {
    const ObjectID typeObject = type.empty() ? 0 : typeID(type);
    store({.object = object,
           .property = propertyID(property),
           .type = typeObject,
           .pieces = {std::move(value)}});
    return *this;
}

ContainerBuilder& ContainerBuilder::setInFile(ObjectID object, std::string_view property,
                                              Bytes value, std::string_view type) {
    set(object, property, std::move(value), type);
    values_[places_.at({object, propertyID(property)})].placement = Placement::inFile;
    return *this;
}

ContainerBuilder& ContainerBuilder::setPieces(ObjectID object, std::string_view property,
                                              std::vector<Bytes> pieces) {
    store({.object = object, .property = propertyID(property), .pieces = std::move(pieces)});
    return *this;
}

ContainerBuilder& ContainerBuilder::setReferencePieces(ObjectID object, std::string_view property,
                                                       std::vector<Bytes> pieces,
                                                       const std::vector<ObjectID>& targets,
                                                       OMFByteOrder order) {
    if (options_.layout == FileLayout::simple || targets.empty()) {
        Bytes whole;
        for (const Bytes& piece : pieces) {
            whole.insert(whole.end(), piece.begin(), piece.end());
        }
        return set(object, property, std::move(whole));
    }
    const ObjectID list = nextReferenceList_++;
    std::vector<Bytes> pairs;
    for (const ObjectID target : targets) {
        pairs.push_back(ByteWriter(order).u32(target).u32(target).written());
    }
    store({.object = object,
           .property = propertyID(property),
           .pieces = std::move(pieces),
           .referenceList = list,
           .scattered = targets.size() > 1});
    store({.object = list,
           .property = referencePairsProperty,
           .type = referencePairsType,
           .pieces = std::move(pairs)});
    return *this;
}

ContainerBuilder& ContainerBuilder::setReference(ObjectID object, std::string_view property,
                                                 ObjectID target, OMFByteOrder order) {
    return setReferencePieces(object, property, {ByteWriter(order).u32(target).written()}, {target},
                              order);
}

ContainerBuilder& ContainerBuilder::setReferences(ObjectID object, std::string_view property,
                                                  const std::vector<ObjectID>& targets,
                                                  OMFByteOrder order) {
    ByteWriter first(order);
    first.u16(static_cast<std::uint16_t>(targets.size()));
    if (!targets.empty()) {
        first.u32(targets.front());
    }
    std::vector<Bytes> pieces{first.written()};
    for (std::size_t index = 1; index < targets.size(); ++index) {
        pieces.push_back(ByteWriter(order).u32(targets[index]).written());
    }
    return setReferencePieces(object, property, std::move(pieces), targets, order);
}

ContainerBuilder& ContainerBuilder::remove(ObjectID object, std::string_view property) {
    const auto place = places_.find({object, propertyID(property)});
    if (place != places_.end()) {
        // Without pieces a value has no items; its place in the order stays.
        values_[place->second].pieces.clear();
        values_[place->second].referenceList = 0;
        places_.erase(place);
    }
    return *this;
}

bool ContainerBuilder::has(ObjectID object, std::string_view property) const {
    const auto id = propertyIDs_.find(property);
    return id != propertyIDs_.end() && places_.contains({object, id->second});
}

ContainerBuilder& ContainerBuilder::addItem(const BentoTOCItem& item) {
    extraItems_.push_back(item);
    return *this;
}

ContainerBuilder& ContainerBuilder::addItem(ObjectID object, std::string_view property,
                                            BentoStorage storage, bool continued) {
    return addItem({.object = object,
                    .property = propertyID(property),
                    .type = 0,
                    .generation = 0,
                    .segment = {storage, continued}});
}

ContainerImage ContainerBuilder::image() const {
    return Layout(*this).image();
}

}  // namespace trellant::testing
