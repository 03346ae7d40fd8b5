// SPDX-License-Identifier: Apache-2.0
// What had to be changed to make an unusual timeline usable, in words and in its place.
#pragma once

#include <trellant/model/repair.h>
#include <trellant/model/timeline.h>
#include <trellant/model/validation.h>

#include <optional>
#include <string>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

struct DescribedChange {
    /// What validation says of it.
    std::string code{};
    std::string object{};
    /// The track (its name, else its id), clip or audio file concerned; a clip that has no name
    /// has a start all the same.
    std::optional<std::string> track{};
    std::optional<std::string> clip{};
    std::optional<std::string> audioFile{};
    /// Timeline seconds.
    std::optional<AAFRational> start{};
    /// "the channel number is left out".
    std::string what{};
};

/// `original` is the timeline that the changes were made to.
[[nodiscard]] std::vector<DescribedChange> describedChanges(
    const AAFTimeline& original, const std::vector<AAFRepairChange>& changes);

/// "track Dialog_L, clip Anna take 1, at 01:00:00:15": what validation's object is to a person;
/// empty when it says nothing beyond the object.
[[nodiscard]] std::string placeText(const DescribedChange& change, const AAFTimeline& timeline);

/// A validation failure as a DescribedChange without a `what`.
[[nodiscard]] DescribedChange placeOfFailure(const AAFTimeline& timeline,
                                             const AAFRawTimelineValidation::Failure& failure);

}  // namespace trellant
