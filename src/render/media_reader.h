// SPDX-License-Identifier: Apache-2.0
// Frames of plain WAVE files, read where they lie.
#pragma once

#include <trellant/audio/pcm.h>
#include <trellant/base/bytes.h>
#include <trellant/base/file_descriptor.h>
#include <trellant/sessions/session.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <vector>

namespace trellant::render {

/// By position in a plan's media: where the file's samples lie; absent for media that are missing.
using PlayedFiles = std::vector<std::optional<sessions::WaveFile>>;

[[nodiscard]] audio::PcmFormat formatOf(const sessions::WaveFile& file) noexcept;
/// Whole frames in the file; 0 where its facts make no sense.
[[nodiscard]] std::int64_t framesOf(const sessions::WaveFile& file) noexcept;

/// For one thread. Holds some files open and a piece of one in memory, however many there are.
class MediaReader {
  public:
    /// `files` must outlive this.
    explicit MediaReader(const PlayedFiles& files) : files_(files) {}

    [[nodiscard]] bool has(std::size_t media) const { return files_[media].has_value(); }
    /// One channel's frames from `first` on; frames and channels that the file does not have, and
    /// files that are missing, are silent. Throws FileSystemError.
    void read(std::size_t media, std::size_t channel, std::int64_t first, std::span<double> values);

    /// Whether `copy` may be called: for media that are there.
    [[nodiscard]] bool canCopy(std::size_t media, const audio::PcmFormat& to) const {
        return audio::isWidening(formatOf(*files_[media]), to);
    }
    /// As `read`, as whole samples of a file: the bytes that encoding what was read gives.
    void copy(std::size_t media, std::size_t channel, std::int64_t first,
              const audio::PcmFormat& to, std::span<std::byte> bytes);

  private:
    /// Frames of a file that are read, and where among those that were asked for they lie.
    struct Part {
        std::int64_t first = 0;
        std::size_t skipped = 0;
        std::size_t count = 0;
    };
    [[nodiscard]] Part partIn(std::size_t media, std::size_t channel, std::int64_t first,
                              std::size_t count) const;
    [[nodiscard]] int opened(std::size_t media);
    /// As many frames of all channels as `bytes` has room for.
    void readFrames(std::size_t media, std::int64_t first, std::span<std::byte> bytes);
    /// Hands frames of all channels to `take`, piece by piece: their bytes, and how many came
    /// before.
    template <class Take>
    void forEachPiece(std::size_t media, const Part& part, const Take& take);

    const PlayedFiles& files_;
    std::map<std::size_t, FileDescriptor> open_;
    Bytes bytes_;
};

}  // namespace trellant::render
