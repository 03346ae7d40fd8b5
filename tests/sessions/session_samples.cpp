// SPDX-License-Identifier: Apache-2.0
#include "session_samples.h"

#include <algorithm>
#include <limits>
#include <random>

namespace trellant::testing {

using exchange::PlannedClip;
using exchange::PlannedFade;
using exchange::Samples;
using sessions::Session;

namespace {

/// Numbers by chance, the same for the same seed on every machine.
class Chance {
  public:
    explicit Chance(std::uint32_t seed) : engine_(seed) {}
    /// `first` to `last`.
    std::int64_t among(std::int64_t first, std::int64_t last) {
        return first +
               static_cast<std::int64_t>(engine_() % static_cast<std::uint64_t>(last - first + 1));
    }
    bool oneIn(std::int64_t times) { return among(1, times) == 1; }
    double gain() { return static_cast<double>(among(0, 4096)) / 1024; }

  private:
    std::mt19937_64 engine_;
};

AAFAutomationEnvelope randomEnvelope(Chance& chance, double most) {
    AAFAutomationEnvelope envelope{.interpolation = chance.oneIn(2)
                                                        ? AAFAutomationInterpolation::linear()
                                                        : AAFAutomationInterpolation::constant()};
    const std::int64_t count = chance.among(1, 5);
    for (std::int64_t i = 0; i < count; ++i) {
        envelope.points.push_back(
            {AAFRational(i, count), most * static_cast<double>(chance.among(0, 256)) / 256});
    }
    return envelope;
}

PlannedFade randomFade(Chance& chance, Samples most) {
    return {.length = chance.among(1, most),
            .curve = chance.oneIn(2) ? AAFAutomationInterpolation::linear()
                                     : AAFAutomationInterpolation::power()};
}

void randomClips(Chance& chance, Session& session, exchange::Lane& lane) {
    const std::int64_t count = chance.among(0, 6);
    Samples end = 0;
    for (std::int64_t i = 0; i < count; ++i) {
        PlannedClip clip{.name = "Clip " + std::to_string(i)};
        clip.media = static_cast<std::size_t>(
            chance.among(0, static_cast<std::int64_t>(session.plan.media.size()) - 1));
        clip.sourceStart = chance.among(0, 100'000);
        clip.length = chance.among(1000, 50'000);
        clip.gain = chance.gain();
        clip.muted = chance.oneIn(5);
        if (chance.oneIn(3)) {
            clip.gainAutomation = randomEnvelope(chance, 2);
        }
        PlannedClip* const before = lane.clips.empty() ? nullptr : &lane.clips.back();
        if (before != nullptr && chance.oneIn(3)) {
            // Halves of both clips at most, so that no two crossfades of a clip meet.
            clip.fadeIn = randomFade(chance, std::min(before->length, clip.length) / 2);
            before->fadeOut = clip.fadeIn;
            clip.crossfadesIn = true;
            clip.start = end - clip.fadeIn->length;
        } else {
            clip.start = end + (chance.oneIn(2) ? chance.among(1, 90'000) : 0);
            clip.fadeIn = chance.oneIn(2) ? std::optional(randomFade(chance, 400)) : std::nullopt;
        }
        clip.fadeOut = chance.oneIn(2) ? std::optional(randomFade(chance, 400)) : std::nullopt;
        end = clip.end();
        lane.clips.push_back(clip);
    }
    session.plan.length = std::max(session.plan.length, end);
}

}  // namespace

Session emptySession() {
    Session session{.name = "Scene 12"};
    session.plan.name = "Scene 12";
    session.plan.rate = 48'000;
    session.plan.start = AAFTimecodeAddress(1, 0, 0, 0, AAFTimecodeRate::fps25());
    session.plan.tracks.push_back({.name = "Dialog", .lanes = {{.name = "Dialog"}}});
    return session;
}

std::size_t addMedia(Session& session, const std::string& name, std::int64_t rate) {
    const std::string file = name + ".wav";
    session.plan.media.push_back({.name = name,
                                  .fileName = file,
                                  .sampleRate = AAFRational(rate),
                                  .channelCount = 1,
                                  .bitDepth = 24,
                                  .frames = 60 * rate});
    session.media.push_back(
        {.path = "/show/Scene 12.media/" + file, .reference = "Scene 12.media/" + file});
    return session.media.size() - 1;
}

PlannedClip& addClip(Session& session, const std::string& name, std::size_t media, Samples start,
                     Samples length, std::int64_t sourceStart) {
    std::vector<PlannedClip>& clips = session.plan.tracks.back().lanes.back().clips;
    clips.push_back({.name = name,
                     .media = media,
                     .start = start,
                     .length = length,
                     .sourceStart = sourceStart});
    session.plan.length = std::max(session.plan.length, start + length);
    return clips.back();
}

Session twoTracks() {
    Session session = emptySession();
    const std::size_t anna = addMedia(session, "Anna");
    const std::size_t ben = addMedia(session, "Ben", 11'025);
    const std::size_t rain = addMedia(session, "Rain");
    session.plan.media[rain].isOffline = true;
    session.plan.media[rain].recordedPath = "Atmo:Rain";
    session.media[rain] = {};
    const PlannedFade crossfade{.length = 4800, .curve = AAFAutomationInterpolation::power()};
    addClip(session, "Anna take 1", anna, 0, 48'000, 2400).fadeOut = crossfade;
    PlannedClip& answer = addClip(session, "Ben answers", ben, 43'200, 52'800, 5513);
    answer.fadeIn = crossfade;
    answer.crossfadesIn = true;
    answer.fadeOut = {.length = 480, .curve = AAFAutomationInterpolation::linear()};
    session.plan.tracks.push_back({.name = "Atmo", .gain = 0.5, .pan = 0.0, .lanes = {{"Atmo"}}});
    PlannedClip& atmo = addClip(session, "Rain", rain, 12'000, 24'000, 0);
    atmo.gain = 0.75;
    atmo.gainAutomation =
        AAFAutomationEnvelope{.points = {{AAFRational(0), 0.25}, {AAFRational(1, 2), 1.0}}};
    session.markers.push_back(
        {.position = 48'000, .length = 24'000, .text = "Silent.", .track = 1});
    session.markers.push_back(
        {.position = 96'000, .text = "Left out.", .kind = sessions::MarkerKind::dropped});
    return session;
}

Session randomSession(std::uint32_t seed) {
    Chance chance(seed);
    Session session = emptySession();
    session.plan.tracks.clear();
    session.plan.rate = chance.oneIn(2) ? 48'000 : 44'100;
    addMedia(session, "One", 48'000);
    addMedia(session, "Two", 44'100);
    addMedia(session, "Three", 11'025);
    const std::int64_t count = chance.among(1, 4);
    for (std::int64_t i = 0; i < count; ++i) {
        exchange::PlannedTrack track{.name = "Track " + std::to_string(i)};
        track.gain = chance.gain();
        track.pan = static_cast<double>(chance.among(0, 64)) / 64;
        track.muted = chance.oneIn(4);
        track.solo = chance.oneIn(4);
        track.lanes.push_back({.name = track.name});
        randomClips(chance, session, track.lanes.back());
        session.plan.tracks.push_back(track);
    }
    // Places of a track's automation are fractions of the session, whose length is known now.
    for (exchange::PlannedTrack& track : session.plan.tracks) {
        if (session.plan.length > 0 && chance.oneIn(2)) {
            track.gainAutomation = randomEnvelope(chance, 2);
            track.panAutomation = randomEnvelope(chance, 1);
            track.pan.reset();
        }
    }
    return session;
}

exchange::ExportPlan withoutPositions(exchange::ExportPlan plan) {
    constexpr std::size_t unused = std::numeric_limits<std::size_t>::max();
    std::vector<std::size_t> places(plan.media.size(), unused);
    std::vector<exchange::PlannedMedia> used;
    for (exchange::PlannedTrack& track : plan.tracks) {
        track.track = 0;
        for (exchange::Lane& lane : track.lanes) {
            for (PlannedClip& clip : lane.clips) {
                std::size_t& place = places.at(clip.media);
                if (place == unused) {
                    place = used.size();
                    used.push_back(plan.media[clip.media]);
                    used.back().essence = 0;
                }
                clip.media = place;
                clip.event = 0;
                clip.sourceStartAtSessionRate = 0;
            }
        }
    }
    plan.media = used;
    plan.edges = {};
    plan.sourceStarts = {};
    return plan;
}

std::string hostileName() {
    using namespace std::string_literals;
    return "a\0b\x01\n\r\t\x7F\"'`\\/]]><&"s + "\u202Eright\u200F" + std::string(10'240, 'x');
}

std::string textOf(const Session& session, const TextWriter& write) {
    std::string text;
    write(session, [&text](ByteView bytes) {
        for (const std::byte byte : bytes) {
            text += static_cast<char>(byte);
        }
    });
    return text;
}

Bytes archiveOf(const Session& session, const ArchiveWriter& write) {
    Bytes archive;
    write(session, [&archive](std::uint64_t offset, ByteView bytes) {
        archive.resize(std::max(archive.size(), offset + bytes.size()));
        std::copy(bytes.begin(), bytes.end(),
                  archive.begin() + static_cast<std::ptrdiff_t>(offset));
    });
    return archive;
}

}  // namespace trellant::testing
