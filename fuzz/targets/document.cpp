// SPDX-License-Identifier: Apache-2.0
#include "memory_file.h"
#include "require.h"
#include "targets.h"

#include <trellant/base/text.h>
#include <trellant/io/errors.h>
#include <trellant/mapper/compositions.h>
#include <trellant/omf/document.h>
#include <trellant/omf1/open.h>

#include <algorithm>

namespace trellant::fuzzing {

namespace {

/// Typed reads never throw: an error that leaves this function stops the fuzzer.
void readAsEveryType(const OMFDocument& document, OMFObject object, OMFProperty property) {
    const auto text = document.string(object, {property});
    require(!text || (!text->empty() && isValidUTF8(*text)), "texts are UTF-8, never empty");
    static_cast<void>(document.int16(object, {property}));
    static_cast<void>(document.int32(object, {property}));
    static_cast<void>(document.uint32(object, {property}));
    static_cast<void>(document.int64(object, {property}));
    const auto fraction = document.rational(object, {property});
    require(!fraction || fraction->denominator != 0, "no denominator is zero");
    if (fraction) {
        static_cast<void>(fraction->aaf());
    }
    static_cast<void>(document.uid(object, {property}));
    require(document.objectRef(object, {property}) != OMFObject::none, "no reference is to 0");
    const auto references = document.objectRefs(object, {property});
    require(std::find(references.begin(), references.end(), OMFObject::none) == references.end(),
            "no reference of a list is to 0");
}

void readValues(const OMFDocument& document) {
    const BentoContainer& container = document.bento();
    for (const BentoTOCItem& item : container.tableItems()) {
        const auto name = container.propertyName(item.property);
        const auto* const known =
            std::find(omfPropertyNames.begin(), omfPropertyNames.end(), name.value_or(""));
        if (known != omfPropertyNames.end()) {
            readAsEveryType(document, OMFObject{item.object},
                            static_cast<OMFProperty>(known - omfPropertyNames.begin()));
        }
    }
}

void readObjects(const OMFDocument& document) {
    for (const std::uint32_t id : document.bento().objectIDs()) {
        const auto text = document.classID(OMFObject{id});
        const OMFClass kind = document.classOf(OMFObject{id});
        require(text.has_value() == (kind != OMFClass::absent), "a class has a text");
        require(!text || isValidUTF8(*text), "the text of a class is UTF-8");
    }
    require(document.classID(document.headerObject()) == "HEAD", "the header is a header");
    for (const auto& map : {document.mobMap(), document.mediaDataMap()}) {
        require(map.size() <= document.bento().objectIDs().size(), "a mob is an object");
    }
    const auto found = compositions(document);
    require(found.empty() || (found.front().isRead && std::count_if(found.begin(), found.end(),
                                                                    [](const AAFComposition& it) {
                                                                        return it.isRead;
                                                                    }) == 1),
            "one composition is read, the first");
}

}  // namespace

void runDocument(ByteView input) {
    const MemoryFile file(input);
    try {
        const OMFDocument document = openAnyOMF(file.path());
        readObjects(document);
        readValues(document);
    } catch (const OMFIOError& error) {
        require(isValidUTF8(error.errorDescription()), "errors are texts");
    }
}

}  // namespace trellant::fuzzing
