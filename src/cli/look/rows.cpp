// SPDX-License-Identifier: Apache-2.0
#include "rows.h"

#include <trellant/base/keyed_hash.h>
#include <trellant/base/url.h>
#include <trellant/handoff/sources.h>
#include <trellant/handoff/timeline_text.h>

#include <map>
#include <string_view>

namespace trellant::cli {

namespace {

using enum Audience;

template <class T>
Value orNothing(const std::optional<T>& value) {
    Value cell;
    if (value) {
        cell = *value;
    }
    return cell;
}

Value secondsOf(const std::optional<AAFRational>& time) {
    Value cell;
    if (time) {
        cell = time->doubleValue();
    }
    return cell;
}

Value exactSecondsOf(const std::optional<AAFRational>& time) {
    Value cell;
    if (time) {
        cell = Fraction{*time};
    }
    return cell;
}

Value fileOf(const AAFSourceEssence& essence) {
    if (!essence.fileURL) {
        return {};
    }
    return pathOfFileURL(essence.fileURL->text).value_or(essence.fileURL->text);
}

Value panOf(const AAFTrackState& track) {
    if (!track.fixedPan) {
        return {};
    }
    return panText(*track.fixedPan);
}

Value timecodeOf(const AAFTimeline& timeline, const std::optional<AAFRational>& time) {
    if (!time) {
        return {};
    }
    return timecodeText(timeline, *time);
}

struct TrackTotals {
    std::int64_t clips = 0;
    AAFRational end{};
};

KeyedMap<std::string_view, TrackTotals> totalsByTrack(const AAFTimeline& timeline) {
    KeyedMap<std::string_view, TrackTotals> totals;
    for (const AAFClipEvent& event : timeline.events) {
        TrackTotals& track = totals[event.trackID];
        ++track.clips;
        track.end = std::max(track.end, event.timelineEnd());
    }
    return totals;
}

}  // namespace

Listing listTracks(const HandOff& handOff) {
    const AAFTimeline& timeline = handOff.timeline;
    Listing listing{
        .fields = {{"track", "Track", everyone, Align::right},
                   {"", "Name", people, Align::left, true},
                   {"name", "Name", machines},
                   {"clips", "Clips", everyone, Align::right, false, 3},
                   {"end", "Ends at", everyone, Align::left, false, 4},
                   {"endSeconds", "Ends at (s)"},
                   {"endSecondsExact", "Ends at (exact s)", details, Align::left, false, 0, true},
                   {"gainDb", "Gain (dB)", everyone, Align::right, false, 5},
                   {"pan", "Pan", everyone, Align::left, false, 6},
                   {"panPosition", "Pan position"},
                   {"muted", "Muted", everyone, Align::left, false, 2},
                   {"solo", "Solo", everyone, Align::left, false, 7},
                   {"losses", "Losses", everyone, Align::right, false, 1},
                   {"id", "Id"}},
        .rows = {}};
    const auto totals = totalsByTrack(timeline);
    KeyedMap<std::string_view, std::int64_t> losses;
    for (const PlacedLoss& loss : handOff.losses) {
        if (loss.trackID) {
            ++losses[*loss.trackID];
        }
    }
    for (const AAFTrackState& track : timeline.tracks) {
        const auto found = totals.find(track.id);
        const TrackTotals total = found == totals.end() ? TrackTotals{} : found->second;
        const auto lost = losses.find(track.id);
        listing.rows.push_back({track.index + 1, trackText(track.name, track.index + 1),
                                orNothing(track.name), total.clips,
                                timecodeText(timeline, total.end), total.end.doubleValue(),
                                Fraction{total.end}, Gain{track.fixedGain}, panOf(track),
                                orNothing(track.fixedPan), track.muted, track.solo,
                                lost == losses.end() ? std::int64_t{0} : lost->second, track.id});
    }
    return listing;
}

Listing listSources(const HandOff& handOff) {
    Listing listing{
        .fields = {{"name", "Audio file", everyone, Align::left, true},
                   {"state", "State", everyone, Align::left, false, 1},
                   {"sampleRate", "Rate (Hz)", everyone, Align::right, false, 2},
                   {"sampleRateExact", "Rate (exact Hz)", details, Align::left, false, 0, true},
                   {"bitDepth", "Bits", everyone, Align::right, false, 3},
                   {"channels", "Channels", everyone, Align::right, false, 5},
                   {"", "Format", people, Align::left, false, 6},
                   {"codec", "Codec"},
                   {"clips", "Clips", everyone, Align::right, false, 4},
                   {"file", "Found at", everyone, Align::left, true, 7},
                   {"recordedPath", "Recorded path"},
                   {"id", "Id"}},
        .rows = {}};
    const Sources sources(handOff);
    for (const Source& source : sources.all()) {
        const AAFSourceEssence& essence = *source.essence;
        listing.rows.push_back({sourceName(essence), std::string(stateText(source.state)),
                                essence.sampleRate.doubleValue(), Fraction{essence.sampleRate},
                                orNothing(essence.bitDepth), essence.channelCount,
                                essence.codec ? Value(formatText(*essence.codec)) : Value(),
                                orNothing(essence.codec), static_cast<std::int64_t>(source.clips),
                                fileOf(essence), orNothing(essence.originalPath), essence.id});
    }
    return listing;
}

Listing listLosses(const HandOff& handOff) {
    const AAFTimeline& timeline = handOff.timeline;
    Listing listing{
        .fields = {{"loss", "No."},
                   {"effect", "Effect"},
                   {"track", "Track"},
                   {"trackNumber", "Track no."},
                   {"clip", "Clip"},
                   {"in", "From"},
                   {"out", "To"},
                   {"startSeconds", "From (s)"},
                   {"startSecondsExact", "From (exact s)", details, Align::left, false, 0, true},
                   {"durationSeconds", "Length (s)"},
                   {"durationSecondsExact", "Length (exact s)", details, Align::left, false, 0,
                    true},
                   {"sentence", "What it means"},
                   {"technical", "Technical text"},
                   {"objectPath", "Place in the file"}},
        .rows = {}};
    for (std::size_t i = 0; i < timeline.unsupportedFeatures.size(); ++i) {
        const AAFUnsupportedFeature& feature = timeline.unsupportedFeatures[i];
        const PlacedLoss& loss = handOff.losses[i];
        const bool dropped = feature.severity == AAFUnsupportedFeature::Severity::informational;
        std::vector<Value> row{
            static_cast<std::int64_t>(i + 1), std::string(dropped ? "dropped" : "sounds different"),
            orNothing(loss.trackName), orNothing(loss.trackNumber), orNothing(loss.clipName)};
        const auto end = loss.start && loss.duration ? std::optional(*loss.start + *loss.duration)
                                                     : std::nullopt;
        row.push_back(timecodeOf(timeline, loss.start));
        row.push_back(timecodeOf(timeline, end));
        for (const std::optional<AAFRational>& time : {loss.start, loss.duration}) {
            row.push_back(secondsOf(time));
            row.push_back(exactSecondsOf(time));
        }
        row.emplace_back(loss.plain.empty() ? feature.description : loss.plain);
        row.emplace_back(feature.description);
        row.push_back(orNothing(feature.objectPath));
        listing.rows.push_back(std::move(row));
    }
    return listing;
}

}  // namespace trellant::cli
