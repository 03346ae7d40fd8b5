// SPDX-License-Identifier: Apache-2.0
// A strict reader of AAF files that knows no class of its own: what the objects mean it takes from
// the file's MetaDictionary, and whatever does not agree with that it notes down. Values come out
// as text, so that a test reads as a description of the file.
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <trellant_testing/stored_objects.h>
#include <vector>

namespace trellant::testing {

class AafReader {
  public:
    /// `image` has to outlive the reader.
    explicit AafReader(const FileImage& image);

    /// What is wrong with the file; empty for a faultless one.
    [[nodiscard]] const std::vector<std::string>& problems() const noexcept { return problems_; }
    /// The object at a path from the root ("Header/Content/Mobs/2/Slots/0/Segment"), with all that
    /// it holds: the name of its class, then a line for each property, by name. Members of sets are
    /// counted in the order of the index, which is that of their names.
    [[nodiscard]] std::string textOf(std::string_view path) const;
    /// The value of one property, as textOf() has it behind the property's name.
    [[nodiscard]] std::string valueOf(std::string_view path, std::string_view property) const;
    /// What a stream holds.
    [[nodiscard]] Bytes streamOf(std::string_view path, std::string_view property) const;
    /// Names of the concrete classes that objects of this file have.
    [[nodiscard]] const std::set<std::string>& classesInUse() const noexcept { return inUse_; }
    [[nodiscard]] std::size_t classCount() const noexcept { return classes_.size(); }
    [[nodiscard]] std::size_t typeCount() const noexcept { return types_.size(); }
    [[nodiscard]] const StoredObjects& stored() const noexcept { return stored_; }

  private:
    using ID = Bytes;

    struct PropertyModel {
        std::string name;
        ID id;
        ID type;
        bool isOptional;
        bool isUnique;
    };
    struct ClassModel {
        std::string name;
        ID parent;
        bool isConcrete;
        std::map<std::uint16_t, PropertyModel> properties;
    };
    struct TypeModel {
        /// "Integer", "Record" and so on.
        std::string kind;
        std::string name;
        std::size_t size = 0;
        bool isSigned = false;
        /// Element, renamed or referenced; of a record the members.
        std::vector<ID> parts;
        std::vector<std::string> names;
        std::vector<Bytes> values;
        std::size_t count = 0;
        std::vector<ID> targetSet;
    };

    void check(bool holds, const std::string& problem);
    void readModel();
    void readClass(const StoredObject& object);
    void readType(const StoredObject& object);
    void checkModel();
    void checkType(const TypeModel& type);
    [[nodiscard]] const ClassModel* classOf(const StoredObject& object) const;
    /// Its own and those of the classes above it.
    [[nodiscard]] std::map<std::uint16_t, PropertyModel> propertiesOf(
        const StoredObject& object) const;
    [[nodiscard]] bool isA(const ID& descendant, const ID& ancestor) const;
    void checkObject(const StoredObject& object, const std::string& path);
    void checkProperty(const StoredProperty& property, const PropertyModel& model,
                       const std::string& path);
    void checkData(const StoredProperty& property, const ID& type, const std::string& path);
    void checkStrong(const StoredProperty& property, const ID& type, const std::string& path);
    void checkWeak(const StoredProperty& property, const ID& type, const std::string& path);
    /// Of a value of this type; absent when it has no fixed one.
    [[nodiscard]] std::optional<std::size_t> sizeOf(const ID& type) const;
    [[nodiscard]] std::vector<ID> idsOnPath(const std::vector<std::uint16_t>& path) const;

    [[nodiscard]] const StoredObject* find(std::string_view path) const;
    void print(const StoredObject& object, const std::string& indent, std::string& text) const;
    void printProperty(const StoredProperty& property, const PropertyModel& model,
                       const std::string& indent, std::string& text) const;
    [[nodiscard]] std::string valueText(const StoredProperty& property,
                                        const PropertyModel& model) const;
    [[nodiscard]] std::string dataText(ByteView value, const ID& type) const;
    [[nodiscard]] std::string recordText(ByteView value, const TypeModel& type) const;
    [[nodiscard]] std::string weakText(const StoredProperty& property) const;

    StoredObjects stored_;
    std::vector<std::string> problems_;
    std::map<ID, ClassModel> classes_;
    std::map<ID, TypeModel> types_;
    std::set<std::string> inUse_;
};

}  // namespace trellant::testing
