// SPDX-License-Identifier: Apache-2.0
// What is known of an audio file's sound after one pass over it: its outline, where it is silent,
// where it is cut off at full scale, where a line-up tone stands in it.
//
// Frames are samples of one channel and count from 0; ranges hold their first frame, not the one
// behind their last. Lists are bounded, so that hours of any sound stay small, and each says what
// it left out.
#pragma once

#include <trellant/base/bytes.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {
namespace audio {

/// Channels of a file that is measured, at most.
inline constexpr std::size_t mostChannels = 64;
/// Ranges that each list of a channel holds, at most.
inline constexpr std::size_t mostListedRanges = 4'096;
/// Pairs of one channel that are held in memory, at most.
inline constexpr std::size_t mostPairs = 1'048'576;
/// Samples at full scale in succession that count as cut off.
inline constexpr std::uint64_t shortestFullScaleRun = 3;

/// Frames in succession.
struct FrameRange {
    std::uint64_t first = 0;
    std::uint64_t frames = 0;
    bool operator==(const FrameRange&) const = default;

    [[nodiscard]] std::uint64_t end() const noexcept { return first + frames; }
};

/// The lowest and the highest of some samples, in 1/32,768 of full scale, rounded down.
struct PeakPair {
    std::int16_t lowest = 0;
    std::int16_t highest = 0;
    bool operator==(const PeakPair&) const = default;
};

/// The outline of a sound.
struct Peaks {
    /// Frames that a pair is of, 1 or more; the last pair may be of fewer.
    std::uint64_t framesPerPair = 1;
    std::size_t channels = 1;
    /// Pair `p` of channel `c` is at `p * channels + c`.
    std::vector<PeakPair> pairs{};
    bool operator==(const Peaks&) const = default;

    /// Pairs of one channel.
    [[nodiscard]] std::size_t length() const noexcept { return pairs.size() / channels; }
    [[nodiscard]] const PeakPair& at(std::size_t pair, std::size_t channel) const {
        return pairs.at(pair * channels + channel);
    }
};

/// The first so many of some ranges, by ascending place, none over another.
struct ListedRanges {
    std::vector<FrameRange> ranges{};
    /// How many there are with those that are not listed.
    std::uint64_t total = 0;
    bool operator==(const ListedRanges&) const = default;

    [[nodiscard]] bool isWhole() const noexcept { return ranges.size() == total; }
};

struct ChannelMeasures {
    /// Every run of digital silence (samples of exactly 0) of `shortestSilence` frames or more, by
    /// ascending place.
    std::vector<FrameRange> silences{};
    /// 1, unless there are more runs than are listed: then a power of two.
    std::uint64_t shortestSilence = 1;
    /// Runs of at least `shortestFullScaleRun` samples at one end of the scale: the largest number
    /// of their depth; the smallest or the one above it, since many programs cut both sides alike;
    /// in floating point 1 and above, or -1 and below.
    ListedRanges fullScale{};
    /// Where a tone of 1 kHz is nearly all that is heard (tone_meter.h).
    ListedRanges tones{};
    bool operator==(const ChannelMeasures&) const = default;
};

struct SoundMeasures {
    std::uint64_t frames = 0;
    /// Hz.
    std::uint32_t sampleRate = 0;
    /// Of a sample as it is stored, without the padding of its header's depth where that was told.
    std::uint32_t bitDepth = 0;
    bool isFloatingPoint = false;
    Peaks peaks{};
    /// One for each channel.
    std::vector<ChannelMeasures> channels{};
    bool operator==(const SoundMeasures&) const = default;
};

enum class Answer { no, yes, unknown };

/// Whether every sample of the range is exactly 0. `unknown` only for ranges shorter than
/// `shortestSilence`. What lies beyond the sound's end counts as silent, an empty range too. Takes
/// time in proportion to the logarithm of the runs.
[[nodiscard]] Answer isSilent(const SoundMeasures& sound, std::size_t channel, FrameRange range);

/// The parts of a list that lie within a range.
struct RangesWithin {
    std::vector<FrameRange> ranges{};
    /// There may be more: the list ends before the range does.
    bool mayBeMore = false;
    bool operator==(const RangesWithin&) const = default;
};

/// What of the listed ranges lies in `range`, each cut to it; those of fewer than `shortest` frames
/// then are left out. `listed` takes `fullScale` or `tones` of a channel.
[[nodiscard]] RangesWithin rangesWithin(const ListedRanges& listed, FrameRange range,
                                        std::uint64_t shortest);

/// As bytes, for another process on this machine; little endian.
[[nodiscard]] Bytes packedMeasures(const SoundMeasures& sound);
/// Absent for bytes that packedMeasures does not give: whoever wrote them read a stranger's file.
[[nodiscard]] std::optional<SoundMeasures> unpackedMeasures(ByteView bytes);

}  // namespace audio
}  // namespace trellant
