// SPDX-License-Identifier: Apache-2.0
// The sounds inside a file, in one pass from front to back, whatever the bytes.
//
// A sound is an AIFF, AIFC, WAVE or RF64 file inside the file, told by its mark and by chunks that
// make sense up to its samples. How long it is says the table of contents where it names a value
// that begins there, else its own header. What lies inside another sound's samples is no sound of
// its own, and no byte belongs to two sounds.
#pragma once

#include <trellant/salvage/found_sound.h>
#include <trellant/salvage/found_table.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <optional>

namespace [[gnu::visibility("default")]] trellant {
namespace salvage {

class SoundSearch {
  public:
    /// Called with the byte of the file that the search has come to, now and then.
    using Progress = std::function<void(std::uint64_t)>;

    /// `file` and `table` (or none) must outlive this. What lies behind the first `searchedBytes`
    /// of the file counts as not there.
    SoundSearch(const RandomAccessFile& file, const FoundTable* table, Progress progress = {},
                std::uint64_t searchedBytes = std::numeric_limits<std::uint64_t>::max());
    ~SoundSearch();
    SoundSearch(const SoundSearch&) = delete;
    SoundSearch& operator=(const SoundSearch&) = delete;
    SoundSearch(SoundSearch&&) = delete;
    SoundSearch& operator=(SoundSearch&&) = delete;

    /// The next sound; nothing behind the last. Throws what `progress` throws.
    [[nodiscard]] std::optional<FoundSound> next();
    /// The byte of the file that the search has come to.
    [[nodiscard]] std::uint64_t position() const noexcept;

  private:
    class Pass;
    std::unique_ptr<Pass> pass_;
};

}  // namespace salvage
}  // namespace trellant
