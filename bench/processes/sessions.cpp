// SPDX-License-Identifier: Apache-2.0
// An AAF session of many clips, written to nowhere: how many bytes it has is said at the end.
//
//     bench_sessions CLIPS POINTS
//
// POINTS of automation for each clip; 24 tracks, a tenth as many media as clips, every fourth clip
// faded in, every clip under a name of its own.
#include <trellant/sessions/session.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

namespace {

using namespace trellant;

constexpr std::size_t trackCount = 24;

std::optional<std::size_t> countOf(std::string_view text) {
    std::size_t count = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), count);
    const bool isNumber = failure == std::errc() && end == text.data() + text.size();
    return isNumber && count <= 10'000'000 ? std::optional(count) : std::nullopt;
}

exchange::PlannedClip clipOf(std::size_t number, std::size_t points, std::size_t mediaCount) {
    constexpr exchange::Samples length = 48'000;
    exchange::PlannedClip clip{
        .event = number,
        .name = "Clip " + std::to_string(number),
        .media = number % mediaCount,
        .start = static_cast<exchange::Samples>(number / trackCount) * (length + 480),
        .length = length};
    if (number % 4 == 0) {
        clip.fadeIn = exchange::PlannedFade{.length = 480};
    }
    if (points > 0) {
        clip.gainAutomation.emplace();
    }
    for (std::size_t index = 0; index < points; ++index) {
        clip.gainAutomation->points.push_back(
            {AAFRational(static_cast<std::int64_t>(index), static_cast<std::int64_t>(points)),
             static_cast<double>(index % 7) / 4});
    }
    return clip;
}

sessions::Session sessionOf(std::size_t clips, std::size_t points) {
    sessions::Session session{.name = "Session"};
    const std::size_t mediaCount = std::max<std::size_t>(clips / 10, 1);
    for (std::size_t index = 0; index < mediaCount; ++index) {
        const std::string file = "File " + std::to_string(index) + ".wav";
        session.plan.media.push_back({.essence = index,
                                      .name = file,
                                      .fileName = file,
                                      .sampleRate = AAFRational(48'000),
                                      .bitDepth = 24,
                                      .frames = 2'880'000});
        session.media.push_back({.path = "/session/" + file, .reference = file});
    }
    for (std::size_t index = 0; index < trackCount; ++index) {
        exchange::PlannedTrack track{.track = index, .name = "Track " + std::to_string(index)};
        exchange::Lane lane{.name = track.name};
        for (std::size_t number = index; number < clips; number += trackCount) {
            lane.clips.push_back(clipOf(number, points, mediaCount));
            session.plan.length = std::max(session.plan.length, lane.clips.back().end());
        }
        track.lanes.push_back(std::move(lane));
        session.plan.tracks.push_back(std::move(track));
    }
    return session;
}

}  // namespace

int main(int argc, char** argv) {
    const auto clips = argc == 3 ? countOf(argv[1]) : std::nullopt;
    const auto points = argc == 3 ? countOf(argv[2]) : std::nullopt;
    if (!clips || !points) {
        static_cast<void>(std::fputs("usage: bench_sessions CLIPS POINTS\n", stderr));
        return 1;
    }
    std::size_t byteCount = 0;
    sessions::writeAafSession(sessionOf(*clips, *points),
                              [&](ByteView bytes) { byteCount += bytes.size(); });
    static_cast<void>(std::printf("%zu bytes\n", byteCount));
    return 0;
}
