// SPDX-License-Identifier: Apache-2.0
// What the MetaDictionary says, and whether the objects agree with it.
#include "stored_numbers.h"

#include <algorithm>
#include <iterator>
#include <trellant_testing/aaf_reader.h>

namespace trellant::testing {

namespace {

constexpr std::uint16_t metaDictionaryPID = 0x0001;
constexpr std::uint16_t headerPID = 0x0002;
constexpr std::uint16_t metaIdentification = 0x0005;
constexpr std::uint16_t metaName = 0x0006;
constexpr std::uint16_t objClass = 0x0101;
/// Of parameters, whose sets say that they are named as definitions are.
constexpr std::uint16_t parameterDefinition = 0x4C01;

Bytes dataOf(const StoredObject& object, std::uint16_t pid) {
    const auto found = object.properties.find(pid);
    return found == object.properties.end() ? Bytes{} : found->second.value;
}

bool flagOf(const StoredObject& object, std::uint16_t pid) {
    return dataOf(object, pid) == Bytes{std::byte{1}};
}

std::vector<Bytes> namesOf(const StoredObject& object, std::uint16_t pid) {
    const auto found = object.properties.find(pid);
    return found == object.properties.end() ? std::vector<Bytes>{} : found->second.names;
}

std::vector<Bytes> split(const Bytes& bytes, std::size_t width) {
    std::vector<Bytes> parts;
    for (std::size_t offset = 0; offset + width <= bytes.size(); offset += width) {
        const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(offset);
        parts.emplace_back(begin, begin + static_cast<std::ptrdiff_t>(width));
    }
    return parts;
}

struct KindOfType {
    std::uint64_t number;
    const char* name;
    /// Of what it refers to, or 0.
    std::uint16_t parts;
};

/// By the second group of the class's identifier.
const KindOfType* kindOf(const StoredObject& object) {
    static constexpr std::array<KindOfType, 14> kinds{{{0x0204, "Integer", 0},
                                                       {0x0205, "StrongReference", 0x11},
                                                       {0x0206, "WeakReference", 0x12},
                                                       {0x0207, "Enumeration", 0x14},
                                                       {0x0208, "FixedArray", 0x17},
                                                       {0x0209, "VariableArray", 0x19},
                                                       {0x020A, "Set", 0x1A},
                                                       {0x020B, "String", 0x1B},
                                                       {0x020C, "Stream", 0},
                                                       {0x020D, "Record", 0x1C},
                                                       {0x020E, "Rename", 0x1E},
                                                       {0x0220, "ExtendibleEnumeration", 0},
                                                       {0x0221, "Indirect", 0},
                                                       {0x0223, "Character", 0}}};
    const std::uint64_t number = storedNumber(ByteView(object.classID).subspan(4, 2));
    const auto* const found =
        std::find_if(kinds.begin(), kinds.end(),
                     [number](const KindOfType& kind) { return kind.number == number; });
    return found == kinds.end() ? nullptr : found;
}

}  // namespace

AafReader::AafReader(const FileImage& image) : stored_(image), problems_(stored_.problems()) {
    if (!problems_.empty()) {
        return;
    }
    readModel();
    if (problems_.empty()) {
        checkModel();
        for (const std::uint16_t pid : {metaDictionaryPID, headerPID}) {
            checkObject(*stored_.follow({pid})->objects.front(), std::to_string(pid));
        }
    }
}

void AafReader::check(bool holds, const std::string& problem) {
    if (!holds) {
        problems_.push_back(problem);
    }
}

void AafReader::readModel() {
    const StoredProperty* classes = stored_.follow({metaDictionaryPID, 0x0003});
    const StoredProperty* types = stored_.follow({metaDictionaryPID, 0x0004});
    check(classes != nullptr && types != nullptr && stored_.follow({headerPID}) != nullptr,
          "the root lacks an object");
    if (!problems_.empty()) {
        return;
    }
    for (const auto& object : types->objects) {
        readType(*object);
    }
    for (const auto& object : classes->objects) {
        readClass(*object);
    }
}

void AafReader::readClass(const StoredObject& object) {
    ClassModel model;
    model.name = storedText(dataOf(object, metaName));
    const std::vector<Bytes> parents = namesOf(object, 0x0008);
    check(parents.size() == 1, model.name + " has no class above it");
    model.parent = parents.empty() ? Bytes{} : parents.front();
    model.isConcrete = flagOf(object, 0x000A);
    const auto properties = object.properties.find(0x0009);
    if (properties != object.properties.end()) {
        for (const auto& property : properties->second.objects) {
            const auto pid = static_cast<std::uint16_t>(storedNumber(dataOf(*property, 0x000D)));
            model.properties[pid] = {.name = storedText(dataOf(*property, metaName)),
                                     .id = dataOf(*property, metaIdentification),
                                     .type = dataOf(*property, 0x000B),
                                     .isOptional = flagOf(*property, 0x000C),
                                     .isUnique = flagOf(*property, 0x000E)};
        }
        check(model.properties.size() == properties->second.objects.size(),
              model.name + " has a PID twice");
    }
    classes_[dataOf(object, metaIdentification)] = std::move(model);
}

void AafReader::readType(const StoredObject& object) {
    TypeModel model;
    model.name = storedText(dataOf(object, metaName));
    const KindOfType* kind = kindOf(object);
    check(kind != nullptr, "the kind of the type " + model.name);
    if (kind == nullptr) {
        return;
    }
    model.kind = kind->name;
    model.parts = kind->parts == 0 ? std::vector<Bytes>{} : namesOf(object, kind->parts);
    model.size = static_cast<std::size_t>(storedNumber(dataOf(object, 0x000F)));
    model.isSigned = flagOf(object, 0x0010);
    model.count = static_cast<std::size_t>(storedNumber(dataOf(object, 0x0018)));
    model.targetSet = split(dataOf(object, 0x0013), 16);
    for (const std::uint16_t names : std::array<std::uint16_t, 3>{0x0015, 0x001D, 0x001F}) {
        if (object.properties.contains(names)) {
            model.names = storedTexts(dataOf(object, names));
        }
    }
    model.values = model.kind == "Enumeration" ? split(dataOf(object, 0x0016), 8)
                                               : split(dataOf(object, 0x0020), 16);
    types_[dataOf(object, metaIdentification)] = std::move(model);
}

void AafReader::checkModel() {
    std::set<std::uint16_t> pids;
    std::size_t count = 0;
    for (const auto& [id, model] : classes_) {
        check(classes_.contains(model.parent), model.name + " is below a class that is not there");
        for (const auto& [pid, property] : model.properties) {
            check(types_.contains(property.type),
                  model.name + "::" + property.name + " has no type");
            pids.insert(pid);
            ++count;
        }
    }
    check(pids.size() == count, "two classes have properties of one PID");
    for (const auto& [id, type] : types_) {
        checkType(type);
    }
}

void AafReader::checkType(const TypeModel& type) {
    const bool ofClasses = type.kind == "StrongReference" || type.kind == "WeakReference";
    for (const ID& part : type.parts) {
        check(ofClasses ? classes_.contains(part) : types_.contains(part),
              type.name + " is made of something that is not there");
    }
    if (type.kind == "Integer") {
        check(type.size == 1 || type.size == 2 || type.size == 4 || type.size == 8,
              "size of " + type.name);
    } else if (type.kind == "Record") {
        check(type.names.size() == type.parts.size() && !type.parts.empty(),
              "members of " + type.name);
    } else if (type.kind == "Enumeration" || type.kind == "ExtendibleEnumeration") {
        check(type.names.size() == type.values.size() && !type.names.empty(),
              "elements of " + type.name);
    } else if (type.kind == "FixedArray") {
        check(type.count > 0, "length of " + type.name);
    }
    const bool hasNoParts = type.kind == "Integer" || type.kind == "Character" ||
                            type.kind == "Stream" || type.kind == "Indirect" ||
                            type.kind == "ExtendibleEnumeration";
    check(hasNoParts == type.parts.empty(), "parts of " + type.name);
}

const AafReader::ClassModel* AafReader::classOf(const StoredObject& object) const {
    const auto found = classes_.find(ID(object.classID.begin(), object.classID.end()));
    return found == classes_.end() ? nullptr : &found->second;
}

std::map<std::uint16_t, AafReader::PropertyModel> AafReader::propertiesOf(
    const StoredObject& object) const {
    std::map<std::uint16_t, PropertyModel> properties;
    ID id(object.classID.begin(), object.classID.end());
    for (;;) {
        const ClassModel& model = classes_.at(id);
        properties.insert(model.properties.begin(), model.properties.end());
        if (model.parent == id) {
            return properties;
        }
        id = model.parent;
    }
}

bool AafReader::isA(const ID& descendant, const ID& ancestor) const {
    for (ID id = descendant; id != ancestor;) {
        const auto found = classes_.find(id);
        if (found == classes_.end() || found->second.parent == id) {
            return false;
        }
        id = found->second.parent;
    }
    return true;
}

void AafReader::checkObject(const StoredObject& object, const std::string& path) {
    const ClassModel* model = classOf(object);
    check(model != nullptr && model->isConcrete, path + ": an object of no class");
    if (model == nullptr) {
        return;
    }
    inUse_.insert(model->name);
    const auto properties = propertiesOf(object);
    for (const auto& [pid, property] : properties) {
        const bool isThere = object.properties.contains(pid);
        check(isThere || property.isOptional || pid == objClass,
              path + ": " + model->name + " lacks " + property.name);
    }
    for (const auto& [pid, property] : object.properties) {
        const auto known = properties.find(pid);
        check(known != properties.end(),
              path + ": " + model->name + " has the unknown property " + std::to_string(pid));
        if (known != properties.end()) {
            checkProperty(property, known->second, path + "/" + known->second.name);
        }
    }
}

void AafReader::checkProperty(const StoredProperty& property, const PropertyModel& model,
                              const std::string& path) {
    const TypeModel& type = types_.at(model.type);
    const auto part = type.parts.empty() ? types_.end() : types_.find(type.parts.front());
    const std::string inner = part == types_.end() ? "" : part->second.kind;
    StoredForm form = StoredForm::data;
    if (type.kind == "Stream") {
        form = StoredForm::stream;
    } else if (type.kind == "StrongReference") {
        form = StoredForm::strong;
    } else if (type.kind == "WeakReference") {
        form = StoredForm::weak;
    } else if (inner == "StrongReference") {
        form = type.kind == "Set" ? StoredForm::strongSet : StoredForm::strongVector;
    } else if (inner == "WeakReference") {
        form = type.kind == "Set" ? StoredForm::weakSet : StoredForm::weakVector;
    }
    // The one that every program stores otherwise than its type says.
    if (type.name == "kAAFTypeID_ParameterStrongReferenceVector") {
        form = StoredForm::strongSet;
    }
    check(property.form == form, path + ": its form is not that of its type");
    if (property.form != form || form == StoredForm::stream) {
        return;
    }
    if (form == StoredForm::data) {
        checkData(property, model.type, path);
    } else if (type.kind == "StrongReference" || inner == "StrongReference") {
        checkStrong(property, part == types_.end() ? model.type : part->first, path);
    } else {
        checkWeak(property, part == types_.end() ? model.type : part->first, path);
    }
}

std::optional<std::size_t> AafReader::sizeOf(const ID& type) const {
    const TypeModel& model = types_.at(type);
    if (model.kind == "Integer") {
        return model.size;
    }
    if (model.kind == "Character") {
        return 2;
    }
    if (model.kind == "ExtendibleEnumeration") {
        return 16;
    }
    if (model.kind == "Rename" || model.kind == "Enumeration") {
        return sizeOf(model.parts.front());
    }
    if (model.kind == "FixedArray") {
        return sizeOf(model.parts.front()).value() * model.count;
    }
    if (model.kind == "Record") {
        std::size_t size = 0;
        for (const ID& part : model.parts) {
            size += sizeOf(part).value();
        }
        return size;
    }
    return std::nullopt;
}

void AafReader::checkData(const StoredProperty& property, const ID& type, const std::string& path) {
    const Bytes& value = property.value;
    const TypeModel& model = types_.at(type);
    if (const auto size = sizeOf(type)) {
        check(value.size() == *size, path + ": the length is not that of its type");
    } else if (model.kind == "String") {
        check(value.size() % 2 == 0 && storedTexts(value).size() == 1,
              path + ": not one text that ends with zero");
    } else if (model.kind == "Indirect") {
        const bool hasType = value.size() >= 17 && value[0] == std::byte{0x4C} &&
                             types_.contains(ID(value.begin() + 1, value.begin() + 17));
        check(hasType, path + ": an indirect value without a known type");
        if (hasType) {
            StoredProperty inner;
            inner.value.assign(value.begin() + 17, value.end());
            checkData(inner, ID(value.begin() + 1, value.begin() + 17), path);
        }
    } else {
        check(value.size() % sizeOf(model.parts.front()).value() == 0,
              path + ": not a whole number of elements");
    }
}

void AafReader::checkStrong(const StoredProperty& property, const ID& type,
                            const std::string& path) {
    const ID& wanted = types_.at(type).parts.front();
    for (std::size_t index = 0; index < property.objects.size(); ++index) {
        const StoredObject& object = *property.objects[index];
        const std::string place = path + "/" + std::to_string(index);
        check(isA(ID(object.classID.begin(), object.classID.end()), wanted),
              place + ": an object of a class that does not belong here");
        if (property.form == StoredForm::strongSet) {
            Bytes name = dataOf(object, property.namingPID);
            if (name.empty()) {
                name = dataOf(object, parameterDefinition);
            }
            check(name == property.names[index], place + ": the index calls it otherwise");
        }
        checkObject(object, place);
    }
}

std::vector<AafReader::ID> AafReader::idsOnPath(const std::vector<std::uint16_t>& path) const {
    const std::map<std::uint16_t, std::string> rootIDs{
        {metaDictionaryPID, "0d010301-0101-0100-060e-2b3401010102"},
        {headerPID, "0d010301-0102-0100-060e-2b3401010102"}};
    std::vector<ID> ids;
    for (const std::uint16_t pid : path) {
        const auto root = rootIDs.find(pid);
        if (root != rootIDs.end() && ids.empty()) {
            ids.push_back(storedAUID(root->second));
            continue;
        }
        for (const auto& [id, model] : classes_) {
            if (model.properties.contains(pid)) {
                ids.push_back(model.properties.at(pid).id);
            }
        }
    }
    return ids;
}

void AafReader::checkWeak(const StoredProperty& property, const ID& type, const std::string& path) {
    const bool hasPath = property.path < stored_.paths().size();
    check(hasPath, path + ": a path that is not there");
    if (!hasPath) {
        return;
    }
    const auto& pids = stored_.paths()[property.path];
    check(idsOnPath(pids) == types_.at(type).targetSet,
          path + ": another path than the type's target set");
    const StoredProperty* target = stored_.follow(pids);
    check(target != nullptr && target->form == StoredForm::strongSet &&
              target->namingPID == property.namingPID,
          path + ": the path does not lead to a set of such names");
    for (const Bytes& name : property.names) {
        check(target != nullptr && std::find(target->names.begin(), target->names.end(), name) !=
                                       target->names.end(),
              path + ": refers to something that is not there");
    }
}

}  // namespace trellant::testing
