// SPDX-License-Identifier: Apache-2.0
// What the header of a WAVE or AIFF/AIFC file says about its audio.
#pragma once

#include <trellant/io/byte_readers.h>
#include <trellant/model/rational.h>

#include <cstdint>
#include <optional>
#include <string>

namespace [[gnu::visibility("default")]] trellant {

/// What the header told; each field is absent when it did not.
struct AudioFormatInfo {
    /// Whole hertz over 1.
    std::optional<AAFRational> sampleRate;
    std::optional<std::int64_t> channels;
    /// Bits of one sample.
    std::optional<std::int64_t> bitDepth;
    /// "PCM", "IEEE Float" or "WAVE format 0x0055"; "AIFF", or of an AIFC its compression type.
    std::optional<std::string> codec;
    bool operator==(const AudioFormatInfo&) const = default;
};

/// Where the samples of an audio file lie in it, without its chunks.
struct SamplePlace {
    /// In bytes; the length is that of whole frames where frames have a size.
    std::uint64_t offset = 0;
    std::uint64_t length = 0;
    /// As SampleData has them (sample_data.h).
    std::int64_t sampleBytes = 1;
    bool isBigEndian = false;
    bool operator==(const SamplePlace&) const = default;
};

/// Nothing here throws for what a file holds: a header that is not recognised is absent.
struct AudioProbe {
    /// `data` begins with the file's first byte.
    [[nodiscard]] static std::optional<AudioFormatInfo> probe(ByteView data);
    /// Looks at the first 1 MiB of a regular file; absent when it cannot be read.
    [[nodiscard]] static std::optional<AudioFormatInfo> probeFile(const std::string& path);
    /// Samples of one channel of a file of `size` bytes that begins with `data`: as many as WAVE
    /// has room for, as many as AIFF counts. Absent where `data` ends before it is said, and for
    /// compressed WAVE.
    [[nodiscard]] static std::optional<std::uint64_t> frames(ByteView data, std::uint64_t size);
    /// The samples of a file of `size` bytes that begins with `data`; absent where `data` ends
    /// before their chunk begins, and where there are none.
    [[nodiscard]] static std::optional<SamplePlace> samples(ByteView data, std::uint64_t size);
};

}  // namespace trellant
