// SPDX-License-Identifier: Apache-2.0
// Which events can be heard under the mute and solo settings of their tracks.
#pragma once

#include <trellant/base/keyed_hash.h>
#include <trellant/model/timeline.h>

#include <string_view>

namespace [[gnu::visibility("default")]] trellant {

/// The tracks of one timeline, indexed once for questions about many events. Only mute and solo
/// count: gains, automation and fades do not make an event inaudible.
class AAFAudibility {
  public:
    /// `timeline` must outlive this and keep its tracks as they are. Track ids must be unique, as
    /// in any timeline that passed validation, else the process stops.
    explicit AAFAudibility(const AAFTimeline& timeline);

    /// The event's track; null when `trackID` names none.
    [[nodiscard]] const AAFTrackState* track(const AAFClipEvent& event) const;
    /// False on a muted track, for a muted clip, beside soloed tracks and without a track.
    [[nodiscard]] bool isEventAudible(const AAFClipEvent& event) const {
        return isEventAudible(event, track(event));
    }
    /// The same where the event's track is known already, or null.
    [[nodiscard]] bool isEventAudible(const AAFClipEvent& event,
                                      const AAFTrackState* ofEvent) const noexcept;

  private:
    KeyedMap<std::string_view, const AAFTrackState*> tracks_;
    bool anySolo_ = false;
};

}  // namespace trellant
