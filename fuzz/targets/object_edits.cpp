// SPDX-License-Identifier: Apache-2.0
#include "object_edits.h"

#include "object_model.h"
#include "property_values.h"

#include <algorithm>
#include <array>
#include <map>
#include <trellant_testing/byte_writer.h>
#include <utility>

namespace trellant::fuzzing {

namespace {

using testing::ObjectID;

constexpr std::size_t mostEdits = 5;
/// Beyond it a copy is no edit any more, but a file of its own.
constexpr std::size_t mostValues = 1'000;

OMFProperty propertyAt(std::size_t index) {
    return static_cast<OMFProperty>(index);
}

std::optional<OMFProperty> propertyNamed(std::string_view name) {
    const auto* const found = std::find(omfPropertyNames.begin(), omfPropertyNames.end(), name);
    if (found == omfPropertyNames.end()) {
        return std::nullopt;
    }
    return propertyAt(static_cast<std::size_t>(found - omfPropertyNames.begin()));
}

class ObjectEdits {
  public:
    ObjectEdits(ObjectModel& model, Choices& choices, const ByteMutation& mutateBytes)
        : model_(model), choices_(choices), mutateBytes_(mutateBytes), made_(choices, model) {}

    void editOnce() {
        constexpr std::array<void (ObjectEdits::*)(), 12> edits{
            &ObjectEdits::replaceValue, &ObjectEdits::replaceValue, &ObjectEdits::replaceValue,
            &ObjectEdits::addProperty,  &ObjectEdits::removeValue,  &ObjectEdits::copyValue,
            &ObjectEdits::changeList,   &ObjectEdits::changeList,   &ObjectEdits::copyObject,
            &ObjectEdits::wrapObject,   &ObjectEdits::mutateValue,  &ObjectEdits::changeForm};
        (this->*choices_.any(edits))();
        if (model_.values.empty()) {
            model_.values.push_back({1, std::string(nameOf(OMFProperty::objClass)), {}});
        }
    }

  private:
    void set(ObjectID object, OMFProperty property, Bytes bytes) {
        const std::string_view name = nameOf(property);
        const auto found = std::find_if(
            model_.values.begin(), model_.values.end(),
            [&](const auto& value) { return value.object == object && value.property == name; });
        if (found != model_.values.end()) {
            found->bytes = std::move(bytes);
        } else {
            model_.values.push_back({object, std::string(name), std::move(bytes)});
        }
    }
    [[nodiscard]] ObjectID newObject() const {
        // Numbers from 65536 upwards are those of names.
        constexpr ObjectID mask = 0xFFFF;
        ObjectID highest = 0;
        for (const ObjectValue& value : model_.values) {
            highest = std::max(highest, value.object & mask);
        }
        return std::max<ObjectID>(1, (highest + 1) & mask);
    }

    void replaceValue() {
        ObjectValue& value = choices_.any(model_.values);
        if (const auto property = propertyNamed(value.property)) {
            value.bytes = made_.valueFor(*property);
        }
    }
    void addProperty() {
        const OMFProperty property = propertyAt(choices_.below(omfPropertyCount));
        set(made_.anyObject(), property, made_.valueFor(property));
    }
    void removeValue() {
        model_.values.erase(model_.values.begin() +
                            static_cast<std::ptrdiff_t>(choices_.below(model_.values.size())));
    }
    /// The value of one object for another.
    void copyValue() {
        const ObjectValue& from = choices_.any(model_.values);
        if (const auto property = propertyNamed(from.property)) {
            set(made_.anyObject(), *property, Bytes(from.bytes));
        }
    }
    void mutateValue() { mutateBytes_(choices_.any(model_.values).bytes); }

    void changeList() {
        std::vector<ObjectValue*> lists;
        for (ObjectValue& value : model_.values) {
            const auto property = propertyNamed(value.property);
            if (property && kindOf(*property) == ValueKind::references) {
                lists.push_back(&value);
            }
        }
        if (lists.empty()) {
            return;
        }
        ObjectValue& list = *choices_.any(lists);
        std::vector<ObjectID> targets = made_.targetsOf(list.bytes);
        const std::size_t place = choices_.below(targets.size() + 1);
        const auto at = targets.begin() + static_cast<std::ptrdiff_t>(place);
        if (choices_.oneIn(2) || at == targets.end()) {
            targets.insert(at, choices_.oneIn(2) || targets.empty() ? made_.anyObject()
                                                                    : choices_.any(targets));
        } else if (choices_.oneIn(2)) {
            targets.erase(at);
        } else {
            std::swap(*at, choices_.any(targets));
        }
        list.bytes = made_.references(targets);
    }

    /// A second object like one that is there; something that refers to the first refers to it.
    void copyObject() {
        const ObjectID from = made_.anyObject();
        const ObjectID copy = newObject();
        if (model_.values.size() > mostValues) {
            return;
        }
        const std::vector<ObjectValue> before = model_.values;
        for (const ObjectValue& value : before) {
            if (value.object == from) {
                model_.values.push_back({copy, value.property, value.bytes});
            }
        }
        refer(from, copy, choices_.oneIn(2));
    }

    /// Puts a segment between an object and one that refers to it.
    void wrapObject() {
        constexpr std::array<std::pair<std::string_view, OMFProperty>, 6> wrappers{
            {{"SEQU", OMFProperty::sequenceComponents},
             {"NEST", OMFProperty::nestedScopeSlots},
             {"SLCT", OMFProperty::selectorSelected},
             {"ESLT", OMFProperty::effectSlotArgValue},
             {"EFFE", OMFProperty::effectSlots},
             {"ATTR", OMFProperty::attributeRefs}}};
        const auto& [classID, property] = choices_.any(wrappers);
        const ObjectID inner = made_.anyObject();
        const ObjectID outer = newObject();
        refer(inner, outer, false);
        set(outer, OMFProperty::objClass, testing::bytesOf(classID));
        const bool isList = kindOf(property) == ValueKind::references;
        set(outer, property, isList ? made_.references({inner}) : made_.reference(inner));
        for (const OMFProperty shared :
             {OMFProperty::componentLength, OMFProperty::componentDataKind}) {
            const auto found = std::find_if(
                model_.values.begin(), model_.values.end(), [&](const ObjectValue& value) {
                    return value.object == inner && value.property == nameOf(shared);
                });
            if (found != model_.values.end()) {
                set(outer, shared, Bytes(found->bytes));
            }
        }
    }

    /// References to `from` become those to `to`, or in lists stand beside them.
    void refer(ObjectID from, ObjectID to, bool beside) {
        for (ObjectValue& value : model_.values) {
            const auto property = propertyNamed(value.property);
            if (!property) {
                continue;
            }
            if (kindOf(*property) == ValueKind::reference && !beside &&
                value.bytes == made_.reference(from)) {
                value.bytes = made_.reference(to);
            } else if (kindOf(*property) == ValueKind::references) {
                std::vector<ObjectID> targets = made_.targetsOf(value.bytes);
                const auto place = std::find(targets.begin(), targets.end(), from);
                if (place != targets.end()) {
                    static_cast<void>(beside ? targets.insert(place, to) : (*place = to, place));
                    value.bytes = made_.references(targets);
                }
            }
        }
    }

    void changeForm() {
        testing::ContainerBuilder::Options& options = model_.options;
        switch (choices_.below(4)) {
            case 0:
                options.byteOrder = options.byteOrder == OMFByteOrder::little
                                        ? OMFByteOrder::big
                                        : OMFByteOrder::little;
                break;
            case 1:
                options.form = options.form == testing::TocForm::v1 ? testing::TocForm::compressed
                                                                    : testing::TocForm::v1;
                break;
            case 2:
                options.extendedFooter = !options.extendedFooter;
                break;
            default:
                options.layout = testing::FileLayout::real;
                break;
        }
    }

    ObjectModel& model_;
    Choices& choices_;
    const ByteMutation& mutateBytes_;
    PropertyValues made_;
};

}  // namespace

std::optional<Bytes> editedContainer(ByteView container, unsigned seed,
                                     const ByteMutation& mutateBytes) {
    auto model = objectModelOf(container);
    if (!model) {
        return std::nullopt;
    }
    Choices choices(seed);
    ObjectEdits edits(*model, choices, mutateBytes);
    for (std::size_t count = 1 + choices.below(mostEdits); count > 0; --count) {
        edits.editOnce();
    }
    return containerOf(*model);
}

std::optional<Bytes> crossedContainers(ByteView container, ByteView other, unsigned seed) {
    auto model = objectModelOf(container);
    const auto from = objectModelOf(other);
    if (!model || !from) {
        return std::nullopt;
    }
    Choices choices(seed);
    const std::size_t share = 2 + choices.below(mostEdits);
    std::map<ObjectID, bool> taken;
    for (const ObjectValue& value : from->values) {
        if (taken.try_emplace(value.object, choices.oneIn(share)).first->second) {
            model->values.push_back(value);
        }
    }
    return containerOf(*model);
}

}  // namespace trellant::fuzzing
