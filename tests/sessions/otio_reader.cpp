// SPDX-License-Identifier: Apache-2.0
#include "otio_reader.h"

#include "otio_metadata.h"

#include <trellant/json/json_decode.h>

#include <nlohmann/json.hpp>

#include <cmath>
#include <map>
#include <stdexcept>
#include <string>

namespace trellant::testing {

namespace {

using exchange::PlannedClip;
using exchange::PlannedFade;
using exchange::Samples;
using nlohmann::json;
using sessions::OtioClipMetadata;
using sessions::OtioMediaMetadata;
using sessions::OtioSessionMetadata;
using sessions::OtioTrackMetadata;

const json& checked(const json& object, std::string_view schema) {
    if (object.at("OTIO_SCHEMA") != schema) {
        throw std::runtime_error("expected " + std::string(schema) + ": " + object.dump());
    }
    return object;
}

/// The value of a time, at a rate that it must have.
Samples valueAt(const json& time, double rate) {
    checked(time, "RationalTime.1");
    if (time.at("rate").get<double>() != rate) {
        throw std::runtime_error("another rate: " + time.dump());
    }
    const auto value = time.at("value").get<double>();
    if (value != std::floor(value)) {
        throw std::runtime_error("no whole number: " + time.dump());
    }
    return static_cast<Samples>(value);
}

template <class Metadata>
Metadata metadataOf(const json& object) {
    return decodeJson<Metadata>(object.at("metadata").at("trellant").dump());
}

std::optional<PlannedFade> plannedFade(const std::optional<AAFFade>& fade, std::int64_t rate) {
    if (!fade) {
        return std::nullopt;
    }
    const AAFRational length = fade->duration * AAFRational(rate);
    if (length.denominator() != 1) {
        throw std::runtime_error("a fade between two samples");
    }
    return PlannedFade{.length = length.numerator(), .curve = fade->curve, .shape = fade->points};
}

class Reader {
  public:
    exchange::ExportPlan plan;

    void timeline(const json& object) {
        checked(object, "Timeline.1");
        const auto facts = metadataOf<OtioSessionMetadata>(object);
        plan.name = object.at("name").get<std::string>();
        plan.rate = facts.sampleRate;
        plan.length = (facts.length * AAFRational(plan.rate)).numerator();
        const AAFTimecodeRate& frames = facts.start.rate;
        plan.start = AAFTimecodeAddress::fromAbsoluteFrameNumber(
            valueAt(object.at("global_start_time"), frames.exactRate.doubleValue()), frames);
        for (const json& track : checked(object.at("tracks"), "Stack.1").at("children")) {
            lane(checked(track, "Track.1"));
        }
    }

  private:
    void lane(const json& object) {
        const auto facts = metadataOf<OtioTrackMetadata>(object);
        if (object.at("kind") != "Audio") {
            throw std::runtime_error("no audio track");
        }
        if (facts.lane == 0) {
            plan.tracks.push_back({.name = facts.name.value(),
                                   .gain = facts.fixedGain,
                                   .gainAutomation = facts.gainAutomation,
                                   .pan = facts.fixedPan,
                                   .panAutomation = facts.panAutomation,
                                   .muted = !object.at("enabled").get<bool>(),
                                   .solo = facts.solo,
                                   .lanes = {}});
        }
        exchange::Lane lane{.name = object.at("name").get<std::string>()};
        Samples position = 0;
        // What the transition before the next clip hides of it and of the clip before.
        Samples head = 0;
        bool crossfades = false;
        for (const json& child : object.at("children")) {
            if (child.at("OTIO_SCHEMA") == "Transition.1") {
                head = valueAt(child.at("in_offset"), rate());
                lane.clips.back().length += valueAt(child.at("out_offset"), rate());
                crossfades = true;
                continue;
            }
            const json& range = checked(child.at("source_range"), "TimeRange.1");
            const Samples length = valueAt(range.at("duration"), rate());
            if (child.at("OTIO_SCHEMA") != "Gap.1") {
                lane.clips.push_back(clip(checked(child, "Clip.2"), head));
                lane.clips.back().start = position - head;
                lane.clips.back().length = length + head;
                lane.clips.back().crossfadesIn = crossfades;
            }
            position += length;
            head = 0;
            crossfades = false;
        }
        plan.tracks.back().lanes.push_back(lane);
    }

    PlannedClip clip(const json& object, Samples head) {
        const auto facts = metadataOf<OtioClipMetadata>(object);
        const json& start = object.at("source_range").at("start_time");
        const auto sourceRate = start.at("rate").get<double>();
        const double hidden = static_cast<double>(head) * sourceRate / rate();
        const std::string key = object.at("active_media_reference_key").get<std::string>();
        return {.name = object.at("name").get<std::string>(),
                .media = media(object.at("media_references").at(key)),
                .sourceStart = std::llround(start.at("value").get<double>() - hidden),
                .channel = facts.sourceChannel,
                .fadeIn = plannedFade(facts.fadeIn, plan.rate),
                .fadeOut = plannedFade(facts.fadeOut, plan.rate),
                .gain = facts.fixedClipGain,
                .gainAutomation = facts.clipGainAutomation,
                .muted = !object.at("enabled").get<bool>()};
    }

    std::size_t media(const json& object) {
        const auto [found, isNew] = media_.try_emplace(object.dump(), plan.media.size());
        if (!isNew) {
            return found->second;
        }
        const auto facts = metadataOf<OtioMediaMetadata>(object);
        exchange::PlannedMedia media{.channel = facts.sourceChannel,
                                     .name = object.at("name").get<std::string>(),
                                     .sampleRate = facts.sampleRate,
                                     .channelCount = facts.channelCount,
                                     .bitDepth = facts.bitDepth,
                                     .recordedPath = facts.originalPath};
        media.isOffline = object.at("OTIO_SCHEMA") == "MissingReference.1";
        if (!media.isOffline) {
            const auto url =
                checked(object, "ExternalReference.1").at("target_url").get<std::string>();
            media.fileName = url.substr(url.rfind('/') + 1);
            media.frames = valueAt(object.at("available_range").at("duration"),
                                   media.sampleRate.doubleValue());
        }
        plan.media.push_back(media);
        return found->second;
    }

    [[nodiscard]] double rate() const { return static_cast<double>(plan.rate); }

    std::map<std::string, std::size_t> media_;
};

}  // namespace

exchange::ExportPlan planOfOtio(std::string_view text) {
    Reader reader;
    reader.timeline(json::parse(text));
    return reader.plan;
}

}  // namespace trellant::testing
