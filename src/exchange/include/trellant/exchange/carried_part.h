// SPDX-License-Identifier: Apache-2.0
// A plan cut down to what a format carries. Writers write all of what they get and decide nothing;
// what was taken away or changed is on record before anything is written.
#pragma once

#include <trellant/exchange/capabilities.h>
#include <trellant/exchange/export_plan.h>
#include <trellant/model/timeline.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {
namespace exchange {

/// A value that the target lost or changed.
struct ExportLoss {
    Feature feature = Feature::clipPlaces;
    AAFUnsupportedFeature::Severity severity = AAFUnsupportedFeature::Severity::informational;
    /// Positions in the timeline; absent for what is about the whole session.
    std::optional<std::size_t> track{};
    std::optional<std::size_t> event{};
    /// Timeline seconds.
    std::optional<AAFRational> start{};
    std::optional<AAFRational> duration{};
    /// It is not in the session, or only as a note that other tools do not act on; else it is there
    /// and is another.
    bool isLeftOut = true;
    /// One sentence for an editor, without names: "The clip's gain is left out."
    std::string sentence{};
    /// What it was and what became of it: "clip gain 0.5, not carried by markers".
    std::string technical{};
    bool operator==(const ExportLoss&) const = default;
};

/// What a loss means for whoever plays the session.
enum class LossEffect {
    /// Left out, which is not heard.
    dropped,
    soundsDifferent,
    /// There, as something else that sounds the same.
    changed
};
[[nodiscard]] LossEffect effectOf(const ExportLoss& loss) noexcept;
/// For programs: "dropped", "soundsDifferent", "changed".
[[nodiscard]] std::string_view effectWord(LossEffect effect) noexcept;

/// What a plan had to leave out or change, whatever is made of it: one about
/// the whole where times were rounded to samples, then one for each of its losses.
[[nodiscard]] std::vector<ExportLoss> lossesOfPlan(const PlannedSession& planned,
                                                   const AAFTimeline& timeline);

struct CarriedPart {
    /// Values whose Carriage is `metadata` are still there: writers put them where only this
    /// program's readers look.
    ExportPlan plan{};
    /// Those of the session first, then by track, then by clip.
    std::vector<ExportLoss> losses{};
};

/// `planned` was made of `timeline`. The losses of the plan itself are among the result's.
[[nodiscard]] CarriedPart carriedPart(PlannedSession planned, const AAFTimeline& timeline,
                                      ExportFormat format);

}  // namespace exchange
}  // namespace trellant
