// SPDX-License-Identifier: Apache-2.0
// Which effect an invocation names.
#pragma once

#include "bounded_reads.h"

#include <trellant/base/keyed_hash.h>

#include <string>

namespace trellant {

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

}  // namespace trellant
