// SPDX-License-Identifier: Apache-2.0
#include "stored_numbers.h"

#include <algorithm>
#include <set>
#include <trellant_testing/stored_objects.h>

namespace trellant::testing {

namespace {

using Type = StoredEntry::Type;

/// Numbers one after the other; zero behind the end, which is noted.
class Cursor {
  public:
    explicit Cursor(ByteView bytes) : bytes_(bytes) {}

    std::uint64_t number(std::size_t width) { return storedNumber(next(width)); }
    std::uint8_t u8() { return static_cast<std::uint8_t>(number(1)); }
    std::uint16_t u16() { return static_cast<std::uint16_t>(number(2)); }
    std::uint32_t u32() { return static_cast<std::uint32_t>(number(4)); }
    Bytes take(std::size_t count) {
        const ByteView part = next(count);
        return {part.begin(), part.end()};
    }
    /// All was there and nothing is left.
    [[nodiscard]] bool endedWell() const { return !overrun_ && bytes_.empty(); }
    [[nodiscard]] bool overrun() const { return overrun_; }

  private:
    ByteView next(std::size_t count) {
        overrun_ = overrun_ || count > bytes_.size();
        const ByteView part = bytes_.first(std::min(count, bytes_.size()));
        bytes_ = bytes_.subspan(part.size());
        return part;
    }

    ByteView bytes_;
    bool overrun_ = false;
};

std::u16string keyed(const std::u16string& name, std::uint32_t key) {
    std::u16string digits;
    do {
        digits.insert(digits.begin(), u"0123456789abcdef"[key % 16]);
        key /= 16;
    } while (key != 0);
    return name + u"{" + digits + u"}";
}

std::string asciiOf(const std::u16string& name) {
    std::string result;
    for (const char16_t unit : name) {
        result.push_back(unit < 0x80 ? static_cast<char>(unit) : '?');
    }
    return result;
}

}  // namespace

StoredObjects::StoredObjects(const FileImage& image) : container_(image) {
    problems_ = container_.problems();
    if (problems_.empty()) {
        readPaths();
        root_ = readObject(0, "");
    }
}

void StoredObjects::check(bool holds, const Place& place, const std::string& problem) {
    if (!holds) {
        problems_.push_back(place.path + ": " + problem);
    }
}

void StoredObjects::readPaths() {
    Place root{0, "", {}};
    const auto stream = entry(u"referenced properties", Type::stream, root);
    if (!stream) {
        return;
    }
    const Bytes stored = container_.content(*stream);
    Cursor cursor(stored);
    check(cursor.u8() == 0x4C, root, "byte order of the referenced properties");
    const std::size_t count = cursor.u16();
    const std::size_t numbers = cursor.u32();
    std::vector<std::uint16_t> path;
    for (std::size_t index = 0; index < numbers && !cursor.overrun(); ++index) {
        const std::uint16_t pid = cursor.u16();
        if (pid != 0) {
            path.push_back(pid);
        } else {
            paths_.push_back(std::move(path));
            path.clear();
        }
    }
    check(cursor.endedWell() && path.empty() && paths_.size() == count, root,
          "paths of the referenced properties");
}

const StoredProperty* StoredObjects::follow(const std::vector<std::uint16_t>& path) const {
    const StoredObject* object = root_.get();
    const StoredProperty* property = nullptr;
    for (const std::uint16_t pid : path) {
        if (property != nullptr) {
            object = property->objects.size() == 1 ? property->objects.front().get() : nullptr;
        }
        if (object == nullptr || !object->properties.contains(pid)) {
            return nullptr;
        }
        property = &object->properties.at(pid);
    }
    return property;
}

std::shared_ptr<StoredObject> StoredObjects::readObject(std::uint32_t storage,
                                                        const std::string& path) {
    auto object = std::make_shared<StoredObject>();
    object->classID = container_.entries()[storage].classID;
    Place place{storage, path, {}};
    if (storage == 0) {
        static_cast<void>(entry(u"referenced properties", Type::stream, place));
    }
    const auto stream = entry(u"properties", Type::stream, place);
    if (!stream) {
        return object;
    }
    const Bytes stored = container_.content(*stream);
    const std::vector<Head> heads = readHeads(stored, place);
    std::size_t offset = 4 + 6 * heads.size();
    for (const Head& head : heads) {
        const bool fits = offset <= stored.size() && head.length <= stored.size() - offset;
        check(fits, place, "a value behind the end");
        if (!fits) {
            return object;
        }
        const ByteView value = ByteView(stored).subspan(offset, head.length);
        offset += head.length;
        check(!object->properties.contains(head.pid), place, "a property twice");
        object->properties[head.pid] = readProperty(head, value, place);
    }
    check(offset == stored.size(), place, "bytes behind the values");
    const auto& members = container_.entries()[storage].members;
    for (const std::uint32_t member : members) {
        check(place.known.contains(member), place,
              "no property knows " + asciiOf(container_.entries()[member].name));
    }
    return object;
}

std::vector<StoredObjects::Head> StoredObjects::readHeads(ByteView stored, const Place& place) {
    Cursor cursor(stored);
    check(cursor.u8() == 0x4C && cursor.u8() == 32, place, "byte order or version");
    std::vector<Head> heads(cursor.u16());
    for (Head& head : heads) {
        head.pid = cursor.u16();
        head.form = cursor.u16();
        head.length = cursor.u16();
    }
    check(!cursor.overrun(), place, "fewer properties than it says");
    return heads;
}

StoredProperty StoredObjects::readProperty(const Head& head, ByteView value, Place& place) {
    StoredProperty property;
    property.form = static_cast<StoredForm>(head.form);
    switch (property.form) {
        case StoredForm::data:
            property.value.assign(value.begin(), value.end());
            return property;
        case StoredForm::stream: {
            check(!value.empty() && value[0] == std::byte{0x55}, place, "byte order of a stream");
            const auto name = readName(value.subspan(value.empty() ? 0 : 1), place);
            property.stream = name ? entry(*name, Type::stream, place).value_or(0) : 0;
            return property;
        }
        case StoredForm::weak:
            readWeak(property, value, place);
            return property;
        case StoredForm::weakVector:
        case StoredForm::weakSet:
            readWeakIndex(property, value, place);
            return property;
        case StoredForm::strong:
            readStrong(property, value, place);
            return property;
        case StoredForm::strongVector:
        case StoredForm::strongSet:
            readStrongIndex(property, value, place);
            return property;
    }
    check(false, place, "a form that does not exist");
    return property;
}

std::optional<std::u16string> StoredObjects::readName(ByteView value, Place& place) {
    Cursor cursor(value);
    std::u16string name;
    for (std::size_t index = 0; index + 2 < value.size(); index += 2) {
        name.push_back(static_cast<char16_t>(cursor.u16()));
    }
    const bool ends = cursor.u16() == 0 && cursor.endedWell();
    check(ends && name.find(u'\0') == std::u16string::npos, place, "end of a name");
    return ends ? std::optional(name) : std::nullopt;
}

std::optional<std::uint32_t> StoredObjects::entry(const std::u16string& name,
                                                  StoredEntry::Type type, Place& place) {
    const auto found = container_.find(place.storage, name);
    check(found && container_.entries()[*found].type == type, place,
          "nothing there: " + asciiOf(name));
    if (found) {
        check(!place.known.contains(*found), place, "two properties have " + asciiOf(name));
        place.known.insert(*found);
    }
    return found;
}

void StoredObjects::readWeak(StoredProperty& property, ByteView value, Place& place) {
    Cursor cursor(value);
    property.path = cursor.u16();
    property.namingPID = cursor.u16();
    property.names.push_back(cursor.take(cursor.u8()));
    check(cursor.endedWell(), place, "length of a weak reference");
}

Bytes StoredObjects::readIndex(const std::u16string& name, Place& place) {
    const auto stream = entry(name + u" index", Type::stream, place);
    return stream ? container_.content(*stream) : Bytes{};
}

void StoredObjects::readWeakIndex(StoredProperty& property, ByteView value, Place& place) {
    const Bytes stored = readIndex(readName(value, place).value_or(u""), place);
    Cursor cursor(stored);
    const std::uint32_t count = cursor.u32();
    property.path = cursor.u16();
    property.namingPID = cursor.u16();
    const std::size_t length = cursor.u8();
    for (std::uint32_t index = 0; index < count && !cursor.overrun(); ++index) {
        property.names.push_back(cursor.take(length));
    }
    check(cursor.endedWell(), place, "length of an index of weak references");
    if (property.form == StoredForm::weakSet) {
        const std::set<Bytes> different(property.names.begin(), property.names.end());
        check(different.size() == property.names.size(), place, "a weak set has one twice");
    }
}

void StoredObjects::readStrong(StoredProperty& property, ByteView value, Place& place) {
    const auto name = readName(value, place);
    const auto storage = name ? entry(*name, Type::storage, place) : std::nullopt;
    if (storage) {
        property.objects.push_back(readObject(*storage, place.path + "/" + asciiOf(*name)));
    }
}

void StoredObjects::readStrongIndex(StoredProperty& property, ByteView value, Place& place) {
    const std::u16string name = readName(value, place).value_or(u"");
    const Bytes stored = readIndex(name, place);
    Cursor cursor(stored);
    const std::uint32_t count = cursor.u32();
    const std::uint32_t nextKey = cursor.u32();
    check(cursor.u32() == 0xFFFFFFFF, place, "last free key");
    const bool isSet = property.form == StoredForm::strongSet;
    property.namingPID = isSet ? cursor.u16() : std::uint16_t{0};
    const std::size_t length = isSet ? cursor.u8() : 0;
    for (std::uint32_t index = 0; index < count && !cursor.overrun(); ++index) {
        const std::uint32_t key = cursor.u32();
        check(key < nextKey, place, "a key that is still free");
        if (isSet) {
            check(cursor.u32() == 1, place, "number of references to an object of a set");
            property.names.push_back(cursor.take(length));
        }
        const std::u16string member = keyed(name, key);
        if (const auto storage = entry(member, Type::storage, place)) {
            property.objects.push_back(readObject(*storage, place.path + "/" + asciiOf(member)));
        }
    }
    check(cursor.endedWell(), place, "length of an index");
    if (isSet) {
        checkSetNames(property, place);
    }
}

void StoredObjects::checkSetNames(const StoredProperty& property, const Place& place) {
    check(std::is_sorted(property.names.begin(), property.names.end()) &&
              std::adjacent_find(property.names.begin(), property.names.end()) ==
                  property.names.end(),
          place, "names of a set that are not in order");
}

}  // namespace trellant::testing
