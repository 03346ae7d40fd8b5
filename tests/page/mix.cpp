// SPDX-License-Identifier: Apache-2.0
// What a page's playback is held to, worked out sample by sample.
#include "hand_offs.h"

#include <trellant/audio/gain.h>

#include <cmath>
#include <stdexcept>
#include <string_view>

namespace trellant::page {

namespace {

constexpr double rate = 48'000;
constexpr std::size_t frames = 480'000;

void appendNumber(Bytes& bytes, std::uint32_t value, int count) {
    constexpr unsigned byteBits = 8;
    for (int i = 0; i < count; ++i) {
        bytes.push_back(static_cast<std::byte>(value & 0xFFU));
        value >>= byteBits;
    }
}

void appendText(Bytes& bytes, std::string_view text) {
    for (const char letter : text) {
        bytes.push_back(static_cast<std::byte>(letter));
    }
}

/// Mono, 16 bits, 48 kHz.
Bytes waveFile(const std::vector<std::int16_t>& samples, std::size_t from, std::size_t to) {
    const auto dataBytes = static_cast<std::uint32_t>((to - from) * 2);
    constexpr std::uint32_t headBytes = 36;
    Bytes bytes;
    appendText(bytes, "RIFF");
    appendNumber(bytes, dataBytes + headBytes, 4);
    appendText(bytes, "WAVEfmt ");
    appendNumber(bytes, 16, 4);
    appendNumber(bytes, 1, 2);
    appendNumber(bytes, 1, 2);
    appendNumber(bytes, 48'000, 4);
    appendNumber(bytes, 96'000, 4);
    appendNumber(bytes, 2, 2);
    appendNumber(bytes, 16, 2);
    appendText(bytes, "data");
    appendNumber(bytes, dataBytes, 4);
    for (std::size_t i = from; i < to; ++i) {
        appendNumber(bytes, static_cast<std::uint16_t>(samples[i]), 2);
    }
    return bytes;
}

/// All that is done to a clip at a time within it, in seconds.
double gainWithin(const AAFClipEvent& clip, double within) {
    const double duration = clip.duration.doubleValue();
    double gain = audio::clipGain(clip, within / duration);
    if (clip.fadeIn && within < clip.fadeIn->duration.doubleValue()) {
        gain *= audio::fadeInGain(*clip.fadeIn, within / clip.fadeIn->duration.doubleValue());
    }
    if (clip.fadeOut) {
        const double length = clip.fadeOut->duration.doubleValue();
        if (within > duration - length) {
            gain *= audio::fadeOutGain(*clip.fadeOut, (within - duration + length) / length);
        }
    }
    return gain;
}

const AAFTrackState& trackOf(const AAFTimeline& timeline, const AAFClipEvent& clip) {
    for (const AAFTrackState& track : timeline.tracks) {
        if (track.id == clip.trackID) {
            return track;
        }
    }
    throw std::logic_error("clip without a track");
}

}  // namespace

Noise noiseFor(const HandOff& handOff) {
    Noise noise;
    std::uint32_t state = 1;
    for (std::size_t i = 0; i < frames; ++i) {
        // The numbers of a linear congruence, their upper half, a quarter of full scale.
        state = state * 1'664'525U + 1'013'904'223U;
        noise.samples.push_back(
            static_cast<std::int16_t>(static_cast<std::int32_t>(state >> 16U) / 4 - 8'192));
    }
    constexpr std::size_t middle = 200'000;
    noise.sound.waveforms.resize(handOff.timeline.essences.size());
    noise.sound.pieces = {
        {.essence = 0, .firstFrame = 0, .file = waveFile(noise.samples, 0, middle)},
        {.essence = 0, .firstFrame = middle, .file = waveFile(noise.samples, middle, frames)}};
    return noise;
}

std::vector<float> mixOf(const HandOff& handOff, const Noise& noise) {
    const AAFTimeline& timeline = handOff.timeline;
    std::vector<double> mix(frames * 2, 0);
    for (const AAFClipEvent& clip : timeline.events) {
        if (!timeline.isEventAudible(clip) || clip.essenceID != timeline.essences[0].id) {
            continue;
        }
        const AAFTrackState& track = trackOf(timeline, clip);
        constexpr double middle = 0.5;
        const audio::PanGains pan = audio::panGains(track.fixedPan.value_or(middle));
        const double start = clip.timelineStart.doubleValue();
        const auto first = static_cast<std::size_t>(std::lround(start * rate));
        const auto end =
            static_cast<std::size_t>(std::lround(clip.timelineEnd().doubleValue() * rate));
        for (std::size_t i = first; i < end && i < frames; ++i) {
            constexpr double fullScale = 32'768;
            const auto frame = static_cast<std::size_t>(clip.sourceStartSample) + (i - first);
            const double value = noise.samples.at(frame) / fullScale * track.fixedGain *
                                 gainWithin(clip, static_cast<double>(i) / rate - start);
            mix[2 * i] += value * pan.left;
            mix[2 * i + 1] += value * pan.right;
        }
    }
    return {mix.begin(), mix.end()};
}

}  // namespace trellant::page
