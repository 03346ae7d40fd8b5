// SPDX-License-Identifier: Apache-2.0
// A WAVE file written in one go, from its head to its last sample:
//
//   "RIFF" or, beyond 4 GiB, "RF64"; size; "WAVE"
//   "ds64"  of RF64: sizes of 64 bits
//   "fmt "  1 whole numbers, 3 floating point; "fact" with the number of frames for the latter
//   ...     chunks that are given
//   "data"  samples, and a zero where that leaves an odd number of bytes
#pragma once

#include <trellant/audio/pcm.h>
#include <trellant/base/bytes.h>
#include <trellant/base/file_descriptor.h>
#include <trellant/extraction/sha256.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace trellant::render {

struct WaveForm {
    audio::PcmFormat format{};
    std::size_t channels = 1;
    std::uint32_t rate = 48'000;
    /// Samples of one channel.
    std::uint64_t frames = 0;

    [[nodiscard]] std::uint64_t dataBytes() const noexcept {
        return frames * channels * format.bytes();
    }
};

/// The bytes in front of the samples. `chunks`: whole ones, of even length.
[[nodiscard]] Bytes waveHead(const WaveForm& form, ByteView chunks);

class WaveFileWriter {
  public:
    /// Makes a new file. Throws FileSystemError, and so do the others.
    WaveFileWriter(std::string path, const WaveForm& form, ByteView chunks);

    /// Further samples as the file has them, channels interleaved.
    void add(ByteView samples);
    /// Call once, when all samples were added. Gives the file's SHA-256, as sha256sum prints it.
    [[nodiscard]] std::string finish();

  private:
    std::string path_;
    WaveForm form_;
    FileDescriptor file_;
    Sha256 sha_;
};

}  // namespace trellant::render
