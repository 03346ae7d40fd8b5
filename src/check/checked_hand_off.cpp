// SPDX-License-Identifier: Apache-2.0

#include <trellant/base/keyed_hash.h>
#include <trellant/check/checked_hand_off.h>
#include <trellant/handoff/frame_clock.h>
#include <trellant/handoff/timeline_text.h>
#include <trellant/model/timecode_label.h>
#include <trellant/model/validation.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace trellant::check {

namespace {

/// The number behind `prefix`, up to the next hyphen: "omf-track-12", "omf-event-56-3".
std::optional<std::string_view> objectIn(std::string_view id, std::string_view prefix) {
    if (!id.starts_with(prefix)) {
        return std::nullopt;
    }
    const std::string_view rest = id.substr(prefix.size());
    const std::string_view digits = rest.substr(0, rest.find_first_not_of("0123456789"));
    return digits.empty() ? std::nullopt : std::optional(digits);
}

AAFRational frameRateOf(const AAFProgramClock& clock) {
    const auto drift = rateDrift(clock);
    return drift ? drift->editRate : frameClock(clock).timecodeRate.exactRate;
}

}  // namespace

CheckedHandOff::CheckedHandOff(const HandOff& handOff, FileFacts file, const SoundFacts* sound)
    : handOff_(handOff),
      file_(std::move(file)),
      hasSound_(sound != nullptr),
      frameRate_(frameRateOf(handOff.timeline.clock)) {
    const Sources sources(handOff);
    addTracks();
    for (const Source& source : sources.all()) {
        sources_.push_back({.essence = source.essence, .state = source.state});
    }
    addSources(sound);
    addClips(sources);
}

void CheckedHandOff::addTracks() {
    tracks_.reserve(timeline().tracks.size());
    for (const AAFTrackState& track : timeline().tracks) {
        tracks_.push_back({.state = &track});
    }
}

void CheckedHandOff::addSources(const SoundFacts* sound) {
    for (std::size_t i = 0; i < sources_.size(); ++i) {
        if (i < handOff_.mediaFrames.size()) {
            sources_[i].frames = handOff_.mediaFrames[i];
        }
        if (sound != nullptr && i < sound->size() && !(*sound)[i].channels.empty()) {
            sources_[i].heard = &(*sound)[i];
        }
    }
}

void CheckedHandOff::addClips(const Sources& sources) {
    KeyedMap<std::string_view, std::size_t> trackByID;
    for (std::size_t i = 0; i < tracks_.size(); ++i) {
        trackByID.emplace(tracks_[i].state->id, i);
    }
    const auto& events = timeline().events;
    clips_.reserve(events.size());
    for (std::size_t i = 0; i < events.size(); ++i) {
        const AAFClipEvent& event = events[i];
        const auto track = trackByID.find(event.trackID);
        const Source* const source = sources.ofEventAt(i);
        if (track == trackByID.end() || source == nullptr) {
            continue;
        }
        clips_.push_back({.event = &event,
                          .name = clipName(handOff_, i),
                          .source = static_cast<std::size_t>(source - sources.all().data()),
                          .track = track->second,
                          .end = event.timelineEnd(),
                          .sourceEnd = AAFRawTimelineValidation::requiredSourceEnd(
                              event, source->essence->sampleRate)});
    }
    const auto before = [](const CheckedClip& left, const CheckedClip& right) {
        return left.track != right.track ? left.track < right.track
                                         : left.event->timelineStart < right.event->timelineStart;
    };
    if (!std::is_sorted(clips_.begin(), clips_.end(), before)) {
        std::stable_sort(clips_.begin(), clips_.end(), before);
    }
    for (std::size_t i = 0; i < clips_.size(); ++i) {
        CheckedTrack& track = tracks_[clips_[i].track];
        track.firstClip = track.clipCount++ == 0 ? i : track.firstClip;
        CheckedSource& source = sources_[clips_[i].source];
        ++source.clips;
        if (!source.firstClip) {
            source.firstClip = i;
        }
    }
}

std::optional<AAFRational> CheckedHandOff::secondsOf(const std::string& timecode) const {
    const AAFProgramClock clock = frameClock(timeline().clock);
    const auto frame = frameOfLabel(timecode, clock.timecodeRate);
    if (!frame) {
        return std::nullopt;
    }
    return AAFRational(*frame - clock.timelineZero.absoluteFrameNumber()) /
           clock.timecodeRate.exactRate;
}

std::optional<std::string> CheckedHandOff::pathOf(const CheckedTrack& track) const {
    const auto& compositions = handOff_.compositions;
    const auto read = std::find_if(compositions.begin(), compositions.end(),
                                   [](const auto& composition) { return composition.isRead; });
    const auto slot = objectIn(track.state->id, "omf-track-");
    if (read == compositions.end() || !slot) {
        return std::nullopt;
    }
    return "CMOB[" + std::to_string(read->object) + "]/slot[" + std::string(*slot) + "]";
}

std::optional<std::string> CheckedHandOff::pathOf(const CheckedClip& clip) const {
    auto path = pathOf(trackOf(clip));
    const auto object = objectIn(clip.event->id, "omf-event-");
    if (path && object) {
        path->append("/SCLP[").append(*object).append("]");
    }
    return path;
}

}  // namespace trellant::check
