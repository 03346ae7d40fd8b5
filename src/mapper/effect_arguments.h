// SPDX-License-Identifier: Apache-2.0
// What the slots of an effect carry.
#pragma once

#include "bounded_reads.h"

#include <trellant/base/keyed_hash.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace trellant {

/// The value of the first slot with that argument id whose value is readable.
[[nodiscard]] std::optional<OMFObject> effectArgument(const BoundedReads& reads,
                                                      const std::vector<OMFObject>& slots,
                                                      std::int32_t argID);

/// The arguments of gain and pan.
class EffectArguments {
  public:
    struct Values {
        /// In slot order.
        std::vector<OMFObject> inputs{};
        std::optional<OMFObject> control{};
        std::optional<OMFObject> gainAutomation{};
    };

    /// `reads` must outlive this.
    explicit EffectArguments(BoundedReads& reads) : reads_(reads) {}

    /// Those of effects with many slots are read once.
    [[nodiscard]] std::shared_ptr<const Values> of(OMFObject effect);

  private:
    [[nodiscard]] Values readValues(const std::vector<OMFObject>& slots) const;

    BoundedReads& reads_;
    KeyedMap<OMFObject, std::shared_ptr<const Values>> long_;
};

}  // namespace trellant
