// SPDX-License-Identifier: Apache-2.0
// Opening: classes, header, byte order; and the maps over all objects. Typed reads stand in
// typed_reads.cpp.
#include <trellant/base/keyed_hash.h>
#include <trellant/io/errors.h>
#include <trellant/omf/document.h>

#include <algorithm>
#include <utility>

namespace trellant {

namespace {

constexpr std::uint32_t noClass = 0xFFFF'FFFF;
constexpr std::size_t classLimit = 16;

}  // namespace

OMFDocument::OMFDocument(const std::string& path) : bento_(path) {
    open();
}

OMFDocument::OMFDocument(BentoContainer container) : bento_(std::move(container)) {
    open();
}

OMFDocument::OMFDocument(BentoContainer container, OMFOlderModel older)
    : bento_(std::move(container)), older_(std::move(older)) {
    open();
}

void OMFDocument::open() {
    for (std::size_t i = 0; i < omfPropertyCount; ++i) {
        propertyIDs_.at(i) = bento_.propertyID(omfPropertyNames.at(i));
    }
    if (!propertyIDs_[static_cast<std::size_t>(OMFProperty::objClass)]) {
        throw OMFIOError::unsupported(
            "not an OMF 2.x object model (OMFI:OOBJ:ObjClass registry entry missing)");
    }
    readClasses();
    const auto headers = objects("HEAD");
    if (headers.empty()) {
        throw OMFIOError::malformed("OMF HEAD object not found");
    }
    headerObject_ = headers.front();
    settleByteOrder();
}

void OMFDocument::readClasses() {
    classTexts_.assign(omfClassIDs.begin(), omfClassIDs.end());
    KeyedMap<std::string, std::uint32_t> indexOfText;
    for (std::uint32_t i = 0; i < classTexts_.size(); ++i) {
        indexOfText.emplace(classTexts_[i], i);
    }
    const auto ids = bento_.objectIDs();
    classIndexByObject_.assign(ids.size(), noClass);
    std::array<std::byte, classLimit> buffer{};
    for (std::size_t i = 0; i < ids.size(); ++i) {
        const auto value = smallValue(OMFObject{ids[i]}, OMFProperty::objClass, buffer);
        if (!value) {
            continue;
        }
        const auto next = static_cast<std::uint32_t>(classTexts_.size());
        const auto [found, isNew] = indexOfText.try_emplace(asciiCString(*value), next);
        if (isNew) {
            classTexts_.push_back(found->first);
        }
        classIndexByObject_[i] = found->second;
    }
}

void OMFDocument::settleByteOrder() {
    byteOrder_ = bento_.footer().byteOrder;
    const auto mark = raw(headerObject_, {OMFProperty::headByteOrder});
    if (!mark || mark->size() < 2) {
        return;
    }
    const auto isMark = [&](char letter) {
        return (*mark)[0] == std::byte(letter) && (*mark)[1] == std::byte(letter);
    };
    if (isMark('M')) {
        byteOrder_ = OMFByteOrder::big;
    } else if (isMark('I')) {
        byteOrder_ = OMFByteOrder::little;
    }
}

std::uint32_t OMFDocument::classIndex(OMFObject object) const noexcept {
    const auto index = bento_.objectIndex(number(object));
    return index ? classIndexByObject_[*index] : noClass;
}

std::optional<std::string_view> OMFDocument::classID(OMFObject object) const noexcept {
    const auto index = classIndex(object);
    if (index == noClass) {
        return std::nullopt;
    }
    return classTexts_[index];
}

OMFClass OMFDocument::classOf(OMFObject object) const noexcept {
    const auto index = classIndex(object);
    if (index == noClass) {
        return OMFClass::absent;
    }
    return index < omfClassIDs.size() ? static_cast<OMFClass>(index) : OMFClass::other;
}

std::vector<OMFObject> OMFDocument::objects(std::string_view ofClass) const {
    std::vector<OMFObject> result;
    const auto text = std::find(classTexts_.begin(), classTexts_.end(), ofClass);
    const auto wanted = static_cast<std::uint32_t>(text - classTexts_.begin());
    const auto ids = bento_.objectIDs();
    for (std::size_t i = 0; i < ids.size(); ++i) {
        if (classIndexByObject_[i] == wanted) {
            result.push_back(OMFObject{ids[i]});
        }
    }
    return result;
}

OMFDocument::MobMap OMFDocument::mapOf(std::initializer_list<OMFClass> classes,
                                       OMFProperty uidName) const {
    std::vector<MobMap::value_type> entries;
    for (const auto id : bento_.objectIDs()) {
        const OMFObject object{id};
        if (std::find(classes.begin(), classes.end(), classOf(object)) == classes.end()) {
            continue;
        }
        if (const auto mobID = uid(object, {uidName})) {
            entries.emplace_back(*mobID, object);
        }
    }
    return MobMap(std::move(entries));
}

OMFDocument::MobMap OMFDocument::mobMap() const {
    return mapOf({OMFClass::compositionMob, OMFClass::masterMob, OMFClass::sourceMob,
                  OMFClass::trackMob, OMFClass::descriptorMob},
                 OMFProperty::mobID);
}

OMFDocument::MobMap OMFDocument::mediaDataMap() const {
    return mapOf({OMFClass::waveMedia, OMFClass::aifcMedia, OMFClass::tiffMedia,
                  OMFClass::imageMedia, OMFClass::mediaData},
                 OMFProperty::mediaMobID);
}

}  // namespace trellant
