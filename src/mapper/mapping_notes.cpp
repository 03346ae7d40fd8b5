// SPDX-License-Identifier: Apache-2.0
#include "mapping_notes.h"

#include <trellant/io/errors.h>

#include <array>
#include <cstdio>
#include <string>
#include <utility>

namespace trellant {

void MappingNotes::count(std::uint64_t bytes) {
    noteBytes_ += bytesOfNote + bytes;
    if (noteBytes_ > maximumNoteBytes) {
        throw OMFIOError::unsupported("composition gives more than " +
                                      std::to_string(maximumNoteBytes) +
                                      " bytes of losses and diagnostics");
    }
}

void MappingNotes::diagnose(std::string line) {
    count(line.size());
    diagnostics_.push_back(std::move(line));
}

void MappingNotes::add(std::string_view id, AAFUnsupportedFeature::Severity severity,
                       const Loss& loss, std::string message, std::string at) {
    count(message.size() + at.size());
    unsupported_.push_back({.id = std::string(id) + std::to_string(unsupported_.size()),
                            .severity = severity,
                            .description = std::move(message),
                            .objectPath = std::move(at)});
    if (placesLosses_) {
        places_.push_back(
            {.kind = loss.kind, .track = track_, .range = loss.range, .clip = loss.clip});
    }
}

void MappingNotes::addLoss(const Loss& loss, std::string message, const ObjectPath& at) {
    add("omf-loss-", AAFUnsupportedFeature::Severity::informational, loss, std::move(message),
        at.text());
}

void MappingNotes::addUnsupported(const Loss& loss, std::string message, const ObjectPath& at) {
    add("omf-unsupported-", AAFUnsupportedFeature::Severity::renderAffecting, loss,
        std::move(message), at.text());
}

std::optional<MappingNotes::RecordIndex> MappingNotes::addUnsupportedOncePerPath(
    const Loss& loss, std::string message, const ObjectPath& at) {
    if (!pathsRecordedOnce_.insert(at.text()).second) {
        return std::nullopt;
    }
    addUnsupported(loss, std::move(message), at);
    return unsupported_.size() - 1;
}

void MappingNotes::enterTrack(LossTrack track) {
    if (placesLosses_) {
        track_ = std::move(track);
    }
}

void MappingNotes::placeCut(RecordIndex record, const AAFRational& cut, const LossRange& range) {
    if (placesLosses_) {
        places_.at(record).cut = cut;
        places_.at(record).range = range;
    }
}

void MappingNotes::enterClip(OMFObject clip, const LossRange& range) {
    clip_ = clip;
    clipRange_ = range;
}

std::string fixedPoint(double value, int decimals) {
    // Room for the largest time: 20 digits, point, decimals.
    std::array<char, 64> text{};
    static_cast<void>(std::snprintf(text.data(), text.size(), "%.*f", decimals, value));
    return text.data();
}

std::string secondsText(const AAFRational& seconds) {
    return fixedPoint(seconds.doubleValue(), 3) + " s";
}

}  // namespace trellant
