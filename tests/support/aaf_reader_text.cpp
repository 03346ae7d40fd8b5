// SPDX-License-Identifier: Apache-2.0
// Objects and values as text.
#include "stored_numbers.h"

#include <algorithm>
#include <charconv>
#include <trellant_testing/aaf_reader.h>

namespace trellant::testing {

namespace {

std::string joinedBy(const std::vector<std::string>& parts, const char* open, const char* close) {
    std::string text = open;
    for (std::size_t index = 0; index < parts.size(); ++index) {
        text += (index == 0 ? "" : ", ") + parts[index];
    }
    return text + close;
}

std::string padded(std::uint64_t value, std::size_t width) {
    const std::string digits = std::to_string(value);
    return std::string(width - std::min(width, digits.size()), '0') + digits;
}

/// "1970-01-01 00:00:00.0"; the last in 1/250 second.
std::string timeText(ByteView value) {
    const auto at = [value](std::size_t offset, std::size_t width) {
        return storedNumber(value.subspan(offset, width));
    };
    return padded(at(0, 2), 4) + "-" + padded(at(2, 1), 2) + "-" + padded(at(3, 1), 2) + " " +
           padded(at(4, 1), 2) + ":" + padded(at(5, 1), 2) + ":" + padded(at(6, 1), 2) + "." +
           std::to_string(at(7, 1));
}

/// The material of a basic UMID of ours; what is none is written whole.
std::string mobText(ByteView value) {
    if (std::all_of(value.begin(), value.end(),
                    [](std::byte byte) { return byte == std::byte{}; })) {
        return "no mob";
    }
    return textOfAUID(value.first(16)) + "." + textOfAUID(value.subspan(16));
}

std::string integerText(ByteView value, bool isSigned) {
    const std::uint64_t number = storedNumber(value);
    if (!isSigned) {
        return std::to_string(number);
    }
    const unsigned unused = 64 - 8 * static_cast<unsigned>(value.size());
    return std::to_string(static_cast<std::int64_t>(number << unused) >> unused);
}

}  // namespace

const StoredObject* AafReader::find(std::string_view path) const {
    const StoredObject* object = &stored_.root();
    const StoredProperty* property = nullptr;
    while (object != nullptr && !path.empty()) {
        const std::string_view step = path.substr(0, path.find('/'));
        path.remove_prefix(std::min(path.size(), step.size() + 1));
        std::size_t index = 0;
        const auto [end, failure] = std::from_chars(step.data(), step.data() + step.size(), index);
        if (property != nullptr && failure == std::errc() && end == step.data() + step.size()) {
            object = index < property->objects.size() ? property->objects[index].get() : nullptr;
            property = nullptr;
            continue;
        }
        std::uint16_t pid = step == "MetaDictionary" ? 1 : 2;
        if (object != &stored_.root()) {
            const auto properties = propertiesOf(*object);
            const auto named =
                std::find_if(properties.begin(), properties.end(),
                             [&](const auto& one) { return one.second.name == step; });
            pid = named == properties.end() ? std::uint16_t{0} : named->first;
        }
        const auto found = object->properties.find(pid);
        if (found == object->properties.end()) {
            return nullptr;
        }
        property = &found->second;
        object = property->form == StoredForm::strong ? property->objects.front().get() : object;
    }
    return object;
}

std::string AafReader::textOf(std::string_view path) const {
    const StoredObject* object = find(path);
    if (object == nullptr) {
        return "nothing at " + std::string(path);
    }
    std::string text;
    print(*object, "", text);
    return text;
}

std::string AafReader::valueOf(std::string_view path, std::string_view property) const {
    const StoredObject* object = find(path);
    if (object == nullptr) {
        return "nothing at " + std::string(path);
    }
    for (const auto& [pid, model] : propertiesOf(*object)) {
        if (model.name == property && object->properties.contains(pid)) {
            return valueText(object->properties.at(pid), model);
        }
    }
    return "none";
}

Bytes AafReader::streamOf(std::string_view path, std::string_view property) const {
    const StoredObject* object = find(path);
    if (object != nullptr) {
        for (const auto& [pid, model] : propertiesOf(*object)) {
            if (model.name == property && object->properties.contains(pid)) {
                return stored_.container().content(object->properties.at(pid).stream);
            }
        }
    }
    return {};
}

void AafReader::print(const StoredObject& object, const std::string& indent,
                      std::string& text) const {
    text += classOf(object)->name + "\n";
    std::map<std::string, std::uint16_t> byName;
    const auto properties = propertiesOf(object);
    for (const auto& [pid, property] : object.properties) {
        byName[properties.at(pid).name] = pid;
    }
    for (const auto& [name, pid] : byName) {
        text.append(indent).append("  ").append(name);
        printProperty(object.properties.at(pid), properties.at(pid), indent + "  ", text);
    }
}

void AafReader::printProperty(const StoredProperty& property, const PropertyModel& model,
                              const std::string& indent, std::string& text) const {
    if (property.form == StoredForm::strong) {
        text += " -> ";
        print(*property.objects.front(), indent, text);
        return;
    }
    if (property.form != StoredForm::strongVector && property.form != StoredForm::strongSet) {
        text += " " + valueText(property, model) + "\n";
        return;
    }
    text += "\n";
    for (std::size_t index = 0; index < property.objects.size(); ++index) {
        text.append(indent).append("  ").append(std::to_string(index)).append(" ");
        print(*property.objects[index], indent + "  ", text);
    }
}

std::string AafReader::valueText(const StoredProperty& property, const PropertyModel& model) const {
    switch (property.form) {
        case StoredForm::data:
            return dataText(property.value, model.type);
        case StoredForm::stream:
            return std::to_string(stored_.container().entries().at(property.stream).size) +
                   " bytes";
        case StoredForm::weak:
        case StoredForm::weakVector:
        case StoredForm::weakSet:
            return weakText(property);
        case StoredForm::strong:
        case StoredForm::strongVector:
        case StoredForm::strongSet:
            return std::to_string(property.objects.size()) + " objects";
    }
    return "";
}

std::string AafReader::weakText(const StoredProperty& property) const {
    constexpr std::uint16_t metaName = 0x0006;
    constexpr std::uint16_t definitionName = 0x1B02;
    const StoredProperty* target = stored_.follow(stored_.paths().at(property.path));
    std::vector<std::string> texts;
    for (const Bytes& name : property.names) {
        const auto found = std::find(target->names.begin(), target->names.end(), name);
        const auto& object =
            *target->objects.at(static_cast<std::size_t>(found - target->names.begin()));
        const std::uint16_t pid = object.properties.contains(metaName) ? metaName : definitionName;
        texts.push_back(storedText(object.properties.at(pid).value));
    }
    return property.form == StoredForm::weak ? texts.front() : joinedBy(texts, "[", "]");
}

std::string AafReader::dataText(ByteView value, const ID& typeID) const {
    const TypeModel& type = types_.at(typeID);
    if (type.kind == "Integer") {
        return integerText(value, type.isSigned);
    }
    if (type.kind == "String") {
        return '"' + storedText(value) + '"';
    }
    if (type.kind == "Record") {
        return recordText(value, type);
    }
    if (type.kind == "Rename") {
        return dataText(value, type.parts.front());
    }
    if (type.kind == "Indirect") {
        const ID inner(value.begin() + 1, value.begin() + 17);
        return types_.at(inner).name + " " + dataText(value.subspan(17), inner);
    }
    if (type.kind == "Enumeration" || type.kind == "ExtendibleEnumeration") {
        for (std::size_t index = 0; index < type.names.size(); ++index) {
            const Bytes& one = type.values[index];
            if (type.kind == "Enumeration" ? storedNumber(one) == storedNumber(value)
                                           : std::equal(one.begin(), one.end(), value.begin())) {
                return type.names[index];
            }
        }
        return "no element";
    }
    if (types_.at(type.parts.front()).kind == "Character") {
        return joinedBy(storedTexts(value), "[", "]");
    }
    std::vector<std::string> elements;
    const std::size_t size = sizeOf(type.parts.front()).value();
    for (std::size_t offset = 0; offset < value.size(); offset += size) {
        elements.push_back(dataText(value.subspan(offset, size), type.parts.front()));
    }
    return joinedBy(elements, "[", "]");
}

std::string AafReader::recordText(ByteView value, const TypeModel& type) const {
    if (type.name == "AUID") {
        return textOfAUID(value);
    }
    if (type.name == "MobIDType") {
        return mobText(value);
    }
    if (type.name == "TimeStamp") {
        return timeText(value);
    }
    std::vector<std::string> members;
    for (const ID& part : type.parts) {
        const std::size_t size = sizeOf(part).value();
        members.push_back(dataText(value.first(size), part));
        value = value.subspan(size);
    }
    return type.name == "Rational" ? members[0] + "/" + members[1] : joinedBy(members, "{", "}");
}

}  // namespace trellant::testing
