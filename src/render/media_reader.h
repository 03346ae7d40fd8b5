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

  private:
    void readFrames(const sessions::WaveFile& file, int descriptor, std::size_t channel,
                    std::int64_t first, std::span<double> values);
    [[nodiscard]] int opened(std::size_t media);

    const PlayedFiles& files_;
    std::map<std::size_t, FileDescriptor> open_;
    Bytes bytes_;
};

}  // namespace trellant::render
