// SPDX-License-Identifier: Apache-2.0
// Which transitions are plain linear audio dissolves; any other is played as a cut.
#pragma once

#include "bounded_reads.h"
#include "effect_arguments.h"

#include <trellant/base/keyed_hash.h>

namespace trellant {

class Dissolves {
  public:
    /// Both must outlive this.
    Dissolves(BoundedReads& reads, EffectKinds& kinds) : reads_(reads), kinds_(kinds) {}

    [[nodiscard]] bool isSimpleLinear(OMFObject transition);

  private:
    /// Whether the dissolve has no level, or one that rises evenly.
    [[nodiscard]] bool hasLinearLevel(OMFObject dissolveEffect);
    [[nodiscard]] bool isLinear(OMFObject level);

    BoundedReads& reads_;
    EffectKinds& kinds_;
    /// Answers by dissolve effect and by level: transitions may share either.
    KeyedMap<OMFObject, bool> effects_;
    KeyedMap<OMFObject, bool> levels_;
};

}  // namespace trellant
