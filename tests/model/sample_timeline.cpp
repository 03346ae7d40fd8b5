// SPDX-License-Identifier: Apache-2.0
#include "sample_timeline.h"

#include <trellant/base/precondition.h>

namespace trellant::test {

namespace {

AAFFade sampleFade(AAFFade::Direction direction) {
    AAFFade fade;
    fade.direction = direction;
    fade.duration = AAFRational(1, 4);
    fade.curve = AAFAutomationInterpolation::power();
    fade.points = {{AAFRational(0), 0.0}, {AAFRational(1), 1.0}};
    fade.reversesPointTime = true;
    return fade;
}

AAFAutomationEnvelope sampleEnvelope(AAFAutomationInterpolation interpolation) {
    return {std::move(interpolation), {{AAFRational(1, 2), 0.25}}};
}

AAFClipEvent fullEvent() {
    AAFClipEvent event = plainEvent();
    event.id = "ev/2";
    event.clipName = "Take \"2\"";
    event.sourceChannel = 1;
    event.clipGainAutomation = sampleEnvelope(AAFAutomationInterpolation::unsupported("spline"));
    event.clipMuted = true;
    event.fadeIn = sampleFade(AAFFade::Direction::fadeIn);
    event.fadeOut = sampleFade(AAFFade::Direction::crossfade);
    event.semanticDecision = AAFSemanticDecision{AAFStemRole::voice, 0.75, "name"};
    event.exportSourceEventIDs = std::vector<std::string>{"a", "b"};
    event.exportTrackNameOrigin =
        AAFClipEvent::ExportTrackNameOrigin{1, "Dialog", "DX", AAFStemRole::voice};
    return event;
}

constexpr const char* clockJson =
    R"({"editRate":{"denominator":1,"numerator":25},)"
    R"("timecodeRate":{"dropFrame":false,"exactRate":{"denominator":1,"numerator":25},)"
    R"("nominalFramesPerSecond":25},)"
    R"("timelineZero":{"frames":0,"hours":1,"minutes":0,)"
    R"("rate":{"dropFrame":false,"exactRate":{"denominator":1,"numerator":25},)"
    R"("nominalFramesPerSecond":25},"seconds":0}})";

constexpr const char* essenceJson =
    R"({"bitDepth":24,"channelCount":2,"codec":"sowt","embedded":true,)"
    R"("fileURL":"file:\/\/\/media\/a%20b.wav","id":"e1","mobID":"00000001-00000002-00000003",)"
    R"("originalPath":"Disk:a b","sampleRate":{"denominator":1,"numerator":48000},)"
    R"("sourceName":"a b"})";

constexpr const char* trackJson =
    R"({"fixedGain":1,"fixedPan":0.5,)"
    R"("gainAutomation":{"interpolation":{"constant":{}},)"
    R"("points":[{"timelineOffset":{"denominator":2,"numerator":1},"value":0.25}]},)"
    R"("id":"t1","index":3,"muted":false,"name":"Dialog",)"
    R"("panAutomation":{"interpolation":{"logarithmic":{}},)"
    R"("points":[{"timelineOffset":{"denominator":2,"numerator":1},"value":0.25}]},)"
    R"("solo":true})";

constexpr const char* fadeJsonAfterDirection =
    R"("duration":{"denominator":4,"numerator":1},)"
    R"("points":[{"timelineOffset":{"denominator":1,"numerator":0},"value":0},)"
    R"({"timelineOffset":{"denominator":1,"numerator":1},"value":1}],)"
    R"("reversesPointTime":true})";

std::string fullEventJson() {
    return std::string(
               R"({"channelRole":"left",)"
               R"("clipGainAutomation":{"interpolation":{"unsupported":{"identifier":"spline"}},)"
               R"("points":[{"timelineOffset":{"denominator":2,"numerator":1},"value":0.25}]},)"
               R"("clipMuted":true,"clipName":"Take \"2\"",)"
               R"("duration":{"denominator":2,"numerator":3},"essenceID":"e1",)"
               R"("exportSourceEventIDs":["a","b"],)"
               R"("exportTrackNameOrigin":{"exportedName":"DX","originalName":"Dialog",)"
               R"("role":"voice","schemaVersion":1},)"
               R"("fadeIn":{"curve":{"power":{}},"direction":"fadeIn",)") +
           fadeJsonAfterDirection + R"(,"fadeOut":{"curve":{"power":{}},"direction":"crossfade",)" +
           fadeJsonAfterDirection +
           R"(,"fixedClipGain":0.5,"id":"ev\/2",)"
           R"("semanticDecision":{"confidence":0.75,"reason":"name","role":"voice"},)"
           R"("sourceChannel":1,"sourceStartSample":48000,)"
           R"("timelineStart":{"denominator":1,"numerator":10},"trackID":"t1"})";
}

}  // namespace

AAFTimeline emptyTimeline() {
    AAFTimeline timeline;
    timeline.sourceAAF = AAFURL{"file:///film.omf"};
    timeline.clock.editRate = AAFRational(25);
    timeline.clock.timecodeRate = AAFTimecodeRate::fps25();
    timeline.clock.timelineZero = AAFTimecodeAddress(1, 0, 0, 0, AAFTimecodeRate::fps25());
    return timeline;
}

AAFClipEvent plainEvent() {
    AAFClipEvent event;
    event.id = "ev1";
    event.trackID = "t1";
    event.essenceID = "e1";
    event.timelineStart = AAFRational(10);
    event.duration = AAFRational(3, 2);
    event.sourceStartSample = 48000;
    event.channelRole = AAFChannelRole::left;
    event.fixedClipGain = 0.5;
    return event;
}

std::string plainEventJson() {
    return R"({"channelRole":"left","clipMuted":false,)"
           R"("duration":{"denominator":2,"numerator":3},"essenceID":"e1","fixedClipGain":0.5,)"
           R"("id":"ev1","sourceStartSample":48000,)"
           R"("timelineStart":{"denominator":1,"numerator":10},"trackID":"t1"})";
}

AAFTimeline sampleTimeline() {
    AAFTimeline timeline = emptyTimeline();
    timeline.explicitProgramStart = AAFTimecodeAddress(0, 10, 0, 0, AAFTimecodeRate::fps2997DF());
    timeline.essences = {{"e1", "00000001-00000002-00000003", "a b",
                          AAFURL{"file:///media/a%20b.wav"}, true, AAFRational(48000), 2, 24,
                          "sowt", "Disk:a b"}};
    timeline.tracks = {{"t1", 3, "Dialog", 1.0,
                        sampleEnvelope(AAFAutomationInterpolation::constant()), 0.5,
                        sampleEnvelope(AAFAutomationInterpolation::logarithmic()), false, true}};
    timeline.events = {plainEvent(), fullEvent()};
    timeline.unsupportedFeatures = {
        {"omf-loss-0", AAFUnsupportedFeature::Severity::informational, "dropped",
         "CMOB[12]/slot[3]"},
        {"omf-unsupported-1", AAFUnsupportedFeature::Severity::renderAffecting, "kept",
         std::nullopt}};
    timeline.compositionName = "Reel 1";
    timeline.sourceApplication = "Editor";
    timeline.compositionLength = AAFRational(1001, 30);
    timeline.hasNativeTimecode = true;
    return timeline;
}

std::string sampleTimelineJson() {
    return std::string(R"({"clock":)") + clockJson +
           R"(,"compositionLength":{"denominator":30,"numerator":1001},)"
           R"("compositionName":"Reel 1","essences":[)" +
           essenceJson + R"(],"events":[)" + plainEventJson() + "," + fullEventJson() +
           R"(],"explicitProgramStart":{"frames":0,"hours":0,"minutes":10,)"
           R"("rate":{"dropFrame":true,"exactRate":{"denominator":1001,"numerator":30000},)"
           R"("nominalFramesPerSecond":30},"seconds":0},)"
           R"("hasNativeTimecode":true,"sourceAAF":"file:\/\/\/film.omf",)"
           R"("sourceApplication":"Editor","tracks":[)" +
           trackJson +
           R"(],"unsupportedFeatures":[{"description":"dropped","id":"omf-loss-0",)"
           R"("objectPath":"CMOB[12]\/slot[3]","severity":"informational"},)"
           R"({"description":"kept","id":"omf-unsupported-1","severity":"renderAffecting"}]})";
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    const std::size_t at = text.find(from);
    precondition(at != std::string::npos && text.find(from, at + 1) == std::string::npos,
                 "the text to replace must stand in the sample exactly once");
    return text.replace(at, from.size(), to);
}

}  // namespace trellant::test
