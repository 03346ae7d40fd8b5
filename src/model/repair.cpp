// SPDX-License-Identifier: Apache-2.0
// Which objects stay, under which ids, and what they refer to.
#include "repair_parts.h"

#include <trellant/base/keyed_hash.h>
#include <trellant/model/validation.h>

namespace trellant {

namespace repair {

std::optional<Problem> problemOf(const AAFTimeline& timeline) {
    try {
        AAFRawTimelineValidation::validate(timeline);
    } catch (const AAFRawTimelineValidation::Failure& failure) {
        return failure.problem();
    }
    return std::nullopt;
}

namespace {

/// Makes ids that no element of a list has. Each candidate that is taken is an id of the list, and
/// no candidate is tried twice: all together cost no more than the list is long.
class NewIDs {
  public:
    template <class Element>
    NewIDs(const std::vector<Element>& elements, Place::Kind kind) : kind_(kind) {
        for (const auto& element : elements) {
            taken_.insert(element.id);
        }
    }

    [[nodiscard]] std::string idFor(std::size_t index) const {
        const auto base = "repaired-" + std::string(rawValue(kind_)) + "-" + std::to_string(index);
        auto id = base;
        for (std::size_t n = 2; taken_.contains(id); ++n) {
            id = base + "-" + std::to_string(n);
        }
        return id;
    }

  private:
    Place::Kind kind_;
    KeyedSet<std::string> taken_;
};

/// The tracks or essences of a timeline after their repair.
template <class Element>
struct Kept {
    std::vector<Element> elements{};
    /// Positions in `elements`.
    KeyedMap<std::string, std::size_t> byID{};
    /// What the first element without an id is now called; empty when all had one.
    std::string formerlyEmpty{};

    [[nodiscard]] const Element* find(const std::string& id) const {
        const auto found = byID.find(id);
        return found == byID.end() ? nullptr : &elements[found->second];
    }
};

template <class Element>
Kept<Element> repairAll(std::vector<Element>& given, Place::Kind kind,
                        bool (*repairValues)(Element&, const Recorder&),
                        std::vector<AAFRepairChange>& changes) {
    const NewIDs newIDs(given, kind);
    Kept<Element> kept;
    kept.elements.reserve(given.size());
    for (std::size_t i = 0; i < given.size(); ++i) {
        auto& element = given[i];
        const Recorder recorder(changes, Place{kind, i}, element.id);
        if (kept.byID.contains(element.id)) {
            recorder.add(Problem::duplicateIdentity, Action::leftOut, "");
            continue;
        }
        if (element.id.empty()) {
            element.id = newIDs.idFor(i);
            recorder.add(Problem::emptyIdentity, Action::replaced, "id");
            if (kept.formerlyEmpty.empty()) {
                kept.formerlyEmpty = element.id;
            }
        }
        if (repairValues(element, recorder)) {
            kept.byID.emplace(element.id, kept.elements.size());
            kept.elements.push_back(std::move(element));
        }
    }
    return kept;
}

/// Lets what named the empty id follow to the element that had it.
template <class Element>
void follow(std::string& reference, const Kept<Element>& kept, const char* field,
            const Recorder& recorder) {
    if (reference.empty() && !kept.formerlyEmpty.empty()) {
        reference = kept.formerlyEmpty;
        recorder.add(Problem::emptyIdentity, Action::replaced, field);
    }
}

class EventRepair {
  public:
    EventRepair(const Kept<AAFTrackState>& tracks, const Kept<AAFSourceEssence>& essences,
                const std::vector<AAFClipEvent>& events)
        : tracks_(tracks), essences_(essences), newIDs_(events, Place::Kind::event) {}

    /// False, with the change listed, when the event has to be left out.
    [[nodiscard]] bool repair(AAFClipEvent& event, std::size_t index,
                              std::vector<AAFRepairChange>& changes) {
        const Recorder recorder(changes, Place::event(index), event.id, event.trackID);
        follow(event.trackID, tracks_, "trackID", recorder);
        follow(event.essenceID, essences_, "essenceID", recorder);
        if (tracks_.find(event.trackID) == nullptr) {
            recorder.add(Problem::missingTrackReference, Action::leftOut, "");
            return false;
        }
        const auto* essence = essences_.find(event.essenceID);
        if (essence == nullptr) {
            recorder.add(Problem::missingEssenceReference, Action::leftOut, "");
            return false;
        }
        giveID(event, index, recorder);
        if (!repairEvent(event, *essence, recorder)) {
            return false;
        }
        seen_.insert(event.id);
        return true;
    }

  private:
    void giveID(AAFClipEvent& event, std::size_t index, const Recorder& recorder) const {
        if (!event.id.empty() && !seen_.contains(event.id)) {
            return;
        }
        recorder.add(event.id.empty() ? Problem::emptyIdentity : Problem::duplicateIdentity,
                     Action::replaced, "id");
        event.id = newIDs_.idFor(index);
    }

    const Kept<AAFTrackState>& tracks_;
    const Kept<AAFSourceEssence>& essences_;
    NewIDs newIDs_;
    KeyedSet<std::string> seen_;
};

std::vector<AAFClipEvent> repairEvents(std::vector<AAFClipEvent>& given,
                                       const Kept<AAFTrackState>& tracks,
                                       const Kept<AAFSourceEssence>& essences,
                                       std::vector<AAFRepairChange>& changes) {
    EventRepair repair(tracks, essences, given);
    std::vector<AAFClipEvent> kept;
    kept.reserve(given.size());
    for (std::size_t i = 0; i < given.size(); ++i) {
        if (repair.repair(given[i], i, changes)) {
            kept.push_back(std::move(given[i]));
        }
    }
    return kept;
}

}  // namespace

}  // namespace repair

AAFRepair repairedTimeline(AAFTimeline timeline) {
    AAFRepair result{.timeline = std::move(timeline)};
    using Kind = AAFTimelinePlace::Kind;
    auto& repaired = result.timeline;
    if (!repair::problemOf(repaired)) {
        return result;
    }
    auto tracks =
        repair::repairAll(repaired.tracks, Kind::track, repair::repairTrack, result.changes);
    auto essences =
        repair::repairAll(repaired.essences, Kind::essence, repair::repairEssence, result.changes);
    repair::repairClock(repaired, result.changes);
    repaired.events = repair::repairEvents(repaired.events, tracks, essences, result.changes);
    repaired.tracks = std::move(tracks.elements);
    repaired.essences = std::move(essences.elements);
    return result;
}

}  // namespace trellant
