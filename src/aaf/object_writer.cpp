// SPDX-License-Identifier: Apache-2.0
#include "object_writer.h"

#include "stored_names.h"

#include <trellant/aaf/errors.h>
#include <trellant/base/text.h>

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

namespace trellant::aaf {

namespace {

constexpr std::size_t longestValue = 65'535;
constexpr std::uint8_t littleEndian = 0x4C;
constexpr std::uint8_t storedFormVersion = 32;
/// Of a stream's value: no byte order is known.
constexpr std::uint8_t anyByteOrder = 0x55;
constexpr std::uint32_t lastFreeKey = 0xFFFFFFFF;

std::string nameOf(Property property) {
    return std::string(rowOf(property).name);
}

std::u16string utf16Of(Property property, std::string_view text) {
    if (text.find('\0') != std::string_view::npos) {
        throw AafError(AafError::ZeroInText{nameOf(property)});
    }
    return toUTF16(text);
}

void checkRational(Property property, bool holds) {
    if (!holds) {
        throw AafError(AafError::InvalidRational{nameOf(property)});
    }
}

ValueBytes indirect(Type type) {
    return std::move(ValueBytes().u8(littleEndian).auid(rowOf(type).id));
}

std::uint32_t countOf(std::size_t count) {
    // More objects than these no file can number as storages.
    return static_cast<std::uint32_t>(
        std::min<std::size_t>(count, std::numeric_limits<std::uint32_t>::max()));
}

}  // namespace

Storage ObjectList::add(Class objectClass) {
    return file_.addStorage(storage_, nameOfMember(name_, next_++), rowOf(objectClass).id.bytes);
}

void ObjectWriter::put(Property property, std::uint16_t form, ByteView value) {
    if (value.size() > longestValue) {
        throw AafError(AafError::ValueTooLong{nameOf(property), value.size()});
    }
    put(rowOf(property).pid, form, value);
}

void ObjectWriter::put(std::uint16_t pid, std::uint16_t form, ByteView value) {
    heads_.u16(pid).u16(form).u16(static_cast<std::uint16_t>(value.size()));
    values_.bytes(value);
    ++count_;
}

void ObjectWriter::rational(Property property, const Rational& value) {
    checkRational(property, value.denominator != 0);
    data(property, ValueBytes().rational(value));
}

void ObjectWriter::rate(Property property, const Rational& value) {
    checkRational(property, value.denominator > 0 && value.numerator > 0);
    data(property, ValueBytes().rational(value));
}

void ObjectWriter::text(Property property, std::string_view value) {
    data(property, ValueBytes().text(utf16Of(property, value)));
}

void ObjectWriter::indirectRational(Property property, const Rational& value) {
    checkRational(property, value.denominator != 0);
    data(property, indirect(Type::rational).rational(value));
}

void ObjectWriter::indirectText(Property property, std::string_view value) {
    data(property, indirect(Type::string).text(utf16Of(property, value)));
}

void ObjectWriter::indirectInt32(Property property, std::int32_t value) {
    data(property, indirect(Type::int32).u32(static_cast<std::uint32_t>(value)));
}

void ObjectWriter::stream(Property property, std::uint64_t byteCount, compound::ByteSource source) {
    const std::u16string name = nameOfOne(rowOf(property).name, rowOf(property).pid);
    put(property, streamForm, ValueBytes().u8(anyByteOrder).text(name).view());
    file_.addStream(storage_, name, byteCount, std::move(source));
}

Storage ObjectWriter::strongReference(Property property, Class objectClass) {
    return refer(rowOf(property).pid, rowOf(property).name, objectClass);
}

Storage ObjectWriter::refer(std::uint16_t pid, std::string_view name, Class objectClass) {
    const std::u16string stored = nameOfOne(name, pid);
    put(pid, strongForm, ValueBytes().text(stored).view());
    return file_.addStorage(storage_, stored, rowOf(objectClass).id.bytes);
}

ObjectList ObjectWriter::indexed(Property property, std::uint16_t form, const ValueBytes& index) {
    std::u16string name = nameOfMany(rowOf(property).name, rowOf(property).pid);
    put(property, form, ValueBytes().text(name).view());
    file_.addStream(storage_, nameOfIndex(name), index.view());
    return {file_, storage_, std::move(name)};
}

ObjectList ObjectWriter::strongVector(Property property, std::size_t count) {
    const std::uint32_t stored = countOf(count);
    ValueBytes index;
    index.u32(stored).u32(stored).u32(lastFreeKey);
    for (std::uint32_t key = 0; key < stored; ++key) {
        index.u32(key);
    }
    return indexed(property, strongVectorForm, index);
}

template <class Name>
ObjectList ObjectWriter::strongSetOf(Property property, Property namingProperty,
                                     std::span<const Name> names) {
    std::vector<std::pair<Name, std::uint32_t>> sorted;
    for (const Name& name : names) {
        sorted.emplace_back(name, countOf(sorted.size()));
    }
    std::sort(sorted.begin(), sorted.end());
    const auto same = std::adjacent_find(
        sorted.begin(), sorted.end(),
        [](const auto& left, const auto& right) { return left.first == right.first; });
    if (same != sorted.end()) {
        throw AafError(AafError::Duplicate{nameOf(property)});
    }
    const std::uint32_t count = countOf(names.size());
    ValueBytes index;
    index.u32(count).u32(count).u32(lastFreeKey);
    index.u16(rowOf(namingProperty).pid).u8(sizeof(Name));
    for (const auto& [name, key] : sorted) {
        index.u32(key).u32(1).bytes(name.bytes);
    }
    return indexed(property, strongSetForm, index);
}

ObjectList ObjectWriter::strongSet(Property property, Property namingProperty,
                                   std::span<const AUID> names) {
    return strongSetOf(property, namingProperty, names);
}

ObjectList ObjectWriter::strongSet(Property property, Property namingProperty,
                                   std::span<const MobID> names) {
    return strongSetOf(property, namingProperty, names);
}

void ObjectWriter::weakReference(Property property, Target target, const AUID& name) {
    put(property, weakForm,
        ValueBytes()
            .u16(static_cast<std::uint16_t>(target))
            .u16(rowOf(target).keyPID)
            .u8(sizeof(AUID))
            .auid(name)
            .view());
}

void ObjectWriter::weakReferences(Property property, std::uint16_t form, Target target,
                                  std::span<const AUID> names) {
    ValueBytes index;
    index.u32(countOf(names.size())).u16(static_cast<std::uint16_t>(target));
    index.u16(rowOf(target).keyPID).u8(sizeof(AUID));
    for (const AUID& name : names) {
        index.auid(name);
    }
    indexed(property, form, index);
}

void ObjectWriter::finish() {
    ValueBytes stored;
    stored.u8(littleEndian).u8(storedFormVersion).u16(count_);
    stored.bytes(heads_.view()).bytes(values_.view());
    file_.addStream(storage_, u"properties", stored.view());
}

RootObjects writeRoot(compound::CompoundFile& file) {
    std::size_t numbers = 0;
    ValueBytes paths;
    for (const TargetRow& row : targetRows()) {
        for (const PathStep& step : row.path) {
            paths.u16(step.pid);
        }
        paths.u16(0);
        numbers += row.path.size() + 1;
    }
    ValueBytes stored;
    stored.u8(littleEndian).u16(static_cast<std::uint16_t>(targetRows().size()));
    stored.u32(countOf(numbers)).bytes(paths.view());
    file.addStream(Storage::root, u"referenced properties", stored.view());

    ObjectWriter root(file, Storage::root);
    const RootObjects objects{
        .metaDictionary =
            root.refer(rootMetaDictionary.pid, rootMetaDictionary.name, Class::metaDictionary),
        .header = root.refer(rootHeader.pid, rootHeader.name, Class::header)};
    root.finish();
    return objects;
}

}  // namespace trellant::aaf
