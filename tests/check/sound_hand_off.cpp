// SPDX-License-Identifier: Apache-2.0
#include "sound_hand_off.h"

#include <utility>

namespace trellant::check {

SoundHandOff::SoundHandOff() {
    AAFTimeline& timeline = handOff.timeline;
    timeline.clock.timelineZero = AAFTimecodeAddress(1, 0, 0, 0, AAFTimecodeRate::fps25());
    timeline.hasNativeTimecode = true;
    timeline.compositionName = "Scene 12";
    handOff.compositions = {{.object = 9, .name = "Scene 12", .isRead = true}};
    handOff.contents = AAFWorkerExtensions::Contents{};
    addTrack("Dialog");
    addTrack("Effects");
    addSource("Voice.wav");
    addSource("Steps.wav");
    addClip("Dialog", "Voice.wav", AAFRational(10), AAFRational(2));
    addClip("Effects", "Steps.wav", AAFRational(10), AAFRational(2));
}

AAFTrackState& SoundHandOff::addTrack(const std::string& name) {
    auto& tracks = handOff.timeline.tracks;
    AAFTrackState track;
    track.id = "omf-track-" + std::to_string(100 + tracks.size());
    track.index = static_cast<std::int64_t>(tracks.size());
    track.name = name;
    return tracks.emplace_back(std::move(track));
}

AAFSourceEssence& SoundHandOff::addSource(const std::string& name, std::int64_t frames) {
    AAFSourceEssence essence;
    essence.id = name;
    essence.sourceName = name;
    essence.embedded = true;
    essence.sampleRate = AAFRational(48'000);
    essence.channelCount = 1;
    essence.bitDepth = 24;
    handOff.mediaFrames.emplace_back(frames);
    return handOff.timeline.essences.emplace_back(std::move(essence));
}

AAFClipEvent& SoundHandOff::addClip(const std::string& track, const std::string& source,
                                    const AAFRational& start, const AAFRational& duration) {
    auto& events = handOff.timeline.events;
    AAFClipEvent event;
    event.id = "omf-event-" + std::to_string(200 + events.size()) + "-0";
    for (const AAFTrackState& one : handOff.timeline.tracks) {
        event.trackID = one.name == track ? one.id : event.trackID;
    }
    event.essenceID = source;
    event.clipName = "Take " + std::to_string(events.size() + 1);
    event.timelineStart = start;
    event.duration = duration;
    event.sourceStartSample = 480'000;
    return events.emplace_back(std::move(event));
}

void SoundHandOff::addLoss(LossKind kind, AAFUnsupportedFeature::Severity severity) {
    handOff.timeline.unsupportedFeatures.push_back(
        {.id = "loss", .severity = severity, .description = "technical"});
    handOff.losses.push_back({.description = "technical",
                              .objectPath = "CMOB[9]/slot[100]/SCLP[200]",
                              .trackID = "omf-track-100",
                              .trackName = "Dialog",
                              .trackNumber = 1,
                              .clipName = "Take 1",
                              .start = AAFRational(10),
                              .duration = AAFRational(2),
                              .plain = "Something is gone.",
                              .kind = kind});
}

Verdict SoundHandOff::verdict(const Profile& profile) const {
    return verdictOf(CheckedHandOff(handOff, file, isHeard ? &sound : nullptr), profile);
}

Verdict SoundHandOff::verdict() const {
    return verdict(*builtInProfile("post"));
}

std::vector<std::string> SoundHandOff::broken(const Profile& profile) const {
    std::vector<std::string> rules;
    for (const RuleVerdict& rule : verdict(profile).rules) {
        if (rule.count != 0) {
            rules.push_back(std::string(rule.rule->id) + " " + std::to_string(rule.count));
        }
    }
    return rules;
}

std::vector<std::string> SoundHandOff::broken() const {
    return broken(*builtInProfile("post"));
}

std::vector<Finding> SoundHandOff::findings(const std::string& rule) const {
    for (RuleVerdict& one : verdict().rules) {
        if (one.rule->id == rule) {
            return std::move(one.findings);
        }
    }
    return {};
}

Profile postWith(const std::string& rule, const std::string& settings) {
    return readProfile(
        R"({"profileVersion":1,"extends":"post","rules":{")" + rule + "\":" + settings + "}}",
        "house", [](const std::string&) { return std::string(); });
}

}  // namespace trellant::check
