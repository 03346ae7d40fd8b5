// SPDX-License-Identifier: Apache-2.0
// The formulas of gain.h for many samples in succession, as a rendering needs them: the same
// numbers to the last bit, without looking for the place in an envelope at each sample.
//
// Sample n of an owner (clip, fade or session) of N samples is at place n / N of it.
#pragma once

#include <trellant/model/timeline.h>

#include <cstdint>
#include <span>

namespace [[gnu::visibility("default")]] trellant {
namespace audio {

/// Samples of an owner: the first of them, counted from the owner's start, and how many the owner
/// has (1 or more). Samples before its start and behind its end are at its edges.
struct OwnerRun {
    std::int64_t first = 0;
    std::int64_t ownerLength = 1;
};

/// Multiplies each factor by valueAt(envelope, place of that sample). Points must be in time order.
/// Takes time in proportion to the factors and to the points within the run.
void multiplyByEnvelope(const AAFAutomationEnvelope& envelope, const OwnerRun& run,
                        std::span<double> factors);

/// Multiplies each factor by fadeInGain or fadeOutGain at the place of that sample: of `shape`,
/// where it has points, else of `curve`. The owner is the fade.
void multiplyByFadeIn(const AAFAutomationInterpolation& curve,
                      const std::vector<AAFAutomationPoint>& shape, const OwnerRun& run,
                      std::span<double> factors);
void multiplyByFadeOut(const AAFAutomationInterpolation& curve,
                       const std::vector<AAFAutomationPoint>& shape, const OwnerRun& run,
                       std::span<double> factors);

/// The values of valueAt(envelope, place of that sample, absent) themselves.
void fillWithEnvelope(const AAFAutomationEnvelope& envelope, const OwnerRun& run, double absent,
                      std::span<double> values);

}  // namespace audio
}  // namespace trellant
