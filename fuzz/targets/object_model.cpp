// SPDX-License-Identifier: Apache-2.0
#include "object_model.h"

#include "memory_file.h"

#include <trellant/io/bento_container.h>
#include <trellant/io/errors.h>
#include <trellant/omf/names.h>

#include <algorithm>
#include <set>
#include <utility>

namespace trellant::fuzzing {

namespace {

using testing::FileLayout;
using testing::ObjectID;
using testing::TocForm;

/// Values may lie over one another: a small file can hold more than a mutation is worth.
constexpr std::size_t maximumBytes = 65'536;
constexpr std::size_t maximumValues = 2'000;

constexpr std::uint16_t smallBlockKiB = 1;

std::vector<ObjectValue> valuesOf(const BentoContainer& container) {
    std::vector<ObjectValue> values;
    std::set<std::pair<ObjectID, ObjectID>> seen;
    std::size_t room = maximumBytes;
    for (const BentoTOCItem& item : container.tableItems()) {
        if (values.size() == maximumValues) {
            break;
        }
        const auto name = container.propertyName(item.property);
        if (!name || !seen.emplace(item.object, item.property).second) {
            continue;
        }
        try {
            auto bytes =
                container.valueData(item.object, item.property, static_cast<std::int64_t>(room));
            room -= bytes->size();
            values.push_back({item.object, std::string(*name), std::move(*bytes)});
        } catch (const OMFIOError&) {
            continue;
        }
    }
    return values;
}

OMFByteOrder valueOrderOf(const ObjectModel& model) {
    const auto mark = std::find_if(model.values.begin(), model.values.end(), [](const auto& value) {
        return value.property == nameOf(OMFProperty::headByteOrder);
    });
    if (mark == model.values.end() || mark->bytes.empty()) {
        return model.options.byteOrder;
    }
    return mark->bytes.front() == std::byte{'M'} ? OMFByteOrder::big : OMFByteOrder::little;
}

}  // namespace

std::optional<ObjectModel> objectModelOf(ByteView container) {
    const MemoryFile file(container);
    try {
        const BentoContainer opened(file.path());
        ObjectModel model;
        model.options = {.byteOrder = opened.footer().byteOrder,
                         .form = opened.footer().blockSize == 0 ? TocForm::v1 : TocForm::compressed,
                         .layout = FileLayout::simple,
                         .blockSizeKiB = smallBlockKiB,
                         .extendedFooter = opened.footer().hasExtendedFooter};
        model.values = valuesOf(opened);
        model.valueOrder = valueOrderOf(model);
        return model.values.empty() ? std::nullopt : std::optional(std::move(model));
    } catch (const OMFIOError&) {
        return std::nullopt;
    }
}

Bytes containerOf(const ObjectModel& model) {
    testing::ContainerBuilder builder(model.options);
    for (const ObjectValue& value : model.values) {
        builder.set(value.object, value.property, value.bytes);
    }
    return builder.build();
}

}  // namespace trellant::fuzzing
