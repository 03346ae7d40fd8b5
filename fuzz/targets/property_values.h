// SPDX-License-Identifier: Apache-2.0
// Values that a property could have: the right kind for it, mostly, and the odd ones among them.
#pragma once

#include "object_model.h"

#include <trellant/omf/names.h>

#include <cstddef>
#include <random>
#include <string_view>

namespace trellant::fuzzing {

/// The same choices for the same seed.
class Choices {
  public:
    explicit Choices(unsigned seed) : engine_(seed) {}

    /// From 0 to below `limit`, which is above 0.
    [[nodiscard]] std::size_t below(std::size_t limit) { return engine_() % limit; }
    /// True once in `count` times.
    [[nodiscard]] bool oneIn(std::size_t count) { return below(count) == 0; }
    template <class List>
    [[nodiscard]] auto& any(List& list) {
        return list[below(list.size())];
    }

  private:
    std::minstd_rand engine_;
};

class PropertyValues {
  public:
    /// Both must outlive this.
    PropertyValues(Choices& choices, const ObjectModel& model) : choices_(choices), model_(model) {}

    [[nodiscard]] Bytes valueFor(OMFProperty property);
    [[nodiscard]] Bytes reference(testing::ObjectID target) const;
    [[nodiscard]] Bytes references(const std::vector<testing::ObjectID>& targets) const;
    /// The objects that a list refers to; empty when it is none.
    [[nodiscard]] std::vector<testing::ObjectID> targetsOf(ByteView list) const;
    [[nodiscard]] testing::ObjectID anyObject();

  private:
    [[nodiscard]] Bytes classID();
    [[nodiscard]] Bytes text();
    [[nodiscard]] Bytes uid();
    [[nodiscard]] Bytes media();
    [[nodiscard]] std::int64_t number();
    [[nodiscard]] Bytes numberOf(std::size_t width);

    Choices& choices_;
    const ObjectModel& model_;
};

/// What the value of a property is read as.
enum class ValueKind {
    classID,
    byteOrder,
    reference,
    references,
    text,
    int16,
    int32,
    position,
    rational,
    uid,
    media
};
[[nodiscard]] ValueKind kindOf(OMFProperty property);

}  // namespace trellant::fuzzing
