// SPDX-License-Identifier: Apache-2.0
#include "meta_dictionary.h"

#include <trellant/base/text.h>

#include <algorithm>
#include <iterator>
#include <vector>

namespace trellant::aaf {

namespace {

template <class Row>
std::vector<AUID> idsOf(std::span<const Row> rows) {
    std::vector<AUID> ids;
    std::transform(rows.begin(), rows.end(), std::back_inserter(ids),
                   [](const Row& row) { return row.id; });
    return ids;
}

/// Those that the class itself has.
std::span<const PropertyRow> propertiesOf(Class owner) {
    const auto isBefore = [](const PropertyRow& row, Class wanted) { return row.owner < wanted; };
    const auto isAfter = [](Class wanted, const PropertyRow& row) { return wanted < row.owner; };
    const auto rows = propertyRows();
    const auto first = std::lower_bound(rows.begin(), rows.end(), owner, isBefore);
    return {first, std::upper_bound(first, rows.end(), owner, isAfter)};
}

void writeNames(ObjectWriter& object, const AUID& id, std::string_view name) {
    object.auid(Property::metaDefinitionIdentification, id);
    object.text(Property::metaDefinitionName, name);
}

void writeProperty(compound::CompoundFile& file, Storage storage, const PropertyRow& row) {
    ObjectWriter object(file, storage);
    writeNames(object, row.id, row.name);
    object.auid(Property::propertyDefinitionType, rowOf(row.type).id);
    object.boolean(Property::propertyDefinitionIsOptional, row.presence == Presence::optional);
    object.u16(Property::propertyDefinitionLocalIdentification, row.pid);
    if (row.presence == Presence::unique) {
        object.boolean(Property::propertyDefinitionIsUniqueIdentifier, true);
    }
    object.finish();
}

void writeClass(compound::CompoundFile& file, Storage storage, const ClassRow& row) {
    ObjectWriter object(file, storage);
    writeNames(object, row.id, row.name);
    object.weakReference(Property::classDefinitionParentClass, Target::classDefinitions,
                         rowOf(row.parent).id);
    object.boolean(Property::classDefinitionIsConcrete, row.isConcrete);
    const std::span<const PropertyRow> properties = propertiesOf(row.key);
    if (!properties.empty()) {
        ObjectList list =
            object.strongSet(Property::classDefinitionProperties,
                             Property::metaDefinitionIdentification, idsOf(properties));
        for (const PropertyRow& property : properties) {
            writeProperty(file, list.add(Class::propertyDefinition), property);
        }
    }
    object.finish();
}

/// Stores what a definition says of its kind of type.
class TypeFormWriter {
  public:
    explicit TypeFormWriter(ObjectWriter& object) : object_(object) {}

    void operator()(const IntegerType& type) const {
        object_.u8(Property::typeDefinitionIntegerSize, type.byteCount);
        object_.boolean(Property::typeDefinitionIntegerIsSigned, type.isSigned);
    }
    void operator()(const CharacterType&) const {}
    void operator()(const StreamType&) const {}
    void operator()(const IndirectType&) const {}
    void operator()(const StringType& type) const {
        refer(Property::typeDefinitionStringElementType, type.element);
    }
    void operator()(const RenameType& type) const {
        refer(Property::typeDefinitionRenameRenamedType, type.renamed);
    }
    void operator()(const VariableArrayType& type) const {
        refer(Property::typeDefinitionVariableArrayElementType, type.element);
    }
    void operator()(const SetType& type) const {
        refer(Property::typeDefinitionSetElementType, type.element);
    }
    void operator()(const FixedArrayType& type) const {
        refer(Property::typeDefinitionFixedArrayElementType, type.element);
        object_.u32(Property::typeDefinitionFixedArrayElementCount, type.count);
    }
    void operator()(const EnumerationType& type) const {
        refer(Property::typeDefinitionEnumerationElementType, type.element);
        ValueBytes names;
        ValueBytes values;
        for (const EnumerationElement& element : type.elements) {
            names.text(toUTF16(element.name));
            values.i64(element.value);
        }
        object_.data(Property::typeDefinitionEnumerationElementNames, names);
        object_.data(Property::typeDefinitionEnumerationElementValues, values);
    }
    void operator()(const ExtendibleEnumerationType& type) const {
        ValueBytes names;
        ValueBytes values;
        for (const ExtendibleElement& element : type.elements) {
            names.text(toUTF16(element.name));
            values.auid(element.value);
        }
        object_.data(Property::typeDefinitionExtendibleEnumerationElementNames, names);
        object_.data(Property::typeDefinitionExtendibleEnumerationElementValues, values);
    }
    void operator()(const RecordType& type) const {
        ValueBytes names;
        std::vector<AUID> types;
        for (const RecordMember& member : type.members) {
            names.text(toUTF16(member.name));
            types.push_back(rowOf(member.type).id);
        }
        object_.weakVector(Property::typeDefinitionRecordMemberTypes, Target::typeDefinitions,
                           types);
        object_.data(Property::typeDefinitionRecordMemberNames, names);
    }
    void operator()(const StrongReferenceType& type) const {
        object_.weakReference(Property::typeDefinitionStrongObjectReferenceReferencedType,
                              Target::classDefinitions, rowOf(type.referenced).id);
    }
    void operator()(const WeakReferenceType& type) const {
        object_.weakReference(Property::typeDefinitionWeakObjectReferenceReferencedType,
                              Target::classDefinitions, rowOf(type.referenced).id);
        ValueBytes path;
        for (const PathStep& step : rowOf(type.target).path) {
            path.auid(step.propertyID);
        }
        object_.data(Property::typeDefinitionWeakObjectReferenceTargetSet, path);
    }

  private:
    void refer(Property property, Type type) const {
        object_.weakReference(property, Target::typeDefinitions, rowOf(type).id);
    }

    ObjectWriter& object_;
};

/// Of the objects that define the kinds of types.
struct DefiningClass {
    Class operator()(const IntegerType&) const { return Class::typeDefinitionInteger; }
    Class operator()(const CharacterType&) const { return Class::typeDefinitionCharacter; }
    Class operator()(const StringType&) const { return Class::typeDefinitionString; }
    Class operator()(const StreamType&) const { return Class::typeDefinitionStream; }
    Class operator()(const IndirectType&) const { return Class::typeDefinitionIndirect; }
    Class operator()(const RenameType&) const { return Class::typeDefinitionRename; }
    Class operator()(const EnumerationType&) const { return Class::typeDefinitionEnumeration; }
    Class operator()(const ExtendibleEnumerationType&) const {
        return Class::typeDefinitionExtendibleEnumeration;
    }
    Class operator()(const FixedArrayType&) const { return Class::typeDefinitionFixedArray; }
    Class operator()(const RecordType&) const { return Class::typeDefinitionRecord; }
    Class operator()(const VariableArrayType&) const { return Class::typeDefinitionVariableArray; }
    Class operator()(const SetType&) const { return Class::typeDefinitionSet; }
    Class operator()(const StrongReferenceType&) const {
        return Class::typeDefinitionStrongObjectReference;
    }
    Class operator()(const WeakReferenceType&) const {
        return Class::typeDefinitionWeakObjectReference;
    }
};

void writeType(compound::CompoundFile& file, Storage storage, const TypeRow& row) {
    ObjectWriter object(file, storage);
    writeNames(object, row.id, row.name);
    std::visit(TypeFormWriter(object), row.form);
    object.finish();
}

}  // namespace

void writeMetaDictionary(compound::CompoundFile& file, Storage storage) {
    ObjectWriter object(file, storage);
    ObjectList classes =
        object.strongSet(Property::metaDictionaryClassDefinitions,
                         Property::metaDefinitionIdentification, idsOf(classRows()));
    for (const ClassRow& row : classRows()) {
        writeClass(file, classes.add(Class::classDefinition), row);
    }
    ObjectList types = object.strongSet(Property::metaDictionaryTypeDefinitions,
                                        Property::metaDefinitionIdentification, idsOf(typeRows()));
    for (const TypeRow& row : typeRows()) {
        writeType(file, types.add(std::visit(DefiningClass(), row.form)), row);
    }
    object.finish();
}

}  // namespace trellant::aaf
