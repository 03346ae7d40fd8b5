// SPDX-License-Identifier: Apache-2.0
// What a repair changed, in a form that a test can write down by hand.
#pragma once

#include <trellant/model/repair.h>
#include <trellant/model/validation.h>

#include <cstdint>
#include <string>
#include <vector>

namespace trellant::test {

/// The code of the first problem; empty when there is none.
inline std::string problemOf(const AAFTimeline& timeline) {
    try {
        AAFRawTimelineValidation::validate(timeline);
    } catch (const AAFRawTimelineValidation::Failure& failure) {
        return failure.code();
    }
    return {};
}

inline std::string actionText(AAFRepairChange::Action action) {
    switch (action) {
        case AAFRepairChange::Action::leftOut:
            return "left out";
        case AAFRepairChange::Action::clamped:
            return "clamped";
        case AAFRepairChange::Action::replaced:
            return "replaced";
        case AAFRepairChange::Action::reordered:
            return "reordered";
    }
    return "unknown";
}

/// "invalid-source-channel event[1] (ev/2 of t1): sourceChannel left out"
inline std::vector<std::string> linesOf(const AAFRepair& repair) {
    std::vector<std::string> lines;
    for (const AAFRepairChange& change : repair.changes) {
        std::string line = std::string(rawValue(change.problem)) + " " + change.place.text();
        if (!change.id.empty() || !change.trackID.empty()) {
            line +=
                " (" + change.id + (change.trackID.empty() ? "" : " of " + change.trackID) + ")";
        }
        line += ": " + change.field + (change.field.empty() ? "" : " ") + actionText(change.action);
        if (change.count != 1) {
            line += " x" + std::to_string(change.count);
        }
        lines.push_back(line);
    }
    return lines;
}

/// A label that no one has checked.
inline AAFTimecodeAddress label(std::int64_t hours, std::int64_t minutes, std::int64_t seconds,
                                std::int64_t frames, const AAFTimecodeRate& rate) {
    AAFTimecodeAddress address;
    address.hours = hours;
    address.minutes = minutes;
    address.seconds = seconds;
    address.frames = frames;
    address.rate = rate;
    return address;
}

}  // namespace trellant::test
