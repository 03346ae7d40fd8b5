// SPDX-License-Identifier: Apache-2.0

#include <trellant/base/keyed_hash.h>
#include <trellant/base/precondition.h>
#include <trellant/base/printable_text.h>
#include <trellant/handoff/changes.h>
#include <trellant/handoff/sources.h>
#include <trellant/handoff/timeline_text.h>
#include <trellant/model/validation.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace trellant {

namespace {

struct FieldName {
    std::string_view field;
    std::string_view words;
};

constexpr std::array<FieldName, 22> fieldNames{{
    {"id", "the id"},
    {"trackID", "the track"},
    {"essenceID", "the audio file"},
    {"sourceChannel", "the channel number"},
    {"sourceStartSample", "the start in the audio file"},
    {"duration", "the length"},
    {"fixedClipGain", "the gain"},
    {"fixedGain", "the gain"},
    {"fixedPan", "the pan"},
    {"gainAutomation", "the gain automation"},
    {"panAutomation", "the pan automation"},
    {"clipGainAutomation", "the gain automation"},
    {"fadeIn", "the fade in"},
    {"fadeOut", "the fade out"},
    {"sampleRate", "the sample rate"},
    {"channelCount", "the number of channels"},
    {"bitDepth", "the bit depth"},
    {"editRate", "the edit rate"},
    {"timecodeRate", "the timecode rate"},
    {"timelineZero", "the timecode of the start"},
    {"timelineZero.rate", "the timecode rate of the start"},
    {"compositionLength", "the length of the composition"},
}};

std::string fieldWords(const std::string& field) {
    constexpr std::string_view points = ".points";
    const bool isPoints = std::string_view(field).ends_with(points);
    const std::string_view owner =
        std::string_view(field).substr(0, field.size() - (isPoints ? points.size() : 0));
    const auto* const found =
        std::find_if(fieldNames.begin(), fieldNames.end(),
                     [owner](const FieldName& name) { return name.field == owner; });
    const std::string words(found == fieldNames.end() ? owner : found->words);
    return isPoints ? "points of " + words : words;
}

std::string_view actionWords(AAFRepairChange::Action action, bool plural) {
    switch (action) {
        case AAFRepairChange::Action::leftOut:
            return plural ? "are left out" : "is left out";
        case AAFRepairChange::Action::clamped:
            return plural ? "are moved to the nearest possible value"
                          : "is set to the nearest possible value";
        case AAFRepairChange::Action::replaced:
            return plural ? "are replaced by usable ones" : "is replaced by a usable one";
        case AAFRepairChange::Action::reordered:
            return plural ? "are put in order of time" : "is put in order of time";
    }
    preconditionFailure("enumeration value outside its cases");
}

/// What the whole object is called.
std::string objectWords(AAFTimelinePlace::Kind kind) {
    switch (kind) {
        case AAFTimelinePlace::Kind::clock:
            return "the clock";
        case AAFTimelinePlace::Kind::programStart:
            return "the program start";
        case AAFTimelinePlace::Kind::composition:
            return "the composition";
        case AAFTimelinePlace::Kind::track:
            return "the second track of that id";
        case AAFTimelinePlace::Kind::essence:
            return "the audio file";
        case AAFTimelinePlace::Kind::event:
            return "the clip";
    }
    preconditionFailure("enumeration value outside its cases");
}

std::string sentence(const AAFRepairChange& change) {
    // Two of them change what is heard, and say how.
    if (change.problem == AAFTimelineProblem::invalidSampleRate) {
        return change.action == AAFRepairChange::Action::clamped
                   ? "the sample rate is taken as 384000 Hz"
                   : "the sample rate is taken as 48000 Hz; clips whose place in the audio file "
                     "hangs on it start at the head of the file";
    }
    if (change.problem == AAFTimelineProblem::duplicateIdentity &&
        change.place.kind == AAFTimelinePlace::Kind::track) {
        return "the track is listed twice and the second listing is left out; its clips stand "
               "twice on the first, one upon the other, and sound twice as loud";
    }
    if (change.field.empty()) {
        return objectWords(change.place.kind) + " " +
               std::string(actionWords(change.action, false));
    }
    const bool points = std::string_view(change.field).ends_with(".points");
    std::string words = fieldWords(change.field);
    if (points && change.count == 1) {
        words.replace(0, std::string_view("points").size(), "1 point");
    } else if (points) {
        words.insert(0, std::to_string(change.count) + " ");
    }
    return words + " " + std::string(actionWords(change.action, points && change.count != 1));
}

class Places {
  public:
    explicit Places(const AAFTimeline& timeline) : timeline_(timeline) {
        for (const AAFTrackState& track : timeline.tracks) {
            tracks_.emplace(track.id, &track);
        }
        for (const AAFClipEvent& event : timeline.events) {
            firstClips_.emplace(event.essenceID, &event);
        }
    }

    /// As a DescribedChange without a code and a `what`.
    [[nodiscard]] DescribedChange of(const AAFTimelinePlace& place) const {
        using Kind = AAFTimelinePlace::Kind;
        DescribedChange described{.object = place.text()};
        if (!place.index) {
            return described;
        }
        if (place.kind == Kind::event && *place.index < timeline_.events.size()) {
            placeClip(described, timeline_.events[*place.index]);
        } else if (place.kind == Kind::essence && *place.index < timeline_.essences.size()) {
            const AAFSourceEssence& essence = timeline_.essences[*place.index];
            described.audioFile = sourceName(essence);
            if (const auto clip = firstClips_.find(essence.id); clip != firstClips_.end()) {
                placeClip(described, *clip->second);
            }
        } else if (place.kind == Kind::track && *place.index < timeline_.tracks.size()) {
            described.track = nameOf(timeline_.tracks[*place.index]);
        }
        return described;
    }

  private:
    /// People count tracks from 1.
    [[nodiscard]] static std::string nameOf(const AAFTrackState& track) {
        return track.name.value_or(std::to_string(track.index + 1));
    }

    void placeClip(DescribedChange& place, const AAFClipEvent& event) const {
        const auto track = tracks_.find(event.trackID);
        place.track = track == tracks_.end() ? event.trackID : nameOf(*track->second);
        place.clip = event.clipName;
        place.start = event.timelineStart;
    }

    const AAFTimeline& timeline_;
    KeyedMap<std::string_view, const AAFTrackState*> tracks_;
    /// By essence id.
    KeyedMap<std::string_view, const AAFClipEvent*> firstClips_;
};

}  // namespace

DescribedChange placeOfFailure(const AAFTimeline& timeline,
                               const AAFRawTimelineValidation::Failure& failure) {
    DescribedChange described = Places(timeline).of(failure.place());
    described.code = failure.code();
    return described;
}

std::vector<DescribedChange> describedChanges(const AAFTimeline& original,
                                              const std::vector<AAFRepairChange>& changes) {
    const Places places(original);
    std::vector<DescribedChange> described;
    described.reserve(changes.size());
    for (const AAFRepairChange& change : changes) {
        DescribedChange place = places.of(change.place);
        place.code = rawValue(change.problem);
        place.what = sentence(change);
        described.push_back(std::move(place));
    }
    return described;
}

std::string placeText(const DescribedChange& change, const AAFTimeline& timeline) {
    std::string text;
    const auto add = [&text](std::string_view label, const std::optional<std::string>& name) {
        if (name) {
            text += text.empty() ? "" : ", ";
            text += label;
            text += printableText(*name);
        }
    };
    add("track ", change.track);
    // Only a clip has a start.
    add("clip ", change.start && !change.clip ? "(no name)" : change.clip);
    add("audio file ", change.audioFile);
    if (change.start) {
        add("at ", timecodeText(timeline, *change.start));
    }
    return text;
}

}  // namespace trellant
