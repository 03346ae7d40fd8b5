// SPDX-License-Identifier: Apache-2.0
// A Bento container: objects that hold properties, each with one value that lies in one or more
// pieces in the file. Opened whole or not at all, read only ever after; safe to share.
#pragma once

#include <trellant/io/bento_packed_item.h>
#include <trellant/io/bento_types.h>
#include <trellant/io/random_access_file.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

/// One opened container. Everything it hands out by reference or view lives as long as it does.
class BentoContainer {
  public:
    /// Cap in bytes of a value read whole into memory when the caller names none.
    static constexpr std::int64_t defaultValueLimit = 8'388'608;
    /// Cap in bytes of a property or type name.
    static constexpr std::int64_t nameLimit = 131'072;

    /// Reads footer, table of contents and name tables. Throws OMFIOError for each structural
    /// fault, FileSystemError when the system refuses.
    explicit BentoContainer(const std::string& path);
    /// A property that a replaced table names.
    struct NamedProperty {
        std::uint32_t number = 0;
        std::string_view name;
    };
    /// The file of `source` by another table: `items` in table order, their ranges in bytes of the
    /// file, unchecked as those of a table are, and the properties that they name. For those who
    /// present one model of objects as another. What tableItems() gives stays the file's own.
    BentoContainer(BentoContainer&& source, std::span<const BentoPackedItem> items,
                   std::span<const NamedProperty> properties);
    ~BentoContainer();
    BentoContainer(const BentoContainer&) = delete;
    BentoContainer& operator=(const BentoContainer&) = delete;
    /// One that was moved from may only be destroyed.
    BentoContainer(BentoContainer&& source) noexcept;
    BentoContainer& operator=(BentoContainer&&) = delete;

    /// The open file.
    [[nodiscard]] const RandomAccessFile& file() const noexcept;
    /// Its footer, checked against the file's size.
    [[nodiscard]] const BentoFooter& footer() const noexcept;

    /// Every item in table order, for a look at the table itself: it is read again for each call,
    /// and takes 48 bytes an item. Throws as the constructor does.
    [[nodiscard]] std::vector<BentoTOCItem> tableItems() const;
    /// Items of the table as it is held.
    [[nodiscard]] std::size_t itemCount() const noexcept;
    /// The items of one value as they are held, in table order; lives as long as the container.
    [[nodiscard]] std::span<const BentoPackedItem> packedItems(
        std::uint32_t object, std::uint32_t property) const noexcept;
    /// The items of one value in table order, without those that add no bytes and follow another
    /// of the same value that is no reference list; empty when there are none.
    [[nodiscard]] std::vector<BentoTOCItem> items(std::uint32_t object,
                                                  std::uint32_t property) const;
    [[nodiscard]] std::vector<BentoTOCItem> items(std::uint32_t object,
                                                  std::string_view propertyName) const;

    /// Every distinct object ID, ascending. Lives as long as the container.
    [[nodiscard]] std::span<const std::uint32_t> objectIDs() const noexcept;
    /// The position of `object` in objectIDs(); absent when it has no item.
    [[nodiscard]] std::optional<std::size_t> objectIndex(std::uint32_t object) const noexcept;

    /// The name that a property-name or type-name object carries; absent when there is none.
    [[nodiscard]] std::optional<std::string_view> propertyName(std::uint32_t property) const;
    [[nodiscard]] std::optional<std::string_view> typeName(std::uint32_t type) const;
    /// The ID of a name; the smallest when several objects carry it, absent when none does.
    [[nodiscard]] std::optional<std::uint32_t> propertyID(std::string_view name) const;
    [[nodiscard]] std::optional<std::uint32_t> typeID(std::string_view name) const;

    /// The whole value: all pieces in table order. Absent when the object has no such property;
    /// throws OMFIOError unsupported beyond `maxBytes` and the file's errors.
    [[nodiscard]] std::optional<Bytes> valueData(std::uint32_t object,
                                                 std::string_view propertyName,
                                                 std::int64_t maxBytes = defaultValueLimit) const;
    [[nodiscard]] std::optional<Bytes> valueData(std::uint32_t object, std::uint32_t property,
                                                 std::int64_t maxBytes = defaultValueLimit) const;
    /// At most the first `maxBytes` bytes of a value of any size, reading no more than those; a
    /// negative number is malformed. Absent and throwing as valueData otherwise, without its cap.
    [[nodiscard]] std::optional<Bytes> valuePrefix(std::uint32_t object,
                                                   std::string_view propertyName,
                                                   std::int64_t maxBytes) const;
    /// The value's pieces without reference lists; empty when there is none.
    [[nodiscard]] std::vector<BentoValueSegment> valueSegments(std::uint32_t object,
                                                               std::string_view propertyName) const;
    /// Writes the value into a new file (RandomAccessFile::copy); false, touching nothing, when
    /// there are no pieces to copy. Throws as the copy does.
    [[nodiscard]] bool copyValue(std::uint32_t object, std::string_view propertyName,
                                 const std::string& destination) const;
    /// How many bytes copyValue would write at most; 0 when there is nothing to copy. A piece
    /// counts no more than the file's size, since none that reaches beyond its end is copied.
    [[nodiscard]] std::uint64_t copiedBytes(std::uint32_t object,
                                            std::string_view propertyName) const;

    /// The fast path for small values: the whole value into `into`, served from cached blocks.
    /// Gives the value's bytes, or nothing when it is absent, longer than `into` or unreadable.
    [[nodiscard]] std::optional<std::span<const std::byte>> smallValue(
        std::uint32_t object, std::uint32_t property, std::span<std::byte> into) const noexcept;

    /// How much was read of long values so far, by all reads above: the bytes of those of more than
    /// 64, and 16 for each piece where there are more than 8. For those who bound the work that a
    /// file asks for.
    [[nodiscard]] std::uint64_t longReads() const noexcept;

  private:
    struct Contents;
    std::unique_ptr<Contents> contents_;
};

}  // namespace trellant
