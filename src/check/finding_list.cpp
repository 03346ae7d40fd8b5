// SPDX-License-Identifier: Apache-2.0
#include "finding_list.h"

#include "name_pattern.h"

#include <string_view>
#include <utility>

namespace trellant::check {

namespace {

std::optional<std::string_view> trackName(const FindingPlace& place,
                                          const CheckedHandOff& checked) {
    const CheckedTrack* const track = place.track != nullptr || place.clip == nullptr
                                          ? place.track
                                          : &checked.trackOf(*place.clip);
    if (track != nullptr && track->state->name) {
        return *track->state->name;
    }
    return place.loss != nullptr && place.loss->trackName
               ? std::optional<std::string_view>(*place.loss->trackName)
               : std::nullopt;
}

std::optional<std::string_view> clipName(const FindingPlace& place) {
    if (place.clip != nullptr) {
        const std::string* const name = place.clip->name.text;
        return name != nullptr ? std::optional<std::string_view>(*name) : std::nullopt;
    }
    return place.loss != nullptr && place.loss->clipName
               ? std::optional<std::string_view>(*place.loss->clipName)
               : std::nullopt;
}

bool isNamedByMasterMob(const FindingPlace& place) {
    return place.clip != nullptr ? place.clip->name.isOfMasterMob
                                 : place.loss != nullptr && place.loss->isClipNamedByMasterMob;
}

std::optional<std::string_view> audioFileName(const FindingPlace& place,
                                              const CheckedHandOff& checked) {
    const CheckedSource* const source = place.source != nullptr || place.clip == nullptr
                                            ? place.source
                                            : &checked.sourceOf(*place.clip);
    return source == nullptr ? std::nullopt
                             : std::optional<std::string_view>(sourceName(*source->essence));
}

bool fits(std::optional<std::string_view> name, const std::optional<std::string>& pattern) {
    return !pattern || (name && fitsPattern(*name, *pattern));
}

std::optional<std::string> owned(std::optional<std::string_view> text) {
    return text ? std::optional<std::string>(*text) : std::nullopt;
}

std::optional<std::int64_t> trackNumber(const FindingPlace& place, const CheckedHandOff& checked) {
    const CheckedTrack* const track = place.track != nullptr || place.clip == nullptr
                                          ? place.track
                                          : &checked.trackOf(*place.clip);
    if (track != nullptr) {
        return track->state->index + 1;
    }
    return place.loss != nullptr ? place.loss->trackNumber : std::nullopt;
}

std::optional<std::string> pathOf(const FindingPlace& place, const CheckedHandOff& checked) {
    if (place.loss != nullptr) {
        return place.loss->objectPath;
    }
    if (place.clip != nullptr) {
        return checked.pathOf(*place.clip);
    }
    return place.track != nullptr ? checked.pathOf(*place.track) : std::nullopt;
}

}  // namespace

const Acceptance* FindingList::acceptanceOf(const FindingPlace& place) {
    if (acceptances_.empty()) {
        return nullptr;
    }
    const auto track = trackName(place, checked_);
    const auto clip = clipName(place);
    const auto audioFile = audioFileName(place, checked_);
    for (std::size_t i = 0; i < acceptances_.size(); ++i) {
        const Acceptance& acceptance = *acceptances_[i];
        if (fits(track, acceptance.track) && fits(clip, acceptance.clip) &&
            fits(audioFile, acceptance.audioFile)) {
            ++matched_[i];
            return &acceptance;
        }
    }
    return nullptr;
}

Finding FindingList::made(const FindingPlace& place, FindingText text,
                          const Acceptance* accepted) const {
    Finding finding{.sentence = std::move(text.sentence),
                    .track = owned(trackName(place, checked_)),
                    .trackNumber = trackNumber(place, checked_),
                    .clip = owned(clipName(place)),
                    .isClipNamedByMasterMob = isNamedByMasterMob(place),
                    .audioFile = owned(audioFileName(place, checked_)),
                    .start = place.start,
                    .duration = place.duration,
                    .objectPath = pathOf(place, checked_),
                    .found = std::move(text.found),
                    .wanted = std::move(text.wanted),
                    .unit = std::move(text.unit)};
    if (place.clip != nullptr && !place.start) {
        finding.start = place.clip->event->timelineStart;
        finding.duration = place.clip->event->duration;
    } else if (place.loss != nullptr && !place.start) {
        finding.start = place.loss->start;
        finding.duration = place.loss->duration;
    }
    if (accepted != nullptr) {
        finding.acceptedBecause = accepted->reason;
    }
    return finding;
}

void FindingList::moveInto(RuleVerdict& verdict) {
    verdict.count = count_;
    verdict.acceptedCount = acceptedCount_;
    verdict.findings = std::move(findings_);
    verdict.accepted = std::move(accepted_);
}

}  // namespace trellant::check
