// SPDX-License-Identifier: Apache-2.0
// Bytes as a file that sounds are searched in.
#pragma once

#include <trellant/salvage/sound_search.h>

#include <optional>
#include <string>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/temporary_directory.h>
#include <vector>

namespace trellant::testing {

class SearchedBytes {
  public:
    explicit SearchedBytes(ByteView bytes);

    [[nodiscard]] const RandomAccessFile& file() const noexcept { return *file_; }
    /// All sounds, by header alone or by the table that is found too.
    [[nodiscard]] std::vector<salvage::FoundSound> sounds(bool withTable = false) const;
    /// What the copy of a sound holds.
    [[nodiscard]] Bytes copyOf(const salvage::FoundSound& sound) const;

  private:
    TemporaryDirectory folder_;
    std::optional<RandomAccessFile> file_;
};

/// An AIFC file of 16-bit mono audio with so many samples at 48000 Hz, and a WAVE file.
[[nodiscard]] Bytes aifcOf(std::size_t frames);
[[nodiscard]] Bytes waveOf(std::size_t frames);

}  // namespace trellant::testing
