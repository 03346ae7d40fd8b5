// SPDX-License-Identifier: Apache-2.0
// The form in which the converter hands its measures to whoever started it:
//
//   size  meaning, little endian
//      8  "trsound1"
//      8  frames
//      4  samples in a second
//      4  bits of a sample
//      4  1 for floating point, else 0
//      4  channels, 1 to mostChannels
//      8  frames of a pair
//      8  pairs of one channel, 0 to mostPairs
//         the pairs, those of all channels together, each two signed 16-bit numbers
//         for each channel: 8 shortestSilence, 8 runs of silence, their ranges;
//                           8 total of full scale, 8 listed of it, their ranges; tones the same
//
// A range is its first frame and its frames, 8 bytes each.
#include <trellant/audio/sound_measures.h>
#include <trellant/base/byte_load.h>

#include <cstring>
#include <limits>
#include <span>
#include <string_view>

namespace trellant::audio {

namespace {

constexpr std::string_view mark = "trsound1";
constexpr std::size_t rangeBytes = 16;
constexpr std::size_t pairBytes = 4;

class Packer {
  public:
    template <class Unsigned>
    void number(Unsigned value) {
        for (std::size_t i = 0; i < sizeof value; ++i) {
            bytes_.push_back(static_cast<std::byte>((std::uint64_t{value} >> (8 * i)) & 0xFFU));
        }
    }
    void text(std::string_view text) {
        const auto bytes = std::as_bytes(std::span(text));
        bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    }
    void ranges(const std::vector<FrameRange>& ranges) {
        number(std::uint64_t{ranges.size()});
        for (const FrameRange& range : ranges) {
            number(range.first);
            number(range.frames);
        }
    }
    [[nodiscard]] Bytes taken() { return std::move(bytes_); }

  private:
    Bytes bytes_;
};

/// Gives nothing but zeros once the bytes have ended or did not make sense.
class Unpacker {
  public:
    explicit Unpacker(ByteView bytes) : bytes_(bytes) {}

    template <class Unsigned>
    [[nodiscard]] Unsigned number() {
        if (bytes_.size() < sizeof(Unsigned)) {
            fail();
            return 0;
        }
        const auto value = loadUnsigned<Unsigned>(bytes_.data(), OMFByteOrder::little);
        bytes_ = bytes_.subspan(sizeof(Unsigned));
        return value;
    }
    [[nodiscard]] bool text(std::string_view expected) {
        const bool isThere = bytes_.size() >= expected.size() &&
                             std::memcmp(bytes_.data(), expected.data(), expected.size()) == 0;
        bytes_ = bytes_.subspan(isThere ? expected.size() : bytes_.size());
        return isThere;
    }
    /// A number of things of so many bytes that are all there.
    [[nodiscard]] std::size_t count(std::uint64_t most, std::size_t bytesOfEach) {
        const auto value = number<std::uint64_t>();
        if (value > most || value > bytes_.size() / bytesOfEach) {
            fail();
            return 0;
        }
        return static_cast<std::size_t>(value);
    }
    /// Ascending, none over another, all within so many frames.
    [[nodiscard]] std::vector<FrameRange> ranges(std::uint64_t frames) {
        std::vector<FrameRange> result(count(mostListedRanges, rangeBytes));
        for (std::size_t i = 0; i < result.size(); ++i) {
            result[i].first = number<std::uint64_t>();
            result[i].frames = number<std::uint64_t>();
            const bool isInside = result[i].first < frames && result[i].frames > 0 &&
                                  result[i].frames <= frames - result[i].first;
            if (!isInside || (i > 0 && result[i].first < result[i - 1].end())) {
                fail();
                return {};
            }
        }
        return result;
    }
    void check(bool condition) {
        if (!condition) {
            fail();
        }
    }
    [[nodiscard]] bool hasFailed() const noexcept { return failed_; }
    [[nodiscard]] bool isWhole() const noexcept { return !failed_ && bytes_.empty(); }

  private:
    void fail() {
        failed_ = true;
        bytes_ = {};
    }

    ByteView bytes_;
    bool failed_ = false;
};

void pack(Packer& packer, const ListedRanges& listed) {
    packer.number(listed.total);
    packer.ranges(listed.ranges);
}

ListedRanges unpackedRanges(Unpacker& unpacker, std::uint64_t frames) {
    ListedRanges listed;
    listed.total = unpacker.number<std::uint64_t>();
    listed.ranges = unpacker.ranges(frames);
    unpacker.check(listed.total >= listed.ranges.size() && listed.total <= frames);
    return listed;
}

ChannelMeasures unpackedChannel(Unpacker& unpacker, std::uint64_t frames) {
    ChannelMeasures channel;
    channel.shortestSilence = unpacker.number<std::uint64_t>();
    unpacker.check(channel.shortestSilence > 0);
    channel.silences = unpacker.ranges(frames);
    channel.fullScale = unpackedRanges(unpacker, frames);
    channel.tones = unpackedRanges(unpacker, frames);
    return channel;
}

Peaks unpackedPeaks(Unpacker& unpacker, std::size_t channels) {
    Peaks peaks;
    peaks.channels = channels;
    peaks.framesPerPair = unpacker.number<std::uint64_t>();
    unpacker.check(peaks.framesPerPair > 0);
    const std::size_t length = unpacker.count(mostPairs, pairBytes * channels);
    peaks.pairs.resize(length * channels);
    for (PeakPair& pair : peaks.pairs) {
        pair.lowest = static_cast<std::int16_t>(unpacker.number<std::uint16_t>());
        pair.highest = static_cast<std::int16_t>(unpacker.number<std::uint16_t>());
    }
    return peaks;
}

/// Pairs that so many frames have.
std::uint64_t pairsOf(std::uint64_t frames, std::uint64_t framesPerPair) noexcept {
    return frames / framesPerPair + (frames % framesPerPair == 0 ? 0 : 1);
}

}  // namespace

Bytes packedMeasures(const SoundMeasures& sound) {
    Packer packer;
    packer.text(mark);
    packer.number(sound.frames);
    packer.number(sound.sampleRate);
    packer.number(sound.bitDepth);
    packer.number(std::uint32_t{sound.isFloatingPoint ? 1U : 0U});
    packer.number(static_cast<std::uint32_t>(sound.channels.size()));
    packer.number(sound.peaks.framesPerPair);
    packer.number(std::uint64_t{sound.peaks.length()});
    for (const PeakPair& pair : sound.peaks.pairs) {
        packer.number(static_cast<std::uint16_t>(pair.lowest));
        packer.number(static_cast<std::uint16_t>(pair.highest));
    }
    for (const ChannelMeasures& channel : sound.channels) {
        packer.number(channel.shortestSilence);
        packer.ranges(channel.silences);
        pack(packer, channel.fullScale);
        pack(packer, channel.tones);
    }
    return packer.taken();
}

std::optional<SoundMeasures> unpackedMeasures(ByteView bytes) {
    Unpacker unpacker(bytes);
    SoundMeasures sound;
    if (!unpacker.text(mark)) {
        return std::nullopt;
    }
    sound.frames = unpacker.number<std::uint64_t>();
    sound.sampleRate = unpacker.number<std::uint32_t>();
    sound.bitDepth = unpacker.number<std::uint32_t>();
    const auto floating = unpacker.number<std::uint32_t>();
    const auto channels = unpacker.number<std::uint32_t>();
    unpacker.check(sound.frames <= std::uint64_t{std::numeric_limits<std::int64_t>::max()} &&
                   floating <= 1 && channels >= 1 && channels <= mostChannels);
    if (unpacker.hasFailed()) {
        return std::nullopt;
    }
    sound.isFloatingPoint = floating == 1;
    sound.peaks = unpackedPeaks(unpacker, channels);
    unpacker.check(!unpacker.hasFailed() &&
                   sound.peaks.length() == pairsOf(sound.frames, sound.peaks.framesPerPair));
    for (std::uint32_t channel = 0; channel < channels && !unpacker.hasFailed(); ++channel) {
        sound.channels.push_back(unpackedChannel(unpacker, sound.frames));
    }
    return unpacker.isWhole() ? std::optional(std::move(sound)) : std::nullopt;
}

}  // namespace trellant::audio
