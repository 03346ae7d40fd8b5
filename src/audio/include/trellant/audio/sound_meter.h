// SPDX-License-Identifier: Apache-2.0
// Measures a sound as it goes by, in memory that does not grow with its length beyond its outline.
#pragma once

#include <trellant/audio/sound_measures.h>
#include <trellant/audio/tone_meter.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {
namespace audio {

/// The outline alone.
class PeakMeter {
  public:
    /// Takes whole pairs, those of all channels together.
    using Sink = std::function<void(std::span<const PeakPair>)>;

    /// Both numbers 1 or more.
    PeakMeter(std::size_t channels, std::uint64_t framesPerPair, Sink sink);

    /// Further whole frames, channels interleaved: whole numbers of any depth at the upper end of
    /// 32 bits, or floating point with 1 as full scale, where what is no number counts as 0.
    void add(std::span<const std::int32_t> samples);
    void add(std::span<const double> samples);
    /// Hands on the last pair; call once, at the end.
    void finish();

  private:
    template <class Sample>
    void addAll(std::span<const Sample> samples);
    void endPair();

    std::size_t channels_;
    std::uint64_t framesPerPair_;
    Sink sink_;
    std::uint64_t filled_ = 0;
    std::vector<PeakPair> pair_;
};

/// What a sound is made of.
struct SoundFormat {
    /// 1 to mostChannels.
    std::size_t channels = 1;
    /// Hz, 1 or more.
    std::uint32_t sampleRate = 48'000;
    /// 2 to 32 of a whole number, 32 or 64 in floating point.
    std::uint32_t bitDepth = 16;
    bool isFloatingPoint = false;
};

/// All of SoundMeasures.
class SoundMeter {
  public:
    /// `framesPerPair` 1 or more; the outline takes 4 bytes for each channel and so many frames.
    SoundMeter(const SoundFormat& format, std::uint64_t framesPerPair);
    ~SoundMeter() = default;
    SoundMeter(const SoundMeter&) = delete;
    SoundMeter& operator=(const SoundMeter&) = delete;
    SoundMeter(SoundMeter&&) = delete;
    SoundMeter& operator=(SoundMeter&&) = delete;

    /// As PeakMeter does; the kind of number has to be that of the format.
    void add(std::span<const std::int32_t> samples);
    void add(std::span<const double> samples);
    /// Call once, at the end.
    [[nodiscard]] SoundMeasures taken();

  private:
    /// A run that may go on.
    struct Runs {
        FrameRange silence{};
        FrameRange top{};
        FrameRange bottom{};
    };

    /// From where on samples are at the ends of their scale.
    struct ScaleEnds {
        double top;
        double bottom;
    };

    [[nodiscard]] static ScaleEnds endsOf(const SoundFormat& format) noexcept;
    template <class Sample>
    void addAll(std::span<const Sample> samples);
    /// One channel's samples, gathered in `lane` where there are others between them.
    template <class Sample>
    [[nodiscard]] std::span<const Sample> laneOf(std::size_t channel,
                                                 std::span<const Sample> samples,
                                                 std::vector<Sample>& lane) const;
    template <class Sample>
    void addLane(std::size_t channel, std::span<const Sample> samples);
    void followRuns(std::size_t channel, std::uint64_t frame, std::span<const double> samples);
    void endSilence(std::size_t channel);
    void endFullScale(std::size_t channel, FrameRange& run);

    SoundFormat format_;
    ScaleEnds ends_;
    SoundMeasures measures_;
    PeakMeter peaks_;
    std::vector<Runs> runs_;
    std::vector<ToneMeter> tones_;
    std::vector<std::int32_t> wholeLane_;
    std::vector<double> floatingLane_;
    /// One channel's samples of a piece, full scale being 1.
    std::vector<double> scaled_;
};

}  // namespace audio
}  // namespace trellant
