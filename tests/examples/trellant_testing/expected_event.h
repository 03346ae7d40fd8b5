// SPDX-License-Identifier: Apache-2.0
// What an example's event must be, worked out by hand.
#pragma once

#include <trellant/model/timeline.h>

#include <optional>
#include <string>
#include <vector>

namespace trellant::testing {

struct ExpectedFade {
    AAFRational duration{};
    AAFAutomationInterpolation curve{};
};

struct ExpectedEvent {
    std::string track{};
    std::optional<std::string> clip{};
    /// Name of the source file.
    std::string source{};
    AAFRational start{};
    AAFRational duration{};
    std::int64_t sourceStartSample = 0;
    std::int64_t channel = 0;
    AAFChannelRole role = AAFChannelRole::mono;
    double gain = 1;
    std::optional<ExpectedFade> fadeIn{};
    std::optional<ExpectedFade> fadeOut{};
    std::optional<AAFAutomationEnvelope> gainAutomation{};
};

/// All events of the timeline, in order, with everything that they hold.
void expectEvents(const AAFTimeline& timeline, const std::vector<ExpectedEvent>& expected);

struct ExpectedTrack {
    std::int64_t index = 0;
    std::optional<std::string> name{};
    std::optional<double> pan{};
};

/// All tracks: nothing but a name and a pan is ever set.
void expectTracks(const AAFTimeline& timeline, const std::vector<ExpectedTrack>& expected);

}  // namespace trellant::testing
