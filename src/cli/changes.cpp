#include "changes.h"

#include "sources.h"
#include "timeline_text.h"

#include <trellant/model/precondition.h>
#include <trellant/model/printable_text.h>
#include <trellant/model/validation.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace trellant::cli {

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

/// What the whole object is called: "the clip".
std::string objectWords(const std::string& object) {
    if (object.starts_with("event")) {
        return "the clip";
    }
    if (object.starts_with("essence")) {
        return "the audio file";
    }
    if (object.starts_with("track")) {
        return "the second track of that id";
    }
    return object == "program-start" ? "the program start" : "the " + object;
}

std::string sentence(const AAFRepairChange& change) {
    if (change.field.empty()) {
        return objectWords(change.object) + " " + std::string(actionWords(change.action, false));
    }
    const bool plural = std::string_view(change.field).ends_with(".points");
    return (plural ? std::to_string(change.count) + " " : std::string()) +
           fieldWords(change.field) + " " + std::string(actionWords(change.action, plural));
}

class Places {
  public:
    explicit Places(const AAFTimeline& timeline) : timeline_(timeline) {
        for (const AAFTrackState& track : timeline.tracks) {
            tracks_.emplace(track.id, &track);
        }
    }

    [[nodiscard]] ToldChange of(const std::string& object) const {
        ToldChange place{.object = object};
        const auto position = positionIn(object);
        if (!position) {
            return place;
        }
        if (object.starts_with("event") && *position < timeline_.events.size()) {
            const AAFClipEvent& event = timeline_.events[*position];
            const auto track = tracks_.find(event.trackID);
            place.track = track == tracks_.end() ? event.trackID
                                                 : track->second->name.value_or(event.trackID);
            place.clip = event.clipName ? event.clipName : event.id;
            place.start = event.timelineStart;
        } else if (object.starts_with("essence") && *position < timeline_.essences.size()) {
            place.audioFile = sourceName(timeline_.essences[*position]);
        } else if (object.starts_with("track") && *position < timeline_.tracks.size()) {
            const AAFTrackState& track = timeline_.tracks[*position];
            place.track = track.name.value_or(track.id);
        }
        return place;
    }

  private:
    const AAFTimeline& timeline_;
    std::unordered_map<std::string_view, const AAFTrackState*> tracks_;
};

}  // namespace

std::optional<std::size_t> positionIn(const std::string& object) {
    const std::size_t bracket = object.find('[');
    if (bracket == std::string::npos) {
        return std::nullopt;
    }
    std::size_t position = 0;
    const char* const end = object.data() + object.size();
    const auto [stop, failure] = std::from_chars(object.data() + bracket + 1, end, position);
    if (failure != std::errc() || stop == end || *stop != ']') {
        return std::nullopt;
    }
    return position;
}

ToldChange placeOfObject(const AAFTimeline& timeline, const std::string& object) {
    return Places(timeline).of(object);
}

std::vector<ToldChange> toldChanges(const AAFTimeline& original,
                                    const std::vector<AAFRepairChange>& changes) {
    const Places places(original);
    std::vector<ToldChange> told;
    told.reserve(changes.size());
    for (const AAFRepairChange& change : changes) {
        ToldChange place = places.of(change.object);
        place.code = change.code;
        place.what = sentence(change);
        told.push_back(std::move(place));
    }
    return told;
}

std::string placeText(const ToldChange& change, const AAFTimeline& timeline) {
    std::string text;
    const auto add = [&text](std::string_view label, const std::optional<std::string>& name) {
        if (name) {
            text += text.empty() ? "" : ", ";
            text += label;
            text += printableText(*name);
        }
    };
    add("track ", change.track);
    add("clip ", change.clip);
    add("audio file ", change.audioFile);
    if (change.start) {
        add("at ", timecodeText(timeline, *change.start));
    }
    return text;
}

}  // namespace trellant::cli
