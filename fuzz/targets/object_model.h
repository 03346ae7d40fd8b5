// SPDX-License-Identifier: Apache-2.0
// A container taken apart into the values of its objects' named properties, so that a mutation can
// change one of them and have a whole container again. What is not named or cannot be read is lost.
#pragma once

#include <trellant/io/byte_readers.h>

#include <cstdint>
#include <optional>
#include <string>
#include <trellant_testing/container_builder.h>
#include <vector>

namespace trellant::fuzzing {

struct ObjectValue {
    testing::ObjectID object = 0;
    std::string property{};
    Bytes bytes{};
    bool operator==(const ObjectValue&) const = default;
};

struct ObjectModel {
    testing::ContainerBuilder::Options options{};
    /// Of the numbers in values.
    OMFByteOrder valueOrder = OMFByteOrder::little;
    std::vector<ObjectValue> values{};
};

/// Absent when the bytes are no container, or one without values.
[[nodiscard]] std::optional<ObjectModel> objectModelOf(ByteView container);

[[nodiscard]] Bytes containerOf(const ObjectModel& model);

}  // namespace trellant::fuzzing
