// SPDX-License-Identifier: Apache-2.0
// What the parts of a repair share: the change list, and validation itself asked about one piece,
// so that no rule of it is written down twice.
#pragma once

#include <trellant/model/repair.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace trellant::repair {

using Action = AAFRepairChange::Action;

using Problem = AAFTimelineProblem;
using Place = AAFTimelinePlace;

/// The timeline's first problem.
[[nodiscard]] std::optional<Problem> problemOf(const AAFTimeline& timeline);

/// Lists the changes of one object.
class Recorder {
  public:
    /// `changes` must outlive this; `id` and `trackID` are the object's as given.
    Recorder(std::vector<AAFRepairChange>& changes, const Place& place, std::string id = {},
             std::string trackID = {})
        : changes_(changes), place_(place), id_(std::move(id)), trackID_(std::move(trackID)) {}

    void add(Problem problem, Action action, std::string_view field, std::size_t count = 1) const {
        changes_.push_back({.problem = problem,
                            .place = place_,
                            .id = id_,
                            .trackID = trackID_,
                            .action = action,
                            .field = std::string(field),
                            .count = count});
    }

  private:
    std::vector<AAFRepairChange>& changes_;
    Place place_;
    std::string id_;
    std::string trackID_;
};

/// Clock, program start and composition length.
void repairClock(AAFTimeline& timeline, std::vector<AAFRepairChange>& changes);

/// The values of one object, references and id aside. False, with the change listed, when the
/// object has to be left out.
[[nodiscard]] bool repairTrack(AAFTrackState& track, const Recorder& recorder);
[[nodiscard]] bool repairEssence(AAFSourceEssence& essence, const Recorder& recorder);
/// `essence`: the one that the event plays, repaired.
[[nodiscard]] bool repairEvent(AAFClipEvent& event, const AAFSourceEssence& essence,
                               const Recorder& recorder);

}  // namespace trellant::repair
