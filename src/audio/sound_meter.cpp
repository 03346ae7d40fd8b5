// SPDX-License-Identifier: Apache-2.0
#include "range_lists.h"

#include <trellant/audio/sound_meter.h>
#include <trellant/base/precondition.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>
#include <utility>

namespace trellant::audio {

namespace {

/// Looked at together for whether any of them belongs to a run.
constexpr std::size_t pieceFrames = 32;

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

/// From where on whole numbers at the upper end of 32 bits are there.
std::int32_t topOf(const SoundFormat& format) noexcept {
    constexpr std::uint64_t fullScale = std::uint64_t{1} << 31U;
    return static_cast<std::int32_t>(fullScale - (fullScale >> (format.bitDepth - 1)));
}

/// The lowest and the highest of every `step`th sample from `first` on. A step of 1 that the
/// compiler knows makes a better loop.
template <class Sample>
std::pair<Sample, Sample> extremes(std::span<const Sample> samples, std::size_t first,
                                   std::size_t step) noexcept {
    Sample lowest = usable(samples[first]);
    Sample highest = lowest;
    for (std::size_t i = first; i < samples.size(); i += step) {
        lowest = std::min(lowest, usable(samples[i]));
        highest = std::max(highest, usable(samples[i]));
    }
    return {lowest, highest};
}

template <class Sample>
using RunPiece = std::span<const Sample, pieceFrames>;

/// Whether any sample may belong to a run. All are looked at, which is faster than stopping.
bool hasEvent(RunPiece<std::int32_t> samples, std::int32_t top) noexcept {
    std::int32_t found = 0;
    for (const std::int32_t sample : samples) {
        const std::int32_t isSilent = sample == 0 ? 1 : 0;
        const std::int32_t isTop = sample >= top ? 1 : 0;
        const std::int32_t isBottom = sample <= -top ? 1 : 0;
        found += isSilent + isTop + isBottom;
    }
    return found != 0;
}

/// Floating point is rare: each sample is looked at for itself.
bool hasEvent(RunPiece<double> /*samples*/, std::int32_t /*top*/) noexcept {
    return true;
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
            const auto [lowest, highest] =
                channels_ == 1 ? extremes(taken, 0, 1) : extremes(taken, channel, channels_);
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

SoundMeter::ScaleEnds SoundMeter::endsOf(const SoundFormat& format) noexcept {
    if (format.isFloatingPoint) {
        return {1, -1};
    }
    const double top = 1 - std::ldexp(1.0, 1 - static_cast<int>(format.bitDepth));
    return {top, -top};
}

SoundMeter::SoundMeter(const SoundFormat& format, std::uint64_t framesPerPair)
    : format_(format),
      ends_(endsOf(format)),
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
        if constexpr (std::is_same_v<Sample, double>) {
            addLane(channel, laneOf(channel, samples, floatingLane_));
        } else {
            addLane(channel, laneOf(channel, samples, wholeLane_));
        }
    }
    measures_.frames += samples.size() / format_.channels;
}

template <class Sample>
std::span<const Sample> SoundMeter::laneOf(std::size_t channel, std::span<const Sample> samples,
                                           std::vector<Sample>& lane) const {
    if (format_.channels == 1) {
        return samples;
    }
    lane.resize(samples.size() / format_.channels);
    for (std::size_t i = 0; i < lane.size(); ++i) {
        lane[i] = samples[channel + i * format_.channels];
    }
    return lane;
}

template <class Sample>
void SoundMeter::addLane(std::size_t channel, std::span<const Sample> samples) {
    scaled_.resize(samples.size());
    for (std::size_t i = 0; i < samples.size(); ++i) {
        scaled_[i] = scaled(usable(samples[i]));
    }
    const std::int32_t top = format_.isFloatingPoint ? 0 : topOf(format_);
    const Runs& runs = runs_[channel];
    for (std::size_t first = 0; first < samples.size(); first += pieceFrames) {
        const std::size_t count = std::min(pieceFrames, samples.size() - first);
        const bool isOpen =
            runs.silence.frames != 0 || runs.top.frames != 0 || runs.bottom.frames != 0;
        if (isOpen || count < pieceFrames ||
            hasEvent(RunPiece<Sample>(samples.subspan(first, pieceFrames)), top)) {
            followRuns(channel, measures_.frames + first,
                       std::span<const double>(scaled_).subspan(first, count));
        }
    }
    tones_[channel].add(scaled_);
}

/// `frame`: of the first of these samples.
void SoundMeter::followRuns(std::size_t channel, std::uint64_t frame,
                            std::span<const double> samples) {
    Runs& runs = runs_[channel];
    for (const double sample : samples) {
        if (!goesOn(runs.silence, sample == 0, frame) && runs.silence.frames != 0) {
            endSilence(channel);
        }
        if (!goesOn(runs.top, sample >= ends_.top, frame) && runs.top.frames != 0) {
            endFullScale(channel, runs.top);
        }
        if (!goesOn(runs.bottom, sample <= ends_.bottom, frame) && runs.bottom.frames != 0) {
            endFullScale(channel, runs.bottom);
        }
        ++frame;
    }
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
