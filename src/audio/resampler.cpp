// SPDX-License-Identifier: Apache-2.0
#include <trellant/audio/resampler.h>
#include <trellant/base/precondition.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <numeric>
#include <utility>

namespace trellant::audio {

namespace {

constexpr std::uint64_t zeroCrossings = 32;
constexpr std::uint64_t mostMoments = 2'048;
/// Of the lower half rate: where the filter has fallen to a half.
constexpr double edge = 0.95;
constexpr double beta = 8;

bool isTaken(std::uint64_t rate) noexcept {
    return rate >= lowestResampledRate && rate <= highestResampledRate;
}

/// The modified Bessel function of the first kind and order zero, by its power series.
double bessel(double x) noexcept {
    double sum = 1;
    double term = 1;
    for (int k = 1; term > sum * 1e-12; ++k) {
        term *= (x / (2 * k)) * (x / (2 * k));
        sum += term;
    }
    return sum;
}

/// `place` from -1 to 1.
double kaiser(double place) noexcept {
    const double rest = 1 - place * place;
    return rest <= 0 ? 0 : bessel(beta * std::sqrt(rest)) / bessel(beta);
}

double sinc(double x) noexcept {
    const double angle = std::numbers::pi * x;
    return x == 0 ? 1 : std::sin(angle) / angle;
}

}  // namespace

Resampler::Resampler(std::uint32_t from, std::uint32_t to, std::size_t channels, Sink sink)
    : from_(from), to_(to), channels_(channels), sink_(std::move(sink)) {
    precondition(isTaken(from) && isTaken(to) && channels > 0, "rates and channels of a sound");
    reach_ = static_cast<std::size_t>(from_ > to_ ? (zeroCrossings * from_ + to_ - 1) / to_
                                                  : zeroCrossings);
    moments_ = std::min(to_ / std::gcd(from_, to_), mostMoments);
    next_ = reach_ - 1;
    waiting_.assign(next_ * channels_, 0);
    if (from_ != to_) {
        makeRows();
    }
}

/// A row for each moment and one for the next sample's, each adding up to 1, so that a steady sound
/// stays as it is.
void Resampler::makeRows() {
    const double cutOff =
        edge * std::min(1.0, static_cast<double>(to_) / static_cast<double>(from_));
    const std::size_t width = 2 * reach_;
    rows_.resize(width * static_cast<std::size_t>(moments_ + 1));
    std::vector<double> row(width);
    for (std::size_t moment = 0; moment <= moments_; ++moment) {
        const double behind = static_cast<double>(moment) / static_cast<double>(moments_);
        for (std::size_t i = 0; i < width; ++i) {
            const double distance =
                static_cast<double>(i) - static_cast<double>(reach_ - 1) - behind;
            row[i] = sinc(cutOff * distance) * kaiser(distance / static_cast<double>(reach_));
        }
        const double sum = std::accumulate(row.begin(), row.end(), 0.0);
        std::transform(row.begin(), row.end(),
                       rows_.begin() + static_cast<std::ptrdiff_t>(moment * width),
                       [sum](double weight) { return static_cast<float>(weight / sum); });
    }
}

void Resampler::add(std::span<const float> samples) {
    precondition(samples.size() % channels_ == 0, "frames are whole");
    taken_ += samples.size() / channels_;
    if (from_ == to_) {
        sink_(samples);
        return;
    }
    waiting_.insert(waiting_.end(), samples.begin(), samples.end());
    makeFrames();
}

void Resampler::makeFrames() {
    const std::size_t width = 2 * reach_;
    const std::size_t frames = waiting_.size() / channels_;
    ready_.clear();
    while (next_ + reach_ < frames && made_ * from_ < taken_ * to_) {
        const auto moment = static_cast<std::size_t>((behind_ * moments_ + to_ / 2) / to_);
        const float* const row = rows_.data() + moment * width;
        const float* const first = waiting_.data() + (next_ + 1 - reach_) * channels_;
        for (std::size_t channel = 0; channel < channels_; ++channel) {
            // Four sums that do not wait for one another.
            std::array<float, 4> sums{};
            for (std::size_t i = 0; i < width; ++i) {
                sums[i % sums.size()] += row[i] * first[i * channels_ + channel];
            }
            ready_.push_back((sums[0] + sums[1]) + (sums[2] + sums[3]));
        }
        ++made_;
        behind_ += from_;
        next_ += static_cast<std::size_t>(behind_ / to_);
        behind_ %= to_;
    }
    const std::size_t done = std::min(next_ + 1 - reach_, frames);
    waiting_.erase(waiting_.begin(),
                   waiting_.begin() + static_cast<std::ptrdiff_t>(done * channels_));
    next_ -= done;
    if (!ready_.empty()) {
        sink_(ready_);
    }
}

void Resampler::finish() {
    if (from_ != to_) {
        waiting_.resize(waiting_.size() + (reach_ + 1) * channels_, 0);
        makeFrames();
    }
}

}  // namespace trellant::audio
