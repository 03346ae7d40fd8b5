// SPDX-License-Identifier: Apache-2.0
#include "bounded_reads.h"
#include "composition.h"

#include <trellant/mapper/compositions.h>

#include <algorithm>

namespace trellant {

namespace {

AAFComposition describe(BoundedReads& reads, OMFObject object) {
    AAFComposition result{.object = object,
                          .name = reads.string(object, {OMFProperty::mobName}),
                          .slotCount = reads.objectRefs(object, {OMFProperty::mobSlots}).size()};
    if (const auto id = reads.uid(object, {OMFProperty::mobID})) {
        result.mobID = id->description();
    }
    return result;
}

}  // namespace

std::vector<AAFComposition> compositions(const OMFDocument& document) {
    auto objects = document.objects("CMOB");
    if (objects.empty()) {
        return {};
    }
    const auto chosen = std::find(objects.begin(), objects.end(), chooseComposition(document));
    std::rotate(objects.begin(), chosen, chosen + 1);

    BoundedReads reads(document);
    std::vector<AAFComposition> result;
    result.reserve(objects.size());
    for (const auto object : objects) {
        result.push_back(describe(reads, object));
    }
    result.front().isRead = true;
    return result;
}

}  // namespace trellant
