// SPDX-License-Identifier: Apache-2.0
// The model of the objects that are written: their classes, the properties of these and the types
// of those, in one table each. The MetaDictionary of a file is written from these tables.
#pragma once

#include "model_keys.h"

#include <trellant/aaf/identifiers.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <variant>

namespace trellant::aaf {

struct ClassRow {
    Class key;
    /// Itself for a class that has none above it.
    Class parent;
    std::string_view name;
    AUID id;
    bool isConcrete;
};

enum class Presence : std::uint8_t {
    required,
    optional,
    /// Required, and what objects of a set are told apart by.
    unique,
};

struct PropertyRow {
    Property key;
    Class owner;
    /// In the stored form. From 8000 on it holds for files of ours only.
    std::uint16_t pid;
    std::string_view name;
    AUID id;
    Type type;
    Presence presence;
};

struct IntegerType {
    std::uint8_t byteCount;
    bool isSigned;
};
struct CharacterType {};
struct StringType {
    Type element;
};
struct StreamType {};
/// A value behind the identifier of its type.
struct IndirectType {};
struct RenameType {
    Type renamed;
};
struct EnumerationElement {
    std::string_view name;
    std::int64_t value;
};
struct EnumerationType {
    Type element;
    std::span<const EnumerationElement> elements;
};
struct ExtendibleElement {
    std::string_view name;
    AUID value;
};
/// Its values are AUIDs.
struct ExtendibleEnumerationType {
    std::span<const ExtendibleElement> elements;
};
struct FixedArrayType {
    Type element;
    std::uint32_t count;
};
struct RecordMember {
    std::string_view name;
    Type type;
};
struct RecordType {
    std::span<const RecordMember> members;
};
/// Of strong references it is stored as a vector, of weak ones too.
struct VariableArrayType {
    Type element;
};
struct SetType {
    Type element;
};
struct StrongReferenceType {
    Class referenced;
};
struct WeakReferenceType {
    Class referenced;
    Target target;
};

struct TypeRow {
    Type key;
    std::string_view name;
    AUID id;
    std::variant<IntegerType, CharacterType, StringType, StreamType, IndirectType, RenameType,
                 EnumerationType, ExtendibleEnumerationType, FixedArrayType, RecordType,
                 VariableArrayType, SetType, StrongReferenceType, WeakReferenceType>
        form;
};

/// A step on the way from the root to the objects.
struct PathStep {
    std::uint16_t pid;
    AUID propertyID;
};

struct TargetRow {
    Target key;
    std::span<const PathStep> path;
    /// Of the property by which the objects are told apart.
    std::uint16_t keyPID;
};

/// The root has two properties and no class that a MetaDictionary describes.
struct RootProperty {
    std::uint16_t pid;
    std::string_view name;
    AUID id;
};
inline constexpr RootProperty rootMetaDictionary{0x0001, "MetaDictionary",
                                                 auid("0d010301-0101-0100-060e-2b3401010102")};
inline constexpr RootProperty rootHeader{0x0002, "Header",
                                         auid("0d010301-0102-0100-060e-2b3401010102")};

[[nodiscard]] std::span<const ClassRow> classRows() noexcept;
[[nodiscard]] std::span<const PropertyRow> propertyRows() noexcept;
[[nodiscard]] std::span<const TypeRow> typeRows() noexcept;
[[nodiscard]] std::span<const TargetRow> targetRows() noexcept;

[[nodiscard]] inline const ClassRow& rowOf(Class key) noexcept {
    return classRows()[static_cast<std::size_t>(key)];
}
[[nodiscard]] inline const PropertyRow& rowOf(Property key) noexcept {
    return propertyRows()[static_cast<std::size_t>(key)];
}
[[nodiscard]] inline const TypeRow& rowOf(Type key) noexcept {
    return typeRows()[static_cast<std::size_t>(key)];
}
[[nodiscard]] inline const TargetRow& rowOf(Target key) noexcept {
    return targetRows()[static_cast<std::size_t>(key)];
}

}  // namespace trellant::aaf
