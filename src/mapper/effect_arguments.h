// SPDX-License-Identifier: Apache-2.0
// Which effect an invocation names, and what its slots carry.
#pragma once

#include "bounded_reads.h"

#include <trellant/base/keyed_hash.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace trellant {

/// Which effect it is.
class EffectKinds {
  public:
    /// Effect definitions whose identifiers are remembered; files have few.
    static constexpr std::size_t keptDefinitions = 64;

    /// `reads` must outlive this.
    explicit EffectKinds(BoundedReads& reads) : reads_(reads) {}

    /// The identifier as the file writes it; empty when it cannot be read.
    [[nodiscard]] std::string idOf(OMFObject effect);

  private:
    BoundedReads& reads_;
    /// By effect definition.
    KeyedMap<OMFObject, std::string> ids_;
};

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
