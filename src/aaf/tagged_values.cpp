// SPDX-License-Identifier: Apache-2.0
#include "tagged_values.h"

namespace trellant::aaf {

void writeTaggedValues(compound::CompoundFile& file, ObjectWriter& object, Property property,
                       const std::vector<TaggedValue>& values) {
    if (values.empty()) {
        return;
    }
    ObjectList list = object.strongVector(property, values.size());
    for (const TaggedValue& value : values) {
        ObjectWriter stored(file, list.add(Class::taggedValue));
        stored.text(Property::taggedValueName, value.name);
        if (const auto* text = std::get_if<std::string>(&value.value)) {
            stored.indirectText(Property::taggedValueValue, *text);
        } else {
            stored.indirectInt32(Property::taggedValueValue, std::get<std::int32_t>(value.value));
        }
        stored.finish();
    }
}

}  // namespace trellant::aaf
