// SPDX-License-Identifier: Apache-2.0
// Describes a container as objects with property values and lays them out as a file, always the
// same bytes for the same description.
#pragma once

#include <trellant/io/bento_types.h>
#include <trellant/io/byte_readers.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <trellant_testing/container_image.h>
#include <vector>

namespace trellant::testing {

using ObjectID = std::uint32_t;

enum class FileLayout {
    /// Each value in one piece; the table sorted by object and property.
    simple,
    /// As workstations write: a reference is a reference-list item and the value after it; a list
    /// of n references is one piece with the count and the first, and n - 1 continued pieces that
    /// lie scattered between other values; the table is sorted by object only; long values start
    /// at odd offsets; the container describes itself in object 1.
    real,
};

class ContainerBuilder {
  public:
    struct Options {
        OMFByteOrder byteOrder = OMFByteOrder::little;
        TocForm form = TocForm::compressed;
        FileLayout layout = FileLayout::simple;
        std::uint16_t blockSizeKiB = 1;
        bool extendedFooter = false;
    };

    ContainerBuilder() = default;
    explicit ContainerBuilder(const Options& options) : options_(options) {}

    [[nodiscard]] const Options& options() const noexcept { return options_; }

    /// The object that carries the name, made on first use from 65536 upwards.
    ObjectID propertyID(std::string_view name);
    ObjectID typeID(std::string_view name);
    /// A number that no object has, from 1 upwards.
    ObjectID newObject();

    /// Sets a value in place of an earlier one. Up to 4 bytes stand in the table itself.
    ContainerBuilder& set(ObjectID object, std::string_view property, Bytes value,
                          std::string_view type = {});
    /// The same, in the file however short.
    ContainerBuilder& setInFile(ObjectID object, std::string_view property, Bytes value,
                                std::string_view type = {});
    /// A value in pieces, all but the last marked as continued.
    ContainerBuilder& setPieces(ObjectID object, std::string_view property,
                                std::vector<Bytes> pieces);
    /// References, numbers in `order`; the form depends on the layout.
    ContainerBuilder& setReference(ObjectID object, std::string_view property, ObjectID target,
                                   OMFByteOrder order);
    ContainerBuilder& setReferences(ObjectID object, std::string_view property,
                                    const std::vector<ObjectID>& targets, OMFByteOrder order);
    ContainerBuilder& remove(ObjectID object, std::string_view property);
    [[nodiscard]] bool has(ObjectID object, std::string_view property) const;

    /// An item as it stands, behind those of the values.
    ContainerBuilder& addItem(const BentoTOCItem& item);
    ContainerBuilder& addItem(ObjectID object, std::string_view property, BentoStorage storage,
                              bool continued = false);

    [[nodiscard]] ContainerImage image() const;
    [[nodiscard]] Bytes build() const { return image().bytes(); }

  private:
    enum class Placement { automatic, inFile };
    struct Value {
        ObjectID object = 0;
        ObjectID property = 0;
        ObjectID type = 0;
        std::vector<Bytes> pieces{};
        Placement placement = Placement::automatic;
        /// The reference-list object of a reference property in the real layout, else 0.
        ObjectID referenceList = 0;
        bool scattered = false;
    };
    class Layout;

    ObjectID nameID(std::map<std::string, ObjectID, std::less<>>& names, ObjectID nameProperty,
                    std::string_view name);
    void store(Value value);
    ContainerBuilder& setReferencePieces(ObjectID object, std::string_view property,
                                         std::vector<Bytes> pieces,
                                         const std::vector<ObjectID>& targets, OMFByteOrder order);

    Options options_;
    std::map<std::string, ObjectID, std::less<>> propertyIDs_;
    std::map<std::string, ObjectID, std::less<>> typeIDs_;
    std::vector<Value> values_;
    /// Where the value of an (object, property) stands in values_.
    std::map<std::pair<ObjectID, ObjectID>, std::size_t> places_;
    std::vector<BentoTOCItem> extraItems_;
    ObjectID nextName_ = 65'536;
    ObjectID nextObject_ = 1;
    ObjectID nextReferenceList_ = 131'072;
};

}  // namespace trellant::testing
