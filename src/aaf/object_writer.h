// SPDX-License-Identifier: Apache-2.0
// The stored form of an object: a storage of the object's class with a stream called "properties".
//   offset  size  meaning
//        0     1  4C: little-endian
//        1     1  32, the version of this form
//        2     2  number of properties
//        4   6 n  of each property: PID, form, length of its value, two bytes each
//  4 + 6 n        the values
// What the value of a property is depends on its form:
//   82 data               the value itself
//   42 stream             55 and the name of a stream beside "properties", which holds the value
//   22 strong reference   the name of the object's storage
//   32 strong vector, 3A strong set, 12 weak vector, 1A weak set
//                         the name of the stream that is the index, without " index"
//   02 weak reference     where the objects are that are meant (two bytes, a Target), PID of the
//                         property that names one of them, length of the name, the name
// Indexes; all numbers but the marked ones have four bytes:
//   strong vector   count, next key, FFFFFFFF, keys
//   strong set      count, next key, FFFFFFFF, PID of the naming property (2), length of a name
//   (1),
//                   then for each object its key, 1, its name
//   weak            count, Target (2), PID of the naming property (2), length of a name (1), names
// The root is such an object without a class. Its stream "referenced properties" has the paths to
// the targets: 4C, their number (2), number of PIDs (4), then the PIDs of each path and 0.
#pragma once

#include "model.h"
#include "value_bytes.h"

#include <trellant/compound/compound_file.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace trellant::aaf {

using Storage = compound::CompoundFile::Storage;

/// The storages for the objects that the root refers to.
struct RootObjects {
    Storage metaDictionary;
    Storage header;
};

/// Stores the properties of the root, and the paths to the targets of weak references.
[[nodiscard]] RootObjects writeRoot(compound::CompoundFile& file);

/// The storages for the objects of a vector or a set, one after the other.
class ObjectList {
  public:
    ObjectList(compound::CompoundFile& file, Storage storage, std::u16string name)
        : file_(file), storage_(storage), name_(std::move(name)) {}

    /// A new storage for the next object.
    [[nodiscard]] Storage add(Class objectClass);

  private:
    compound::CompoundFile& file_;
    Storage storage_;
    std::u16string name_;
    std::uint32_t next_ = 0;
};

/// Stores the properties of one object. Each function adds one property; finish() ends it. Values
/// beyond 65,535 bytes throw AafError.
class ObjectWriter {
  public:
    /// The storage has to be new and of the object's class.
    ObjectWriter(compound::CompoundFile& file, Storage storage) : file_(file), storage_(storage) {}

    void data(Property property, const ValueBytes& value) { put(property, dataForm, value.view()); }
    void data(Property property, ByteView value) { put(property, dataForm, value); }
    void u8(Property property, std::uint8_t value) { data(property, ValueBytes().u8(value)); }
    void u16(Property property, std::uint16_t value) { data(property, ValueBytes().u16(value)); }
    void u32(Property property, std::uint32_t value) { data(property, ValueBytes().u32(value)); }
    void i64(Property property, std::int64_t value) { data(property, ValueBytes().i64(value)); }
    void boolean(Property property, bool value) { data(property, ValueBytes().boolean(value)); }
    void auid(Property property, const AUID& value) { data(property, ValueBytes().auid(value)); }
    void mobID(Property property, const MobID& value) { data(property, ValueBytes().mobID(value)); }
    void timeStamp(Property property, const TimeStamp& value) {
        data(property, ValueBytes().timeStamp(value));
    }
    /// Throws AafError for a denominator of 0.
    void rational(Property property, const Rational& value);
    /// The same, and for what is not above 0.
    void rate(Property property, const Rational& value);
    /// UTF-8. Throws AafError for a zero in it.
    void text(Property property, std::string_view value);
    /// A value of a type that the property itself leaves open.
    void indirectRational(Property property, const Rational& value);
    void indirectText(Property property, std::string_view value);
    void indirectInt32(Property property, std::int32_t value);

    void stream(Property property, std::uint64_t byteCount, compound::ByteSource source);
    /// The storage for the object that is referred to.
    [[nodiscard]] Storage strongReference(Property property, Class objectClass);
    [[nodiscard]] ObjectList strongVector(Property property, std::size_t count);
    /// Objects named by AUIDs or MobIDs, in the order in which the objects will be added; throws
    /// AafError when two are the same.
    [[nodiscard]] ObjectList strongSet(Property property, Property namingProperty,
                                       std::span<const AUID> names);
    [[nodiscard]] ObjectList strongSet(Property property, Property namingProperty,
                                       std::span<const MobID> names);
    void weakReference(Property property, Target target, const AUID& name);
    void weakVector(Property property, Target target, std::span<const AUID> names) {
        weakReferences(property, weakVectorForm, target, names);
    }
    void weakSet(Property property, Target target, std::span<const AUID> names) {
        weakReferences(property, weakSetForm, target, names);
    }

    void finish();

  private:
    static constexpr std::uint16_t dataForm = 0x82;
    static constexpr std::uint16_t streamForm = 0x42;
    static constexpr std::uint16_t strongForm = 0x22;
    static constexpr std::uint16_t strongVectorForm = 0x32;
    static constexpr std::uint16_t strongSetForm = 0x3A;
    static constexpr std::uint16_t weakForm = 0x02;
    static constexpr std::uint16_t weakVectorForm = 0x12;
    static constexpr std::uint16_t weakSetForm = 0x1A;

    friend RootObjects writeRoot(compound::CompoundFile& file);

    void put(Property property, std::uint16_t form, ByteView value);
    void put(std::uint16_t pid, std::uint16_t form, ByteView value);
    Storage refer(std::uint16_t pid, std::string_view name, Class objectClass);
    void weakReferences(Property property, std::uint16_t form, Target target,
                        std::span<const AUID> names);
    template <class Name>
    ObjectList strongSetOf(Property property, Property namingProperty, std::span<const Name> names);
    /// Stores an index and the property that leads to it; the list is that of its objects.
    ObjectList indexed(Property property, std::uint16_t form, const ValueBytes& index);

    compound::CompoundFile& file_;
    Storage storage_;
    std::uint16_t count_ = 0;
    ValueBytes heads_;
    ValueBytes values_;
};

}  // namespace trellant::aaf
