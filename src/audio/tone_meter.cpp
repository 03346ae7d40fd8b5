// SPDX-License-Identifier: Apache-2.0
#include "range_lists.h"

#include <trellant/audio/tone_meter.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace trellant::audio {

namespace {

constexpr double hopsPerSecond = 200;
constexpr std::size_t hopsAtOnce = 4;

}  // namespace

ToneMeter::ToneMeter(std::uint32_t sampleRate) {
    if (sampleRate < lowestToneRate || sampleRate > highestToneRate) {
        return;
    }
    hopFrames_ = static_cast<std::size_t>(std::lround(sampleRate / hopsPerSecond));
    const double step = 2 * std::numbers::pi * lineUpTone / sampleRate;
    for (std::size_t i = 0; i < hopFrames_; ++i) {
        cosines_.push_back(std::cos(step * static_cast<double>(i)));
        sines_.push_back(-std::sin(step * static_cast<double>(i)));
    }
    turn_ = std::polar(1.0, -step * static_cast<double>(hopFrames_));
}

void ToneMeter::add(std::span<const double> samples) {
    while (hopFrames_ != 0 && !samples.empty()) {
        if (filled_ == 0 && samples.size() >= hopsAtOnce * hopFrames_) {
            addHops(samples.data());
            samples = samples.subspan(hopsAtOnce * hopFrames_);
            continue;
        }
        const std::size_t count = std::min(hopFrames_ - filled_, samples.size());
        double real = 0;
        double imaginary = 0;
        double sum = 0;
        double squares = 0;
        for (std::size_t i = 0; i < count; ++i) {
            const double sample = samples[i];
            real += sample * cosines_[filled_ + i];
            imaginary += sample * sines_[filled_ + i];
            sum += sample;
            squares += sample * sample;
        }
        now_.tone += std::complex<double>(real, imaginary);
        now_.sum += sum;
        now_.squares += squares;
        filled_ += count;
        samples = samples.subspan(count);
        if (filled_ == hopFrames_) {
            endHop();
        }
    }
}

/// Several whole hops side by side, each summed up in the order of its samples: a sum alone would
/// wait for itself at each sample.
void ToneMeter::addHops(const double* samples) {
    std::array<double, hopsAtOnce> real{};
    std::array<double, hopsAtOnce> imaginary{};
    std::array<double, hopsAtOnce> sum{};
    std::array<double, hopsAtOnce> squares{};
    for (std::size_t i = 0; i < hopFrames_; ++i) {
        const double cosine = cosines_[i];
        const double sine = sines_[i];
        for (std::size_t hop = 0; hop < hopsAtOnce; ++hop) {
            const double sample = samples[hop * hopFrames_ + i];
            real[hop] += sample * cosine;
            imaginary[hop] += sample * sine;
            sum[hop] += sample;
            squares[hop] += sample * sample;
        }
    }
    for (std::size_t hop = 0; hop < hopsAtOnce; ++hop) {
        now_ = {{real[hop], imaginary[hop]}, sum[hop], squares[hop]};
        endHop();
    }
}

void ToneMeter::endHop() {
    now_.tone *= phase_;
    // Back to the length of 1, which products of rounded numbers drift away from.
    phase_ *= turn_;
    phase_ /= std::abs(phase_);
    if (hops_ > 0 && isTone(before_, now_)) {
        const std::uint64_t first = (hops_ - 1) * hopFrames_;
        if (open_.frames == 0 || open_.end() < first) {
            addTo(found_, open_);
            open_ = {first, 0};
        }
        open_.frames = first + 2 * hopFrames_ - open_.first;
    }
    before_ = std::exchange(now_, {});
    filled_ = 0;
    ++hops_;
}

/// A sine of amplitude A at 1 kHz gives a term of A N/2 and a power of A^2/2.
bool ToneMeter::isTone(const Hop& first, const Hop& second) const noexcept {
    const double frames = 2 * static_cast<double>(hopFrames_);
    const double sum = first.sum + second.sum;
    const double power = (first.squares + second.squares - sum * sum / frames) / frames;
    const double tonePower = 2 * std::norm(first.tone + second.tone) / (frames * frames);
    return power >= leastTonePower && tonePower >= leastToneShare * power;
}

ListedRanges ToneMeter::taken() {
    addTo(found_, std::exchange(open_, {}));
    return std::move(found_);
}

}  // namespace trellant::audio
