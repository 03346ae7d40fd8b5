// SPDX-License-Identifier: Apache-2.0
// The object model over a container: objects with classes, and forgiving typed reads.
//
// Every typed read takes an object and candidate properties, tries them in the given order and
// gives the first usable value. What is missing, too short, longer than the read's cap or
// unreadable moves on to the next candidate; with none left the result is absent (or empty).
// Typed reads never throw. Read only after opening; safe to share.
#pragma once

#include <trellant/io/bento_container.h>
#include <trellant/omf/mob_map.h>
#include <trellant/omf/names.h>
#include <trellant/omf/older_model.h>
#include <trellant/omf/values.h>

#include <array>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

/// One opened file. Texts and classes handed out as views live as long as it does.
class OMFDocument {
  public:
    /// Names of one value, the preferred first.
    using Candidates = std::initializer_list<OMFProperty>;
    using MobMap = OMFMobMap;

    /// Opens the file at `path`, reads every object's class once and settles header and byte
    /// order. Throws what the container throws, unsupported for a container that is no OMF 2.x
    /// object model and malformed when there is no header object.
    explicit OMFDocument(const std::string& path);
    /// The same for a container that is open already.
    explicit OMFDocument(BentoContainer container);
    /// The same for objects of an older model that `container` presents as those of OMF 2.x.
    OMFDocument(BentoContainer container, OMFOlderModel older);

    [[nodiscard]] const BentoContainer& bento() const noexcept { return bento_; }
    /// The byte order of property values.
    [[nodiscard]] OMFByteOrder byteOrder() const noexcept { return byteOrder_; }
    /// What the objects were before they were presented as those of OMF 2.x; absent for a file that
    /// is OMF 2.x.
    [[nodiscard]] const std::optional<OMFOlderModel>& olderModel() const noexcept { return older_; }
    /// The first object of class "HEAD".
    [[nodiscard]] OMFObject headerObject() const noexcept { return headerObject_; }

    /// The class text; absent when the object has none that can be read, empty when it is empty.
    [[nodiscard]] std::optional<std::string_view> classID(OMFObject object) const noexcept;
    /// The class as this program tells classes apart.
    [[nodiscard]] OMFClass classOf(OMFObject object) const noexcept;
    /// All objects of a class, ascending.
    [[nodiscard]] std::vector<OMFObject> objects(std::string_view ofClass) const;

    /// The first candidate whose value exists, as its bytes; throws the first read error and
    /// unsupported beyond `maxBytes`.
    [[nodiscard]] std::optional<Bytes> raw(
        OMFObject object, Candidates names,
        std::int64_t maxBytes = BentoContainer::defaultValueLimit) const;

    /// UTF-8; an empty text counts as missing. Cap 1 MiB.
    [[nodiscard]] std::optional<std::string> string(OMFObject object, Candidates names) const;
    /// Two bytes or more as they are; one byte as 0 to 255. Cap 8 bytes.
    [[nodiscard]] std::optional<std::int16_t> int16(OMFObject object, Candidates names) const;
    /// Four bytes or more; two or three as an unsigned 16-bit number. Cap 8 bytes.
    [[nodiscard]] std::optional<std::int32_t> int32(OMFObject object, Candidates names) const;
    /// Four bytes or more. Cap 8 bytes.
    [[nodiscard]] std::optional<std::uint32_t> uint32(OMFObject object, Candidates names) const;
    /// Eight bytes or more; four to seven as a signed 32-bit number. Cap 16 bytes.
    [[nodiscard]] std::optional<std::int64_t> int64(OMFObject object, Candidates names) const;
    /// Eight bytes or more; a zero denominator counts as missing. Cap 16 bytes.
    [[nodiscard]] std::optional<OMFRationalValue> rational(OMFObject object,
                                                           Candidates names) const;
    /// Twelve bytes or more. Cap 32 bytes.
    [[nodiscard]] std::optional<OMFUID> uid(OMFObject object, Candidates names) const;
    /// Four bytes or more; the reference 0 counts as missing. Cap 32 bytes.
    [[nodiscard]] std::optional<OMFObject> objectRef(OMFObject object, Candidates names) const;
    /// A counted list (16-bit count) or a plain one, references to 0 dropped; an empty list counts
    /// as missing. Cap 16 MiB.
    [[nodiscard]] std::vector<OMFObject> objectRefs(OMFObject object, Candidates names) const;

    /// From MobID to mob, and from MobID to media data; of several objects with one MobID the
    /// highest. Walks all objects: call once per run.
    [[nodiscard]] MobMap mobMap() const;
    [[nodiscard]] MobMap mediaDataMap() const;

  private:
    void open();
    void readClasses();
    void settleByteOrder();
    [[nodiscard]] std::uint32_t classIndex(OMFObject object) const noexcept;
    [[nodiscard]] std::string decodeString(ByteView bytes) const;
    [[nodiscard]] std::vector<OMFObject> decodeReferences(ByteView bytes) const;
    [[nodiscard]] MobMap mapOf(std::initializer_list<OMFClass> classes, OMFProperty uidName) const;

    /// The value into `buffer`, its size being the cap; absent as for every typed read.
    [[nodiscard]] std::optional<ByteView> smallValue(OMFObject object, OMFProperty name,
                                                     std::span<std::byte> buffer) const noexcept;
    /// The first usable result of `decode(bytes)` over the candidates, values up to `cap` bytes.
    template <std::size_t cap, class Decode>
    auto firstUsable(OMFObject object, Candidates names, const Decode& decode) const
        -> decltype(decode(ByteView{}));
    template <class Decode>
    auto firstUsableLarge(OMFObject object, Candidates names, std::int64_t cap,
                          const Decode& decode) const -> decltype(decode(ByteView{}));

    BentoContainer bento_;
    std::optional<OMFOlderModel> older_;
    OMFByteOrder byteOrder_ = OMFByteOrder::little;
    OMFObject headerObject_ = OMFObject::none;
    /// By OMFProperty; absent when the file never names the property.
    std::array<std::optional<std::uint32_t>, omfPropertyCount> propertyIDs_{};
    /// The class texts that occur, those of omfClassIDs first.
    std::vector<std::string> classTexts_;
    /// By position in the container's objectIDs(): position in classTexts_, or noClass.
    std::vector<std::uint32_t> classIndexByObject_;
};

}  // namespace trellant
