// SPDX-License-Identifier: Apache-2.0
// A sound at another sample rate, for previews: each new sample is a sum of old ones around its
// moment, weighted by a sinc under a Kaiser window.
//
// 32 zero crossings to each side and a window with beta 8 keep what is folded back some 80 dB down
// and the sound up to nine tenths of the lower of both half rates. The new sound is not moved: its
// sample n is the old one's moment n * from / to. Moments are worked out in whole numbers, so that
// hours do not drift; where both rates have no larger common divisor, a moment counts as the
// nearest of 2,048 between two samples (-60 dB at the highest frequencies).
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {
namespace audio {

/// Rates that it takes, samples in a second.
inline constexpr std::uint32_t lowestResampledRate = 4'000;
inline constexpr std::uint32_t highestResampledRate = 768'000;

/// Takes a sound piece by piece and in memory that does not grow with it.
class Resampler {
  public:
    /// Takes whole frames, channels interleaved.
    using Sink = std::function<void(std::span<const float>)>;

    /// Rates within the bounds above, one channel or more. Equal rates hand samples on as they are.
    Resampler(std::uint32_t from, std::uint32_t to, std::size_t channels, Sink sink);

    /// Further whole frames, channels interleaved.
    void add(std::span<const float> samples);
    /// Hands on the last frames; call once, at the end. There are then frames * to / from of them,
    /// rounded up.
    void finish();

  private:
    void makeRows();
    void makeFrames();

    std::uint64_t from_;
    std::uint64_t to_;
    std::size_t channels_;
    Sink sink_;
    /// Old samples that a new one is made of, to each side of its moment.
    std::size_t reach_ = 0;
    /// Moments between two samples that have a row of weights.
    std::uint64_t moments_ = 1;
    std::vector<float> rows_;
    /// Old frames from `reach_ - 1` before the next moment on; silence before the first.
    std::vector<float> waiting_;
    /// The frame of `waiting_` at or before the next moment, and how far behind it, in 1/to_.
    std::size_t next_ = 0;
    std::uint64_t behind_ = 0;
    std::uint64_t taken_ = 0;
    std::uint64_t made_ = 0;
    std::vector<float> ready_;
};

}  // namespace audio
}  // namespace trellant
