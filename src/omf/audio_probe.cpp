// SPDX-License-Identifier: Apache-2.0
// Both kinds of file are chunks after a head of 12 bytes: form (4), size (4), form type (4). A
// chunk has an identifier (4), a size (4) and that many bytes, padded to an even number. WAVE is
// little-endian, AIFF big-endian.
//
//   WAVE "fmt ", at least 16 bytes      AIFF "COMM", at least 18 bytes
//   offset  size  meaning               offset  size  meaning
//   0       2     format tag            0       2     channels
//   2       2     channels              2       4     frame count
//   4       4     sample rate           6       2     bits per sample
//   12      2     bytes of a frame      8       10    sample rate, 80-bit floating point
//   14      2     bits per sample       18      4     compression type, AIFC only
//
// A WAVE's audio is the chunk "data"; where its size is 0xFFFFFFFF, that at offset 8 (8 bytes) of
// "ds64" holds.
#include <trellant/io/errors.h>
#include <trellant/io/random_access_file.h>
#include <trellant/omf/audio_probe.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string_view>

namespace trellant {

namespace {

constexpr std::size_t headSize = 12;
constexpr std::size_t chunkHeadSize = 8;
constexpr std::size_t waveFormatSize = 16;
constexpr std::size_t aiffCommonSize = 18;
constexpr std::size_t aifcCommonSize = 22;
/// What AIFC adds to the common chunk of AIFF.
constexpr std::size_t compressionSize = aifcCommonSize - aiffCommonSize;
constexpr std::uint64_t probedBytes = 1'048'576;
/// In nearly every file the format stands within these bytes.
constexpr std::uint64_t usualHead = 4096;

struct Chunk {
    /// As its head says; the file may be shorter.
    std::uint32_t size = 0;
    /// What follows the head, up to the end of the buffer.
    ByteView rest;
};

bool hasText(ByteView data, std::size_t offset, std::string_view text) {
    const ByteView expected = std::as_bytes(std::span(text));
    return data.size() >= offset + text.size() &&
           std::equal(expected.begin(), expected.end(),
                      data.begin() + static_cast<std::ptrdiff_t>(offset));
}

/// The first chunk called `id` that is usable.
template <typename Usable>
std::optional<Chunk> findChunk(ByteView data, OMFByteOrder order, std::string_view id,
                               Usable usable) {
    std::uint64_t offset = headSize;
    while (offset + chunkHeadSize <= data.size()) {
        const auto size = u32(data, static_cast<std::int64_t>(offset) + 4, order);
        const Chunk chunk{size, data.subspan(offset + chunkHeadSize)};
        if (hasText(data, offset, id) && usable(chunk)) {
            return chunk;
        }
        offset += chunkHeadSize + std::uint64_t{size} + size % 2;
    }
    return std::nullopt;
}

std::string waveCodec(std::uint16_t tag) {
    if (tag == 1) {
        return "PCM";
    }
    if (tag == 3) {
        return "IEEE Float";
    }
    std::array<char, 24> text{};
    static_cast<void>(
        std::snprintf(text.data(), text.size(), "WAVE format 0x%04X", static_cast<unsigned>(tag)));
    return text.data();
}

std::optional<AudioFormatInfo> probeWave(ByteView data) {
    if (!hasText(data, 8, "WAVE")) {
        return std::nullopt;
    }
    constexpr auto order = OMFByteOrder::little;
    const auto format = findChunk(data, order, "fmt ", [](const Chunk& chunk) {
        return chunk.size >= waveFormatSize && chunk.rest.size() >= waveFormatSize;
    });
    if (!format) {
        return std::nullopt;
    }
    return AudioFormatInfo{.sampleRate = AAFRational(u32(format->rest, 4, order)),
                           .channels = u16(format->rest, 2, order),
                           .bitDepth = u16(format->rest, 14, order),
                           .codec = waveCodec(u16(format->rest, 0, order))};
}

/// Sign and exponent in 16 bits, then 64 bits of mantissa with its leading one. Infinities and not
/// a number come out as the arithmetic has it.
double extended80(ByteView bytes) {
    const std::uint16_t head = u16(bytes, 0, OMFByteOrder::big);
    const int exponent = head & 0x7FFF;
    const auto mantissa = static_cast<double>(u64(bytes, 2, OMFByteOrder::big));
    const double magnitude = std::ldexp(mantissa, exponent - 16'383 - 63);
    return (head & 0x8000) != 0 ? -magnitude : magnitude;
}

/// The nearest whole number, halves away from zero, saturating; 0 for what is no number.
std::int64_t wholeNumber(double value) {
    constexpr double limit = 9'223'372'036'854'775'808.0;
    if (std::isnan(value)) {
        return 0;
    }
    if (value >= limit) {
        return std::numeric_limits<std::int64_t>::max();
    }
    if (value < -limit) {
        return std::numeric_limits<std::int64_t>::min();
    }
    return static_cast<std::int64_t>(std::round(value));
}

std::string aiffCodec(ByteView data, const Chunk& common) {
    const ByteView formType = data.subspan(8, 4);
    const bool isCompressedForm = hasText(data, 8, "AIFC");
    ByteView codec = formType;
    if (isCompressedForm && common.size >= aifcCommonSize && common.rest.size() >= aifcCommonSize) {
        const ByteView compression = common.rest.subspan(18, 4);
        const bool isASCII = std::all_of(compression.begin(), compression.end(), [](std::byte b) {
            return (b & std::byte{0x80}) == std::byte{0};
        });
        codec = isASCII ? compression : formType;
    }
    std::string text(codec.size(), '\0');
    std::transform(codec.begin(), codec.end(), text.begin(),
                   [](std::byte byte) { return static_cast<char>(byte); });
    return text;
}

std::optional<AudioFormatInfo> probeAiff(ByteView data) {
    if (!hasText(data, 8, "AIFF") && !hasText(data, 8, "AIFC")) {
        return std::nullopt;
    }
    constexpr auto order = OMFByteOrder::big;
    const auto common = findChunk(data, order, "COMM", [](const Chunk& chunk) {
        return chunk.rest.size() >= aiffCommonSize;
    });
    if (!common) {
        return std::nullopt;
    }
    return AudioFormatInfo{
        .sampleRate = AAFRational(wholeNumber(extended80(common->rest.subspan(8, 10)))),
        .channels = u16(common->rest, 0, order),
        .bitDepth = u16(common->rest, 6, order),
        .codec = aiffCodec(data, *common)};
}

bool isPlain(const AudioFormatInfo& format) {
    return format.codec == "PCM" || format.codec == "IEEE Float" ||
           format.codec == "WAVE format 0xFFFE";
}

/// The bytes of the audio in a WAVE file of `size` bytes, from where they begin.
struct AudioChunk {
    std::uint64_t offset = 0;
    std::uint64_t length = 0;
};

std::optional<AudioChunk> waveAudio(ByteView data, std::uint64_t size) {
    constexpr auto order = OMFByteOrder::little;
    constexpr std::uint32_t sizeElsewhere = 0xFFFFFFFF;
    constexpr std::size_t largeSizes = 16;
    const auto audio = findChunk(data, order, "data", [](const Chunk&) { return true; });
    if (!audio) {
        return std::nullopt;
    }
    std::uint64_t bytes = audio->size;
    if (audio->size == sizeElsewhere) {
        const auto large = findChunk(data, order, "ds64", [](const Chunk& chunk) {
            return chunk.size >= largeSizes && chunk.rest.size() >= largeSizes;
        });
        bytes = large ? u64(large->rest, 8, order) : bytes;
    }
    const std::uint64_t before = data.size() - audio->rest.size();
    return AudioChunk{before, std::min(bytes, size < before ? 0 : size - before)};
}

std::uint64_t waveFrameBytes(ByteView data) {
    const auto described = findChunk(data, OMFByteOrder::little, "fmt ", [](const Chunk& chunk) {
        return chunk.size >= waveFormatSize && chunk.rest.size() >= waveFormatSize;
    });
    return described ? u16(described->rest, 12, OMFByteOrder::little) : 0;
}

std::optional<std::uint64_t> waveFrames(ByteView data, std::uint64_t size) {
    const auto format = probeWave(data);
    if (!format || !isPlain(*format)) {
        return std::nullopt;
    }
    const auto audio = waveAudio(data, size);
    const std::uint64_t frameBytes = waveFrameBytes(data);
    if (!audio || frameBytes == 0) {
        return std::nullopt;
    }
    return audio->length / frameBytes;
}

std::int64_t bytesOfBits(std::int64_t bits) {
    return std::max<std::int64_t>((bits + 7) / 8, 1);
}

std::optional<SamplePlace> waveSamples(ByteView data, std::uint64_t size) {
    const auto format = probeWave(data);
    const auto audio = waveAudio(data, size);
    if (!format || !audio || audio->length == 0) {
        return std::nullopt;
    }
    const std::uint64_t frameBytes = isPlain(*format) ? waveFrameBytes(data) : 0;
    const std::uint64_t part = frameBytes == 0 ? 0 : audio->length % frameBytes;
    return SamplePlace{.offset = audio->offset,
                       .length = audio->length - part,
                       .sampleBytes = frameBytes == 0 ? 1 : bytesOfBits(*format->bitDepth),
                       .isBigEndian = false};
}

std::optional<std::uint64_t> aiffFrames(ByteView data) {
    const auto common = findChunk(data, OMFByteOrder::big, "COMM", [](const Chunk& chunk) {
        return chunk.rest.size() >= aiffCommonSize;
    });
    return common ? std::optional<std::uint64_t>(u32(common->rest, 2, OMFByteOrder::big))
                  : std::nullopt;
}

/// Bytes of a sample of an AIFF codec that has whole ones, and whether they come as AIFF has them;
/// absent for compressed ones.
std::optional<SamplePlace> aiffForm(const AudioFormatInfo& format) {
    const std::string& codec = *format.codec;
    if (codec == "AIFF" || codec == "AIFC" || codec == "NONE" || codec == "twos" ||
        codec == "in24" || codec == "in32" || codec == "fl32" || codec == "FL32" ||
        codec == "fl64" || codec == "FL64") {
        return SamplePlace{.sampleBytes = bytesOfBits(*format.bitDepth), .isBigEndian = true};
    }
    if (codec == "sowt") {
        return SamplePlace{.sampleBytes = bytesOfBits(*format.bitDepth), .isBigEndian = false};
    }
    return std::nullopt;
}

/// The chunk "SSND" begins with the offset of the samples behind these numbers (4 bytes) and the
/// size of blocks (4 bytes).
std::optional<SamplePlace> aiffSamples(ByteView data, std::uint64_t size) {
    constexpr std::size_t soundHead = 8;
    const auto format = probeAiff(data);
    const auto sound = findChunk(data, OMFByteOrder::big, "SSND", [](const Chunk& chunk) {
        return chunk.size >= soundHead && chunk.rest.size() >= soundHead;
    });
    if (!format || !sound) {
        return std::nullopt;
    }
    const std::uint64_t skipped = soundHead + u32(sound->rest, 0, OMFByteOrder::big);
    const std::uint64_t begin = data.size() - sound->rest.size() + skipped;
    if (skipped >= sound->size || begin >= size) {
        return std::nullopt;
    }
    const auto form = aiffForm(*format);
    SamplePlace place = form.value_or(SamplePlace());
    place.offset = begin;
    place.length = std::min<std::uint64_t>(sound->size - skipped, size - begin);
    if (form) {
        const std::uint64_t frameBytes = static_cast<std::uint64_t>(place.sampleBytes) *
                                         static_cast<std::uint64_t>(*format->channels);
        const std::uint64_t counted = aiffFrames(data).value_or(0) * frameBytes;
        place.length = std::min(place.length, counted);
    }
    return place.length == 0 ? std::nullopt : std::optional(place);
}

}  // namespace

std::optional<SamplePlace> AudioProbe::samples(ByteView data, std::uint64_t size) {
    if (data.size() < headSize) {
        return std::nullopt;
    }
    if (hasText(data, 0, "RIFF") || hasText(data, 0, "RF64")) {
        return waveSamples(data, size);
    }
    return hasText(data, 0, "FORM") ? aiffSamples(data, size) : std::nullopt;
}

std::optional<std::uint64_t> AudioProbe::frames(ByteView data, std::uint64_t size) {
    if (data.size() < headSize) {
        return std::nullopt;
    }
    if (hasText(data, 0, "RIFF") || hasText(data, 0, "RF64")) {
        return waveFrames(data, size);
    }
    return hasText(data, 0, "FORM") ? aiffFrames(data) : std::nullopt;
}

std::optional<AudioFormatInfo> AudioProbe::probe(ByteView data) {
    if (data.size() < headSize) {
        return std::nullopt;
    }
    if (hasText(data, 0, "RIFF") || hasText(data, 0, "RF64")) {
        return probeWave(data);
    }
    if (hasText(data, 0, "FORM")) {
        return probeAiff(data);
    }
    return std::nullopt;
}

std::optional<AudioFormatInfo> AudioProbe::probeFile(const std::string& path) {
    try {
        const RandomAccessFile file(path);
        const std::uint64_t probed = std::min(file.size(), probedBytes);
        Bytes data(std::min<std::uint64_t>(probed, usualHead));
        data.resize(file.readAvailable(0, data));
        // A format that ends right at the end of what was read may go on behind it.
        if (data.size() < usualHead || probed == usualHead ||
            probe(ByteView(data).first(data.size() - compressionSize))) {
            return probe(data);
        }
        data.resize(probed);
        data.resize(file.readAvailable(0, data));
        return probe(data);
    } catch (const FileSystemError&) {
        return std::nullopt;
    }
}

}  // namespace trellant
