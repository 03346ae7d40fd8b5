// SPDX-License-Identifier: Apache-2.0
// Makes a timeline that fails validation pass it. Odd but real files lead to such timelines, and
// one bad channel number must not cost a person all the audio: just the piece at fault is left
// out, clamped or replaced, and every change is listed.
#pragma once

#include <trellant/model/timeline.h>
#include <trellant/model/timeline_problem.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

/// One change.
struct AAFRepairChange {
    enum class Action : std::uint8_t {
        /// The field, or without a field the whole object, is gone.
        leftOut,
        /// The value became the nearest one allowed.
        clamped,
        /// The value became another one, see `repairedTimeline`.
        replaced,
        /// Automation points were put in time order.
        reordered
    };

    /// What validation says of it.
    AAFTimelineProblem problem{};
    /// Of what, by the position in the timeline given.
    AAFTimelinePlace place{};
    /// The id that the track, essence or event had; empty for the other objects.
    std::string id{};
    /// The track that an event named; empty for the other objects.
    std::string trackID{};
    Action action = Action::leftOut;
    /// "sourceChannel", "fadeIn.points"; empty when it is the object as a whole.
    std::string field{};
    /// Automation points concerned; 1 for every other field.
    std::size_t count = 1;

    bool operator==(const AAFRepairChange&) const = default;
};

struct AAFRepair {
    /// Passes AAFRawTimelineValidation::validate.
    AAFTimeline timeline{};
    /// The tracks' first, then those of essences, clock and composition, then the events'.
    std::vector<AAFRepairChange> changes{};

    bool operator==(const AAFRepair&) const = default;
};

/// `timeline` as it is when it passes validation, else with as little changed as makes it pass:
///
/// - Empty ids are replaced; events that named the empty id follow to the first track or essence
///   that had it. Of tracks or essences with one id the first stays, and events keep to it; an
///   event whose id is taken gets another one.
/// - A track's gain that is no number becomes 1, such a pan is left out.
/// - A sample rate of zero or less becomes 48000, one beyond 384000 becomes that. Events keep their
///   sourceStartSample: a position in the audio file is right whatever the rate says. (Where it was
///   computed from a rate of zero it is 0, and the clip starts at the head of the file.)
/// - A channel count is clamped to 1 ... 4294967295, a bit depth of zero or less left out.
/// - An event's channel that its essence does not have is left out: all of the essence is played,
///   which for a mono file is what was meant. A clip gain that is no number becomes 1. A negative
///   duration or sourceStartSample becomes 0, a fade of negative length is left out.
/// - Automation points without a number are left out (the whole envelope when none remain), those
///   outside their owner moved to its nearer end, and those out of order put in order.
/// - Events without a track or essence, and those whose end in the source or on the timeline
///   cannot be told in 64 bits, are left out.
/// - A clock's edit rate becomes its frame rate; a frame rate that cannot be becomes that of the
///   label of time zero, else 25; drop frame at other than 30 or 60 frames is replaced by non-drop;
///   a label out of range is clamped, one that drop frame skips becomes the next one.
/// - A program start that cannot be and a negative composition length are left out.
///
/// Takes time linear in the size of the timeline (points out of order are sorted). Throws nothing
/// of its own.
[[nodiscard]] AAFRepair repairedTimeline(AAFTimeline timeline);

}  // namespace trellant
