// SPDX-License-Identifier: Apache-2.0
// Where a line-up tone of 1 kHz stands in a sound: the "pop" of one frame two seconds before a
// programme begins, or a tone at the head of a reel.
//
// A window of 10 ms moves on by 5 ms. In it the power at 1 kHz (one term of a Fourier transform, as
// the algorithm of Goertzel works out) is compared with the power of everything, steady offset left
// out. 10 ms are whole periods of 900 Hz and 1,100 Hz too, so that these count for nothing.
#pragma once

#include <trellant/audio/sound_measures.h>

#include <array>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {
namespace audio {

/// Hz.
inline constexpr double lineUpTone = 1'000;
/// The tone's least part of a window's power, so that a window half before its beginning, which has
/// half, does not count.
inline constexpr double leastToneShare = 0.8;
/// The least power of a window: -60 dB of a full-scale square wave.
inline constexpr double leastTonePower = 1e-6;
/// Samples in a second with which a tone is looked for.
inline constexpr std::uint32_t lowestToneRate = 4'000;
inline constexpr std::uint32_t highestToneRate = 768'000;

/// Takes a sound of one channel piece by piece and in memory that does not grow with it.
class ToneMeter {
  public:
    /// Samples in a second.
    explicit ToneMeter(std::uint32_t sampleRate);

    /// Further samples, full scale being 1.
    void add(std::span<const double> samples);
    /// Ranges whose every window counts, so that ends are exact to about 5 ms; call once, at the
    /// end. What is left of the last half window is not looked at.
    [[nodiscard]] ListedRanges taken();

  private:
    /// Half a window.
    struct Hop {
        std::complex<double> tone{};
        double sum = 0;
        double squares = 0;
    };

    void addHops(const double* samples);
    void endHop();
    [[nodiscard]] bool isTone(const Hop& first, const Hop& second) const noexcept;

    std::size_t hopFrames_ = 0;
    std::vector<double> cosines_;
    std::vector<double> sines_;
    /// The tone's turn during a hop, and since the beginning.
    std::complex<double> turn_{1, 0};
    std::complex<double> phase_{1, 0};
    Hop before_{};
    Hop now_{};
    std::size_t filled_ = 0;
    std::uint64_t hops_ = 0;
    FrameRange open_{};
    ListedRanges found_{};
};

}  // namespace audio
}  // namespace trellant
