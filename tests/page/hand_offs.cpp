// SPDX-License-Identifier: Apache-2.0
#include "hand_offs.h"

#include <utility>

namespace trellant::page {

namespace {

using Curve = AAFAutomationInterpolation;
using Severity = AAFUnsupportedFeature::Severity;

void addFades(AAFClipEvent& clip, const AAFRational& duration, const Curve& curve) {
    clip.fadeIn = fadeOf(AAFFade::Direction::fadeIn, duration, curve);
    clip.fadeOut = fadeOf(AAFFade::Direction::fadeOut, duration, curve);
}

void addCrossing(HandOff& handOff) {
    addTrack(handOff, "Crossing");
    addClip(handOff, "First", "Crossing", "Tone.wav", AAFRational(0), AAFRational(6)).fadeOut =
        fadeOf(AAFFade::Direction::fadeOut, AAFRational(2), Curve::power());
    addClip(handOff, "Second", "Crossing", "Tone.wav", AAFRational(4), AAFRational(6)).fadeIn =
        fadeOf(AAFFade::Direction::fadeIn, AAFRational(2), Curve::power());
}

}  // namespace

HandOff emptyHandOff() {
    HandOff handOff;
    handOff.timeline.clock.timelineZero = AAFTimecodeAddress(1, 0, 0, 0, AAFTimecodeRate::fps25());
    handOff.timeline.hasNativeTimecode = true;
    return handOff;
}

AAFTrackState& addTrack(HandOff& handOff, const std::string& name) {
    AAFTrackState track;
    track.id = name;
    track.index = static_cast<std::int64_t>(handOff.timeline.tracks.size());
    track.name = name;
    return handOff.timeline.tracks.emplace_back(std::move(track));
}

AAFSourceEssence& addSource(HandOff& handOff, const std::string& name) {
    AAFSourceEssence essence;
    essence.id = name;
    essence.sourceName = name;
    essence.embedded = true;
    essence.sampleRate = AAFRational(48'000);
    essence.channelCount = 1;
    essence.bitDepth = 24;
    return handOff.timeline.essences.emplace_back(std::move(essence));
}

AAFClipEvent& addClip(HandOff& handOff, const std::string& name, const std::string& track,
                      const std::string& source, const AAFRational& start,
                      const AAFRational& duration) {
    AAFClipEvent event;
    event.id = "event-" + std::to_string(handOff.timeline.events.size());
    event.trackID = track;
    event.essenceID = source;
    event.clipName = name;
    event.timelineStart = start;
    event.duration = duration;
    return handOff.timeline.events.emplace_back(std::move(event));
}

AAFFade fadeOf(AAFFade::Direction direction, const AAFRational& duration, Curve curve) {
    AAFFade fade;
    fade.direction = direction;
    fade.duration = duration;
    fade.curve = std::move(curve);
    return fade;
}

void addLoss(HandOff& handOff, Severity severity, const std::string& sentence,
             const std::string& track, const AAFRational& start, const AAFRational& duration) {
    AAFUnsupportedFeature feature;
    feature.id = "loss-" + std::to_string(handOff.losses.size());
    feature.severity = severity;
    feature.description = "technical: " + sentence;
    feature.objectPath = "CMOB[1]/slot[2]";
    PlacedLoss loss;
    loss.description = feature.description;
    loss.objectPath = feature.objectPath;
    loss.trackID = track;
    loss.trackName = track;
    loss.start = start;
    loss.duration = duration;
    loss.plain = sentence;
    handOff.timeline.unsupportedFeatures.push_back(std::move(feature));
    handOff.losses.push_back(std::move(loss));
}

HandOff handOffOfEverything() {
    HandOff handOff = emptyHandOff();
    handOff.timeline.compositionName = "Everything";
    handOff.timeline.compositionLength = AAFRational(20);
    addSource(handOff, "Tone.wav");
    AAFSourceEssence& missing = addSource(handOff, "Gone.wav");
    missing.embedded = false;
    missing.originalPath = "D:\\Audio\\Gone.wav";
    const std::vector<std::pair<std::string, Curve>> curves{{"Linear", Curve::linear()},
                                                            {"Constant", Curve::constant()},
                                                            {"Power", Curve::power()},
                                                            {"Logarithmic", Curve::logarithmic()}};
    for (const auto& [name, curve] : curves) {
        addTrack(handOff, name);
        addFades(
            addClip(handOff, name + " clip", name, "Tone.wav", AAFRational(0), AAFRational(10)),
            AAFRational(4), curve);
    }
    AAFTrackState& moving = addTrack(handOff, "Moving");
    moving.fixedPan = 0;
    AAFClipEvent& ridden =
        addClip(handOff, "Ridden", "Moving", "Tone.wav", AAFRational(2), AAFRational(8));
    ridden.fixedClipGain = 0.5;
    ridden.clipGainAutomation = AAFAutomationEnvelope{
        Curve::linear(), {{AAFRational(0), 1}, {AAFRational(1, 2), 0.25}, {AAFRational(1), 1}}};
    addCrossing(handOff);
    AAFTrackState& absent = addTrack(handOff, "Missing");
    absent.muted = true;
    absent.gainAutomation =
        AAFAutomationEnvelope{Curve::linear(), {{AAFRational(0), 1}, {AAFRational(1), 0.25}}};
    absent.panAutomation =
        AAFAutomationEnvelope{Curve::linear(), {{AAFRational(0), 0}, {AAFRational(1), 1}}};
    addClip(handOff, "Lost take", "Missing", "Gone.wav", AAFRational(1), AAFRational(5));
    addLoss(handOff, Severity::renderAffecting,
            "This stretch is silent: the effect on it is not known.", "Linear", AAFRational(5),
            AAFRational(2));
    addLoss(handOff, Severity::informational, "The clip is left out: it names no audio file.",
            "Power", AAFRational(15), AAFRational(3));
    return handOff;
}

HandOff handOffNamed(const std::string& name) {
    HandOff handOff = emptyHandOff();
    handOff.timeline.compositionName = name;
    addTrack(handOff, name);
    addSource(handOff, name).originalPath = name;
    addClip(handOff, name, name, name, AAFRational(0), AAFRational(2)).fadeIn =
        fadeOf(AAFFade::Direction::fadeIn, AAFRational(1), Curve::unsupported(name));
    addLoss(handOff, Severity::informational, name, name, AAFRational(1), AAFRational(1));
    handOff.losses.back().clipName = name;
    handOff.timeline.unsupportedFeatures.back().objectPath = name;
    handOff.compositions.push_back({.object = 1, .name = name, .isRead = true});
    handOff.changes.push_back({.code = name, .object = name, .track = name, .what = name});
    return handOff;
}

HandOff reelOf(std::size_t clips) {
    constexpr std::size_t tracks = 24;
    HandOff handOff = emptyHandOff();
    handOff.timeline.compositionName = "Reel";
    for (std::size_t i = 0; i < tracks; ++i) {
        addTrack(handOff, "Track " + std::to_string(i + 1));
    }
    for (std::size_t i = 0; i < 200; ++i) {
        addSource(handOff, "Scene 12 take " + std::to_string(i + 1) + ".wav");
    }
    std::vector<std::int64_t> ends(tracks, 0);
    for (std::size_t i = 0; i < clips; ++i) {
        const std::size_t track = i % tracks;
        const std::int64_t frames = 12 + static_cast<std::int64_t>(i * 7 % 60);
        AAFClipEvent& clip = addClip(handOff, "Scene 12 take " + std::to_string(i % 200 + 1),
                                     "Track " + std::to_string(track + 1),
                                     "Scene 12 take " + std::to_string(i % 200 + 1) + ".wav",
                                     AAFRational(ends[track], 25), AAFRational(frames, 25));
        ends[track] += frames + static_cast<std::int64_t>(i % 3) * 5;
        if (i % 4 == 0) {
            addFades(clip, AAFRational(2, 25), Curve::power());
        }
        if (i % 3 == 0) {
            clip.fixedClipGain = 0.5;
        }
    }
    return handOff;
}

std::string pageOf(const HandOff& handOff) {
    StringSink sink;
    writePage({.handOff = handOff, .file = "mix.omf", .sha256 = std::string(64, '0')}, sink);
    return std::move(sink.text);
}

}  // namespace trellant::page
