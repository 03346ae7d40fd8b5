// SPDX-License-Identifier: Apache-2.0
// What the walk over a slot's segments leaves behind: one draft per Source Clip reached.
#pragma once

#include <trellant/base/boxed.h>
#include <trellant/model/timeline.h>
#include <trellant/omf/values.h>

#include <optional>
#include <vector>

namespace trellant {

struct EventDraft {
    /// The Source Clip.
    OMFObject object = OMFObject::none;
    /// Seconds from the timeline's zero.
    AAFRational timelineStart{};
    /// Seconds.
    AAFRational duration{};
    /// Seconds cut from the head of the clip's source range.
    AAFRational sourceTrimStart{};
    double fixedClipGain = 1;
    /// All drafts of one effect share its points.
    Boxed<AAFAutomationEnvelope> clipGainAutomation{};
    Boxed<AAFFade> fadeIn{};
    Boxed<AAFFade> fadeOut{};
    /// 0 = left, 1 = right.
    std::optional<double> fixedPan{};
};

using EventDrafts = std::vector<EventDraft>;

/// One scope of the walk: the composition's slots or a Nested Scope's. A link in a chain whose
/// links live on the stack of the calls that opened them, innermost first.
struct ScopeFrame {
    /// Segments by slot; none where a slot has no segment.
    const std::vector<OMFObject>* segments = nullptr;
    /// The slot being walked.
    std::int64_t currentIndex = 0;
    const ScopeFrame* outer = nullptr;
};

}  // namespace trellant
