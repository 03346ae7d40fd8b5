// SPDX-License-Identifier: Apache-2.0
// The objects of OMF 1.x, with strict typed reads: a value has exactly the bytes that its type has,
// or it cannot be read. Numbers are in the byte order that the header names, references in that of
// the container.
//
//   type           bytes
//   Boolean        1
//   Short          2
//   Long           4
//   ExactEditRate  8: numerator (4), denominator (4)
//   UID            12
//   ObjRef         8: object (4), zero (4)
//   ObjRefArray    count (2), then references
//   MobIndex       count (2), then entries of a UID and a reference
#pragma once

#include "older_names.h"

#include <trellant/io/bento_container.h>
#include <trellant/omf/values.h>

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace trellant {

/// An entry of a MobIndex.
struct IndexedMob {
    OMFUID mobID;
    OMFObject object = OMFObject::none;
};

class OlderObjects {
  public:
    /// Work that all lists and texts of a file may ask for: so many times its items, one for each
    /// of so many bytes, and these. Lists that do not lie over one another never reach that.
    static constexpr std::uint64_t timesTheItems = 16;
    static constexpr std::uint64_t bytesOfEntry = 4;
    static constexpr std::uint64_t extraEntries = 65'536;

    /// `container` must outlive this.
    explicit OlderObjects(const BentoContainer& container);

    /// Whether `container` holds the older model, and not OMF 2.x.
    [[nodiscard]] static bool areIn(const BentoContainer& container);

    [[nodiscard]] const BentoContainer& container() const noexcept { return container_; }
    [[nodiscard]] OMFByteOrder byteOrder() const noexcept { return byteOrder_; }
    /// The header says which byte order its values have.
    [[nodiscard]] bool saysByteOrder() const noexcept { return saysByteOrder_; }
    /// The first object of class "HEAD"; none when there is none.
    [[nodiscard]] OMFObject header() const noexcept { return header_; }

    /// Empty for what is no object of the model.
    [[nodiscard]] std::string classOf(OMFObject object) const;
    [[nodiscard]] bool has(OMFObject object, OlderProperty property) const noexcept;
    /// The pieces of a value.
    [[nodiscard]] std::span<const BentoPackedItem> pieces(OMFObject object,
                                                          OlderProperty property) const noexcept;

    /// Of one byte: 0 or 1.
    [[nodiscard]] std::optional<bool> boolean(OMFObject object,
                                              OlderProperty property) const noexcept;
    [[nodiscard]] std::optional<std::uint16_t> shortNumber(OMFObject object,
                                                           OlderProperty property) const noexcept;
    [[nodiscard]] std::optional<std::int32_t> longNumber(OMFObject object,
                                                         OlderProperty property) const noexcept;
    /// Greater than zero, both parts.
    [[nodiscard]] std::optional<OMFRationalValue> rate(OMFObject object,
                                                       OlderProperty property) const noexcept;
    [[nodiscard]] std::optional<OMFUID> uid(OMFObject object,
                                            OlderProperty property) const noexcept;
    [[nodiscard]] std::optional<OMFObject> reference(OMFObject object,
                                                     OlderProperty property) const noexcept;
    /// Entries that refer to nothing are none. These two count what they read, and throw
    /// OMFIOError unsupported past the bound.
    [[nodiscard]] std::optional<std::vector<OMFObject>> references(OMFObject object,
                                                                   OlderProperty property);
    [[nodiscard]] std::optional<std::vector<IndexedMob>> mobIndex(OMFObject object,
                                                                  OlderProperty property);
    /// "1.0"; absent when it cannot be read.
    [[nodiscard]] std::optional<std::string> version() const;

    /// Counts entries of lists and pieces of texts. Throws OMFIOError unsupported past the bound.
    void count(std::uint64_t entries);

  private:
    /// A value of exactly as many bytes as `buffer` has, in a few pieces.
    [[nodiscard]] bool readExactly(OMFObject object, OlderProperty property,
                                   std::span<std::byte> buffer) const noexcept;
    /// A counted list of entries of `entryBytes` each, without the count.
    [[nodiscard]] std::optional<Bytes> list(OMFObject object, OlderProperty property,
                                            std::size_t entryBytes);
    [[nodiscard]] std::optional<OMFObject> referenceAt(ByteView bytes, std::size_t offset) const;
    [[nodiscard]] OMFUID uidAt(ByteView bytes, std::size_t offset) const;
    void findHeader();

    const BentoContainer& container_;
    std::array<std::optional<std::uint32_t>, olderPropertyCount> propertyIDs_{};
    OMFByteOrder byteOrder_ = OMFByteOrder::little;
    bool saysByteOrder_ = false;
    OMFObject header_ = OMFObject::none;
    std::uint64_t entriesLeft_ = 0;
};

}  // namespace trellant
