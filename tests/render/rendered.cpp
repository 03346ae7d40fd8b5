// SPDX-License-Identifier: Apache-2.0
#include "rendered.h"

#include <trellant/exporter/plain_wave.h>

#include <algorithm>
#include <trellant_testing/wave_builder.h>
#include <utility>

namespace trellant::testing {

using exchange::PlannedClip;
using exchange::PlannedTrack;

RenderedPlan::RenderedPlan() {
    plan.start = AAFTimecodeAddress(1, 0, 0, 0, AAFTimecodeRate::fps25());
    // References to tracks stay good.
    plan.tracks.reserve(16);
}

std::size_t RenderedPlan::addMedia(const std::vector<std::int16_t>& samples,
                                   std::uint16_t channels) {
    Bytes bytes;
    for (const std::int16_t sample : samples) {
        const auto word = static_cast<std::uint16_t>(sample);
        bytes.push_back(static_cast<std::byte>(word & 0xFFU));
        bytes.push_back(static_cast<std::byte>(word >> 8U));
    }
    const std::size_t number = addMissingMedia();
    plan.media[number].isOffline = false;
    plan.media[number].channelCount = channels;
    plan.media[number].frames = static_cast<std::int64_t>(samples.size() / channels);
    played[number] = plainWave(writeFile(folder_.file(plan.media[number].fileName),
                                         waveImage({.channels = channels, .samples = bytes})));
    return number;
}

std::size_t RenderedPlan::addMissingMedia() {
    const std::string name = "media" + std::to_string(plan.media.size());
    plan.media.push_back({.name = name,
                          .fileName = name + ".wav",
                          .sampleRate = AAFRational(48'000),
                          .isOffline = true});
    played.emplace_back();
    return plan.media.size() - 1;
}

PlannedTrack& RenderedPlan::addTrack(const std::string& name) {
    PlannedTrack track{.track = plan.tracks.size(), .name = name};
    track.lanes.push_back({name, {}});
    return plan.tracks.emplace_back(std::move(track));
}

PlannedClip& RenderedPlan::addClip(PlannedTrack& track, std::size_t media, exchange::Samples start,
                                   exchange::Samples length) {
    auto& clips = track.lanes.front().clips;
    plan.length = std::max(plan.length, start + length);
    return clips.emplace_back(PlannedClip{
        .event = clips.size(), .name = "clip", .media = media, .start = start, .length = length});
}

std::vector<double> RenderedPlan::steps(render::Sound& sound, std::size_t frames,
                                        std::size_t block) const {
    render::MediaReader reader(played);
    std::vector<double> samples(frames * sound.channels());
    for (std::size_t first = 0; first < frames; first += block) {
        const std::size_t count = std::min(block, frames - first);
        sound.next(reader,
                   std::span(samples).subspan(first * sound.channels(), count * sound.channels()));
    }
    for (double& sample : samples) {
        sample *= 32'768;
    }
    return samples;
}

}  // namespace trellant::testing
