// SPDX-License-Identifier: Apache-2.0
#include "range_lists.h"

#include <trellant/audio/sound_meter.h>
#include <trellant/base/precondition.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace trellant::audio {

namespace {

constexpr PeakPair noSampleYet{std::numeric_limits<std::int16_t>::max(),
                               std::numeric_limits<std::int16_t>::min()};

std::int16_t peakOf(std::int32_t sample) noexcept {
    return static_cast<std::int16_t>(sample >> 16U);
}

std::int16_t peakOf(double sample) noexcept {
    constexpr double fullScale = 32'768;
    return static_cast<std::int16_t>(
        std::clamp(std::floor(sample * fullScale), -fullScale, fullScale - 1));
}

/// What is no number would spread through everything that is compared or added up.
std::int32_t usable(std::int32_t sample) noexcept {
    return sample;
}

double usable(double sample) noexcept {
    return std::isnan(sample) ? 0 : sample;
}

double scaled(std::int32_t sample) noexcept {
    constexpr double unit = 1.0 / 2'147'483'648.0;
    return sample * unit;
}

double scaled(double sample) noexcept {
    return sample;
}

/// From where on samples are at the ends of their scale.
struct ScaleEnds {
    double top;
    double bottom;
};

ScaleEnds scaleEnds(const SoundFormat& format) noexcept {
    if (format.isFloatingPoint) {
        return {1, -1};
    }
    const double top = 1 - std::ldexp(1.0, 1 - static_cast<int>(format.bitDepth));
    return {top, -top};
}

/// Whether the sample goes on in a run of its kind; a run that has ended is for the caller.
bool goesOn(FrameRange& run, bool isIn, std::uint64_t frame) noexcept {
    if (!isIn) {
        return false;
    }
    if (run.frames == 0) {
        run.first = frame;
    }
    ++run.frames;
    return true;
}

}  // namespace

PeakMeter::PeakMeter(std::size_t channels, std::uint64_t framesPerPair, Sink sink)
    : channels_(channels),
      framesPerPair_(framesPerPair),
      sink_(std::move(sink)),
      pair_(channels, noSampleYet) {
    precondition(channels > 0 && framesPerPair > 0, "an outline needs channels and frames");
}

template <class Sample>
void PeakMeter::addAll(std::span<const Sample> samples) {
    precondition(samples.size() % channels_ == 0, "frames are whole");
    while (!samples.empty()) {
        const std::uint64_t count =
            std::min<std::uint64_t>(framesPerPair_ - filled_, samples.size() / channels_);
        const auto taken = samples.first(static_cast<std::size_t>(count) * channels_);
        for (std::size_t channel = 0; channel < channels_; ++channel) {
            Sample lowest = usable(taken[channel]);
            Sample highest = lowest;
            for (std::size_t i = channel; i < taken.size(); i += channels_) {
                lowest = std::min(lowest, usable(taken[i]));
                highest = std::max(highest, usable(taken[i]));
            }
            pair_[channel].lowest = std::min(pair_[channel].lowest, peakOf(lowest));
            pair_[channel].highest = std::max(pair_[channel].highest, peakOf(highest));
        }
        filled_ += count;
        samples = samples.subspan(taken.size());
        if (filled_ == framesPerPair_) {
            endPair();
        }
    }
}

void PeakMeter::add(std::span<const std::int32_t> samples) {
    addAll(samples);
}

void PeakMeter::add(std::span<const double> samples) {
    addAll(samples);
}

void PeakMeter::endPair() {
    sink_(pair_);
    std::fill(pair_.begin(), pair_.end(), noSampleYet);
    filled_ = 0;
}

void PeakMeter::finish() {
    if (filled_ != 0) {
        endPair();
    }
}

SoundMeter::SoundMeter(const SoundFormat& format, std::uint64_t framesPerPair)
    : format_(format),
      peaks_(format.channels, framesPerPair,
             [this](std::span<const PeakPair> pairs) {
                 measures_.peaks.pairs.insert(measures_.peaks.pairs.end(), pairs.begin(),
                                              pairs.end());
             }),
      runs_(format.channels),
      tones_(format.channels, ToneMeter(format.sampleRate)) {
    precondition(format.bitDepth >= 2 && format.bitDepth <= 64, "a depth that samples have");
    measures_.sampleRate = format.sampleRate;
    measures_.bitDepth = format.bitDepth;
    measures_.isFloatingPoint = format.isFloatingPoint;
    measures_.peaks.framesPerPair = framesPerPair;
    measures_.peaks.channels = format.channels;
    measures_.channels.resize(format.channels);
}

template <class Sample>
void SoundMeter::addAll(std::span<const Sample> samples) {
    peaks_.add(samples);
    for (std::size_t channel = 0; channel < format_.channels; ++channel) {
        addChannel(channel, samples);
    }
    measures_.frames += samples.size() / format_.channels;
}

template <class Sample>
void SoundMeter::addChannel(std::size_t channel, std::span<const Sample> samples) {
    const ScaleEnds ends = scaleEnds(format_);
    Runs& runs = runs_[channel];
    lane_.clear();
    std::uint64_t frame = measures_.frames;
    for (std::size_t i = channel; i < samples.size(); i += format_.channels, ++frame) {
        const double sample = scaled(usable(samples[i]));
        lane_.push_back(sample);
        if (!goesOn(runs.silence, sample == 0, frame) && runs.silence.frames != 0) {
            endSilence(channel);
        }
        if (!goesOn(runs.top, sample >= ends.top, frame) && runs.top.frames != 0) {
            endFullScale(channel, runs.top);
        }
        if (!goesOn(runs.bottom, sample <= ends.bottom, frame) && runs.bottom.frames != 0) {
            endFullScale(channel, runs.bottom);
        }
    }
    tones_[channel].add(lane_);
}

void SoundMeter::endSilence(std::size_t channel) {
    ChannelMeasures& measures = measures_.channels[channel];
    addLongest(measures.silences, measures.shortestSilence,
               std::exchange(runs_[channel].silence, {}));
}

void SoundMeter::endFullScale(std::size_t channel, FrameRange& run) {
    const FrameRange ended = std::exchange(run, {});
    if (ended.frames >= shortestFullScaleRun) {
        addTo(measures_.channels[channel].fullScale, ended);
    }
}

void SoundMeter::add(std::span<const std::int32_t> samples) {
    addAll(samples);
}

void SoundMeter::add(std::span<const double> samples) {
    addAll(samples);
}

SoundMeasures SoundMeter::taken() {
    peaks_.finish();
    for (std::size_t channel = 0; channel < format_.channels; ++channel) {
        if (runs_[channel].silence.frames != 0) {
            endSilence(channel);
        }
        endFullScale(channel, runs_[channel].top);
        endFullScale(channel, runs_[channel].bottom);
        measures_.channels[channel].tones = tones_[channel].taken();
    }
    return std::move(measures_);
}

}  // namespace trellant::audio
