// SPDX-License-Identifier: Apache-2.0
// Varying values as automation envelopes. Each value is read once, however many effects share it.
#pragma once

#include "bounded_reads.h"

#include <trellant/base/boxed.h>
#include <trellant/base/keyed_hash.h>
#include <trellant/model/timeline.h>

namespace trellant {

class AutomationEnvelopes {
  public:
    /// `reads` must outlive this.
    explicit AutomationEnvelopes(BoundedReads& reads) : reads_(reads) {}

    /// The curve between the points of a varying value; linear when it names none.
    [[nodiscard]] AAFAutomationInterpolation curveOf(OMFObject varying) const;

    /// None when the value has no points or one that cannot be read. Points keep their stored
    /// times, fractions of the owner. All copies share the points.
    [[nodiscard]] Boxed<AAFAutomationEnvelope> envelopeOf(OMFObject varying);

  private:
    [[nodiscard]] Boxed<AAFAutomationEnvelope> readEnvelope(OMFObject varying);

    BoundedReads& reads_;
    KeyedMap<OMFObject, Boxed<AAFAutomationEnvelope>> envelopes_;
};

}  // namespace trellant
