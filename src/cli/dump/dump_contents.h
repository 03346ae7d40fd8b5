// SPDX-License-Identifier: Apache-2.0
// A container's objects, names and values, however damaged it is: what the readable part of the
// table of contents gives.
#pragma once

#include "dump_footer.h"
#include "dump_toc.h"

#include <trellant/base/keyed_hash.h>
#include <trellant/io/random_access_file.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace trellant::cli {

/// What the objects of a container are.
enum class ObjectModel { omf2, omf1, unknown };

/// A value as far as it was read.
struct ValueLook {
    /// Of the whole value.
    std::uint64_t byteCount = 0;
    Bytes head;
    std::size_t pieces = 0;
    /// A piece lies outside the file, and `head` ends before it.
    bool leavesFile = false;
};

/// The item names bytes that do not lie wholly in a file of so many.
[[nodiscard]] bool leavesFile(const BentoPackedItem& item, std::uint64_t fileSize) noexcept;

class DumpContents {
  public:
    /// Items beyond this are not looked at: a table can name more than any memory holds.
    static constexpr std::size_t itemLimit = 16'000'000;

    /// Throws FileSystemError when the file cannot be opened, nothing for what is in it.
    explicit DumpContents(const std::string& path);

    [[nodiscard]] const RandomAccessFile& file() const noexcept { return file_; }
    [[nodiscard]] const FooterLook& footer() const noexcept { return footer_; }
    [[nodiscard]] const std::optional<TocFault>& tocFault() const noexcept { return tocFault_; }
    /// The table has more than itemLimit items.
    [[nodiscard]] bool isCut() const noexcept { return isCut_; }

    /// In table order.
    [[nodiscard]] std::span<const BentoPackedItem> items() const noexcept { return items_; }
    /// Every object that has an item, ascending.
    [[nodiscard]] std::span<const std::uint32_t> objects() const noexcept { return objects_; }
    [[nodiscard]] bool has(std::uint32_t object) const noexcept;
    /// The properties of an object, in the order of their first items.
    [[nodiscard]] std::vector<std::uint32_t> propertiesOf(std::uint32_t object) const;
    /// The type that the first item of a value has; absent when there is none.
    [[nodiscard]] std::optional<std::uint32_t> typeOf(std::uint32_t object,
                                                      std::uint32_t property) const;

    /// Names as the container gives them; empty for none.
    [[nodiscard]] std::string_view propertyName(std::uint32_t property) const;
    [[nodiscard]] std::string_view typeName(std::uint32_t type) const;
    [[nodiscard]] std::optional<std::uint32_t> propertyID(std::string_view name) const;
    [[nodiscard]] std::size_t propertyNameCount() const noexcept { return propertyNames_.size(); }
    [[nodiscard]] std::size_t typeNameCount() const noexcept { return typeNames_.size(); }

    [[nodiscard]] ObjectModel model() const noexcept { return model_; }
    /// The first object of class "HEAD".
    [[nodiscard]] std::optional<std::uint32_t> header() const noexcept { return header_; }
    /// Of values: as the header says, else as the footer does.
    [[nodiscard]] OMFByteOrder valueOrder() const noexcept { return valueOrder_; }
    /// The class text; empty for an object without one.
    [[nodiscard]] std::string classOf(std::uint32_t object) const;

    /// At most the first `maxBytes` of a value; absent when there is none.
    [[nodiscard]] std::optional<ValueLook> value(std::uint32_t object, std::uint32_t property,
                                                 std::size_t maxBytes) const;
    [[nodiscard]] std::optional<ValueLook> value(std::uint32_t object,
                                                 std::string_view propertyName,
                                                 std::size_t maxBytes) const;

  private:
    using Names = KeyedMap<std::uint32_t, std::string>;

    void readItems();
    void buildIndex();
    [[nodiscard]] std::span<const std::uint32_t> placesOf(std::uint32_t object) const;
    [[nodiscard]] std::span<const std::uint32_t> placesOf(std::uint32_t object,
                                                          std::uint32_t property) const;
    [[nodiscard]] Names readNames(std::uint32_t nameProperty) const;
    void indexPropertyNames();
    /// Adds a piece to a value, and what `maxBytes` leaves of its bytes.
    void append(const BentoPackedItem& item, std::size_t maxBytes, ValueLook& look) const;
    void settleModel();
    void settleHeader();

    RandomAccessFile file_;
    FooterLook footer_;
    std::optional<TocFault> tocFault_;
    bool isCut_ = false;
    std::vector<BentoPackedItem> items_;
    /// Positions in items_, by object, then by property, then in table order.
    std::vector<std::uint32_t> order_;
    std::vector<std::uint32_t> objects_;
    /// The first place in order_ of each object, and the end behind the last.
    std::vector<std::size_t> firstPlaces_;
    Names propertyNames_;
    /// The smallest object of each name; views into propertyNames_.
    KeyedMap<std::string_view, std::uint32_t> propertyIDs_;
    Names typeNames_;
    ObjectModel model_ = ObjectModel::unknown;
    std::optional<std::uint32_t> classProperty_;
    /// Class texts in many pieces, by object: lists may name one object a million times.
    mutable KeyedMap<std::uint32_t, std::string> piecemealClasses_;
    std::optional<std::uint32_t> header_;
    OMFByteOrder valueOrder_ = OMFByteOrder::little;
};

}  // namespace trellant::cli
