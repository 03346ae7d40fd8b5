// SPDX-License-Identifier: Apache-2.0
// From seconds to samples of one rate. Each moment is rounded on its own, so no error adds up.
#pragma once

#include <trellant/exchange/export_plan.h>

#include <optional>

namespace trellant::exchange {

class SampleClock {
  public:
    /// `rate`: samples in a second, above 0.
    explicit SampleClock(const AAFRational& rate) noexcept : rate_(rate) {}

    /// The sample nearest to `seconds`, halves away from zero; absent beyond mostSamples in either
    /// direction. What does not fall on a sample is counted in `rounding`.
    [[nodiscard]] std::optional<Samples> nearest(const AAFRational& seconds,
                                                 Rounding& rounding) const;

  private:
    AAFRational rate_;
};

}  // namespace trellant::exchange
