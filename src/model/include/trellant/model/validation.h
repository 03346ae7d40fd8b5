// SPDX-License-Identifier: Apache-2.0
// AAFRawTimelineValidation: what must hold for a timeline that was read from JSON before anything
// computes with it. The decoder checks shapes; this checks references between records, the ranges
// of values and every computation that later code does with 64-bit arithmetic (sample ends,
// timeline ends, timecode labels), so that later code cannot fail on them.
#pragma once

#include <trellant/model/timeline.h>
#include <trellant/model/timeline_problem.h>

#include <cstdint>
#include <exception>
#include <string>

namespace [[gnu::visibility("default")]] trellant {

struct AAFRawTimelineValidation {
    AAFRawTimelineValidation() = delete;

    /// The first problem of a timeline.
    class Failure final : public std::exception {
      public:
        Failure(AAFTimelineProblem problem, const AAFTimelinePlace& place);
        [[nodiscard]] AAFTimelineProblem problem() const noexcept { return problem_; }
        /// What is at fault.
        [[nodiscard]] const AAFTimelinePlace& place() const noexcept { return place_; }
        /// The problem in lower-case words joined by hyphens: "missing-track-reference".
        [[nodiscard]] const std::string& code() const noexcept { return code_; }
        /// The place as text: "clock", "program-start", "composition", "track[2]", "essence[0]",
        /// "event[17]".
        [[nodiscard]] const std::string& object() const noexcept { return object_; }
        /// "AAF raw model: missing-track-reference (event[4])".
        [[nodiscard]] const std::string& description() const noexcept { return description_; }
        [[nodiscard]] const std::string& errorDescription() const noexcept { return description_; }
        [[nodiscard]] const char* what() const noexcept override { return description_.c_str(); }

      private:
        AAFTimelineProblem problem_;
        AAFTimelinePlace place_;
        std::string code_;
        std::string object_;
        std::string description_;
    };

    /// Throws the first Failure; changes nothing. Takes time linear in the size of the timeline.
    static void validate(const AAFTimeline& timeline);

    /// The first sample after the event's source range: sourceStartSample plus
    /// ceil(duration * rate), `rate` being the essence's samples per second. Throws Failure with
    /// invalidSourceRange or sourceRangeOverflow, at `place`.
    [[nodiscard]] static std::int64_t requiredSourceEnd(const AAFClipEvent& event,
                                                        const AAFRational& rate,
                                                        const AAFTimelinePlace& place = {
                                                            AAFTimelinePlace::Kind::event});
};

}  // namespace trellant
