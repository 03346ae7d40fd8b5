// SPDX-License-Identifier: Apache-2.0
#include "file_chunks.h"

#include "file_plan.h"

#include <trellant/audio/broadcast_chunks.h>
#include <trellant/base/text.h>
#include <trellant/version.h>

#include <algorithm>
#include <iterator>
#include <span>
#include <string_view>

namespace trellant::render {

namespace {

using exchange::ExportPlan;
using exchange::Samples;
using sessions::SessionMarker;

constexpr std::size_t mostLabelBytes = 400;
/// Positions of cue points have 32 bits.
constexpr Samples mostPosition = 0xFFFFFFFF;

void word(Bytes& bytes, std::string_view text) {
    const auto more = std::as_bytes(std::span(text));
    bytes.insert(bytes.end(), more.begin(), more.end());
}

void number(Bytes& bytes, std::uint64_t value) {
    for (std::size_t i = 0; i < 4; ++i) {
        bytes.push_back(static_cast<std::byte>(value >> (8 * i) & 0xFFU));
    }
}

void append(Bytes& bytes, const Bytes& more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

/// What a person calls what is in the file.
std::string nameOf(const RenderedFile& file, const ExportPlan& plan) {
    if (!file.track) {
        return "Mix";
    }
    const exchange::PlannedTrack& track = plan.tracks[*file.track];
    return file.clip ? track.lanes.front().clips[*file.clip].name : track.name;
}

std::uint64_t timeReference(const RenderedFile& file, const ExportPlan& plan) {
    return static_cast<std::uint64_t>(std::max<Samples>(0, samplesFromMidnight(plan) + file.start));
}

std::string codingHistory(const RenderedFile& file, const FileFacts& facts) {
    const std::string before =
        file.resampledClips == 0 ? "" : "A=PCM,T=libsoxr very high quality; from other rates\r\n";
    return before + "A=PCM,F=" + std::to_string(facts.plan.rate) +
           ",W=" + std::to_string(file.format.bits) +
           ",M=" + (file.channels == 1 ? "mono" : "stereo") + ",T=Trellant " +
           std::string(versionText) + "\r\n";
}

/// The tape that all of a track, or a clip, comes from.
std::optional<std::string> tapeOf(const RenderedFile& file, const ExportPlan& plan) {
    if (!file.track) {
        return std::nullopt;
    }
    const std::vector<exchange::PlannedClip>& clips = plan.tracks[*file.track].lanes.front().clips;
    const auto own = file.clip ? std::span(clips).subspan(*file.clip, 1) : std::span(clips);
    const std::optional<exchange::PlannedReel>& first = plan.media[own.front().media].reel;
    const bool isOne = first && std::all_of(own.begin(), own.end(), [&](const auto& clip) {
                           const auto& reel = plan.media[clip.media].reel;
                           return reel && reel->id == first->id;
                       });
    return isOne ? std::optional(first->name) : std::nullopt;
}

Bytes broadcast(const RenderedFile& file, const FileFacts& facts) {
    audio::BroadcastValues values;
    const std::string session = facts.plan.name.value_or("");
    values.description = session + (session.empty() ? "" : ": ") + nameOf(file, facts.plan);
    values.originator = "Trellant " + std::string(versionText);
    values.originated = facts.date;
    values.timeReference = timeReference(file, facts.plan);
    values.codingHistory = codingHistory(file, facts);
    return audio::riffChunk(audio::broadcastChunkID, audio::broadcastChunk(values));
}

Bytes production(const RenderedFile& file, const FileFacts& facts) {
    audio::ProductionValues values;
    values.project = facts.plan.name;
    values.tape = tapeOf(file, facts.plan);
    values.sampleRate = static_cast<std::uint32_t>(facts.plan.rate);
    values.bitDepth = file.format.bits;
    const AAFTimecodeRate& rate = facts.plan.start.rate;
    values.timecode = audio::TimecodeForm{rate.exactRate, rate.dropFrame};
    values.timeReference = timeReference(file, facts.plan);
    values.trackNames = file.channels == 1 ? std::vector<std::string>{nameOf(file, facts.plan)}
                                           : std::vector<std::string>{"Mix L", "Mix R"};
    return audio::riffChunk(audio::productionChunkID, audio::productionChunk(values));
}

bool isEarlier(const SessionMarker* left, const SessionMarker* right) noexcept {
    return left->position < right->position;
}

MarkIndex::Marks marksIn(const RenderedFile& file, const FileFacts& facts) {
    const Samples end = file.start + std::min(file.length, mostPosition);
    MarkIndex::Marks marks = facts.marks.of(file, facts.plan);
    std::erase_if(marks, [&](const SessionMarker* mark) {
        return mark->position < file.start || mark->position >= end;
    });
    marks.resize(std::min(marks.size(), mostMarks));
    return marks;
}

Bytes cues(const MarkIndex::Marks& marks, Samples start) {
    Bytes points;
    Bytes labels;
    number(points, marks.size());
    word(labels, "adtl");
    for (std::size_t i = 0; i < marks.size(); ++i) {
        const auto position = static_cast<std::uint64_t>(marks[i]->position - start);
        number(points, i + 1);
        number(points, position);
        word(points, "data");
        number(points, 0);
        number(points, 0);
        number(points, position);
        Bytes label;
        number(label, i + 1);
        word(label, prefixOfClusters(marks[i]->text, mostLabelBytes, mostLabelBytes));
        label.push_back(std::byte{0});
        append(labels, audio::riffChunk("labl", label));
    }
    Bytes chunks = audio::riffChunk("cue ", points);
    append(chunks, audio::riffChunk("LIST", labels));
    return chunks;
}

}  // namespace

MarkIndex::MarkIndex(const std::vector<SessionMarker>& markers, std::size_t tracks)
    : ofTracks_(tracks) {
    for (const SessionMarker& marker : markers) {
        all_.push_back(&marker);
        (marker.track && *marker.track < tracks ? ofTracks_[*marker.track] : ofTheWhole_)
            .push_back(&marker);
        if (marker.event) {
            ofEvents_[*marker.event].push_back(&marker);
        }
    }
}

MarkIndex::Marks MarkIndex::of(const RenderedFile& file, const ExportPlan& plan) const {
    if (!file.track) {
        return all_;
    }
    if (file.clip) {
        const auto found =
            ofEvents_.find(plan.tracks[*file.track].lanes.front().clips[*file.clip].event);
        return found == ofEvents_.end() ? Marks() : found->second;
    }
    const Marks& own = ofTracks_[*file.track];
    Marks marks;
    std::merge(ofTheWhole_.begin(), ofTheWhole_.end(), own.begin(), own.end(),
               std::back_inserter(marks), isEarlier);
    return marks;
}

Bytes fileChunks(const RenderedFile& file, const FileFacts& facts) {
    Bytes chunks = broadcast(file, facts);
    append(chunks, production(file, facts));
    if (const auto marks = marksIn(file, facts); !marks.empty()) {
        append(chunks, cues(marks, file.start));
    }
    return chunks;
}

}  // namespace trellant::render
